#include "foundation/path.h"
#include "foundation/qtx.h"

#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

namespace {

constexpr size_t copyBufferSize = 0x20000;

// Writes all of `size` bytes, going on after partial writes.
bool writeAll(int fd, const char *data, size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written < 0)
            return false;
        data += written;
        size -= size_t(written);
    }
    return true;
}

// Copies the bytes of the open `source` to the open `target`.
bool copyBytes(int source, int target)
{
    std::unique_ptr<char[]> buffer(new char[copyBufferSize]);
    for (;;) {
        const ssize_t got = ::read(source, buffer.get(), copyBufferSize);
        if (got == 0)
            return true;
        if (got < 0 || !writeAll(target, buffer.get(), size_t(got)))
            return false;
    }
}

bool isSameFile(const struct stat &a, const QByteArray &b)
{
    struct stat other;
    return ::stat(b.constData(), &other) == 0 && other.st_dev == a.st_dev &&
           other.st_ino == a.st_ino;
}

// True if `inner` is `outer` or lies inside it; copying a tree into itself never ends.
bool liesWithin(const QString &inner, const QString &outer)
{
    const QString a = QFileInfo(inner).canonicalFilePath();
    const QString b = QFileInfo(outer).canonicalFilePath();
    return a == b || a.startsWith(b + QLatin1Char('/'));
}

} // namespace

namespace QTx {

time_t getUTCModificationTime(const QString &path)
{
    struct stat status;
    if (::stat(Path::toOsBytes(path).constData(), &status) != 0)
        return 0;
    struct tm broken;
    if (!gmtime_r(&status.st_mtime, &broken))
        return 0;
    return mktime(&broken);
}

bool createFile(const QString &path, unsigned int size, const unsigned char *data, bool readOnly,
                long time)
{
    const QByteArray name = Path::toOsBytes(path);
    const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (fd < 0)
        return false;
    const bool written = writeAll(fd, reinterpret_cast<const char *>(data), size);
    if (::close(fd) != 0 || !written)
        return false;
    struct utimbuf times;
    times.actime = time;
    times.modtime = time;
    ::utime(name.constData(), &times);
    return !readOnly || setWriteable(path, false);
}

bool setWriteable(const QString &path, bool writable)
{
    const QByteArray name = Path::toOsBytes(path);
    struct stat status;
    if (::stat(name.constData(), &status) != 0)
        return false;
    const mode_t mode = status.st_mode & 07777;
    return ::chmod(name.constData(), writable ? mode | S_IWUSR : mode & ~S_IWUSR) == 0;
}

bool filesMatch(const QString &a, const QString &b)
{
    QFile first(a);
    QFile second(b);
    if (!first.open(QIODevice::ReadOnly) || !second.open(QIODevice::ReadOnly))
        return false;
    if (first.size() != second.size())
        return false;
    char blockA[1024];
    char blockB[1024];
    for (;;) {
        const qint64 gotA = first.read(blockA, sizeof blockA);
        const qint64 gotB = second.read(blockB, sizeof blockB);
        if (gotA < 0 || gotA != gotB)
            return false;
        if (gotA == 0)
            return true;
        if (memcmp(blockA, blockB, size_t(gotA)) != 0)
            return false;
    }
}

bool copyFile(const QString &from, const QString &to)
{
    const QFileInfo source(from);
    if (!source.exists())
        return false;
    const QString target = QFileInfo(to).isDir() ? to + QLatin1Char('/') + source.fileName() : to;
    const QByteArray targetName = Path::toOsBytes(target);

    const int in = ::open(Path::toOsBytes(from).constData(), O_RDONLY);
    if (in < 0)
        return false;
    struct stat status;
    if (::fstat(in, &status) != 0) {
        ::close(in);
        return false;
    }
    // Opening a file onto itself would truncate it: it already is its own copy.
    if (isSameFile(status, targetName)) {
        ::close(in);
        return true;
    }
    const int out = ::open(targetName.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (out < 0) {
        ::close(in);
        return false;
    }
    const bool copied = copyBytes(in, out);
    ::close(in);
    if (::close(out) != 0 || !copied)
        return false;

    // Times to the nanosecond, so that up-to-date checks see the copy as no older
    // than its source.
    const struct timespec times[2] = {status.st_atim, status.st_mtim};
    ::utimensat(AT_FDCWD, targetName.constData(), times, 0);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::chmod(targetName.constData(), status.st_mode & ~mask & 07777);
    return true;
}

bool copyDir(const QString &from, const QString &to)
{
    if (!QFileInfo(from).isDir() || !QFileInfo(to).isDir() || liesWithin(to, from))
        return false;
    const QFileInfoList entries = QDir(from).entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink()) {
            const QString target = to + QLatin1Char('/') + entry.fileName();
            if (!QFileInfo::exists(target))
                QDir().mkdir(target);
            if (!QFileInfo(target).isDir() || !copyDir(entry.absoluteFilePath(), target))
                return false;
        } else if (entry.isFile()) {
            if (!copyFile(entry.absoluteFilePath(), to))
                return false;
        }
    }
    return true;
}

} // namespace QTx
