#include "toolchaintesting.h"

#include "project/propertyvaluegroups.h"

namespace {

/// The target options of a default project, for the compiler and for the assembler.
const QString armOptions =
    "-march=armv4t -mthumb-interwork -mlittle-endian -mfpu=vfp -mfloat-abi=soft";
const QString asOptions = "-march=armv4t -mthumb-interwork -EL -mfpu=vfp -mfloat-abi=soft";

/// The preprocessor options of a default project for the object `o`.
QString preprocessorOptions(const QString &o)
{
    return "-nostdinc -isystem/bench/include -I. -D__ARM_ARCH_4T__ -D__HALDEN_ARM -MD Debug/" + o +
           ".d -MQ Debug/" + o + ".o -quiet";
}

} // namespace

TEST_F(ARMTest, CompileThroughAScratchOrAKeptAssemblyFile)
{
    const QString cc1 = "command /tc/cc1 -fmessage-length=0 " + armOptions + " " +
                        preprocessorOptions("main") + " -gdwarf-2 -fno-builtin @/src/main.c -o ";
    const QString as = "command /tc/as --traditional-format " + asOptions + " ";
    run(mainC, ActionCompileC, {}, "Debug/main.o", {"src/main.c"});
    EXPECT_EQ(events(), "init\ndir @\ngroup Compiling main.c\n" + cc1 + "TMP\ndoit\n" + as +
                            "TMP -o Debug/main.o\noutputs @/Debug/main.o\ndoit\n"
                            "command rm TMP\noutputs \ndoit\nend");

    // A kept assembly file lies beside the object and is not removed.
    run(mainC, ActionCompileC, {"arm_keep_assembly=Yes"}, "Debug/main.o", {"src/main.c"});
    EXPECT_TRUE(
        events().endsWith("-o @/Debug/main.asm\noutputs @/Debug/main.asm\ndoit\n" + as +
                          "@/Debug/main.asm -o Debug/main.o\noutputs @/Debug/main.o\ndoit\nend"));

    // A kept assembly file of Thumb long calls gets the stubs of the registers it calls
    // through, if the module's own are asked for: each once, in the table's order, behind
    // every line kept.
    const QByteArray source = "\tbl\t_call_via_r3\n  mov r0, r1\nbl    _call_via_r3\n"
                              "bl _call_via_fp\nbl _call_via_r3 @ other form\n"
                              "blx _call_via_sp\nbl _call_via_x";
    scratch.write("app/Debug/main.asm", source);
    Settings thumbLongCalls = {"arm_keep_assembly=Yes", "arm_instruction_set=Thumb",
                               "arm_long_calls=Yes"};
    run(mainC, ActionCompileC, thumbLongCalls, "Debug/main.o", {"src/main.c"});
    EXPECT_EQ(scratch.read("app/Debug/main.asm"), source);
    thumbLongCalls.push_back("arm_module_call_vias=Yes");
    run(mainC, ActionCompileC, thumbLongCalls, "Debug/main.o", {"src/main.c"});
    EXPECT_EQ(scratch.read("app/Debug/main.asm"),
              source + "\n  .text\n  .thumb_func\n  .align 2\n_call_via_fp:\n  bx fp\n  nop\n"
                       "  .text\n  .thumb_func\n  .align 2\n_call_via_r3:\n  bx r3\n  nop\n");

    // Renamed default sections add the object copier; the vector section is not renamed.
    const Settings sections = {"default_code_section=.text2", "default_const_section=.ro",
                               "default_vector_section=.vec"};
    run(mainC, ActionCompileC, sections, "Debug/main.o", {"src/main.c"});
    EXPECT_TRUE(events().endsWith(
        "command rm TMP\noutputs \ndoit\ncommand /tc/objcopy --rename-section .text=.text2 "
        "--rename-section .rodata=.ro Debug/main.o\noutputs \ndoit\nend"))
        << events().toStdString();

    // A failed compile runs nothing more; a failed assembly still removes the scratch file.
    // Either way the group stays open for the engine to close.
    builder.failOn = "/cc1";
    run(mainC, ActionCompileC, sections, "Debug/main.o", {"src/main.c"});
    EXPECT_EQ(shown(builder.commands), cc1.mid(8) + "TMP");
    builder.failOn = "/as";
    run(mainC, ActionCompileC, sections, "Debug/main.o", {"src/main.c"});
    EXPECT_TRUE(events().endsWith("command rm TMP\noutputs \ndoit")) << events().toStdString();
}

