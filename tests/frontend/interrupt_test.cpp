#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <csignal>
#include <tuple>

namespace {

/// A compiler that writes half of the file after "-o", names that file in $MARK and sleeps;
/// with $STUBBORN set it ignores SIGTERM.
const QByteArray slowCompiler = R"(#!/bin/sh
[ -n "$STUBBORN" ] && trap '' TERM
for arg in "$@"; do [ "$prev" = -o ] && out=$arg; prev=$arg; done
printf half > "$out" && echo "$out" > "$MARK.new" && mv "$MARK.new" "$MARK"
exec sleep 60
)";

} // namespace

// A one-file application whose compiler hangs is signalled once the compiler has written half
// its output.
TEST(Interrupt, StopsTheToolRemovesItsOutputAndExitsWithTheSignal)
{
    ScratchDir work;
    ScratchDir settings;
    const QString cc1 = work.write("bench/gcc/bin/cc1", slowCompiler);
    QFile::setPermissions(cc1, QFile::permissions(cc1) | QFileDevice::ExeOwner);
    work.write("s.hdp", solutionText("<configuration Name=\"Debug\"/><project Name=\"App\">"
                                     "<configuration Name=\"Common\" project_type=\"Executable\"/>"
                                     "<file Name=\"main.c\" file_name=\"main.c\"/></project>"));
    work.write("main.c", "int main(void) { return 0; }\n");

    // The status is that of the first signal; a second one kills a tool that ignored the first.
    const QList<std::tuple<QList<int>, QString, int>> cases = {
        {{SIGINT}, "", 130}, {{SIGTERM}, "", 143}, {{SIGTERM, SIGINT}, "1", 143}};
    for (const auto &[sent, stubborn, status] : cases) {
        QFile::remove(work.file("mark"));
        const std::unique_ptr<QProcess> process = startTidemake(
            {"-config", "Debug", "-BenchDir", work.file("bench"), "s.hdp"}, work.path(),
            settings.path(), {"MARK=" + work.file("mark"), "STUBBORN=" + stubborn});
        QElapsedTimer timer;
        timer.start();
        while (!QFile::exists(work.file("mark")) && timer.elapsed() < 20000)
            QThread::msleep(20);
        const QString halfOutput = QString::fromLocal8Bit(work.read("mark")).trimmed();
        ASSERT_TRUE(QFile::exists(halfOutput)) << status;
        for (const int signal : sent) {
            ::kill(pid_t(process->processId()), signal);
            QThread::msleep(200);
        }
        ASSERT_TRUE(process->waitForFinished(20000)) << status;
        EXPECT_EQ(process->exitCode(), status);
        // Nothing runs after the compiler, and its end by signal is not reported as a failure.
        EXPECT_EQ(QString::fromLatin1(process->readAllStandardOutput()),
                  "  Building \"App\" in configuration \"Debug\"\n"
                  "    Compiling main.c\n"
                  "interrupted\n");
        EXPECT_FALSE(QFile::exists(halfOutput)) << status;
    }
}
