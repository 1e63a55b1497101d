#include "toolchaintesting.h"

#include "macros/macrosystem.h"
#include "settings/environmentpropertyvalue.h"

#include <QDateTime>
#include <QDir>

#include <utility>
#include <vector>

namespace {

using Settings = std::vector<std::pair<const char *, const char *>>;

/// A project "App" in "app" with a C, a C++ and an assembly file, tools under a root that a
/// global macro completes and behind a prefix.
class GCCCommands : public ToolChainTest
{
protected:
    GCCCommands() : ToolChainTest("x-", "/opt/$(GccTestTools)/bin", true)
    {
        macroSystem.setGlobalMacro(QStringLiteral("GccTestTools"), QStringLiteral("tc"));
        load("  <project Name=\"App\">\n"
             "    <configuration Name=\"Common\" project_directory=\"app\""
             " project_type=\"Executable\"/>\n"
             "    <file Name=\"main.c\" file_name=\"src/main.c\"/>\n"
             "    <file Name=\"lib.cpp\" file_name=\"lib.cpp\"/>\n"
             "    <file Name=\"start.s\" file_name=\"start.s\"/>\n"
             "  </project>\n");
        app = project(QStringLiteral("App"));
        const QList<ProjectElement *> files = ProjectSystem::sourceFiles(app);
        mainC = files.value(0);
        libCpp = files.value(1);
        startS = files.value(2);
        projectDir = ProjectSystem::projectDirectoryPath(app);
    }

    /// `text` with "@" standing for the project directory.
    QString expand(QString text) const { return text.replace(QLatin1Char('@'), projectDir); }

    /// The commands that `action` on `element` runs with `settings` set there in "Debug".
    QStringList commandsFor(ProjectElement *element, BuildAction action, const Settings &settings,
                            const QString &output, const QStringList &inputs)
    {
        for (const auto &[name, value] : settings)
            projects.setProperty(element, QString::fromLatin1(name), debug, value);
        RecordingBuilder builder;
        system->createCommandFor(element, debug, action, output, expand("@/") + output, inputs,
                                 &builder, false, false);
        for (const auto &setting : settings)
            projects.removeProperty(element, QString::fromLatin1(setting.first), debug);
        return builder.commands;
    }

    const QString debug = QStringLiteral("Debug");
    ProjectElement *app = nullptr;
    ProjectElement *mainC = nullptr;
    ProjectElement *libCpp = nullptr;
    ProjectElement *startS = nullptr;
    QString projectDir;
};

struct CommandCase
{
    const char *what;
    int file; ///< 0 main.c, 1 lib.cpp, 2 start.s
    BuildAction action;
    Settings settings;
    const char *command; ///< "@" is the project directory
};

} // namespace

TEST_F(GCCCommands, SettingsOfTheToolChainLayer)
{
    struct Expected
    {
        PropertyClass *propertyClass;
        const char *saveName;
        PropertyClass::Type type;
        const char *group;
        const char *shortDescription;
        const char *defaultValue;
        const char *longDescription;
    };
    const Expected expected[] = {
        {system->gccOptimizationLevelProperty, "gcc_optimization_level", PropertyClass::Enumeration,
         "Compiler Options", "Optimization Level", "None",
         "Specifies the optimization level to use."},
        {system->gccOmitFramePointerProperty, "gcc_omit_frame_pointer", PropertyClass::Boolean,
         "Compiler Options", "Omit Frame Pointer", "No",
         "Specifies whether a frame pointer register is omitted if not required."},
        {system->gccEntryPointProperty, "gcc_entry_point", PropertyClass::String, "Linker Options",
         "Entry Point", "0x00000000", "Specifies the entry point of the program."},
    };
    for (const Expected &e : expected) {
        SCOPED_TRACE(e.saveName);
        ASSERT_NE(e.propertyClass, nullptr);
        EXPECT_EQ(system->findPropertyClass(e.saveName), e.propertyClass);
        EXPECT_EQ(e.propertyClass->saveName(), e.saveName);
        EXPECT_EQ(e.propertyClass->type(), e.type);
        EXPECT_EQ(e.propertyClass->group(), e.group);
        EXPECT_EQ(e.propertyClass->shortDescription(), e.shortDescription);
        EXPECT_EQ(e.propertyClass->defaultValue(), e.defaultValue);
        EXPECT_EQ(e.propertyClass->longDescription(), e.longDescription);
    }
    EXPECT_EQ(system->gccOptimizationLevelProperty->enumerates(),
              QStringList({"None", "Level 1", "Level 2", "Level 3", "Optimize For Size"}));
    EXPECT_EQ(system->linkerOutputFormatProperty->enumerates(),
              QStringList({"None", "bin", "srec", "hex"}));
    EXPECT_EQ(projects.settingFor(app, system->linkerOutputFormatProperty, debug), "None");

    EXPECT_EQ(settings.toolChainRootDirectory()->toString(), "/opt/$(GccTestTools)/bin");
    EXPECT_EQ(system->toolPrefix, "x-");
    EXPECT_EQ(GCCBuildSystem(QStringList(), nullptr, "/r", false).toolPrefix, "");
}

