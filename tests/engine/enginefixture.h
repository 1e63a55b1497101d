#pragma once

#include "engine/standardbuildsystem.h"
#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "support/fakedisk.h"
#include "support/recordingbuilder.h"
#include "support/testsupport.h"
#include "toolchain/armbuildsystem.h"

#include <gtest/gtest.h>

#include <QSet>

/// The ARM build system whose tool step is one command: the action number, the output, the
/// inputs. With `walkOnly` the project step just records "Name/Configuration" in `calls`,
/// reports work for `working` and fails or stops at `failing`, `stopping`.
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
    bool platformBuild(ProjectElement *element, const QString &configuration, Builder *builder,
                       int type) override
    {
        if (!walkOnly)
            return ARMBuildSystem::platformBuild(element, configuration, builder, type);
        const QString name = element->attribute(QStringLiteral("Name"));
        calls << name + QLatin1Char('/') + configuration;
        errorOccurred = errorOccurred || failing.contains(name);
        stopRequested = stopRequested || stopping.contains(name);
        return working.contains(name);
    }

    bool walkOnly = false;
    QStringList calls;
    QSet<QString> working, failing, stopping;
};

/// The two process-wide systems over a solution in a scratch directory whose build files live
/// on a FakeDisk, and a builder whose events hold its reports.
class EngineTest : public ::testing::Test
{
protected:
    EngineTest()
    {
        projectSystem = new ARMProjectSystem;
        buildSystem = system = new EngineBuildSystem;
        auto fake = std::make_unique<FakeDisk>();
        disk = fake.get();
        system->setDisk(std::move(fake));
        builder.reportsInEvents = true;
    }
    ~EngineTest() override
    {
        delete system;
        delete projectSystem;
        projectSystem = nullptr;
    }

    /// Writes a solution with the configuration "Debug" and `body` to `fileName`, and loads it.
    ProjectElement *load(const QByteArray &body, const QString &fileName = QStringLiteral("s.hdp"))
    {
        scratch.write(fileName, solutionText("  <configuration Name=\"Debug\"/>\n" + body));
        return projectSystem->loadSolution(scratch.file(fileName), nullptr);
    }
    /// The project or other element of that name.
    ProjectElement *element(const QString &name) const
    {
        return ProjectSystem::findByName(projectSystem->solutionElement(), name);
    }
    /// The absolute path of `relative` in the scratch directory, where every project lies.
    QString at(const QString &relative) const { return scratch.file(relative); }
    /// The builder's events since the last call, without the bare "doit" after each command.
    QStringList events()
    {
        QStringList taken = builder.take();
        taken.removeAll(QStringLiteral("doit"));
        return taken;
    }

    ScratchDir scratch;
    EngineBuildSystem *system;
    FakeDisk *disk;
    RecordingBuilder builder;
};

/// A project `name` whose "Common" configuration has the attributes `common`, then `more`.
inline QByteArray projectXml(const QByteArray &name, const QByteArray &common,
                             const QByteArray &more = {})
{
    return "  <project Name=\"" + name + "\">\n    <configuration Name=\"Common\" " + common +
           "/>\n" + more + "  </project>\n";
}
