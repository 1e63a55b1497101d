#include "foundation/qtx.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

// The running program's own file as the kernel knows it; used when there is no
// application object to ask (as in unit tests).
QString runningProgramFile()
{
    const QString self = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath();
    return self.isEmpty() ? QDir::currentPath() + QStringLiteral("/program") : self;
}

// Where the shell found `word` when it ran it: the first directory of PATH (an empty entry
// being the current one) that holds an executable file of that name.
QString foundOnSearchPath(const QString &word)
{
    const QStringList directories = qEnvironmentVariable("PATH").split(QLatin1Char(':'));
    for (const QString &directory : directories) {
        const QString candidate =
            (directory.isEmpty() ? QStringLiteral(".") : directory) + QLatin1Char('/') + word;
        const QFileInfo info(candidate);
        if (info.isFile() && info.isExecutable())
            return candidate;
    }
    return word;
}

QString firstSetVariable(std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        const QString value = qEnvironmentVariable(name);
        if (!value.isEmpty())
            return value;
    }
    return QString();
}

} // namespace

namespace QTx {

QString getBenchDir(const char *argv0)
{
    // A bare word was found along PATH; its directory there is the program's, links kept.
    QString program = QFile::decodeName(argv0);
    if (!program.isEmpty() && !program.contains(QLatin1Char('/')))
        program = foundOnSearchPath(program);
    const QString up = QDir::cleanPath(QFileInfo(program).absolutePath() + QStringLiteral("/.."));
    // An installation that isn't there has no canonical path: keep the plain one.
    const QString canonical = QDir(up).canonicalPath();
    return canonical.isEmpty() ? up : canonical;
}

QString rootDirectory()
{
    // From the name the program was started by, as $(BenchDir) is, so that both name the
    // same installation when the program is reached through a link.
    static const QString root = getBenchDir(QFile::encodeName(appPath()).constData());
    return root;
}

QString appPath()
{
    if (QCoreApplication::instance()) {
        const QStringList arguments = QCoreApplication::arguments();
        if (!arguments.isEmpty())
            return arguments.first();
    }
    return runningProgramFile();
}

QString appDir()
{
    return QFileInfo(appPath()).absolutePath();
}

QString tmpDir()
{
    const QString dir = firstSetVariable({"TMP", "TEMP", "TMPDIR"});
    return dir.isEmpty() ? QStringLiteral("/tmp") : dir;
}

QString userProfileDirectory()
{
    return qEnvironmentVariable("HOME");
}

QString osDir()
{
    return QStringLiteral("/");
}

QString osRoot()
{
    return QStringLiteral("/");
}

QString correctPathCapitalisation(const QString &path)
{
    return path;
}

void getVolumeInformation(const QString &, QString &name, unsigned int &type)
{
    name = QString();
    type = 0;
}

void formatPath(QString &path)
{
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (path.endsWith(QLatin1Char('/')))
        path.chop(1);
}

QString simplifyPath(const QString &path, bool absolute)
{
    QString result = absolute ? QFileInfo(path).absoluteFilePath() : path;
    formatPath(result);
    return result;
}

} // namespace QTx
