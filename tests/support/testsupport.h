#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <ostream>

/// Lets test failures show strings as text.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

/// A solution file's text: the document type and a root solution "S" holding `body`.
QByteArray solutionText(const QByteArray &body);

/// A scratch directory for one test, removed with the object.
class ScratchDir
{
public:
    ScratchDir();
    /// The absolute path of the directory, without a trailing "/".
    QString path() const { return dir.path(); }
    /// The absolute path of `relative` inside the directory.
    QString file(const QString &relative) const { return dir.filePath(relative); }
    /// Writes `contents` to `relative`, making missing directories; returns its path.
    QString write(const QString &relative, const QByteArray &contents) const;
    /// Reads `relative` whole; an empty array if it can't be read.
    QByteArray read(const QString &relative) const;

private:
    QTemporaryDir dir;
};

/// What one run of a program left behind.
struct RunResult
{
    int exitCode = -1;  ///< exit status, or -1 if it did not exit normally
    QString out;        ///< everything on standard output
    QString err;        ///< everything on standard error
};

/// Runs the built tidemake with `arguments` in `workDir`. The settings store is
/// isolated in `settingsHome` (HOME and XDG_CONFIG_HOME), so runs never touch the
/// user's real one; extra "NAME=value" entries go to the environment.
RunResult runTidemake(const QStringList &arguments, const QString &workDir,
                      const QString &settingsHome, const QStringList &extraEnvironment = {});

/// Starts the built tidemake as runTidemake runs it, without waiting, so that a test can
/// signal it while it works; the caller waits for it through the process.
std::unique_ptr<QProcess> startTidemake(const QStringList &arguments, const QString &workDir,
                                        const QString &settingsHome,
                                        const QStringList &extraEnvironment = {});

/// Runs any program the same way; `program` is looked up along PATH.
RunResult runProgram(const QString &program, const QStringList &arguments,
                     const QString &workDir, const QStringList &environment = {});

/// The path of the built tidemake executable.
QString tidemakeExecutable();

/// Runs the built tidefile with `arguments` in `workDir`.
RunResult runTidefile(const QStringList &arguments, const QString &workDir);
