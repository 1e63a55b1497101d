#include "foundation/path.h"
#include "foundation/qtx.h"

#include <QFileInfo>

#include <climits>
#include <unistd.h>

namespace {

// The absolute name of `dir` cut at its last "/"; the root for a top-level name.
QString parentPath(const QDir &dir)
{
    const QString absolute = dir.absolutePath();
    const QString parent = absolute.left(absolute.lastIndexOf(QLatin1Char('/')));
    return parent.isEmpty() ? QStringLiteral("/") : parent;
}

void findFilesIn(const QString &directory, const QString &extension, QStringList &files)
{
    const QFileInfoList entries = QDir(directory).entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &entry : entries) {
        // Links to directories aren't followed, so a link cycle can't trap the walk.
        if (entry.isDir()) {
            if (!entry.isSymLink())
                findFilesIn(entry.absoluteFilePath(), extension, files);
        } else if (entry.isFile() && entry.suffix() == extension) {
            files.append(entry.absoluteFilePath());
        }
    }
}

} // namespace

namespace QTx {

bool changeDir(const QString &path)
{
    return ::chdir(Path::toOsBytes(path).constData()) == 0;
}

bool makeDir(const QDir &dir)
{
    if (dir.exists())
        return true;
    if (dir.isRoot())
        return false;
    const QString absolute = dir.absolutePath();
    // The system refuses such names anyway; refusing them first bounds the recursion.
    if (Path::toOsBytes(absolute).size() >= PATH_MAX)
        return false;
    const QDir parent(parentPath(dir));
    if (!parent.exists() && parent.absolutePath() != absolute)
        makeDir(parent);
    return dir.mkdir(absolute) || dir.exists();
}

bool makeDir(const QString &path)
{
    return makeDir(QDir(path));
}

QDir parentDir(const QDir &dir)
{
    return QDir(parentPath(dir));
}

bool removeFile(const QString &path)
{
    return ::unlink(Path::toOsBytes(path).constData()) == 0;
}

bool removeDir(const QString &path)
{
    return ::rmdir(Path::toOsBytes(path).constData()) == 0;
}

void findFiles(QString directory, const QString &extension, QStringList &files)
{
    findFilesIn(directory, extension, files);
}

} // namespace QTx
