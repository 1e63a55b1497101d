#pragma once

#include "toolchaintesting.h"

#include "macros/macrosystem.h"
#include "project/armprojectsystem.h"
#include "settings/armtarnbenchenvironmentsettings.h"
#include "settings/environmentpropertyvalue.h"
#include "toolchain/armbuildsystem.h"

#include <QRegularExpression>

#include <utility>
#include <vector>

/// The recording builder, failing each command whose program ends in `failOn`.
using FailingBuilder = RecordingBuilder;

/// Settings as save name and value.
using ARMSettings = std::vector<std::pair<const char *, const char *>>;

/// The program's own pair of systems over an isolated settings store: an ARM project system
/// and build system, `$(BenchDir)` at "/bench", and the tools under "/tc". Loaded: an
/// executable "App" in "app" with a C, a C++ and an assembly file, a linker script and a
/// memory map (neither on disk), and a library "Lib".
class ARMTest : public ::testing::Test
{
protected:
    ARMTest()
    {
        settings.createEntries();
        environment = &settings;
        projectSystem = &projects;
        system = std::make_unique<ARMBuildSystem>(QStringList());
        buildSystem = system.get();
        macroSystem.setGlobalMacro(QStringLiteral("BenchDir"), QStringLiteral("/bench"));
        settings.toolChainRootDirectory()->setPropertyValue(QStringLiteral("/tc"));
        const QString path = scratch.write(
            "s.hdp", "<!DOCTYPE Tarnbench_Project_File>\n"
                     "<solution Name=\"S\" version=\"1\">\n"
                     "  <project Name=\"App\">\n"
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
                     "  </project>\n"
                     "</solution>\n");
        projects.loadSolution(path, nullptr);
        app = projects.solutionProjects(nullptr).value(QStringLiteral("App"));
        lib = projects.solutionProjects(nullptr).value(QStringLiteral("Lib"));
        const QList<ProjectElement *> files = ProjectSystem::sourceFiles(app);
        mainC = files.value(0);
        libCpp = files.value(1);
        startS = files.value(2);
        linkerScriptFile = files.value(3);
        memoryMapFile = files.value(4);
        projectDir = ProjectSystem::projectDirectoryPath(app);
    }
    ~ARMTest() override
    {
        projects.closeSolution();
        system.reset();
        buildSystem = nullptr;
        projectSystem = nullptr;
        environment = nullptr;
    }

    /// Sets `values` on `element` in "Debug".
    void set(ProjectElement *element, const ARMSettings &values)
    {
        for (const auto &[name, value] : values)
            projects.setProperty(element, QString::fromLatin1(name), debug, value);
    }
    /// Removes what `set` set.
    void unset(ProjectElement *element, const ARMSettings &values)
    {
        for (const auto &setting : values)
            projects.removeProperty(element, QString::fromLatin1(setting.first), debug);
    }
    /// `text` with "@" standing for the project directory of "App".
    QString expand(QString text) const { return text.replace(QLatin1Char('@'), projectDir); }

    /// Has the build system make the commands of `action` on `element` with `values` set
    /// there; `output` lies in the project directory. The builder keeps what it was told.
    void run(ProjectElement *element, BuildAction action, const ARMSettings &values,
             const QString &output, const QStringList &inputs)
    {
        set(element, values);
        builder.clear();
        system->errorOccurred = false;
        system->createCommandFor(element, debug, action, output, expand("@/") + output, inputs,
                                 &builder, false, false);
        unset(element, values);
    }

    /// What the builder was told, one call a line, scratch file names shown as "TMP" and the
    /// project directory as "@".
    QString events() const { return shown(builder.events); }
    /// `lines` joined by newlines, scratch file names and the project directory as `events`
    /// shows them.
    QString shown(const QStringList &lines) const
    {
        return lines.join(QLatin1Char('\n'))
            .replace(QRegularExpression(QStringLiteral("\\S*/tmp/file\\w{6}")),
                     QStringLiteral("TMP"))
            .replace(projectDir, QStringLiteral("@"));
    }

    const QString debug = QStringLiteral("Debug");
    IsolatedSettingsStore store;
    ARMTarnbenchEnvironmentSettings settings;
    ARMProjectSystem projects;
    std::unique_ptr<ARMBuildSystem> system;
    ScratchDir scratch;
    FailingBuilder builder;
    ProjectElement *app = nullptr;
    ProjectElement *lib = nullptr;
    ProjectElement *mainC = nullptr;
    ProjectElement *libCpp = nullptr;
    ProjectElement *startS = nullptr;
    ProjectElement *linkerScriptFile = nullptr;
    ProjectElement *memoryMapFile = nullptr;
    QString projectDir;
};
