#pragma once

#include "engine/buildsystem.h"
#include "engine/builder.h"
#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "support/nullbuilder.h"
#include "support/testsupport.h"
#include "toolchain/armbuildsystem.h"

#include <gtest/gtest.h>

#include <QSet>
#include <QStringList>

#include <ostream>


/// A builder that writes down the group lines and errors it is given.
class GroupBuilder : public NullBuilder
{
public:
    void beginGroup(ProjectElement *, const QString &text, bool) override { lines << text; }
    void endGroup(ProjectElement *element) override
    {
        lines << (element ? QStringLiteral("end ") + element->attribute(QStringLiteral("Name"))
                          : QStringLiteral("end"));
    }
    void error(const QString &text) override { lines << QStringLiteral("error: ") + text; }

    QStringList lines;
};

/// The ARM build system with a project step that records its calls, reports work for the
/// projects named in `working` and fails or stops at the ones named in `failing`, `stopping`.
class RecordingBuildSystem : public ARMBuildSystem
{
public:
    RecordingBuildSystem() : ARMBuildSystem(QStringList()) {}

    bool platformBuild(ProjectElement *element, const QString &configuration, Builder *,
                       int) override
    {
        const QString name = element->attribute(QStringLiteral("Name"));
        calls << name + QLatin1Char('/') + configuration;
        if (failing.contains(name))
            errorOccurred = true;
        if (stopping.contains(name))
            stopRequested = true;
        return working.contains(name);
    }

    QStringList calls;
    QSet<QString> working;
    QSet<QString> failing;
    QSet<QString> stopping;
};

/// Sets up the two process-wide systems over a solution written to a scratch directory.
class BuildFixture : public ::testing::Test
{
protected:
    BuildFixture()
    {
        projectSystem = new ARMProjectSystem;
        system = new RecordingBuildSystem;
        buildSystem = system;
    }
    ~BuildFixture() override
    {
        delete system;
        delete projectSystem;
        projectSystem = nullptr;
    }

    /// Writes a solution file "s.hdp" holding `body` and loads it; returns the root.
    ProjectElement *load(const QByteArray &body, const QString &fileName = QStringLiteral("s.hdp"))
    {
        const QString path = scratch.write(fileName, "<!DOCTYPE Tarnbench_Project_File>\n"
                                                     "<solution Name=\"S\" version=\"1\">\n" +
                                                         body + "</solution>\n");
        return projectSystem->loadSolution(path, nullptr);
    }
    /// The project of that global name.
    ProjectElement *project(const QString &name) const
    {
        return projectSystem->solutionProjects(nullptr).value(name);
    }

    ScratchDir scratch;
    RecordingBuildSystem *system;
};
