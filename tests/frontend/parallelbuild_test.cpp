#include "frontend/tidemakebuilder.h"
#include "support/faketoolchain.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <tuple>
#include <unistd.h>

namespace {

/// An application of two files on a library of four, linked with a script from a memory map.
class ParallelBuild : public ::testing::Test
{
protected:
    ParallelBuild()
    {
        work.write(
            "s.hdp",
            solutionText(
                "<configuration Name=\"Debug\"/>"
                "<project Name=\"app\"><configuration Name=\"Common\""
                " project_directory=\"app\" project_type=\"Executable\""
                " project_dependencies=\"lib\" linker_memory_map_file=\"map.xml\""
                " linker_section_placement_file=\"placement.xml\"/>"
                "<file Name=\"main.c\" file_name=\"main.c\"/><file Name=\"util.c\" "
                "file_name=\"util.c\"/></project>"
                "<project Name=\"lib\"><configuration Name=\"Common\""
                " project_directory=\"lib\" project_type=\"Library\"/>"
                "<file Name=\"a.c\" file_name=\"a.c\"/><file Name=\"b.c\" file_name=\"b.c\"/>"
                "<file Name=\"c.c\" file_name=\"c.c\"/><file Name=\"d.c\" "
                "file_name=\"d.c\"/></project>"));
        for (const char *source :
             {"app/main.c", "app/util.c", "lib/a.c", "lib/b.c", "lib/c.c", "lib/d.c"})
            work.write(source, "int x;\n");
        work.write("app/map.xml", "<!DOCTYPE Board_Memory_Definition_File>\n<Root name=\"B\">"
                                  "<MemorySegment name=\"RAM\" start=\"0x0\" size=\"0x10000\"/>"
                                  "</Root>\n");
        work.write("app/placement.xml", "<!DOCTYPE Linker_Placement_File>\n<Root name=\"B\">"
                                        "<MemorySegment name=\"RAM\">"
                                        "<ProgramSection name=\".text\" load=\"Yes\"/>"
                                        "</MemorySegment></Root>\n");
    }

    /// Builds in "Debug" with `options`, each tool taking `delay` seconds.
    RunResult build(const QStringList &options, const QString &delay = "0.2",
                    const QString &failing = QString())
    {
        return runTidemake(QStringList{"-config", "Debug", "-BenchDir", tools.benchDir()} +
                               options + QStringList{"s.hdp"},
                           work.path(), settings.path(), tools.timedEnvironment(failing, delay));
    }

    /// The timed runs of the last build, by tool and the name of what each made: "cc1 a.o",
    /// "as a.o", "ar lib.a", "ld app.elf".
    QMap<QString, FakeToolChain::Run> runsByOutput()
    {
        QMap<QString, FakeToolChain::Run> runs;
        for (const FakeToolChain::Run &run : tools.takeRuns()) {
            const QStringList words = run.line.split(' ');
            const QString option = words[0] == "cc1" ? "-MQ" : words[0] == "ar" ? "-rcs" : "-o";
            runs.insert(
                words[0] + " " + QFileInfo(words.value(words.indexOf(option) + 1)).fileName(), run);
        }
        return runs;
    }

    ScratchDir work;
    ScratchDir settings;
    FakeToolChain tools{work};
};

const char *const objects[] = {"a.o", "b.o", "c.o", "d.o", "main.o", "util.o"};

} // namespace

TEST_F(ParallelBuild, KeepsEveryDependencyAndPrintsEachSequenceWhole)
{
    const RunResult parallel = build({"-j", "4", "-echo"});
    ASSERT_EQ(parallel.exitCode, 0) << parallel.err.toStdString();
    const QMap<QString, FakeToolChain::Run> runs = runsByOutput();
    QStringList ran = tools.take();
    ASSERT_EQ(runs.size(), 14) << runs.keys().join(", ").toStdString();

    const auto before = [&](const QString &first, const QString &second) {
        return runs.value(first).end <= runs.value(second).start;
    };
    for (const QString object : objects) {
        EXPECT_TRUE(before("cc1 " + object, "as " + object)) << object.toStdString();
        const QString step = object.size() == 3 ? "ar lib.a" : "ld app.elf";
        EXPECT_TRUE(before("as " + object, step)) << object.toStdString();
    }
    EXPECT_TRUE(before("ar lib.a", "ld app.elf"));
    bool overlapped = false;
    for (const FakeToolChain::Run &one : runs)
        for (const FakeToolChain::Run &other : runs)
            overlapped |= &one != &other && one.start < other.end && other.start < one.end;
    EXPECT_TRUE(overlapped) << "nothing ran at once";

    // A group's line is followed by its own commands: the compiler of its file, the assembler
    // and the removal of the compiler's scratch file.
    const QStringList lines = parallel.out.split('\n');
    int groups = 0;
    for (int i = 0; i < lines.size(); ++i) {
        const QString file = QRegularExpression("^ +Compiling (\\S+)$").match(lines[i]).captured(1);
        if (file.isEmpty())
            continue;
        ++groups;
        const QStringList compiler = lines.value(i + 1).trimmed().split(' ');
        EXPECT_TRUE(compiler[0].endsWith("/cc1") &&
                    lines.value(i + 1).contains("/" + file + " -o "))
            << lines.value(i + 1).toStdString();
        EXPECT_TRUE(lines.value(i + 2).trimmed().startsWith(tools.benchDir() + "/gcc/bin/as "));
        EXPECT_EQ(lines.value(i + 3).trimmed(), "rm " + compiler.last());
    }
    EXPECT_EQ(groups, 6);

    // The same commands as a build that runs one at a time.
    ASSERT_EQ(build({"-rebuild"}, "").exitCode, 0);
    QStringList serial = tools.take();
    ran.sort();
    serial.sort();
    EXPECT_EQ(ran, serial);
}

