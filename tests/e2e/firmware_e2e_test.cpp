#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QStandardPaths>

#include <ostream>

namespace {

/// The example solution built by the program with the installation tree of the build directory
/// (the real cross tool chain, libraries and board files), and its firmware run under QEMU.
class Firmware : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString bench = QFileInfo(tidemakeExecutable()).absoluteDir().filePath("..");
        QString missing;
        if (!QFileInfo(bench + "/gcc/bin/cc1").isExecutable() ||
            !QFileInfo::exists(bench + "/lib/libc_v7m_t_le.a"))
            missing = "the installation tree in " + QDir::cleanPath(bench) +
                      " (configure with arm-none-eabi-gcc installed: scripts/setup.sh)";
        else if (QStandardPaths::findExecutable("qemu-system-arm").isEmpty())
            missing = "qemu-system-arm (scripts/setup.sh installs it)";
        if (!missing.isEmpty()) {
            // The CI machine installs everything first, so there a gap is a failure.
            if (!qEnvironmentVariableIsEmpty("CI"))
                FAIL() << "missing " << missing.toStdString();
            GTEST_SKIP() << "missing " << missing.toStdString();
        }

        const QDir examples(QStringLiteral(TIDEMAKE_TEST_SOURCE_DIR "/../examples"));
        QDirIterator files(examples.path(), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            QFile source(file);
            ASSERT_TRUE(source.open(QIODevice::ReadOnly)) << file.toStdString();
            work.write(examples.relativeFilePath(file), source.readAll());
        }
    }

    /// Builds the example solution in `configuration` with `options` added; the program's
    /// standard output. Nothing may come on its standard error.
    QString build(const QString &configuration, const QStringList &options = {})
    {
        const RunResult run = runTidemake(QStringList{"-config", configuration} + options +
                                              QStringList{"examples.hdp"},
                                          work.path(), settings.path());
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.err, "") << configuration.toStdString();
        return run.out;
    }

    /// Runs the firmware of `configuration` under QEMU on `machine` (its QEMU options); what it
    /// printed through semihosting, or the exit status and everything if it failed.
    QString runFirmware(const QString &configuration, const QStringList &machine)
    {
        const QString elf = "app/" + QString(configuration).replace(' ', '/') + "/app.elf";
        // Semihosting's console goes to a file of its own and librdimon's ":tt" to standard
        // output; standard error is QEMU's, whose notes vary with the packages installed.
        const QString console = work.file("console.txt");
        QFile::remove(console);
        const RunResult run = runProgram(
            "timeout",
            QStringList{"20", "qemu-system-arm"} + machine +
                QStringList{"-nographic", "-semihosting-config",
                            "enable=on,target=native,chardev=console", "-chardev",
                            "file,id=console,path=" + console, "-kernel", work.file(elf)},
            work.path());
        const QString output = QString::fromLatin1(work.read("console.txt")) + run.out;
        if (run.exitCode != 0)
            return "exit status " + QString::number(run.exitCode) + ": " + output + run.err;
        return output;
    }

    /// Writes `relative` again as it is, which makes it newer than everything built so far:
    /// file times are compared to the millisecond.
    void touch(const QString &relative) { work.write(relative, work.read(relative)); }

    /// The files of the work directory whose names end in one of `suffixes`.
    QStringList filesEndingIn(const QStringList &suffixes)
    {
        QStringList found;
        QDirIterator files(work.path(), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            for (const QString &suffix : suffixes)
                if (file.endsWith(suffix))
                    found << QDir(work.path()).relativeFilePath(file);
        }
        return found;
    }

    ScratchDir work;
    ScratchDir settings;
};

/// QEMU's options for the ARM926 board: its sound chip gets a silent back end, or QEMU probes
/// for audio modules and complains where the GUI package is not installed.
const QStringList versatilepb = {"-M", "versatilepb", "-cpu", "arm926", "-audiodev",
                                 "none,id=snd0", "-global", "pl041.audiodev=snd0"};

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
        const QString name = image == "xml" ? "memory_map.xml" : "app." + image;
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
    EXPECT_EQ(runFirmware("lm3s6965evb Release", {"-M", "lm3s6965evb"}),
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
    EXPECT_EQ(runFirmware(configuration, {"-M", "lm3s6965evb"}),
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