TEST_F(GCCCommands, CompileCommandLines)
{
    const char *const head = "/opt/tc/bin/x-gcc -c -fmessage-length=0 -I. -MD -MQ Debug/o.o";
    const char *const tail = "@/src/main.c -o Debug/o.o";
    auto c = [&](const char *middle) { return QString("%1 %2 %3").arg(head, middle, tail); };
    const std::vector<CommandCase> cases = {
        {"defaults", 0, ActionCompileC, {}, "-g"},
        {"C++ without exceptions and RTTI",
         1,
         ActionCompileCpp,
         {},
         "/opt/tc/bin/x-g++ -c -fno-exceptions -fno-rtti -fmessage-length=0 -I. -MD -MQ "
         "Debug/o.o -g @/lib.cpp -o Debug/o.o"},
        {"C++ with both",
         1,
         ActionCompileCpp,
         {{"cpp_enable_exceptions", "Yes"}, {"cpp_enable_rtti", "Yes"}},
         "/opt/tc/bin/x-g++ -c -fmessage-length=0 -I. -MD -MQ Debug/o.o -g @/lib.cpp -o "
         "Debug/o.o"},
        {"assembly through the C driver",
         2,
         ActionAssemble,
         {{"build_debug_information", "No"}},
         "/opt/tc/bin/x-gcc -c -fmessage-length=0 -I. -MD -MQ Debug/o.o @/start.s -o Debug/o.o"},
        {"level 1", 0, ActionCompileC, {{"gcc_optimization_level", "Level 1"}}, "-g -O1"},
        {"level 2", 0, ActionCompileC, {{"gcc_optimization_level", "Level 2"}}, "-g -O2"},
        {"level 3", 0, ActionCompileC, {{"gcc_optimization_level", "Level 3"}}, "-g -O3"},
        {"for size",
         0,
         ActionCompileC,
         {{"gcc_optimization_level", "Optimize For Size"}},
         "-g -Os"},
        {"unknown level", 0, ActionCompileC, {{"gcc_optimization_level", "Level 9"}}, "-g -Os"},
        {"ANSI, frame pointer, no debug",
         0,
         ActionCompileC,
         {{"c_enforce_ansi_checking", "Yes"},
          {"gcc_omit_frame_pointer", "Yes"},
          {"gcc_optimization_level", "Level 2"},
          {"build_debug_information", "No"}},
         "-std=c99 -O2 -fomit-frame-pointer"},
        {"ANSI checking reaches C++ too",
         1,
         ActionCompileCpp,
         {{"c_enforce_ansi_checking", "Yes"}},
         "/opt/tc/bin/x-g++ -c -fno-exceptions -fno-rtti -fmessage-length=0 -I. -MD -MQ "
         "Debug/o.o -g -std=c99 @/lib.cpp -o Debug/o.o"},
    };
    for (const CommandCase &test : cases) {
        SCOPED_TRACE(test.what);
        ProjectElement *file = ProjectSystem::sourceFiles(app).value(test.file);
        const QString input = file->attribute("file_name");
        const QString expected =
            QString(test.command).startsWith('/') ? QString(test.command) : c(test.command);
        EXPECT_EQ(commandsFor(file, test.action, test.settings, "Debug/o.o", {input}),
                  QStringList{expand(expected)});
    }

    // An absolute source is passed as it is.
    EXPECT_EQ(commandsFor(mainC, ActionCompileC, {}, "Debug/o.o", {"/elsewhere/x.c"}).value(0),
              expand("/opt/tc/bin/x-gcc -c -fmessage-length=0 -I. -MD -MQ Debug/o.o -g "
                     "/elsewhere/x.c -o Debug/o.o"));
}

