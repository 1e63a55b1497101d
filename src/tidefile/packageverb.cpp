#include "tidefile/packageverb.h"

#include "archive/archive2.h"
#include "foundation/qtx.h"
#include "tidefile/verb.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

const char packageUsage[] = "tidefile package FILE\n"
                            "tidefile package -x DIR FILE";

namespace {

/// The command line of one `tidefile package`; without "-x" the directory is null.
struct PackageRequest
{
    QString directory;
    QString file;
};

PackageRequest parseArguments(const QStringList &arguments)
{
    PackageRequest request;
    request.file = readVerbArguments(arguments, {{"-x", &request.directory}});
    return request;
}

/// Thrown for a file that can't be read as a package or a member that can't be written.
struct PackageError
{
    std::string message;
};

/// Opens the archive of `package`, decompressed into `scratch`; throws `PackageError` unless
/// it is whole.
void openPackage(const QString &package, const QTemporaryDir &scratch, Archive2 &archive)
{
    if (!QFileInfo::exists(package))
        throw PackageError{"no such file"};
    if (!QTx::isCompressedFile(package))
        throw PackageError{"not a package"};
    const QString decompressed = scratch.filePath(QStringLiteral("archive"));
    if (!QTx::decompressFile(package, decompressed))
        throw PackageError{"damaged package: its compressed data does not unpack"};
    const QByteArray name = QFile::encodeName(decompressed);
    switch (archive.open(std::fopen(name.constData(), "rb"), name.constData())) {
    case 0:
        break;
    case 1:
        throw PackageError{"not a package"};
    default:
        throw PackageError{"damaged package: its directory is cut short"};
    }
    if (!archive.dataWithinFile())
        throw PackageError{"damaged package: a member's data runs past its end"};
}

void list(const Archive2 &archive)
{
    for (const ArchiveChunk2 &member : archive.members())
        std::printf("%s\t%ld\t%s\t%ld\n", member.name.c_str(), member.size,
                    member.writable ? "w" : "-", member.time);
}

/// Whether `name` stays below the directory it is written to: not absolute, not empty, and
/// with no ".." step.
bool staysInside(const std::string &name)
{
    if (name.empty() || name.front() == '/')
        return false;
    for (std::size_t start = 0;;) {
        const std::size_t end = name.find('/', start);
        const std::size_t length = (end == std::string::npos ? name.size() : end) - start;
        if (name.compare(start, length, "..") == 0)
            return false;
        if (end == std::string::npos)
            return true;
        start = end + 1;
    }
}

/// Makes the directories of `name` below `root` one step at a time; a step that exists as
/// anything but a real directory (a link leading elsewhere among them) fails.
bool makeDirectories(const std::string &root, const std::string &name)
{
    std::string path = root;
    std::size_t start = 0;
    for (std::size_t end; (end = name.find('/', start)) != std::string::npos; start = end + 1) {
        if (end == start)
            continue;
        path += '/' + name.substr(start, end - start);
        struct stat status;
        if (lstat(path.c_str(), &status) == 0) {
            if (!S_ISDIR(status.st_mode)) {
                errno = ENOTDIR;
                return false;
            }
        } else if (mkdir(path.c_str(), 0777) != 0) {
            return false;
        }
    }
    return true;
}

/// Writes `member` to `root`/name with its write permission and time.
void extractMember(Archive2 &archive, const ArchiveChunk2 &member, const std::string &root)
{
    const std::string path = root + '/' + member.name;
    const auto fail = [&](const char *what) {
        throw PackageError{std::string("cannot ") + what + " member \"" + member.name +
                           "\": " + std::strerror(errno)};
    };
    if (!makeDirectories(root, member.name))
        fail("make the directory of");
    // A file in the way goes, a link not followed; a read-only earlier copy is no obstacle.
    if (unlink(path.c_str()) != 0 && errno != ENOENT)
        fail("replace");
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
    if (descriptor < 0)
        fail("write");
    FILE *out = fdopen(descriptor, "wb");
    if (!out) {
        ::close(descriptor);
        fail("write");
    }
    const bool copied = archive.copyMember(member, out, path.c_str()) == 0;
    if (std::fclose(out) != 0 || !copied)
        throw PackageError{"cannot write member \"" + member.name + "\""};
    if (!member.writable)
        QTx::setWriteable(QFile::decodeName(path.c_str()), false);
    if (member.time != 0) {
        const utimbuf times{member.time, member.time};
        utime(path.c_str(), &times);
    }
}

void extract(Archive2 &archive, const QString &directory)
{
    // Every name is looked at before anything is written.
    for (const ArchiveChunk2 &member : archive.members()) {
        if (!staysInside(member.name))
            throw PackageError{"refusing member \"" + member.name +
                               "\": its name leads out of the directory"};
    }
    QTx::makeDir(directory);
    const std::string root = QFile::encodeName(directory).toStdString();
    if (!QFileInfo(directory).isDir())
        throw PackageError{"cannot make the directory " + root};
    for (const ArchiveChunk2 &member : archive.members())
        extractMember(archive, member, root);
}

} // namespace

int runPackage(const QStringList &arguments)
{
    const PackageRequest request = parseArguments(arguments);
    const QByteArray fileName = QFile::encodeName(request.file);
    try {
        QTemporaryDir scratch;
        if (!scratch.isValid())
            throw PackageError{"cannot make a temporary directory"};
        Archive2 archive;
        openPackage(request.file, scratch, archive);
        if (request.directory.isNull())
            list(archive);
        else
            extract(archive, request.directory);
        return 0;
    } catch (const PackageError &error) {
        std::fprintf(stderr, "tidefile: %s: %s\n", fileName.constData(), error.message.c_str());
    }
    return 1;
}
