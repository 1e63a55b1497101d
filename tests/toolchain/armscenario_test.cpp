#include "support/faketoolchain.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

namespace {

const QByteArray solution = solutionText(R"(  <configuration Name="Debug"/>
  <project Name="App">
    <configuration Name="Common" project_directory="app" project_type="Executable"
      project_dependencies="Lib" linker_output_format="bin" c_preprocessor_definitions="V=1"/>
    <file Name="main.c" file_name="main.c"/>
    <file Name="start.s" file_name="start.s"/>
    <file Name="app.ld" file_name="app.ld">
      <configuration Name="Common" file_type="Linker Script"/>
    </file>
  </project>
  <project Name="Lib">
    <configuration Name="Common" project_directory="lib" project_type="Library"
      arm_instruction_set="Thumb"/>
    <file Name="lib.c" file_name="lib.c"/>
  </project>
)");

} // namespace

// A solution of an application and its library, built by the program with a tool chain of
// recording scripts in the installation's tool directory.
TEST(ARMScenario, BuildsWithTheInstallationsToolsAndStopsAtAFailure)
{
    ScratchDir work;
    ScratchDir settings;
    FakeToolChain tools(work);
    work.write("s.hdp", solution);
    work.write("app/main.c", "int main(void) { return 0; }\n");
    work.write("app/start.s", "  .global reset_handler\n");
    work.write("app/app.ld", "SECTIONS {}\n");
    work.write("lib/lib.c", "int f(void) { return 1; }\n");
    // Runs the program in "Debug" with `options` added, the tools named in `failing` failing.
    auto build = [&](const QStringList &options = {}, const QString &failing = QString()) {
        return runTidemake(QStringList{"-config", "Debug", "-BenchDir", tools.benchDir()} +
                               options + QStringList{"s.hdp"},
                           work.path(), settings.path(), tools.environment(failing));
    };

    const RunResult first = build();
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(first.out, "  Building \"Lib\" in configuration \"Debug\"\n"
                         "    Compiling lib.c\n"
                         "    Archiving Lib.a\n"
                         "  Building \"App\" in configuration \"Debug\"\n"
                         "    Compiling main.c\n"
                         "    Assembling start.s\n"
                         "    Linking App.elf\n")
        << first.err.toStdString();
    const QStringList log = tools.take();
    EXPECT_EQ(QStringList(log).replaceInStrings(QRegularExpression(" .*"), QString()),
              QStringList({"cc1", "as", "ar", "cc1", "as", "cc1", "as", "ld", "objcopy"}));
    // The library's own instruction set, the application's definitions, the whole link.
    EXPECT_TRUE(log.value(0).contains(" -march=armv4t -mthumb -mthumb-interwork "));
    EXPECT_TRUE(log.value(5).contains(" -isystem@/bench/include -I. -D__ARM_ARCH_4T__ "
                                      "-D__HALDEN_ARM -DV=1 -MD Debug/start.d "));
    QString link = "ld -X -nostdlib -ereset_handler --omagic --fatal-warnings -EL -T@/app/app.ld "
                   "-Map Debug/App.map -u_vectors -o Debug/App.elf --start-group Debug/main.o "
                   "Debug/start.o @/lib/Debug/Lib.a";
    for (const char *name : {"armdi", "m", "c", "cpp", "debugio", "c_targetio_impl",
                             "_vfprintf_long", "_vfscanf_long"})
        link += QString(" @/bench/lib/lib%1_v4t_a_le.a").arg(name);
    EXPECT_EQ(log.value(7), link);
    // The scratch assembly files are gone; what the tools made stays.
    EXPECT_TRUE(QDir(work.file("app/Debug/tmp")).isEmpty());
    EXPECT_TRUE(QFile::exists(work.file("app/Debug/App.bin")));

    // Nothing changed: nothing runs. Then a failing assembler stops the build before the link.
    EXPECT_EQ(build().out, "  Building \"Lib\" in configuration \"Debug\"\n"
                           "  Building \"App\" in configuration \"Debug\"\n");
    EXPECT_EQ(tools.take(), QStringList());
    const RunResult failed = build({"-rebuild", "-project", "App"}, "as");
    EXPECT_EQ(failed.exitCode, 0);
    EXPECT_EQ(failed.out, "  Building \"Lib\" in configuration \"Debug\"\n"
                          "    Compiling lib.c\n");
    EXPECT_EQ(tools.take().size(), 2);
}