TEST_F(GCCCommands, PreprocessorOptionsInTheirOrder)
{
    projects.setProperty(app, "c_user_include_directories", debug, "inc;$(ProjectName)/x;;y z");
    projects.setProperty(app, "c_preprocessor_definitions", debug, "A=1;B");
    projects.setProperty(app, "c_preprocessor_undefinitions", debug, "C");
    projects.setProperty(app, "c_additional_options", debug, "-Wall;-DX=a b");
    const Settings all = {{"c_undefine_all_preprocessor_definitions", "Yes"},
                          {"build_treat_warnings_as_errors", "Yes"},
                          {"build_quietly", "No"}};
    EXPECT_EQ(commandsFor(mainC, ActionCompileC, all, "Debug/o.o", {"src/main.c"}),
              QStringList{expand("/opt/tc/bin/x-gcc -c -fmessage-length=0 -Iinc -IApp/x "
                                 "\"-Iy z\" -undef -DA=1 -DB -UC -MD -MQ Debug/o.o -Werror -v "
                                 "-Wall \"-DX=a b\" -g @/src/main.c -o Debug/o.o")});

    // Ignoring includes drops only the include directories.
    QStringList command;
    projects.setProperty(mainC, "c_ignore_includes", debug, "Yes");
    system->addPreprocessorOptions(mainC, debug, "obj/m.o", command);
    EXPECT_EQ(command,
              QStringList({"-DA=1", "-DB", "-UC", "-MD", "-MQ", "obj/m.o", "-Wall", "-DX=a b"}));
}

TEST_F(GCCCommands, LinkCommandLines)
{
    const QStringList inputs = {"Debug/main.o", "/lib/libx.a"};
    const char *const link =
        "/opt/tc/bin/x-g++ -g -Wl,--start-group Debug/main.o /lib/libx.a -o Debug/App.elf";
    const std::vector<std::pair<Settings, QStringList>> cases = {
        {{}, {link}},
        {{{"build_quietly", "No"},
          {"build_debug_information", "No"},
          {"build_treat_warnings_as_errors", "Yes"},
          {"linker_additional_options", "-nostdlib;-Wl,-Map=$(ProjectName).map"}},
         {"/opt/tc/bin/x-g++ -v --fatal-warnings -nostdlib -Wl,-Map=App.map -Wl,--start-group "
          "Debug/main.o /lib/libx.a -o Debug/App.elf"}},
        {{{"linker_output_format", "bin"}},
         {link, "/opt/tc/bin/x-objcopy Debug/App.elf @/Debug/App.bin -Obinary"}},
        {{{"linker_output_format", "hex"}},
         {link, "/opt/tc/bin/x-objcopy Debug/App.elf @/Debug/App.hex -Oihex"}},
        {{{"linker_output_format", "srec"}},
         {link, "/opt/tc/bin/x-objcopy Debug/App.elf @/Debug/App.srec -Osrec"}},
    };
    for (const auto &[settings, expected] : cases) {
        SCOPED_TRACE(expected.join('\n').toStdString());
        QStringList commands = commandsFor(app, ActionLink, settings, "Debug/App.elf", inputs);
        EXPECT_EQ(commands, QStringList(expected).replaceInStrings("@", projectDir));
    }

    // Only the last dot of the output starts its extension; no group without the flag.
    system->linkerStartGroup = false;
    EXPECT_EQ(
        commandsFor(app, ActionLink, {{"linker_output_format", "bin"}}, "out/x.y.elf", {"a.o"}),
        QStringList({"/opt/tc/bin/x-g++ -g a.o -o out/x.y.elf",
                     expand("/opt/tc/bin/x-objcopy out/x.y.elf @/out/x.y.bin -Obinary")}));
}

