#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

/// The example solution whose projects come from the installation's templates, built with
/// the build directory's installation tree and run under QEMU.
class TemplatedFirmware : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString bench = QFileInfo(tidemakeExecutable()).absoluteDir().filePath("..");
        QString missing;
        if (!QFileInfo::exists(bench + "/targets/project_templates.xml") ||
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
            QFile source(files.next());
            ASSERT_TRUE(source.open(QIODevice::ReadOnly));
            work.write(examples.relativeFilePath(source.fileName()), source.readAll());
        }
    }

    /// Builds the solution in `configuration` and runs its firmware on `machine` (QEMU's
    /// options): what the build printed, then what the firmware printed through semihosting.
    QString buildAndRun(const QString &configuration, const QStringList &machine)
    {
        const RunResult build =
            runTidemake({"-config", configuration, "templated.hdp"}, work.path(), settings.path());
        EXPECT_EQ(build.err, "") << configuration.toStdString();
        // Semihosting's console goes to a file; QEMU's own notes vary with what is installed.
        const RunResult run = runProgram(
            "timeout",
            QStringList{"20", "qemu-system-arm"} + machine +
                QStringList{
                    "-nographic", "-semihosting-config", "enable=on,target=native,chardev=console",
                    "-chardev", "file,id=console,path=" + work.file("console.txt"), "-kernel",
                    work.file("app/" + QString(configuration).replace(' ', '/') + "/app.elf")},
            work.path());
        return build.out + QString::fromLatin1(work.read("console.txt")) + run.out +
               (run.exitCode ? "exit status " + QString::number(run.exitCode) : "");
    }

    ScratchDir work;
    ScratchDir settings;
};

/// The lines of a first build and run in `configuration`; `extra` is what only that board's
/// firmware prints.
QString expected(const QString &configuration, const QString &board, const QString &extra)
{
    const QString building = "  Building \"%1\" in configuration \"" + configuration + "\"\n";
    return building.arg("mathlib") +
           "    Compiling statistics.c\n    Compiling crc32.c\n    Archiving mathlib.a\n" +
           building.arg("app") +
           "    Compiling main.c\n    Compiling shapes.cpp\n    Assembling startup.s\n"
           "  Generating linker script\n    Linking app.elf\n"
           "Hello from " +
           board + "\nsum 31, mean 3.875, maximum 9\n" + extra +
           "crc32 cbf43926\ntriangle has area 15\nsquare has area 16\nall checks passed\n";
}

} // namespace

TEST_F(TemplatedFirmware, BuildsAndRunsOnBothBoardsFromTheKitsTemplates)
{
    EXPECT_EQ(buildAndRun("versatilepb Debug", {"-M", "versatilepb", "-cpu", "arm926", "-audiodev",
                                                "none,id=snd0", "-global", "pl041.audiodev=snd0"}),
              expected("versatilepb Debug", "versatilepb", "mean as a double 3.875\n"));
    EXPECT_EQ(buildAndRun("lm3s6965evb Release", {"-M", "lm3s6965evb"}),
              expected("lm3s6965evb Release", "lm3s6965evb", ""));
}
