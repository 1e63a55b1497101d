#include "examplefirmware.h"

namespace {

class Firmware : public ExampleFirmware
{
};

const QString resultLines = QStringLiteral("sum 31, mean 3.875, maximum 9\n");
const QString closingLines = QStringLiteral("crc32 cbf43926\n"
                                            "triangle has area 15\n"
                                            "square has area 16\n"
                                            "all checks passed\n");

/// The lines of the staging and combining projects when `images` (".elf", ".bin" and the
/// memory map's ".xml") are copied into `work`'s "dist" tree and its package in
/// `configuration`.
QString distLines(const QString &configuration, const QString &work, const QStringList &images)
{
    const QString directory = QString(configuration).replace(' ', '/');
    QString lines = "  Building \"firmware\" in configuration \"" + configuration + "\"\n";
    for (const QString &image : images) {
        const QString name =
            image == "xml" ? QStringLiteral("memory_map.xml") : QString("app." + image);
        lines += "    Copying " + name + "\n    adding " + work + "/dist/" + directory + "/" +
                 name + " to " + work + "/dist/firmware.hdq(" + directory + "/" + name + ").\n";
    }
    lines += "  Building \"checksums\" in configuration \"" + configuration + "\"\n";
    return images.isEmpty() ? lines : lines + "    Combining checksums\n";
}

/// The lines of a first build of the whole solution in `configuration`.
QString firstBuild(const QString &configuration, const QString &board, const QString &work)
{
    return "  Building \"mathlib\" in configuration \"" + configuration +
           "\"\n"
           "    Compiling statistics.c\n"
           "    Compiling crc32.c\n"
           "    Archiving mathlib.a\n"
           "  Building \"app\" in configuration \"" +
           configuration +
           "\"\n"
           "    Compiling main.c\n"
           "    Compiling shapes.cpp\n"
           "    Assembling " +
           board +
           " startup.s\n"
           "  Generating linker script\n"
           "    Linking app.elf\n" +
           distLines(configuration, work, {"elf", "bin", "xml"});
}

} // namespace

TEST_F(Firmware, BuildsAndRunsOnBothBoards)
{
    // ARM code for the ARM926 board, with the floating point printf and the C library's
    // streams on the target I/O library.
    EXPECT_EQ(build("versatilepb Debug"),
              firstBuild("versatilepb Debug", "versatilepb", work.path()));
    EXPECT_EQ(runFirmware("versatilepb Debug", versatilepb),
              "Hello from versatilepb\n" + resultLines + "mean as a double 3.875\n" + closingLines);

    // Thumb code for the Cortex-M3 board, optimised, with unused sections removed, the
    // integer printf and the C library's streams on the semihosting library.
    EXPECT_EQ(build("lm3s6965evb Release"),
              firstBuild("lm3s6965evb Release", "lm3s6965evb", work.path()));
    EXPECT_EQ(runFirmware("lm3s6965evb Release", lm3s6965evb),
              "Hello from lm3s6965evb\n" + resultLines + closingLines);
    EXPECT_GT(QFileInfo(work.file("app/lm3s6965evb/Release/app.bin")).size(), 1000);

    // The package holds what both builds staged, and the checksums match the copies.
    const RunResult listing = runTidefile({"package", "dist/firmware.hdq"}, work.path());
    EXPECT_EQ(listing.exitCode, 0);
    EXPECT_EQ(listing.out.count('\n'), 6) << listing.out.toStdString();
    EXPECT_TRUE(listing.out.startsWith("versatilepb/Debug/app.elf\t")) << listing.out.toStdString();
    EXPECT_EQ(
        runProgram("sha256sum", {"-c", "lm3s6965evb/Release/SHA256SUMS"}, work.file("dist")).out,
        "lm3s6965evb/Release/app.elf: OK\nlm3s6965evb/Release/app.bin: OK\n");
}

TEST_F(Firmware, RebuildsWhatAHeaderReachesAndCleansUp)
{
    const QString configuration = "lm3s6965evb Debug";
    build(configuration);
    const QString nothing = "  Building \"mathlib\" in configuration \"lm3s6965evb Debug\"\n"
                            "  Building \"app\" in configuration \"lm3s6965evb Debug\"\n";
    const QString nothingStaged = distLines(configuration, work.path(), {});
    // A relinked image is staged again, and its package member and checksums follow.
    const QString restaged = distLines(configuration, work.path(), {"elf", "bin"});
    EXPECT_EQ(build(configuration), nothing + nothingStaged);

    // The compiler's dependency files tell which objects include a header.
    touch("mathlib/statistics.h");
    EXPECT_EQ(build(configuration),
              "  Building \"mathlib\" in configuration \"lm3s6965evb Debug\"\n"
              "    Compiling statistics.c\n"
              "    Archiving mathlib.a\n"
              "  Building \"app\" in configuration \"lm3s6965evb Debug\"\n"
              "    Compiling main.c\n"
              "    Linking app.elf\n" +
                  restaged);
    touch("app/shapes.h");
    EXPECT_EQ(build(configuration), nothing +
                                        "    Compiling main.c\n"
                                        "    Compiling shapes.cpp\n"
                                        "    Linking app.elf\n" +
                                        restaged);
    EXPECT_EQ(build(configuration), nothing + nothingStaged);
    EXPECT_EQ(runFirmware(configuration, lm3s6965evb),
              "Hello from lm3s6965evb\n" + resultLines + closingLines);

    // Cleaning removes the objects, libraries, executables and staged copies, runs no tool
    // and leaves the package as it is.
    const QStringList made = {".o", ".a", ".elf", "SHA256SUMS"};
    EXPECT_EQ(filesEndingIn(made).size(), 9);
    EXPECT_EQ(build(configuration, {"-clean"}),
              "  Cleaning \"mathlib\" in configuration \"lm3s6965evb Debug\"\n"
              "  Cleaning \"app\" in configuration \"lm3s6965evb Debug\"\n"
              "  Cleaning \"firmware\" in configuration \"lm3s6965evb Debug\"\n"
              "  Cleaning \"checksums\" in configuration \"lm3s6965evb Debug\"\n");
    EXPECT_EQ(filesEndingIn(made), QStringList());
    EXPECT_EQ(filesEndingIn({".hdq"}), QStringList{"dist/firmware.hdq"});
}

// A setting the generated linker script is made from reaches the firmware without -rebuild:
// the script says the new size and the link runs again, and nothing is compiled.
TEST_F(Firmware, AChangedStackSizeRewritesTheScriptAndRelinks)
{
    const QString configuration = "versatilepb Debug";
    build(configuration);
    const QByteArray solution = work.read("examples.hdp");
    ASSERT_TRUE(solution.contains("arm_linker_stack_size=\"4096\""));
    work.write("examples.hdp", QByteArray(solution).replace("arm_linker_stack_size=\"4096\"",
                                                            "arm_linker_stack_size=\"2048\""));
    const QString rebuilt = build(configuration);
    EXPECT_TRUE(rebuilt.contains("  Generating linker script\n    Linking app.elf\n"))
        << rebuilt.toStdString();
    EXPECT_FALSE(rebuilt.contains("Compiling")) << rebuilt.toStdString();
    EXPECT_TRUE(work.read("app/versatilepb/Debug/app.ld").contains("__STACKSIZE__ = 2048;"));
    EXPECT_TRUE(runFirmware(configuration, versatilepb).endsWith(closingLines));
}