TEST_F(GCCCommands, SequencesThroughTheBuilder)
{
    projects.setProperty(app, "linker_output_format", debug, "bin");
    RecordingBuilder builder;
    auto run = [&](ProjectElement *element, BuildAction action, const QString &output,
                   const QStringList &inputs) {
        builder.clear();
        system->createCommandFor(element, debug, action, output, expand("@/") + output, inputs,
                                 &builder, false, false);
        return builder.events.join('\n');
    };

    EXPECT_EQ(run(mainC, ActionCompileC, "Debug/main.o", {"src/main.c"}),
              expand("init\ndir @\ngroup Compiling main.c\noutputs @/Debug/main.o\n"
                     "command /opt/tc/bin/x-gcc -c -fmessage-length=0 -I. -MD -MQ Debug/main.o "
                     "-g @/src/main.c -o Debug/main.o\ndoit\nend"));
    // Every command of a sequence is issued, even after one has failed.
    builder.failing = true;
    EXPECT_EQ(run(app, ActionLink, "Debug/App.elf", {"Debug/main.o"}),
              expand("init\ndir @\ngroup Linking App.elf\noutputs @/Debug/App.elf\n"
                     "command /opt/tc/bin/x-g++ -g -Wl,--start-group Debug/main.o -o "
                     "Debug/App.elf\ndoit\n"
                     "command /opt/tc/bin/x-objcopy Debug/App.elf @/Debug/App.bin -Obinary\n"
                     "outputs @/Debug/App.bin\ndoit\nend"));
    EXPECT_EQ(run(app, ActionArchive, "Debug/Lib.a", {"Debug/a.o", "Debug/b.o"}),
              expand("init\ndir @\ngroup Archiving Lib.a\noutputs @/Debug/Lib.a\n"
                     "command /opt/tc/bin/x-ar -rcs Debug/Lib.a Debug/a.o Debug/b.o\ndoit\n"
                     "command /opt/tc/bin/x-ranlib Debug/Lib.a\ndoit\nend"));
    // Other actions have no command of this layer.
    EXPECT_EQ(run(app, ActionExternal, "x", {}), expand("init\ndir @"));
    EXPECT_EQ(run(mainC, ActionCompileBasic, "x", {"src/main.c"}), expand("init\ndir @"));

    // The root setting, once stored, beats the default; macros in it are expanded.
    settings.toolChainRootDirectory()->setPropertyValue("$(GccTestTools)/bin");
    run(app, ActionArchive, "L.a", {});
    EXPECT_EQ(builder.commands, QStringList({"tc/bin/x-ar -rcs L.a", "tc/bin/x-ranlib L.a"}));
}

TEST_F(GCCCommands, PropertiesThatOutdateACommand)
{
    const QDateTime before = QDateTime::currentDateTime().addSecs(-3600);
    const QDateTime after = QDateTime::currentDateTime().addSecs(3600);
    projects.setProperty(app, "gcc_omit_frame_pointer", debug, "Yes");
    projects.setProperty(mainC, "gcc_optimization_level", debug, "Level 2");

    RecordingBuilder builder;
    // A compile sees both compiler settings, inherited or its own.
    EXPECT_FALSE(system->commandUpToDate(mainC, debug, before, ActionCompileC, &builder, false));
    EXPECT_FALSE(system->commandUpToDate(libCpp, debug, before, ActionCompileCpp, &builder, false));
    EXPECT_FALSE(system->commandUpToDate(startS, debug, before, ActionAssemble, &builder, true));
    EXPECT_EQ(builder.messages, QStringList({"Optimization Level property has changed.",
                                             "Omit Frame Pointer property has changed."}));
    EXPECT_TRUE(system->commandUpToDate(mainC, debug, after, ActionCompileC, &builder, false));
    // The compiler settings are no concern of a link.
    EXPECT_TRUE(system->commandUpToDate(app, debug, before, ActionLink, &builder, false));

    builder.clear();
    projects.setProperty(app, "gcc_entry_point", debug, "start");
    EXPECT_FALSE(system->commandUpToDate(app, debug, before, ActionLink, &builder, false));
    EXPECT_EQ(builder.messages, QStringList({"Entry Point property has changed."}));
    EXPECT_TRUE(system->commandUpToDate(app, debug, after, ActionLink, &builder, false));
    EXPECT_TRUE(system->commandUpToDate(app, debug, before, ActionArchive, &builder, false));
}

TEST_F(GCCCommands, DependenciesFromTheCompilersFile)
{
    scratch.write("app/Debug/main.d", "Debug/main.o: src/main.c /usr/include/stdio.h \\\n"
                                      "  inc/a\\ b.h\n");
    const QStringList expected = {expand("@/src/main.c"), "/usr/include/stdio.h",
                                  expand("@/inc/a b.h")};
    // A relative object lies in the project directory; the input is not read.
    EXPECT_EQ(system->getObjectFileDependencies(projectDir, "ignored", "Debug/main.o"), expected);
    EXPECT_EQ(system->getObjectFileDependencies(projectDir, QString(), expand("@/Debug/main.o")),
              expected);
    EXPECT_TRUE(system->getObjectFileDependencies(projectDir, "", "Debug/none.o").isEmpty());
    scratch.write("app/Debug/bad.d", "no colon here\n");
    EXPECT_TRUE(system->getObjectFileDependencies(projectDir, "", "Debug/bad.o").isEmpty());
}
