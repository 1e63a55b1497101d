#include "toolchaintesting.h"

#include "memorymap/memorymaptesting.h"

#include <QFile>

namespace {

/// The libraries of the last link line, in order, without their directory and `libExt`".a".
QString libraryNames(const RecordingBuilder &builder, const QString &libExt)
{
    const QStringList &command = builder.command;
    return command.mid(command.indexOf("Debug/main.o") + 1)
        .replaceInStrings("/bench/lib/", "")
        .replaceInStrings(libExt + ".a", "")
        .join(' ');
}

} // namespace

TEST_F(ARMTest, LinkAndArchiveCommandsAndSequences)
{
    // The whole default line is the scenario's; here its place in the sequence.
    const QStringList inputs = {"Debug/main.o", "/x/libq.a"};
    run(app, ActionLink, {}, "Debug/App.elf", inputs);
    EXPECT_EQ(events().replace(firstCommand(), "LD"),
              "init\ndir @\ngroup Linking App.elf\ncommand LD\noutputs @/Debug/App.elf\ndoit\n"
              "outputs @/Debug/App.map\nend");

    // An additional output format goes through the object copier, in the same group; only the
    // last dot of the output starts its extension.
    run(app, ActionLink, {"linker_output_format=hex", "linker_map_file=No"}, "out/x.y.elf", inputs);
    EXPECT_TRUE(events().endsWith("doit\ncommand /tc/objcopy out/x.y.elf @/out/x.y.hex "
                                  "-Oihex\noutputs @/out/x.y.hex\ndoit\nend"));

    // A failed link ends the sequence with its group open.
    builder.failOn = "/ld";
    run(app, ActionLink, {"linker_output_format=bin"}, "Debug/App.elf", inputs);
    EXPECT_TRUE(events().endsWith("outputs @/Debug/App.elf\ndoit")) << events().toStdString();

    // The archiver starts a library afresh.
    scratch.write("app/Debug/App.a", "old members");
    run(app, ActionArchive, {}, "Debug/App.a", {"Debug/a.o", "/x/b.o"});
    EXPECT_FALSE(QFile::exists(scratch.file("app/Debug/App.a")));
    EXPECT_EQ(events(), "init\ndir @\ngroup Archiving App.a\n"
                        "command /tc/ar -rcs Debug/App.a Debug/a.o /x/b.o\n"
                        "outputs @/Debug/App.a\ndoit\nend");
    builder.failOn.clear();

    // The options of the settings, in their places.
    run(app, ActionLink,
        {"link_include_standard_libraries=No", "linker_map_file=No", "build_quietly=No",
         "build_treat_warnings_as_errors=Yes", "arm_linker_no_warn_on_mismatch=Yes",
         "linker_additional_options=--verbose;-z max", "arm_endian=Big",
         "build_remove_unused_symbols=Yes", "gcc_entry_point=start",
         "link_symbol_definitions=a=1;;b=0x2", "linker_keep_symbols=x;y"},
        "Debug/App.elf", {"Debug/main.o"});
    EXPECT_EQ(firstCommand(), "/tc/ld -X -nostdlib -estart --omagic -v --fatal-warnings "
                              "--no-warn-mismatch --verbose \"-z max\" -EB --gc-sections "
                              "-T@/app.ld --defsym a=1 --defsym b=0x2 -ux -uy -o Debug/App.elf "
                              "--start-group Debug/main.o");
    // Warnings are errors if either setting says so.
    run(app, ActionLink, {"arm_linker_treat_warnings_as_errors=No"}, "Debug/App.elf", {});
    EXPECT_FALSE(builder.command.contains("--fatal-warnings"));
}

