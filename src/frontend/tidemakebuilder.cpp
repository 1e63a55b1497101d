#include "frontend/tidemakebuilder.h"

#include "engine/buildsystem.h"
#include "engine/diskinterface.h"
#include "engine/standardbuildsystem.h"
#include "frontend/interrupts.h"
#include "frontend/processrunner.h"

#include <QFile>

TidemakeBuilder::TidemakeBuilder(bool echo, bool show, FILE *out, int jobs)
    : echo(echo), show(show), out(out)
{
    if (jobs > 1 && !show)
        queue = std::make_unique<JobQueue>(jobs, [this](Job &ended) { jobEnded(ended); });
}

TidemakeBuilder::~TidemakeBuilder()
{
    wait();
    releaseHeldGroupLine();
}

void TidemakeBuilder::beginGroup(ProjectElement *, const QString &text, bool)
{
    if (queue && !job) {
        // Whether the line heads a job is known at the group's first command.
        releaseHeldGroupLine();
        indent += 2;
        heldGroupLine = text;
        return;
    }
    indent += 2;
    put(text);
}

void TidemakeBuilder::endGroup(ProjectElement *)
{
    if (job && indent <= jobIndent)
        closeJob();
    releaseHeldGroupLine();
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
    const QString echoLine = command.join(QLatin1Char(' '));
    if (queue) {
        // A built-in command that waits for no queued one is carried out at once, as without
        // jobs, so that what the engine reads next is already there.
        QString message;
        if (!job && carryOutBuiltin(message)) {
            if (echo)
                put(echoLine);
            builtinDone(message);
        } else {
            queueCommand(echoLine);
        }
        return;
    }

    if (echo)
        printLine(echoLine);
    if (show)
        return;
    QString message;
    if (carryOutBuiltin(message)) {
        builtinDone(message);
        return;
    }
    const int status = QTx::spawnProcess(command, true, directory, false, nullptr, nullptr);
    if (abandonIfInterrupted())
        return;
    if (status == 0)
        return;
    // Anything but -1 is the tool's own failure, and the tool has said why.
    if (status == -1)
        printLine(cannotExecuteLine(command.value(0)));
    recordFailure();
}

// Offers the command to the engine's built-ins, which may also rewrite it; false when it is to
// be run as a program.
bool TidemakeBuilder::carryOutBuiltin(QString &message)
{
    return buildSystem && buildSystem->builtinCommand(directory, command, message);
}

void TidemakeBuilder::builtinDone(const QString &message)
{
    if (abandonIfInterrupted())
        return;
    if (!message.isEmpty()) {
        put(message);
        recordFailure();
    }
}

// Adds the command to the job being collected, which the group's line heads if it is the
// group's first command.
void TidemakeBuilder::queueCommand(const QString &echoLine)
{
    if (!job) {
        job = std::make_unique<Job>();
        jobIndent = indent;
        if (heldGroupLine) {
            job->addLine(consoleLine(indent, *heldGroupLine));
            heldGroupLine.reset();
        }
    }
    if (echo)
        job->addLine(consoleLine(indent, echoLine));
    job->addCommand({directory, command, outputFiles, indent});
    job->addTemporaryFiles(sequenceTemporaries);
}

void TidemakeBuilder::closeJob()
{
    queue->submit(std::move(job));
    jobsSinceWait = true;
}

void TidemakeBuilder::wait()
{
    if (!queue)
        return;
    if (job)
        closeJob();
    queue->drain();
    // The files that the commands made changed after the engine last looked.
    if (jobsSinceWait && buildSystem)
        buildSystem->disk().invalidateAll();
    jobsSinceWait = false;
}

void TidemakeBuilder::jobEnded(Job &ended)
{
    for (const auto &[stream, bytes] : ended.printed()) {
        if (stream == 2) {
            // What stands on stdout before the tool's diagnostics comes out first.
            std::fflush(out);
            std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
        } else {
            std::fwrite(bytes.constData(), 1, size_t(bytes.size()), out);
        }
    }
    std::fflush(out);
    if (ended.state() == Job::Failed)
        recordFailure();
    // The engine recorded the outputs as made when the job was handed over.
    if (ended.state() != Job::Succeeded && standardBuildSystem)
        standardBuildSystem->forgetOutputs(ended.outputFiles());
    if (Interrupts::received() && buildSystem)
        buildSystem->stopRequested = true;
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
    put(text);
}

void TidemakeBuilder::note(const QString &text)
{
    put(text);
}

void TidemakeBuilder::success(const QString &text)
{
    put(text);
}

void TidemakeBuilder::message(const QString &text)
{
    put(text);
}

// A line goes into the job being collected, if there is one, so that it comes out in its
// place among the job's own.
void TidemakeBuilder::put(const QString &text)
{
    if (job) {
        job->addLine(consoleLine(indent, text));
        return;
    }
    releaseHeldGroupLine();
    printLine(text);
}

void TidemakeBuilder::releaseHeldGroupLine()
{
    if (!heldGroupLine)
        return;
    const QString text = *heldGroupLine;
    heldGroupLine.reset();
    printLine(text);
}

void TidemakeBuilder::printLine(const QString &text)
{
    const QByteArray line = consoleLine(indent, text);
    std::fwrite(line.constData(), 1, size_t(line.size()), out);
}
