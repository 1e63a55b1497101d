#pragma once

#include "build/buildsystem.h"
#include "foundation/qtx.h"
#include "frontend/builder.h"
#include "frontend/processrunner.h"
#include "project/gccprojectsystem.h"
#include "project/projectelement.h"
#include "settings/environmentsettings.h"
#include "settings/isolatedsettingsstore.h"
#include "support/testsupport.h"
#include "toolchain/gccbuildsystem.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <memory>
#include <ostream>

/// Lets test failures show strings as text.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

/// A builder that writes down every call in order and, if asked to, really runs the commands
/// the way the console builder does: output directories made first, a failure recorded as
/// the build system's error.
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
        if (run) {
            for (const QString &file : files)
                buildSystem->ensureDirExists(file);
        }
    }
    void setTemporaryFiles(const QStringList &) override {}
    void doit() override
    {
        events << QStringLiteral("doit");
        commands << commandLine(command);
        if (failing)
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
    void error(const QString &text) override { errors << text; }
    void message(const QString &text) override { messages << text; }

    /// Forgets what was recorded.
    void clear()
    {
        events.clear();
        commands.clear();
        messages.clear();
        errors.clear();
    }

    bool run;
    bool failing = false; ///< every command fails, as far as the build system can tell
    QString directory;
    QStringList command;
    QStringList events;   ///< every call, in order
    QStringList commands; ///< each command run, as one display line
    QStringList messages;
    QStringList errors;
};

/// A settings store of its own, the settings object, a GNU project system and a GCC build
/// system installed as the process-wide ones.
class ToolChainTest : public ::testing::Test
{
protected:
    ToolChainTest(const char *toolPrefix, const char *toolChainRoot, bool linkerStartGroup)
    {
        settings.createEntries();
        environment = &settings;
        projectSystem = &projects;
        system = std::make_unique<GCCBuildSystem>(QStringList(), toolPrefix, toolChainRoot,
                                                  linkerStartGroup);
        buildSystem = system.get();
    }
    ~ToolChainTest() override
    {
        projects.closeSolution();
        system.reset();
        buildSystem = nullptr;
        projectSystem = nullptr;
        environment = nullptr;
    }

    /// Writes the solution file `name` holding `body` and loads it; returns the root.
    ProjectElement *load(const QByteArray &body, const QString &name = QStringLiteral("s.hdp"))
    {
        const QString path = scratch.write(name, "<!DOCTYPE Tarnbench_Project_File>\n"
                                                 "<solution Name=\"S\" version=\"1\">\n" +
                                                     body + "</solution>\n");
        return projects.loadSolution(path, nullptr);
    }
    /// The project of that global name.
    ProjectElement *project(const QString &name) const
    {
        return projects.solutionProjects(nullptr).value(name);
    }

    IsolatedSettingsStore store;
    EnvironmentSettings settings;
    GCCProjectSystem projects{QStringLiteral(".elf")};
    std::unique_ptr<GCCBuildSystem> system;
    ScratchDir scratch;
};
