#include "frontend/tidemakebuilder.h"

#include "engine/buildsystem.h"
#include "engine/diskinterface.h"
#include "frontend/processrunner.h"

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
    ensureDirsExist(files);
}

void TidemakeBuilder::setTemporaryFiles(const QStringList &files)
{
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
    if (echo)
        printLine(command.join(QLatin1Char(' ')));
    if (show)
        return;

    if (buildSystem) {
        QString message;
        if (buildSystem->builtinCommand(directory, command, message)) {
            if (!message.isEmpty()) {
                printLine(message);
                recordFailure();
            }
            return;
        }
    }

    const int status = QTx::spawnProcess(command, true, directory, false, nullptr, nullptr);
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

void TidemakeBuilder::error(const QString &text)
{
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
