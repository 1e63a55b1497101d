#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

ScratchDir::ScratchDir()
{
    dir.setAutoRemove(true);
}

QString ScratchDir::write(const QString &relative, const QByteArray &contents) const
{
    const QString name = file(relative);
    QDir().mkpath(QFileInfo(name).absolutePath());
    QFile f(name);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(contents);
    return name;
}

QByteArray ScratchDir::read(const QString &relative) const
{
    QFile f(file(relative));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return f.readAll();
}

namespace {

// Sets the process to start in `workDir` with "NAME=value" `environment` entries over this
// program's own environment.
void prepare(QProcess &process, const QString &workDir, const QStringList &environment)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString &entry : environment) {
        const int eq = entry.indexOf('=');
        env.insert(entry.left(eq), entry.mid(eq + 1));
    }
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(workDir);
}

// The entries that keep a tidemake run's settings store in `settingsHome`.
QStringList tidemakeEnvironment(const QString &settingsHome, const QStringList &extraEnvironment)
{
    QStringList env = extraEnvironment;
    env << QStringLiteral("HOME=") + settingsHome
        << QStringLiteral("XDG_CONFIG_HOME=") + settingsHome + QStringLiteral("/.config");
    return env;
}

} // namespace

RunResult runProgram(const QString &program, const QStringList &arguments,
                     const QString &workDir, const QStringList &environment)
{
    QProcess process;
    prepare(process, workDir, environment);
    process.start(program, arguments);
    RunResult result;
    if (!process.waitForStarted(10000))
        return result;
    process.closeWriteChannel();
    process.waitForFinished(600000);
    result.out = QString::fromLatin1(process.readAllStandardOutput());
    result.err = QString::fromLatin1(process.readAllStandardError());
    if (process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    return result;
}

RunResult runTidemake(const QStringList &arguments, const QString &workDir,
                      const QString &settingsHome, const QStringList &extraEnvironment)
{
    return runProgram(tidemakeExecutable(), arguments, workDir,
                      tidemakeEnvironment(settingsHome, extraEnvironment));
}

std::unique_ptr<QProcess> startTidemake(const QStringList &arguments, const QString &workDir,
                                        const QString &settingsHome,
                                        const QStringList &extraEnvironment)
{
    auto process = std::make_unique<QProcess>();
    prepare(*process, workDir, tidemakeEnvironment(settingsHome, extraEnvironment));
    process->start(tidemakeExecutable(), arguments);
    process->closeWriteChannel();
    return process;
}

QString tidemakeExecutable()
{
    return QStringLiteral(TIDEMAKE_EXE);
}

RunResult runTidefile(const QStringList &arguments, const QString &workDir)
{
    return runProgram(QStringLiteral(TIDEFILE_EXE), arguments, workDir);
}

QByteArray solutionText(const QByteArray &body)
{
    return "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"1\">\n" + body +
           "</solution>\n";
}
