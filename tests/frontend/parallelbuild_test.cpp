#include "frontend/tidemakebuilder.h"
#include "support/faketoolchain.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QList>
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

/// File elements named as their files.
QByteArray files(const QList<QByteArray> &names)
{
    QByteArray elements;
    for (const QByteArray &name : names)
        elements += "<file Name=\"" + name + "\" file_name=\"" + name + "\"/>";
    return elements;
}

/// An application of two files on a library of four, linked with a script from a memory map.
class ParallelBuild : public ::testing::Test
{
protected:
    ParallelBuild()
    {
        work.write("s.hdp", solutionText("<configuration Name=\"Debug\"/><project Name=\"app\">"
                                         "<configuration Name=\"Common\" project_directory=\"app\""
                                         " project_type=\"Executable\" project_dependencies=\"lib\""
                                         " linker_memory_map_file=\"map.xml\""
                                         " linker_section_placement_file=\"map.xml\"/>" +
                                         files({"main.c", "util.c"}) +
                                         "</project><project Name=\"lib\">"
                                         "<configuration Name=\"Common\" project_directory=\"lib\""
                                         " project_type=\"Library\"/>" +
                                         files({"a.c", "b.c", "c.c", "d.c"}) + "</project>"));
        for (const char *source :
             {"app/main.c", "app/util.c", "lib/a.c", "lib/b.c", "lib/c.c", "lib/d.c"})
            work.write(source, "int x;\n");
        work.write("app/map.xml", "<!DOCTYPE Board_Memory_Definition_File>\n<Root name=\"B\">"
                                  "<MemorySegment name=\"RAM\" start=\"0x0\" size=\"0x100\"/>"
                                  "</Root>\n");
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

} // namespace

TEST_F(ParallelBuild, KeepsEveryDependencyPrintsEachSequenceWholeAndRunsWhatASerialBuildRuns)
{
    const RunResult parallel = build({"-j", "4", "-echo"});
    ASSERT_EQ(parallel.exitCode, 0) << parallel.err.toStdString();
    const QMap<QString, FakeToolChain::Run> runs = runsByOutput();
    QStringList ran = tools.take();
    ASSERT_EQ(runs.size(), 14) << runs.keys().join(", ").toStdString();
    const auto before = [&](const QString &first, const QString &second) {
        return runs.value(first).end <= runs.value(second).start;
    };
    for (const QString object : {"a.o", "b.o", "c.o", "d.o", "main.o", "util.o"}) {
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
        const QString compiler = lines.value(i + 1).trimmed();
        EXPECT_TRUE(compiler.contains("/cc1 ") && compiler.contains("/" + file + " -o "))
            << compiler.toStdString();
        EXPECT_TRUE(lines.value(i + 2).contains("/gcc/bin/as "));
        EXPECT_EQ(lines.value(i + 3).trimmed(), "rm " + compiler.section(' ', -1));
    }
    EXPECT_EQ(groups, 6);

    // The same commands as a build that runs one at a time, and with -j 1 the same output.
    const RunResult serial = build({"-rebuild", "-echo", "-verbose"}, "");
    QStringList serialRan = tools.take();
    ran.sort();
    serialRan.sort();
    EXPECT_EQ(ran, serialRan);
    const RunResult one = build({"-rebuild", "-echo", "-verbose", "-j", "1"}, "");
    const QRegularExpression scratch("/tmp/file\\w{6}");
    EXPECT_EQ(QString(one.out).replace(scratch, "TMP"),
              QString(serial.out).replace(scratch, "TMP"));
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
    work.write("s.hdp",
               solutionText("<configuration Name=\"Debug\"/><project Name=\"App\">"
                            "<configuration Name=\"Common\" project_type=\"Executable\"/>" +
                            files({"a.c", "b.c"}) + "</project>"));
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
        return runTidemake(QStringList{"-config", "Debug", "s.hdp"} + options, work.path(),
                           settings.path());
    };
    const QList<std::pair<QStringList, QString>> refused = {
        {{"-j", "0"}, "-j needs a number of commands of 1 or more, not '0'"},
        {{"-j", "-3"}, "-j needs a number of commands of 1 or more, not '-3'"},
        {{"-jx"}, "-j needs a number of commands of 1 or more, not 'x'"},
        {{"-j"}, "expected argument for option -j"}};
    for (const auto &[options, message] : refused) {
        const RunResult result = run(options);
        EXPECT_EQ(result.exitCode, 1) << options.join(' ').toStdString();
        EXPECT_TRUE(result.err.endsWith(": " + message + "\n") && result.out.isEmpty())
            << result.err.toStdString();
    }
    const long cap = std::min(4 * sysconf(_SC_NPROCESSORS_ONLN), 256L);
    EXPECT_TRUE(run({"-j", "10000", "-verbose"})
                    .out.startsWith("-j 10000 is more than this machine can use: up to " +
                                    QString::number(cap) + " commands run at once\n"));
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
