#include "engine/diskinterface.h"

#include "foundation/qtx.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

DiskInterface::~DiskInterface() = default;

RealDiskInterface::~RealDiskInterface()
{
    closeDirectories();
}

void RealDiskInterface::closeDirectories()
{
    for (const int descriptor : std::as_const(m_directories))
        ::close(descriptor);
    m_directories.clear();
    m_lastDirectory = -1;
    m_lastDirectoryName.clear();
}

/// `path` in the file system's encoding: ASCII as it is, without an allocation once `buffer`
/// has grown, anything else as Qt encodes it.
static const QByteArray &encodedName(const QString &path, QByteArray &buffer)
{
    const qsizetype size = path.size();
    buffer.resize(size);
    char *out = buffer.data();
    const QChar *in = path.constData();
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = in[i].unicode();
        if (c >= 0x80 || c == 0) {
            buffer = QFile::encodeName(path);
            return buffer;
        }
        out[i] = char(c);
    }
    return buffer;
}

int RealDiskInterface::statFile(const QByteArray &name, struct stat &status)
{
    // A build looks at thousands of files in a few directories. Asking relative to an open
    // directory spares the kernel walking the whole name each time.
    const qsizetype slash = name.lastIndexOf('/');
    if (slash < 0 || slash + 1 == name.size())
        return ::stat(name.constData(), &status);
    const QByteArrayView directory(name.constData(), qMax<qsizetype>(slash, 1));
    // Files come a directory at a time.
    if (m_lastDirectory < 0 || directory != QByteArrayView(m_lastDirectoryName)) {
        auto found = m_directories.constFind(QByteArray::fromRawData(directory.data(),
                                                                     directory.size()));
        if (found == m_directories.constEnd()) {
            // A directory that isn't there is not remembered: the build may make it.
            const QByteArray owned = directory.toByteArray();
            const int descriptor =
                m_directories.size() < maximumOpenDirectories
                    ? ::open(owned.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC)
                    : -1;
            if (descriptor < 0)
                return ::stat(name.constData(), &status);
            found = m_directories.insert(owned, descriptor);
        }
        m_lastDirectoryName = found.key();
        m_lastDirectory = *found;
    }
    return ::fstatat(m_lastDirectory, name.constData() + slash + 1, &status, 0);
}

QDateTime RealDiskInterface::timeOf(const QString &path)
{
    struct stat status;
    ++m_statCount;
    // Directories and other non-files count as missing: nothing a build makes or reads is one.
    if (statFile(encodedName(path, m_nameBuffer), status) != 0 || S_ISDIR(status.st_mode))
        return QDateTime();
    const qint64 milliseconds =
        qint64(status.st_mtim.tv_sec) * 1000 + status.st_mtim.tv_nsec / 1000000;
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
}

RealDiskInterface::Entry &RealDiskInterface::entry(const QString &path)
{
    Entry &known = m_entries[path];
    if (!known.looked) {
        known.modified = timeOf(path);
        known.looked = true;
    }
    return known;
}

QDateTime RealDiskInterface::probe(const QString &path)
{
    return timeOf(path);
}

QDateTime RealDiskInterface::modified(const QString &path)
{
    return entry(path).modified;
}

bool RealDiskInterface::isReadable(const QString &path)
{
    Entry &known = entry(path);
    if (known.readable < 0)
        known.readable =
            known.modified.isValid() && ::access(QFile::encodeName(path).constData(), R_OK) == 0;
    return known.readable == 1;
}

bool RealDiskInterface::readFile(const QString &path, qint64 maximumSize, QByteArray &contents)
{
    // Plain system calls: the engine reads thousands of small dependency files in a build.
    // Not blocking, so that a pipe in the place of a file can't stop the build.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return false;
    struct stat status;
    bool ok = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
              status.st_size <= maximumSize;
    if (ok) {
        contents.resize(qsizetype(status.st_size));
        qsizetype done = 0;
        while (ok && done < contents.size()) {
            const ssize_t count =
                ::read(descriptor, contents.data() + done, contents.size() - done);
            if (count < 0 && errno == EINTR)
                continue;
            ok = count >= 0;
            if (count == 0)
                break;
            done += count;
        }
        contents.truncate(done);
    }
    ::close(descriptor);
    return ok;
}

bool RealDiskInterface::removeFile(const QString &path)
{
    invalidate(path);
    return QTx::removeFile(path);
}

void RealDiskInterface::invalidate(const QString &path)
{
    changed();
    m_entries.remove(path);
}

void RealDiskInterface::invalidateAll()
{
    changed();
    m_entries.clear();
    // A command may have removed or replaced a directory that is held open.
    closeDirectories();
}

bool RealDiskInterface::writeFile(const QString &path, const QByteArray &contents)
{
    invalidate(path);
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return false;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() &&
           file.commit();
}

qint64 RealDiskInterface::stamp(const QString &path)
{
    struct stat status;
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return -1;
    return qint64(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec;
}

bool RealDiskInterface::setStamp(const QString &path, qint64 stamp)
{
    invalidate(path);
    if (stamp < 0)
        return false;
    const struct timespec times[2] = {{0, UTIME_OMIT},
                                      {time_t(stamp / 1000000000), long(stamp % 1000000000)}};
    return ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) == 0;
}
