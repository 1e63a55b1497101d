#pragma once

#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QStandardPaths>

/// QEMU's options for the ARM926 board: its sound chip gets a silent back end, or QEMU probes
/// for audio modules and complains where the GUI package is not installed.
inline const QStringList versatilepb = {"-M",      "versatilepb",        "-cpu",
                                        "arm926",  "-audiodev",          "none,id=snd0",
                                        "-global", "pl041.audiodev=snd0"};
/// QEMU's options for the Cortex-M3 board.
inline const QStringList lm3s6965evb = {"-M", "lm3s6965evb"};

/// A copy of examples/ built by the program with the installation tree of the build directory
/// (the real cross tool chain, libraries, board files and templates), and its firmware run
/// under QEMU. Skipped where the tree or QEMU is missing, failed there under CI.
class ExampleFirmware : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QString bench = QFileInfo(tidemakeExecutable()).absoluteDir().filePath("..");
        QString missing;
        if (!QFileInfo(bench + "/gcc/bin/cc1").isExecutable() ||
            !QFileInfo::exists(bench + "/lib/libc_v7m_t_le.a") ||
            !QFileInfo::exists(bench + "/targets/project_templates.xml"))
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

    /// Builds `solution` in `configuration` with `options` added; the program's standard
    /// output. Nothing may come on its standard error.
    QString build(const QString &configuration, const QStringList &options = {},
                  const QString &solution = QStringLiteral("examples.hdp"))
    {
        const RunResult run =
            runTidemake(QStringList{"-config", configuration} + options + QStringList{solution},
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
