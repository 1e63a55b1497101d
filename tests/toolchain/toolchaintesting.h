#pragma once

#include "engine/buildsystem.h"
#include "foundation/qtx.h"
#include "engine/builder.h"
#include "frontend/processrunner.h"
#include "project/gccprojectsystem.h"
#include "project/projectelement.h"
#include "settings/environmentsettings.h"
#include "settings/isolatedsettingsstore.h"
#include "support/recordingbuilder.h"
#include "support/testsupport.h"
#include "toolchain/gccbuildsystem.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <memory>
#include <ostream>

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
