#include "frontend/tidemakebuilder.h"
#include "support/faketoolchain.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
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
            solutionText("<configuration Name=\"Debug\"/>" +
                         project("app",
                                 "project_type=\"Executable\" project_dependencies=\"lib\""
                                 " linker_memory_map_file=\"map.xml\""
                                 " linker_section_placement_file=\"map.xml\"",
                                 {"main.c", "util.c"}) +
                         project("lib", "project_type=\"Library\"", {"a.c", "b.c", "c.c", "d.c"})));
        work.write("app/map.xml", "<!DOCTYPE Board_Memory_Definition_File>\n<Root name=\"B\">"
                                  "<MemorySegment name=\"RAM\" start=\"0x0\" size=\"0x100\"/>"
                                  "</Root>\n");
    }

    /// A project in directory `name` with `settings` and files `sources`, which it writes.
    QByteArray project(const QByteArray &name, const QByteArray &settings,
                       const QList<QByteArray> &sources)
    {
        QByteArray text = "<project Name=\"" + name +
                          "\"><configuration Name=\"Common\" project_directory=\"" + name + "\" " +
                          settings + "/>";
        for (const QByteArray &source : sources) {
            text += "<file Name=\"" + source + "\" file_name=\"" + source + "\"/>";
            work.write(QString(name + "/" + source), "int x;\n");
        }
        return text + "</project>";
    }

    /// Builds in "Debug" with `options`, each tool taking `delay` seconds.
    RunResult build(const QStringList &options, const QString &delay = "0.2",
                    const QString &failing = QString())
    {
        return runTidemake(QStringList{"-config", "Debug", "-BenchDir", tools.benchDir(), "s.hdp"} +
                               options,
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
        const QString step = object.size() == 3 ? "ar lib.a" : "ld app.elf";
        EXPECT_TRUE(before("cc1 " + object, "as " + object) && before("as " + object, step))
            << object.toStdString();
    }
    EXPECT_TRUE(before("ar lib.a", "ld app.elf"));
    bool overlapped = false;
    for (const FakeToolChain::Run &one : runs)
        for (const FakeToolChain::Run &other : runs)
            overlapped |= &one != &other && one.start < other.end && other.start < one.end;
    EXPECT_TRUE(overlapped) << "nothing ran at once";

    // A group's line is followed by its own commands: the compiler of its file, the assembler
    // and the removal of the compiler's scratch file.
    const QRegularExpression group("^ +Compiling (\\S+)\n +\\S*/cc1 .*/\\1 -o.* (\\S+)\n"
                                   " +\\S*/gcc/bin/as .*\n +rm \\2$",
                                   QRegularExpression::MultilineOption);
    EXPECT_EQ(parallel.out.count(group), 6) << parallel.out.toStdString();

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
    EXPECT_EQ(build({"-j", "2", "-exitstatus"}, "0.2", "as").exitCode, 2);
    const QList<FakeToolChain::Run> runs = tools.takeRuns();
    qint64 firstFailure = std::numeric_limits<qint64>::max();
    for (const FakeToolChain::Run &run : runs)
        if (run.line.startsWith("as "))
            firstFailure = std::min(firstFailure, run.end);
    for (const FakeToolChain::Run &run : runs)
        EXPECT_TRUE(run.start <= firstFailure &&
                    QRegularExpression("^(cc1|as) ").match(run.line).hasMatch())
            << run.line.toStdString();

    ASSERT_EQ(build({"-j", "2"}, "").exitCode, 0);
    EXPECT_EQ(runsByOutput().keys().filter(QRegularExpression("^as ")).size(), 6);
}

TEST_F(ParallelBuild, TheJobsOptionTakesACountOfOneOrMoreAndCapsALargeOne)
{
    const QString notACount = "-j needs a number of commands of 1 or more, not ";
    const QList<std::pair<QStringList, QString>> refused = {
        {{"-j", "0"}, notACount + "'0'"},
        {{"-jx"}, notACount + "'x'"},
        {{"-j"}, "expected argument for option -j"}};
    for (const auto &[options, message] : refused) {
        const RunResult result = build(options, "");
        EXPECT_TRUE(result.exitCode == 1 && result.err.endsWith(": " + message + "\n") &&
                    result.out.isEmpty())
            << result.err.toStdString();
    }
    const long cap = std::min(4 * sysconf(_SC_NPROCESSORS_ONLN), 256L);
    EXPECT_TRUE(build({"-j", "10000", "-verbose"}, "")
                    .out.startsWith("-j 10000 is more than this machine can use: up to " +
                                    QString::number(cap) + " commands run at once\n"));
}

TEST(TidemakeBuilderJobs, PrintsEachSequenceWholeWhenItEndsAndStopsOneThatFails)
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
    }
    std::fclose(out);
    EXPECT_EQ(QString::fromLatin1(text, qsizetype(size)),
              "  quick\n  echo from quick\nfrom quick\n  no-such-program-here\n"
              "  can't execute command \"no-such-program-here\"\n"
              "  slow\n  sh -c sleep 1; echo from slow\nfrom slow\n");
    std::free(text);
    EXPECT_FALSE(QFile::exists(dir.file("never")));
}
