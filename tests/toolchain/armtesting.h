#pragma once

#include "toolchaintesting.h"

#include "macros/macrosystem.h"
#include "project/armprojectsystem.h"
#include "settings/armtarnbenchenvironmentsettings.h"
#include "settings/environmentpropertyvalue.h"
#include "toolchain/armbuildsystem.h"

/// The program's own ARM systems, `$(BenchDir)` at "/bench" and the tools under "/tc". Loaded:
/// an executable "App" in "app" with a C, a C++ and an assembly file, a linker script and a
/// memory map (neither on disk), and a library "Lib".
class ARMTest
    : public SystemsTest<ARMTarnbenchEnvironmentSettings, ARMProjectSystem, ARMBuildSystem>
{
protected:
    ARMTest()
    {
        macroSystem.setGlobalMacro(QStringLiteral("BenchDir"), QStringLiteral("/bench"));
        settings.toolChainRootDirectory()->setPropertyValue(QStringLiteral("/tc"));
        load("  <project Name=\"App\">\n"
             "    <configuration Name=\"Common\" project_directory=\"app\""
             " project_type=\"Executable\"/>\n"
             "    <file Name=\"main.c\" file_name=\"src/main.c\"/>\n"
             "    <file Name=\"lib.cpp\" file_name=\"lib.cpp\"/>\n"
             "    <file Name=\"start.s\" file_name=\"start.s\"/>\n"
             "    <file Name=\"app.ld\" file_name=\"app.ld\">\n"
             "      <configuration Name=\"Common\" file_type=\"Linker Script\"/>\n"
             "    </file>\n"
             "    <file Name=\"map.xml\" file_name=\"map.xml\">\n"
             "      <configuration Name=\"Common\" file_type=\"Memory Map\"/>\n"
             "    </file>\n"
             "  </project>\n"
             "  <project Name=\"Lib\">\n"
             "    <configuration Name=\"Common\" project_directory=\"lib\""
             " project_type=\"Library\"/>\n"
             "  </project>\n");
        lib = projects.solutionProjects(nullptr).value(QStringLiteral("Lib"));
        const QList<ProjectElement *> files = ProjectSystem::sourceFiles(app);
        mainC = files.value(0);
        libCpp = files.value(1);
        startS = files.value(2);
        linkerScriptFile = files.value(3);
        memoryMapFile = files.value(4);
    }

    ProjectElement *lib = nullptr;
    ProjectElement *mainC = nullptr;
    ProjectElement *libCpp = nullptr;
    ProjectElement *startS = nullptr;
    ProjectElement *linkerScriptFile = nullptr;
    ProjectElement *memoryMapFile = nullptr;
};