TEST_F(ARMTest, CompilerCommandLines)
{
    run(libCpp, ActionCompileCpp, {"c_enforce_ansi_checking=Yes"}, "Debug/o.o", {"/x/y"});
    EXPECT_EQ(firstCommand(), "/tc/cc1plus -fno-exceptions -fno-rtti -fmessage-length=0 " +
                                  armOptions + " " + preprocessorOptions("o") +
                                  " -gdwarf-2 -std=c++98 -fno-builtin /x/y -o TMP");

    // Every option in its place: the group file's definitions after the predefined ones, the
    // dependency file named up to the object's first dot.
    propertyValueGroups.setGroupFile(scratch.write("groups.xml", R"(<!DOCTYPE Property_Groups>
<propertyGroups>
  <group name="board" default="big">
    <groupEntry name="big"><cdefine name="BOARD" value="2"/>
      <cdefine name="CLOCK" value="72" configuration="Release"/></groupEntry>
    <groupEntry name="small"><cdefine name="SMALL" value="1"/></groupEntry>
  </group>
  <group name="chip" default="m3">
    <groupEntry name="m3"><cdefine name="CHIP" value=""/></groupEntry>
  </group>
</propertyGroups>
)"));
    set(app, {"c_user_include_directories=inc;$(ProjectName)/x",
              "c_system_include_directories=$(BenchDir)/include;;sys",
              "c_preprocessor_definitions=A=1;B", "c_preprocessor_undefinitions=C",
              "c_additional_options=-Wall;-DX=a b"});
    run(mainC, ActionCompileC,
        {"build_debug_information=No", "build_quietly=No", "build_treat_warnings_as_errors=Yes",
         "c_enforce_ansi_checking=Yes", "gcc_optimization_level=Level 2",
         "gcc_omit_frame_pointer=Yes", "arm_long_calls=Yes", "build_remove_unused_symbols=Yes"},
        "Debug/o.y.o", {"/x/y"});
    const QString includes = "-nostdinc -isystem/bench/include -isystemsys -Iinc -IApp/x ";
    const QString user = "-DA=1 -DB -UC ";
    EXPECT_EQ(firstCommand(),
              "/tc/cc1 -fmessage-length=0 " + armOptions + " " + includes +
                  "-D__ARM_ARCH_4T__ -D__HALDEN_ARM -DBOARD=2 -DCLOCK=72 -DCHIP= " + user +
                  "-MD Debug/o.d -MQ Debug/o.y.o -Werror -v -Wall \"-DX=a b\" "
                  "-std=c99 -O2 -fomit-frame-pointer -mlong-calls -fno-builtin "
                  "-ffunction-sections /x/y -o TMP");

    // The entry chosen decides the definitions; without an object there is no dependency
    // file; undefining all drops the predefined ones, not the user's; ignoring includes drops
    // those.
    auto options = [&] {
        QStringList command;
        system->addPreprocessorOptions(mainC, debug, QString(), command);
        return command.join(' ');
    };
    set(app, {"board=small"});
    EXPECT_EQ(options(), includes + "-D__ARM_ARCH_4T__ -D__HALDEN_ARM -DSMALL=1 -DCHIP= " + user +
                             "-Wall -DX=a b");
    set(mainC, {"c_undefine_all_preprocessor_definitions=Yes", "c_ignore_includes=Yes"});
    EXPECT_EQ(options(), "-nostdinc -undef " + user + "-Wall -DX=a b");
    propertyValueGroups.setGroupFile("None");
}

TEST_F(ARMTest, AssembleThroughThePreprocessor)
{
    run(startS, ActionAssemble, {"asm_additional_options=-mapcs;--defsym X=1"}, "Debug/start.o",
        {"start.s"});
    EXPECT_EQ(events(), "init\ndir @\ngroup Assembling start.s\ncommand /tc/cc1 -E " + armOptions +
                            " " + preprocessorOptions("start") +
                            " -lang-asm @/start.s -o TMP\ndoit\ncommand /tc/as "
                            "--traditional-format " +
                            asOptions +
                            " -mapcs \"--defsym X=1\" TMP -o Debug/start.o --gdwarf2\n"
                            "outputs @/Debug/start.o\ndoit\ncommand rm TMP\noutputs \ndoit\nend");

    // Without debug information the preprocessor drops line markers and the assembler its
    // debug option; warnings as errors reach both.
    run(startS, ActionAssemble,
        {"build_debug_information=No", "build_treat_warnings_as_errors=Yes"}, "Debug/start.o",
        {"start.s"});
    EXPECT_TRUE(builder.commands.value(0).startsWith("/tc/cc1 -E -P -march"));
    EXPECT_TRUE(builder.commands.value(0).contains("-Werror -quiet -lang-asm"));
    EXPECT_TRUE(builder.commands.value(1).endsWith("-o Debug/start.o --fatal-warnings"));

    // A failed preprocessor doesn't stop the assembler or the removal; then the group stays
    // open.
    builder.failOn = "/cc1";
    run(startS, ActionAssemble, {"default_data_section=.d2"}, "Debug/start.o", {"start.s"});
    EXPECT_EQ(builder.commands.size(), 3);
    EXPECT_NE(builder.events.last(), "end");
}

TEST_F(ARMTest, SettingsThatOutdateACommand)
{
    const QDateTime before = QDateTime::currentDateTime().addSecs(-3600);
    auto upToDate = [&](ProjectElement *element, BuildAction action) {
        return system->commandUpToDate(element, debug, before, action, &builder, false);
    };
    // The compiler's settings don't reach the link, nor the library's and the link's the
    // compile; unused symbol removal reaches the compile, the entry point the link.
    set(lib, {"arm_long_calls=Yes", "gcc_optimization_level=Level 2"});
    EXPECT_TRUE(upToDate(lib, ActionLink));
    set(startS, {"arm_library_instruction_set=Thumb", "gcc_entry_point=start"});
    EXPECT_TRUE(upToDate(startS, ActionAssemble));
    set(startS, {"build_remove_unused_symbols=Yes"});
    EXPECT_FALSE(upToDate(startS, ActionAssemble));
    set(lib, {"gcc_entry_point=start"});
    EXPECT_FALSE(upToDate(lib, ActionLink));

    // Each layer's settings, inherited or the element's own, the GCC layer's before the ARM
    // layer's; nothing said when asked quietly.
    set(app, {"gcc_omit_frame_pointer=Yes", "arm_linker_heap_size=4096"});
    set(mainC, {"arm_fpu_type=VFP9"});
    EXPECT_FALSE(upToDate(mainC, ActionCompileC));
    EXPECT_FALSE(upToDate(app, ActionLink));
    EXPECT_TRUE(upToDate(app, ActionArchive));
    EXPECT_FALSE(system->commandUpToDate(mainC, debug, before, ActionCompileC, &builder, true));
    EXPECT_EQ(builder.messages, QStringList({"Enable Unused Symbol Removal property has changed.",
                                             "Entry Point property has changed.",
                                             "Omit Frame Pointer property has changed.",
                                             "Heap Size property has changed."}));
    EXPECT_TRUE(system->commandUpToDate(mainC, debug, before.addSecs(7200), ActionCompileC,
                                        &builder, false));
}