TEST_F(ARMTest, LibraryTableInOrderWithItsConditions)
{
    // The variants of printf and scanf: floating point brings everything, width and precision
    // included; "int" shares the library of "long".
    const std::pair<Settings, const char *> cases[] = {
        {{"arm_target_debug_interface_type=ADIv5", "link_IOLibraryName=debug",
          "linker_printf_fmt_level=long long", "linker_scanf_fmt_level=long long"},
         "libadiv5 %1 libc_debugio_impl lib_vfprintf_long_long lib_vfscanf_long_long"},
        {{"arm_target_debug_interface_type=XScale7BitIR", "link_IOLibraryName=none",
          "linker_printf_fmt_level=short", "linker_printf_width_precision_supported=No",
          "linker_scanf_fp_enabled=Yes", "linker_scanf_character_group_matching_enabled=Yes"},
         "libxscale %1 lib_vfprintf__nwp lib_vfscanf_double_long_long_cc"},
        {{"cpp_enable_rtti=Yes", "linker_printf_fp_enabled=Yes",
          "linker_printf_width_precision_supported=No", "linker_scanf_fmt_level=int"},
         "libarmdi %1 libc_targetio_impl libgccxceptrtti lib_vfprintf_double_long_long "
         "lib_vfscanf_long"},
        {{"cpp_enable_exceptions=Yes", "arm_use_gcc_libraries=No",
          "linker_scanf_character_group_matching_enabled=Yes"},
         "libarmdi %1 libc_targetio_impl lib_vfprintf_long lib_vfscanf_long_cc"},
    };
    for (const auto &[values, libraries] : cases) {
        run(app, ActionLink, values, "Debug/App.elf", {"Debug/main.o"});
        EXPECT_EQ(libraryNames(builder, "_v4t_a_le"),
                  QString(libraries).arg("libm libc libcpp libdebugio"));
    }

    // The directory is expanded with the project's macros, `$(LibExt)` among them.
    run(app, ActionLink,
        {"link_standard_libraries_directory=$(ProjectName)/l$(LibExt)",
         "arm_library_instruction_set=Thumb"},
        "Debug/App.elf", {"Debug/main.o"});
    EXPECT_EQ(builder.command.value(builder.command.indexOf("Debug/main.o") + 2),
              "App/l_v4t_t_le/libm_v4t_t_le.a");

    // Without the standard libraries only the objects follow; the compatibility mode has no
    // debug I/O, picks a floating point library, starts at 0 and keeps no symbols.
    run(app, ActionLink, {"link_include_standard_libraries=No"}, "Debug/App.elf",
        {"Debug/main.o", "x.a"});
    EXPECT_EQ(builder.command.mid(builder.command.indexOf("--start-group")),
              QStringList({"--start-group", "Debug/main.o", "x.a"}));
    system->setGenerate_1_5_commandLine(true);
    run(app, ActionLink, {"arm_use_gcc_libraries=No"}, "Debug/App.elf", {"Debug/main.o"});
    EXPECT_EQ(libraryNames(builder, "_v4t_a_i_le"),
              "libarmdi libm libc libcpp libkmffp lib_vfprintf_long lib_vfscanf_long");
    EXPECT_TRUE(builder.command.contains("-e0"));
    EXPECT_FALSE(builder.command.join(' ').contains(" -u"));
}

TEST_F(ARMTest, LinkWithAScriptWrittenFromTheMemoryMapOrNone)
{
    // The project's memory map file is named but absent; a generator's error ends the link.
    set(files[3], {"build_exclude_from_build=Yes"}); // app.ld
    run(app, ActionLink, {}, "Debug/App.elf", {"Debug/main.o"});
    EXPECT_EQ(builder.errors,
              QStringList{"memory map file does not exist: " + projectDir + "/map.xml"});
    EXPECT_EQ(events(), "init\ndir @");
    scratch.write("app/map.xml", "not a memory map");
    run(app, ActionLink, {}, "Debug/App.elf", {"Debug/main.o"});
    EXPECT_EQ(builder.errors.size(), 1);
    EXPECT_EQ(events(), "init\ndir @");

    // The script is one of the link's outputs, named after the link's output.
    scratch.write("app/map.xml",
                  memoryMapXml(R"(<MemorySegment name="FLASH" start="0" size="0x10000">
  <ProgramSection name=".text" load="Yes"/></MemorySegment>
)"));
    run(app, ActionLink, {"linker_output_format=bin"}, "Debug/App.elf", {"Debug/main.o"});
    EXPECT_TRUE(builder.messages.contains("Generating linker script"));
    EXPECT_TRUE(firstCommand().contains(" -T@/Debug/App.ld "));
    EXPECT_TRUE(events().contains("doit\noutputs @/Debug/App.map\noutputs @/Debug/App.ld\n"
                                  "command /tc/objcopy"))
        << events().toStdString();

    // A setting that names no file on disk counts as none.
    set(files[4], {"build_exclude_from_build=Yes"}); // map.xml
    run(app, ActionLink, {"linker_memory_map_file=nowhere.xml"}, "Debug/App.elf", {"Debug/main.o"});
    EXPECT_EQ(builder.errors, QStringList{"no linker script or memory map file specified"});
    EXPECT_EQ(events(), "init\ndir @");
}