TEST_F(ParallelBuild, OneJobPrintsExactlyWhatTheSerialBuildPrints)
{
    ASSERT_EQ(build({}, "").exitCode, 0);
    const QStringList options = {"-rebuild", "-echo", "-verbose"};
    const RunResult serial = build(options, "");
    const RunResult one = build(options + QStringList{"-j", "1"}, "");
    // Scratch files have a fresh name in each build.
    const QRegularExpression scratch("/tmp/file\\w{6}");
    EXPECT_EQ(QString(one.out).replace(scratch, "TMP"),
              QString(serial.out).replace(scratch, "TMP"));
    EXPECT_TRUE(serial.out.contains("Archiving")) << serial.out.toStdString();
}

// The assembler makes its object and then fails, so that a record of that object as made would
// keep it from being rebuilt.
TEST_F(ParallelBuild, AFailureStartsNothingNewAndForgetsWhatFailed)
{
    const RunResult failed = build({"-j", "2", "-exitstatus"}, "0.2", "as");
    EXPECT_EQ(failed.exitCode, 2);
    const QList<FakeToolChain::Run> runs = tools.takeRuns();
    qint64 firstFailure = std::numeric_limits<qint64>::max();
    for (const FakeToolChain::Run &run : runs) {
        if (run.line.startsWith("as "))
            firstFailure = std::min(firstFailure, run.end);
    }
    for (const FakeToolChain::Run &run : runs) {
        EXPECT_LE(run.start, firstFailure) << run.line.toStdString();
        EXPECT_TRUE(run.line.startsWith("cc1 ") || run.line.startsWith("as "))
            << run.line.toStdString();
    }

    ASSERT_EQ(build({"-j", "2"}, "").exitCode, 0);
    const QStringList assembled = runsByOutput().keys().filter(QRegularExpression("^as "));
    EXPECT_EQ(assembled.size(), 6) << assembled.join(", ").toStdString();
}

// Two compilers that hang once they have written half their output; with $STUBBORN set they
// ignore SIGTERM.
TEST(ParallelInterrupt, EndsEveryRunningToolAndRemovesWhatEachWasMaking)
{
    ScratchDir work;
    ScratchDir settings;
    const QString cc1 = work.write("bench/gcc/bin/cc1", R"(#!/bin/sh
[ -n "$STUBBORN" ] && trap '' TERM
for arg in "$@"; do [ "$prev" = -o ] && out=$arg; prev=$arg; done
printf half > "$out" && echo "$out" >> "$MARKS"
exec sleep 60
)");
    QFile::setPermissions(cc1, QFile::permissions(cc1) | QFileDevice::ExeOwner);
    work.write(
        "s.hdp",
        solutionText("<configuration Name=\"Debug\"/><project Name=\"App\">"
                     "<configuration Name=\"Common\" project_type=\"Executable\"/>"
                     "<file Name=\"a.c\" file_name=\"a.c\"/><file Name=\"b.c\" file_name=\"b.c\"/>"
                     "</project>"));
    work.write("a.c", "int a;\n");
    work.write("b.c", "int b;\n");

    const QList<std::tuple<QList<int>, QString, int>> cases = {{{SIGTERM}, "", 143},
                                                               {{SIGINT, SIGTERM}, "1", 130}};
    for (const auto &[sent, stubborn, status] : cases) {
        QFile::remove(work.file("marks"));
        const std::unique_ptr<QProcess> process = startTidemake(
            {"-j", "2", "-config", "Debug", "-BenchDir", work.file("bench"), "s.hdp"}, work.path(),
            settings.path(), {"MARKS=" + work.file("marks"), "STUBBORN=" + stubborn});
        QElapsedTimer timer;
        timer.start();
        QStringList halfOutputs;
        while (halfOutputs.size() < 2 && timer.elapsed() < 20000) {
            QThread::msleep(20);
            halfOutputs =
                QString::fromLocal8Bit(work.read("marks")).split('\n', Qt::SkipEmptyParts);
        }
        ASSERT_EQ(halfOutputs.size(), 2) << status;
        for (const int signal : sent) {
            ::kill(pid_t(process->processId()), signal);
            QThread::msleep(200);
        }
        ASSERT_TRUE(process->waitForFinished(20000)) << status;
        EXPECT_EQ(process->exitCode(), status);
        const QString out = QString::fromLatin1(process->readAllStandardOutput());
        EXPECT_TRUE(out.contains("    Compiling a.c\n") && out.contains("    Compiling b.c\n") &&
                    out.endsWith("\ninterrupted\n"))
            << out.toStdString();
        for (const QString &half : halfOutputs)
            EXPECT_FALSE(QFile::exists(half)) << half.toStdString();
    }
}

