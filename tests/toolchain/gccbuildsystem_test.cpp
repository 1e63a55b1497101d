#include "toolchaintesting.h"

namespace {

/// `appAndLib` with tools under a root that a global macro completes and behind a prefix.
class GCCCommands : public GCCTest
{
protected:
    GCCCommands() : GCCTest("x-", "/opt/$(GccTestTools)/bin", true)
    {
        macroSystem.setGlobalMacro(QStringLiteral("GccTestTools"), QStringLiteral("tc"));
        load(appAndLib);
    }

    /// The commands that `action` on `element` runs with `values` set there, as `shown`.
    QString commandsFor(ProjectElement *element, BuildAction action, const Settings &values,
                        const QString &output = QStringLiteral("Debug/o.o"))
    {
        run(element, action, values, output,
            {action == ActionLink ? QStringLiteral("Debug/main.o")
                                  : element->attribute(QStringLiteral("file_name"))});
        return shown(builder.commands);
    }
};

} // namespace

TEST_F(GCCCommands, SequencesThroughTheBuilder)
{
    run(mainC, ActionCompileC, {}, "Debug/main.o", {"src/main.c"});
    EXPECT_EQ(events(), "init\ndir @\ngroup Compiling main.c\noutputs @/Debug/main.o\n"
                        "command /opt/tc/bin/x-gcc -c -fmessage-length=0 -I. -MD -MQ "
                        "Debug/main.o -g @/src/main.c -o Debug/main.o\ndoit\nend");
    // Every command of a sequence is issued, even after one has failed.
    builder.failing = true;
    run(app, ActionLink, {"linker_output_format=bin"}, "Debug/App.elf", {"Debug/main.o"});
    EXPECT_EQ(events(), "init\ndir @\ngroup Linking App.elf\noutputs @/Debug/App.elf\n"
                        "command /opt/tc/bin/x-g++ -g -Wl,--start-group Debug/main.o -o "
                        "Debug/App.elf\ndoit\n"
                        "command /opt/tc/bin/x-objcopy Debug/App.elf @/Debug/App.bin -Obinary\n"
                        "outputs @/Debug/App.bin\ndoit\nend");
    run(app, ActionArchive, {}, "Debug/Lib.a", {"Debug/a.o", "Debug/b.o"});
    EXPECT_EQ(events(), "init\ndir @\ngroup Archiving Lib.a\noutputs @/Debug/Lib.a\n"
                        "command /opt/tc/bin/x-ar -rcs Debug/Lib.a Debug/a.o Debug/b.o\ndoit\n"
                        "command /opt/tc/bin/x-ranlib Debug/Lib.a\ndoit\nend");
}

TEST_F(GCCCommands, CommandLinesOfTheSettings)
{
    EXPECT_EQ(commandsFor(libCpp, ActionCompileCpp, {"c_enforce_ansi_checking=Yes"}),
              "/opt/tc/bin/x-g++ -c -fno-exceptions -fno-rtti -fmessage-length=0 -I. -MD -MQ "
              "Debug/o.o -g -std=c99 @/lib.cpp -o Debug/o.o");
    EXPECT_EQ(commandsFor(startS, ActionAssemble, {"build_debug_information=No"}),
              "/opt/tc/bin/x-gcc -c -fmessage-length=0 -I. -MD -MQ Debug/o.o @/start.s -o "
              "Debug/o.o");

    // The preprocessor's options in their order, then the compiler's; an unknown
    // optimization level optimizes for size.
    set(app,
        {"c_user_include_directories=inc;$(ProjectName)/x;;y z", "c_preprocessor_definitions=A=1;B",
         "c_preprocessor_undefinitions=C", "c_additional_options=-Wall;-DX=a b"});
    EXPECT_EQ(commandsFor(mainC, ActionCompileC,
                          {"c_undefine_all_preprocessor_definitions=Yes",
                           "build_treat_warnings_as_errors=Yes", "build_quietly=No",
                           "c_enforce_ansi_checking=Yes", "gcc_omit_frame_pointer=Yes",
                           "gcc_optimization_level=Level 9"}),
              "/opt/tc/bin/x-gcc -c -fmessage-length=0 -Iinc -IApp/x \"-Iy z\" -undef -DA=1 -DB "
              "-UC -MD -MQ Debug/o.o -Werror -v -Wall \"-DX=a b\" -g -std=c99 -Os "
              "-fomit-frame-pointer @/src/main.c -o Debug/o.o");

    // Ignoring includes drops only the include directories; an absolute source is passed as
    // it is.
    run(mainC, ActionCompileC, {"c_ignore_includes=Yes", "gcc_optimization_level=Level 3"},
        "Debug/o.o", {"/elsewhere/x.c"});
    EXPECT_EQ(firstCommand(), "/opt/tc/bin/x-gcc -c -fmessage-length=0 -DA=1 -DB -UC -MD -MQ "
                              "Debug/o.o -Wall \"-DX=a b\" -g -O3 /elsewhere/x.c -o Debug/o.o");

    EXPECT_EQ(commandsFor(app, ActionLink,
                          {"build_quietly=No", "build_debug_information=No",
                           "build_treat_warnings_as_errors=Yes",
                           "linker_additional_options=-nostdlib;-Wl,-Map=$(ProjectName).map"},
                          "Debug/App.elf"),
              "/opt/tc/bin/x-g++ -v --fatal-warnings -nostdlib -Wl,-Map=App.map "
              "-Wl,--start-group Debug/main.o -o Debug/App.elf");

    // Only the last dot of the output starts its extension; no group without the flag.
    system->linkerStartGroup = false;
    EXPECT_EQ(commandsFor(app, ActionLink, {"linker_output_format=bin"}, "out/x.y.elf"),
              "/opt/tc/bin/x-g++ -g Debug/main.o -o out/x.y.elf\n"
              "/opt/tc/bin/x-objcopy out/x.y.elf @/out/x.y.bin -Obinary");
}
