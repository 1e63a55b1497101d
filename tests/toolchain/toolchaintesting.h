#pragma once

#include "engine/buildsystem.h"
#include "engine/diskinterface.h"
#include "macros/macrosystem.h"
#include "project/armprojectsystem.h"
#include "project/gccprojectsystem.h"
#include "project/projectelement.h"
#include "settings/armtarnbenchenvironmentsettings.h"
#include "settings/environmentpropertyvalue.h"
#include "settings/environmentsettings.h"
#include "settings/isolatedsettingsstore.h"
#include "support/recordingbuilder.h"
#include "support/testsupport.h"
#include "toolchain/armbuildsystem.h"
#include "toolchain/gccbuildsystem.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <memory>

/// Settings as "save_name=value".
using Settings = QStringList;

/// An executable "App" in "app" with a C, a C++ and an assembly file, a linker script and a
/// memory map (neither on disk), and a library "Lib".
const QByteArray appAndLib = R"(<project Name="App">
  <configuration Name="Common" project_directory="app" project_type="Executable"/>
  <file Name="main.c" file_name="src/main.c"/>
  <file Name="lib.cpp" file_name="lib.cpp"/>
  <file Name="start.s" file_name="start.s"/>
  <file Name="app.ld" file_name="app.ld">
    <configuration Name="Common" file_type="Linker Script"/></file>
  <file Name="map.xml" file_name="map.xml">
    <configuration Name="Common" file_type="Memory Map"/></file>
</project>
<project Name="Lib">
  <configuration Name="Common" project_directory="lib" project_type="Library"/>
</project>
)";

/// A settings object, project system and build system installed as the process-wide ones
/// over a settings store of their own; a recording builder.
template <typename SettingsObject, typename Projects, typename System>
class SystemsTest : public ::testing::Test
{
protected:
    /// Makes the build system with `arguments` after its command line.
    template <typename... Arguments> explicit SystemsTest(Arguments... arguments)
    {
        settings.createEntries();
        environment = &settings;
        projectSystem = &projects;
        system = std::make_unique<System>(QStringList(), arguments...);
        buildSystem = system.get();
    }
    ~SystemsTest() override
    {
        projects.closeSolution();
        system.reset();
        buildSystem = nullptr;
        projectSystem = nullptr;
        environment = nullptr;
    }

    /// Loads a solution of `body`: "App" is `app`, its source files `files` (in `appAndLib`
    /// `mainC`, `libCpp`, `startS` and the rest), "Lib" `lib`. Returns the root.
    ProjectElement *load(const QByteArray &body)
    {
        ProjectElement *root =
            projects.loadSolution(scratch.write("s.hdp", solutionText(body)), nullptr);
        app = projects.solutionProjects(nullptr).value(QStringLiteral("App"));
        lib = projects.solutionProjects(nullptr).value(QStringLiteral("Lib"));
        projectDir = ProjectSystem::projectDirectoryPath(app);
        files = ProjectSystem::sourceFiles(app);
        mainC = files.value(0);
        libCpp = files.value(1);
        startS = files.value(2);
        return root;
    }
    /// Sets `values` on `element` in "Debug".
    void set(ProjectElement *element, const Settings &values)
    {
        for (const QString &value : values)
            projects.setProperty(element, value.section('=', 0, 0), debug, value.section('=', 1));
    }
    /// Removes what `set` set.
    void unset(ProjectElement *element, const Settings &values)
    {
        for (const QString &value : values)
            projects.removeProperty(element, value.section('=', 0, 0), debug);
    }
    /// `lines` joined by newlines, scratch file names shown as "TMP", the project directory
    /// of "App" as "@".
    QString shown(const QStringList &lines) const
    {
        return lines.join(QLatin1Char('\n'))
            .replace(QRegularExpression(QStringLiteral("\\S*/tmp/file\\w{6}")),
                     QStringLiteral("TMP"))
            .replace(projectDir, QStringLiteral("@"));
    }
    /// Has the build system make the commands of `action` on `element` with `values` set there
    /// for the call; `output` lies in the project directory. The builder keeps what it was told.
    void run(ProjectElement *element, BuildAction action, const Settings &values,
             const QString &output, const QStringList &inputs)
    {
        set(element, values);
        builder.clear();
        system->errorOccurred = false;
        system->disk().invalidateAll(); // each call sees the files as the test left them
        system->createCommandFor(element, debug, action, output,
                                 projectDir + QLatin1Char('/') + output, inputs, &builder, false,
                                 false);
        unset(element, values);
    }
    /// What the builder was told, one call a line, as `shown`.
    QString events() const { return shown(builder.events); }
    /// The first command the builder ran, as `shown`.
    QString firstCommand() const { return shown(builder.commands.mid(0, 1)); }

    const QString debug = QStringLiteral("Debug");
    IsolatedSettingsStore store;
    SettingsObject settings;
    Projects projects{QStringLiteral(".elf")};
    std::unique_ptr<System> system;
    ScratchDir scratch;
    RecordingBuilder builder;
    ProjectElement *app = nullptr;
    ProjectElement *lib = nullptr;
    QList<ProjectElement *> files;
    ProjectElement *mainC = nullptr;
    ProjectElement *libCpp = nullptr;
    ProjectElement *startS = nullptr;
    QString projectDir;
};

/// The GCC layer alone, with the project system of plain GNU tools.
using GCCTest = SystemsTest<EnvironmentSettings, GCCProjectSystem, GCCBuildSystem>;

/// The program's own ARM systems, `$(BenchDir)` at "/bench" and the tools under "/tc",
/// with `appAndLib` loaded.
class ARMTest
    : public SystemsTest<ARMTarnbenchEnvironmentSettings, ARMProjectSystem, ARMBuildSystem>
{
protected:
    ARMTest()
    {
        macroSystem.setGlobalMacro(QStringLiteral("BenchDir"), QStringLiteral("/bench"));
        settings.toolChainRootDirectory()->setPropertyValue(QStringLiteral("/tc"));
        load(appAndLib);
    }
};
