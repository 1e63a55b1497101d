#include "engine/sidefiles.h"

namespace {

// The directory part of `file` as QFileInfo::path() gives it, without building a QFileInfo
// on the up-to-date path.
QString directoryOf(const QString &file, qsizetype slash)
{
    if (slash < 0)
        return QStringLiteral(".");
    return slash == 0 ? QStringLiteral("/") : file.left(slash);
}

} // namespace

QString sideFilePath(const QString &directory, const QString &file, const QString &extension)
{
    const QString name = file.mid(file.lastIndexOf(QLatin1Char('/')) + 1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return directory + QLatin1Char('/') + (dot < 0 ? name : name.left(dot)) + extension;
}

QString sideFilePath(const QString &file, const QString &extension)
{
    return sideFilePath(directoryOf(file, file.lastIndexOf(QLatin1Char('/'))), file, extension);
}

QString dependencyFilePath(const QString &objectPath)
{
    const qsizetype slash = objectPath.lastIndexOf(QLatin1Char('/'));
    const QString fileName = objectPath.mid(slash + 1);
    const qsizetype dot = fileName.indexOf(QLatin1Char('.'));
    return directoryOf(objectPath, slash) + QLatin1Char('/') +
           (dot < 0 ? fileName : fileName.left(dot)) + QStringLiteral(".d");
}

QString linkerScriptPath(const QString &projectDirectory, const QString &intermediateDirectory,
                         const QString &output)
{
    return sideFilePath(projectDirectory + QLatin1Char('/') + intermediateDirectory, output,
                        QStringLiteral(".ld"));
}
