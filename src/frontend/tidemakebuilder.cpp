#include "frontend/tidemakebuilder.h"

#include "engine/buildsystem.h"
#include "engine/diskinterface.h"
#include "frontend/interrupts.h"
#include "frontend/processrunner.h"

#include <QFile>

#include <cctype>

TidemakeBuilder::TidemakeBuilder(bool echo, bool show, FILE *out) : echo(echo), show(show), out(out)
{
}

void TidemakeBuilder::beginGroup(ProjectElement *, const QString &text, bool)
{
    indent += 2;
    printLine(text);
}

void TidemakeBuilder::endGroup(ProjectElement *)
{
    indent -= 2;
}

void TidemakeBuilder::init()
{
    directory = QString();
    command.clear();
    environment.clear();
    outputFiles.clear();
    sequenceTemporaries.clear();
}

void TidemakeBuilder::setDirectory(const QString &directory)
{
    this->directory = directory;
}

void TidemakeBuilder::setCommand(const QStringList &command)
{
    this->command = command;
}

// Commands run with the program's own environment; the list is only kept.
void TidemakeBuilder::setEnvironment(const QStringList &environment)
{
    this->environment = environment;
}

void TidemakeBuilder::setOutputFiles(const QStringList &files)
{
    outputFiles = files;
    ensureDirsExist(files);
}

// A command's scratch files are removed by a later command of its sequence, so they are
// remembered until the sequence ends, for an interrupt to remove in its place.
void TidemakeBuilder::setTemporaryFiles(const QStringList &files)
{
    for (const QString &file : files) {
        if (!sequenceTemporaries.contains(file))
            sequenceTemporaries << file;
    }
    ensureDirsExist(files);
}

void TidemakeBuilder::ensureDirsExist(const QStringList &files)
{
    if (!buildSystem)
        return;
    // A file a command declares is about to change, so what the engine knew of it is gone.
    for (const QString &file : files) {
        buildSystem->disk().invalidate(file);
        buildSystem->ensureDirExists(file);
    }
}

void TidemakeBuilder::doit()
{
    if (abandonIfInterrupted())
        return;
    if (echo)
        printLine(command.join(QLatin1Char(' ')));
    if (show)
        return;

    if (buildSystem) {
        QString message;
        if (buildSystem->builtinCommand(directory, command, message)) {
            if (abandonIfInterrupted())
                return;
            if (!message.isEmpty()) {
                printLine(message);
                recordFailure();
            }
            return;
        }
    }

    const int status = QTx::spawnProcess(command, true, directory, false, nullptr, nullptr);
    if (abandonIfInterrupted())
        return;
    if (status == 0)
        return;
    // Anything but -1 is the tool's own failure, and the tool has said why.
    if (status == -1)
        printLine(QStringLiteral("can't execute command \"") + command.value(0) + QLatin1Char('"'));
    recordFailure();
}

void TidemakeBuilder::recordFailure()
{
    commandFailed = true;
    if (buildSystem)
        buildSystem->errorOccurred = true;
}

// After an interrupt no command starts, and what the interrupted one was making can't be
// trusted: its outputs go, and so do the scratch files of its sequence, whose own removal
// will not run. The engine's stop flag is set again here, since a build that started after
// the signal cleared it.
bool TidemakeBuilder::abandonIfInterrupted()
{
    if (!Interrupts::received())
        return false;
    if (buildSystem)
        buildSystem->stopRequested = true;
    if (!show) {
        for (const QString &file : outputFiles + sequenceTemporaries)
            QFile::remove(file);
    }
    return true;
}

void TidemakeBuilder::error(const QString &text)
{
    errorReported = true;
    printLine(text);
}

void TidemakeBuilder::note(const QString &text)
{
    printLine(text);
}

void TidemakeBuilder::success(const QString &text)
{
    printLine(text);
}

void TidemakeBuilder::message(const QString &text)
{
    printLine(text);
}

// Only printable characters of the first 256 go out; tabs and line ends inside the text
// are dropped so that each report stays one line.
void TidemakeBuilder::printLine(const QString &text)
{
    for (int i = 0; i < indent; ++i)
        std::fputc(' ', out);
    for (const QChar c : text) {
        const int code = c.unicode() > 0xFF ? 0 : c.unicode();
        if (std::isprint(code))
            std::fputc(code, out);
    }
    std::fputc('\n', out);
}
