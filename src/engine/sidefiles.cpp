#include "engine/sidefiles.h"

QString fileDirectory(const QString &file)
{
    const qsizetype slash = file.lastIndexOf(QLatin1Char('/'));
    if (slash < 0)
        return QStringLiteral(".");
    return slash == 0 ? QStringLiteral("/") : file.left(slash);
}

QString sideFilePath(const QString &directory, const QString &file, const QString &extension)
{
    const QString name = file.mid(file.lastIndexOf(QLatin1Char('/')) + 1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return directory + QLatin1Char('/') + (dot < 0 ? name : name.left(dot)) + extension;
}

QString sideFilePath(const QString &file, const QString &extension)
{
    return sideFilePath(fileDirectory(file), file, extension);
}

QString dependencyFilePath(const QString &objectPath)
{
    // Asked for each object of every build, so made with one allocation.
    const qsizetype slash = objectPath.lastIndexOf(QLatin1Char('/'));
    const qsizetype dot = objectPath.indexOf(QLatin1Char('.'), slash + 1);
    const qsizetype end = dot < 0 ? objectPath.size() : dot;
    QString path;
    path.reserve(end + 4);
    // The directory as QFileInfo::path() gives it, then "/": "./" without one, "//" at the root.
    if (slash < 0)
        path += QLatin1String("./");
    else if (slash == 0)
        path += QLatin1Char('/');
    path += QStringView(objectPath).first(end);
    path += QLatin1String(".d");
    return path;
}

QString linkerScriptPath(const QString &projectDirectory, const QString &intermediateDirectory,
                         const QString &output)
{
    return sideFilePath(projectDirectory + QLatin1Char('/') + intermediateDirectory, output,
                        QStringLiteral(".ld"));
}
