#pragma once

// The engine's flows against a disk held in memory and a builder that writes down what it is
// asked to do, with no tool chain and no process.

#include "support/fakedisk.h"
#include "buildfixture.h"

#include <QDateTime>
#include <QHash>

#include <memory>

/// A builder that writes down every call as a line: group texts, "end", the commands run as
/// "run " and their words, output files as "out ", and the reports with a prefix of their kind.
class EventBuilder : public Builder
{
public:
    void beginGroup(ProjectElement *, const QString &text, bool) override { lines << text; }
    void endGroup(ProjectElement *) override { lines << QStringLiteral("end"); }
    void init() override {}
    void setDirectory(const QString &directory) override { this->directory = directory; }
    void setCommand(const QStringList &command) override { this->command = command; }
    void setEnvironment(const QStringList &) override {}
    void setOutputFiles(const QStringList &files) override
    {
        lines << QStringLiteral("out ") + files.join(QLatin1Char(' '));
    }
    void setTemporaryFiles(const QStringList &) override {}
    void doit() override
    {
        lines << QStringLiteral("run ") + command.join(QLatin1Char('|'));
        if (failOn.contains(command.value(0)))
            buildSystem->errorOccurred = true;
    }
    void error(const QString &text) override { lines << QStringLiteral("error: ") + text; }
    void note(const QString &text) override { lines << QStringLiteral("note: ") + text; }
    void success(const QString &text) override { lines << QStringLiteral("success: ") + text; }
    void message(const QString &text) override { lines << QStringLiteral("message: ") + text; }

    /// The lines since the last call, which forgets them.
    QStringList take()
    {
        QStringList taken = lines;
        lines.clear();
        return taken;
    }

    QStringList lines;
    QString directory;
    QStringList command;
    QStringList failOn; ///< commands whose first word fails
};

/// The ARM build system with a tool layer that only writes down what it would run, as one
/// command per action: the action number, the output, then the inputs.
class EngineBuildSystem : public ARMBuildSystem
{
public:
    EngineBuildSystem() : ARMBuildSystem(QStringList()) {}

    void createCommandFor(ProjectElement *, const QString &, BuildAction action,
                          const QString &output, const QString &, const QStringList &inputs,
                          Builder *builder, bool, bool) override
    {
        builder->setCommand(QStringList{QString::number(action), output} + inputs);
        builder->doit();
    }

    /// Adds a record of a project built in this run, as a dependency's build leaves it.
    void recordBuilt(ProjectElement *project, const QString &configuration, bool didWork)
    {
        built.append({project, configuration, didWork});
    }
};

/// Sets up the systems over a solution in a scratch directory whose files live on a FakeDisk.
class EngineFixture : public ::testing::Test
{
protected:
    EngineFixture()
    {
        projectSystem = new ARMProjectSystem;
        system = new EngineBuildSystem;
        buildSystem = system;
        auto fake = std::make_unique<FakeDisk>();
        disk = fake.get();
        system->setDisk(std::move(fake));
    }
    ~EngineFixture() override
    {
        delete system;
        delete projectSystem;
        projectSystem = nullptr;
    }

    /// Loads a solution holding `body` with the configuration "Debug".
    ProjectElement *load(const QByteArray &body)
    {
        const QString path = scratch.write("s.hdp", "<!DOCTYPE Tarnbench_Project_File>\n"
                                                    "<solution Name=\"S\" version=\"1\">\n"
                                                    "  <configuration Name=\"Debug\"/>\n" +
                                                        body + "</solution>\n");
        return projectSystem->loadSolution(path, nullptr);
    }
    ProjectElement *project(const QString &name) const
    {
        return projectSystem->solutionProjects(nullptr).value(name);
    }
    ProjectElement *element(const QString &name) const
    {
        return ProjectSystem::findByName(projectSystem->solutionElement(), name);
    }
    /// The absolute path of `relative` in the scratch directory, where every project lies.
    QString at(const QString &relative) const { return scratch.file(relative); }
    /// Builds `name` in "Debug" without its dependencies; the result of `platformBuild`.
    bool buildProject(const QString &name, int type)
    {
        return system->platformBuild(project(name), "Debug", &builder, type);
    }

    ScratchDir scratch;
    EngineBuildSystem *system;
    FakeDisk *disk;
    EventBuilder builder;
};
