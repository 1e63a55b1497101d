#pragma once

#include "engine/builder.h"
#include "engine/buildsystem.h"
#include "frontend/processrunner.h"

#include <QStringList>

/// The one test builder: writes down every call in order and, if asked to, really runs the
/// commands the way the console builder does (output directories made first, a failure
/// recorded as the build system's error).
class RecordingBuilder : public Builder
{
public:
    explicit RecordingBuilder(bool run = false) : run(run) {}

    void beginGroup(ProjectElement *, const QString &text, bool) override
    {
        events << QStringLiteral("group ") + text;
    }
    void endGroup(ProjectElement *) override { events << QStringLiteral("end"); }
    void init() override
    {
        events << QStringLiteral("init");
        directory.clear();
    }
    void setDirectory(const QString &text) override
    {
        events << QStringLiteral("dir ") + text;
        directory = text;
    }
    void setCommand(const QStringList &words) override
    {
        events << QStringLiteral("command ") + commandLine(words);
        command = words;
    }
    void setEnvironment(const QStringList &) override {}
    void setOutputFiles(const QStringList &files) override
    {
        events << QStringLiteral("outputs ") + files.join(QLatin1Char(';'));
        makeDirectories(files);
    }
    void setTemporaryFiles(const QStringList &files) override { makeDirectories(files); }
    void doit() override
    {
        events << QStringLiteral("doit");
        commands << commandLine(command);
        if (failing || (!failOn.isEmpty() && command.value(0).endsWith(failOn)))
            buildSystem->errorOccurred = true;
        if (!run)
            return;
        QStringList out;
        QStringList err;
        if (QTx::spawnProcess(command, true, directory, false, &out, &err) != 0) {
            buildSystem->errorOccurred = true;
            errors << commandLine(command) << out << err;
        }
    }
    void error(const QString &text) override { report(QStringLiteral("error: "), text, &errors); }
    void note(const QString &text) override { report(QStringLiteral("note: "), text, nullptr); }
    void success(const QString &text) override
    {
        report(QStringLiteral("success: "), text, nullptr);
    }
    void message(const QString &text) override
    {
        report(QStringLiteral("message: "), text, &messages);
    }

    /// The events since the last call, which forgets them.
    QStringList take()
    {
        QStringList taken = events;
        events.clear();
        return taken;
    }
    /// Forgets everything recorded.
    void clear()
    {
        events.clear();
        commands.clear();
        errors.clear();
        messages.clear();
    }

    bool run;
    bool failing = false;         ///< every command fails, as far as the build system can tell
    bool reportsInEvents = false; ///< reports join the events as "error: T", "note: T"…
    QString failOn;               ///< commands whose program ends in this fail
    QString directory;
    QStringList command;
    QStringList events;   ///< every call in order: "group T", "end", "init", "command C"…
    QStringList commands; ///< each command run, as one display line
    QStringList errors;
    QStringList messages;

private:
    void report(const QString &kind, const QString &text, QStringList *list)
    {
        if (reportsInEvents)
            events << kind + text;
        if (list)
            *list << text;
    }
    void makeDirectories(const QStringList &files)
    {
        if (run && buildSystem)
            for (const QString &file : files)
                buildSystem->ensureDirExists(file);
    }
};
