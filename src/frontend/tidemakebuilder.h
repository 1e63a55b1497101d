#pragma once

#include "engine/builder.h"
#include "frontend/jobqueue.h"

#include <cstdio>
#include <memory>
#include <optional>

/// The console builder: prints each line at the depth of the open groups on stdout and
/// runs each command, waiting for it. With more than one job, the commands of one sequence
/// (those of one group) form a job, and up to that many jobs run at once; each job's lines
/// and its tools' output come out together when it ends.
class TidemakeBuilder : public Builder
{
public:
    /// `echo` prints each command before it runs; `show` prints it and runs nothing.
    /// Lines go to `out`, normally stdout. Up to `jobs` sequences run at once, unless `show`.
    TidemakeBuilder(bool echo, bool show, FILE *out = stdout, int jobs = 1);
    /// Waits for the sequences that still run.
    ~TidemakeBuilder() override;

    void beginGroup(ProjectElement *element, const QString &text, bool flag) override;
    void endGroup(ProjectElement *element) override;
    void init() override;
    void setDirectory(const QString &directory) override;
    void setCommand(const QStringList &command) override;
    void setEnvironment(const QStringList &environment) override;
    void setOutputFiles(const QStringList &files) override;
    void setTemporaryFiles(const QStringList &files) override;
    void doit() override;
    void error(const QString &text) override;
    void note(const QString &text) override;
    void success(const QString &text) override;
    void message(const QString &text) override;
    void wait() override;

    /// True once a command run by this builder has failed or an error was reported through it.
    bool failed() const { return commandFailed || errorReported; }

    bool echo;
    bool show;
    QString directory;
    QStringList command;
    QStringList environment;
    int indent = 0;

private:
    void printLine(const QString &text);
    void put(const QString &text);
    void releaseHeldGroupLine();
    void ensureDirsExist(const QStringList &files);
    bool carryOutBuiltin(QString &message);
    void builtinDone(const QString &message);
    void queueCommand(const QString &echoLine);
    void closeJob();
    void jobEnded(Job &job);
    void recordFailure();
    bool abandonIfInterrupted();

    FILE *out;
    bool commandFailed = false;
    bool errorReported = false;
    QStringList outputFiles;
    QStringList sequenceTemporaries;

    std::unique_ptr<JobQueue> queue; ///< null when commands run at once
    std::unique_ptr<Job> job;        ///< the sequence being collected, if any
    int jobIndent = 0;               ///< the depth whose endGroup ends `job`
    bool jobsSinceWait = false;      ///< a job was handed over since the last wait
    /// A group's line held back until it is known whether a job follows to print it.
    std::optional<QString> heldGroupLine;
};
