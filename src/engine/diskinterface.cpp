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
}

int RealDiskInterface::statFile(const QByteArray &name, struct stat &status)
{
    // A build looks at thousands of files in a few directories. Asking relative to an open
    // directory spares the kernel walking the whole name each time.
    const qsizetype slash = name.lastIndexOf('/');
    if (slash < 0 || slash + 1 == name.size())
        return ::stat(name.constData(), &status);
    const QByteArray directory =
        QByteArray::fromRawData(name.constData(), qMax<qsizetype>(slash, 1));
    auto found = m_directories.constFind(directory);
    if (found == m_directories.constEnd()) {
        // A directory that isn't there is not remembered: the build may make it.
        const QByteArray owned(directory.constData(), directory.size());
        const int descriptor = m_directories.size() < maximumOpenDirectories
                                   ? ::open(owned.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC)
                                   : -1;
        if (descriptor < 0)
            return ::stat(name.constData(), &status);
        found = m_directories.insert(owned, descriptor);
    }
    return ::fstatat(*found, name.constData() + slash + 1, &status, 0);
}

QDateTime RealDiskInterface::timeOf(const QString &path)
{
    struct stat status;
    ++m_statCount;
    // Directories and other non-files count as missing: nothing a build makes or reads is one.
    if (statFile(QFile::encodeName(path), status) != 0 || S_ISDIR(status.st_mode))
        return QDateTime();
    const qint64 milliseconds =
        qint64(status.st_mtim.tv_sec) * 1000 + status.st_mtim.tv_nsec / 1000000;
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
}

RealDiskInterface::Entry &RealDiskInterface::entry(const QString &path)
{
    auto found = m_entries.find(path);
    if (found != m_entries.end())
        return *found;
    Entry fresh;
    fresh.modified = timeOf(path);
    return *m_entries.insert(path, fresh);
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
