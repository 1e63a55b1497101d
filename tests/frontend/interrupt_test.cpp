#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <csignal>
#include <tuple>

// An application of two files whose compiler writes half its output, adds that file's name to
// $MARKS and hangs; with $STUBBORN set it ignores SIGTERM. The build is signalled once every
// compiler it runs at once has written.
TEST(Interrupt, StopsEveryRunningToolRemovesWhatEachWasMakingAndExitsWithTheSignal)
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
    work.write("s.hdp", solutionText("<configuration Name=\"Debug\"/><project Name=\"App\">"
                                     "<configuration Name=\"Common\" project_type=\"Executable\"/>"
                                     "<file Name=\"a.c\" file_name=\"a.c\"/>"
                                     "<file Name=\"b.c\" file_name=\"b.c\"/></project>"));
    work.write("a.c", "int a;\n");
    work.write("b.c", "int b;\n");

    // The status is that of the first signal; a second one kills a tool that ignored the first.
    // By case: the commands at once, the signals, $STUBBORN and the status.
    const QList<std::tuple<QString, QList<int>, QString, int>> cases = {
        {"1", {SIGINT}, "", 130},
        {"1", {SIGTERM}, "", 143},
        {"1", {SIGTERM, SIGINT}, "1", 143},
        {"2", {SIGINT, SIGTERM}, "1", 130}};
    for (const auto &[jobs, sent, stubborn, status] : cases) {
        QFile::remove(work.file("marks"));
        const std::unique_ptr<QProcess> process = startTidemake(
            {"-j", jobs, "-config", "Debug", "-BenchDir", work.file("bench"), "s.hdp"}, work.path(),
            settings.path(), {"MARKS=" + work.file("marks"), "STUBBORN=" + stubborn});
        QElapsedTimer timer;
        timer.start();
        QStringList halfOutputs;
        while (halfOutputs.size() < jobs.toInt() && timer.elapsed() < 20000) {
            QThread::msleep(20);
            halfOutputs =
                QString::fromLocal8Bit(work.read("marks")).split('\n', Qt::SkipEmptyParts);
        }
        ASSERT_EQ(halfOutputs.size(), jobs.toInt()) << status;
        for (const int signal : sent) {
            ::kill(pid_t(process->processId()), signal);
            QThread::msleep(200);
        }
        ASSERT_TRUE(process->waitForFinished(20000)) << status;
        EXPECT_EQ(process->exitCode(), status);
        // Nothing runs after the compilers, and their end by signal is not reported as a failure.
        const QString out = QString::fromLatin1(process->readAllStandardOutput());
        const QStringList compiling = out.split('\n').filter("    Compiling ");
        EXPECT_EQ(compiling.size(), halfOutputs.size());
        EXPECT_EQ(out, "  Building \"App\" in configuration \"Debug\"\n" + compiling.join('\n') +
                           "\ninterrupted\n");
        for (const QString &half : halfOutputs)
            EXPECT_FALSE(QFile::exists(half)) << half.toStdString();
    }
}
