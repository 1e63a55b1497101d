#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <csignal>

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
    struct Case
    {
        QString jobs;
        QList<int> sent;
        QString stubborn;
        int status;
    };
    const Case cases[] = {{"1", {SIGINT}, "", 130},
                          {"1", {SIGTERM}, "", 143},
                          {"1", {SIGTERM, SIGINT}, "1", 143},
                          {"2", {SIGINT, SIGTERM}, "1", 130}};
    for (const Case &c : cases) {
        QFile::remove(work.file("marks"));
        const std::unique_ptr<QProcess> process = startTidemake(
            {"-j", c.jobs, "-config", "Debug", "-BenchDir", work.file("bench"), "s.hdp"},
            work.path(), settings.path(),
            {"MARKS=" + work.file("marks"), "STUBBORN=" + c.stubborn});
        QElapsedTimer timer;
        timer.start();
        QStringList halfOutputs;
        while (halfOutputs.size() < c.jobs.toInt() && timer.elapsed() < 20000) {
            QThread::msleep(20);
            halfOutputs =
                QString::fromLocal8Bit(work.read("marks")).split('\n', Qt::SkipEmptyParts);
        }
        ASSERT_EQ(halfOutputs.size(), c.jobs.toInt()) << c.status;
        for (const int signal : c.sent) {
            ::kill(pid_t(process->processId()), signal);
            QThread::msleep(200);
        }
        ASSERT_TRUE(process->waitForFinished(20000)) << c.status;
        EXPECT_EQ(process->exitCode(), c.status);
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
