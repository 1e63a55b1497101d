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

RealDiskInterface::Entry &RealDiskInterface::entry(const QString &path)
{
    auto found = m_entries.find(path);
    if (found != m_entries.end())
        return *found;
    Entry fresh;
    struct stat status;
    ++m_statCount;
    const QByteArray name = QFile::encodeName(path);
    // Directories and other non-files count as missing: nothing a build makes or reads is one.
    if (::stat(name.constData(), &status) == 0 && !S_ISDIR(status.st_mode)) {
        const qint64 milliseconds =
            qint64(status.st_mtim.tv_sec) * 1000 + status.st_mtim.tv_nsec / 1000000;
        fresh.modified = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
    }
    return *m_entries.insert(path, fresh);
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
    m_entries.remove(path);
}

void RealDiskInterface::invalidateAll()
{
    m_entries.clear();
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