TEST(JobsOption, TakesACountOfOneOrMoreAndCapsALargeOne)
{
    ScratchDir work;
    ScratchDir settings;
    work.write("s.hdp", solutionText("<configuration Name=\"Debug\"/><project Name=\"App\">"
                                     "<configuration Name=\"Common\" project_type=\"Object file\"/>"
                                     "</project>"));
    const auto run = [&](const QStringList &options) {
        return runTidemake(QStringList{"-config", "Debug"} + options + QStringList{"s.hdp"},
                           work.path(), settings.path());
    };
    const QList<std::pair<QStringList, QString>> refused = {
        {{"-j", "0"}, "-j needs a number of commands of 1 or more, not '0'"},
        {{"-j", "-3"}, "-j needs a number of commands of 1 or more, not '-3'"},
        {{"-jx"}, "-j needs a number of commands of 1 or more, not 'x'"},
        {{"-j", "4x"}, "-j needs a number of commands of 1 or more, not '4x'"}};
    for (const auto &[options, message] : refused) {
        const RunResult result = run(options);
        EXPECT_EQ(result.exitCode, 1) << options.join(' ').toStdString();
        EXPECT_TRUE(result.err.endsWith(": " + message + "\n")) << result.err.toStdString();
        EXPECT_EQ(result.out, "");
    }
    const RunResult missing =
        runTidemake({"-config", "Debug", "s.hdp", "-j"}, work.path(), settings.path());
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.endsWith(": expected argument for option -j\n"))
        << missing.err.toStdString();

    EXPECT_EQ(run({"-j3"}).exitCode, 0);
    const long cap = std::min(4 * sysconf(_SC_NPROCESSORS_ONLN), 256L);
    const RunResult capped = run({"-j", "10000", "-verbose"});
    EXPECT_EQ(capped.exitCode, 0);
    EXPECT_TRUE(capped.out.startsWith("-j 10000 is more than this machine can use: up to " +
                                      QString::number(cap) + " commands run at once\n"))
        << capped.out.toStdString();
}

TEST(TidemakeBuilderJobs, PrintsEachSequenceWholeWhenItEndsAndStartsNoneAfterAFailure)
{
    ScratchDir dir;
    char *text = nullptr;
    size_t size = 0;
    FILE *out = open_memstream(&text, &size);
    {
        TidemakeBuilder builder(true, false, out, 2);
        const auto sequence = [&](const char *heading, const QList<QStringList> &commands) {
            builder.beginGroup(nullptr, heading, false);
            for (const QStringList &command : commands) {
                builder.setCommand(command);
                builder.doit();
            }
            builder.endGroup(nullptr);
        };
        sequence("slow", {{"sh", "-c", "sleep 1; echo from slow"}});
        sequence("quick",
                 {{"echo", "from quick"}, {"no-such-program-here"}, {"touch", dir.file("never")}});
        builder.wait();
        EXPECT_TRUE(builder.failed());
        sequence("after", {{"touch", dir.file("after")}});
    }
    std::fclose(out);
    EXPECT_EQ(QString::fromLatin1(text, qsizetype(size)),
              "  quick\n  echo from quick\nfrom quick\n  no-such-program-here\n"
              "  can't execute command \"no-such-program-here\"\n"
              "  slow\n  sh -c sleep 1; echo from slow\nfrom slow\n");
    std::free(text);
    EXPECT_FALSE(QFile::exists(dir.file("never")));
    EXPECT_FALSE(QFile::exists(dir.file("after")));
}
