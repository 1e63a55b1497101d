#pragma once

#include "engine/builder.h"

#include <cstdio>

/// The console builder: prints each line at the depth of the open groups on stdout and
/// runs each command, waiting for it.
class TidemakeBuilder : public Builder
{
public:
    /// `echo` prints each command before it runs; `show` prints it and runs nothing.
    /// Lines go to `out`, normally stdout.
    TidemakeBuilder(bool echo, bool show, FILE *out = stdout);

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
    void ensureDirsExist(const QStringList &files);
    void recordFailure();
    bool abandonIfInterrupted();

    FILE *out;
    bool commandFailed = false;
    bool errorReported = false;
    QStringList outputFiles;
    QStringList sequenceTemporaries;
};
