// Inputs built to hurt: lines of too many words or longer than any buffer or holding NUL bytes,
// indirect files that include themselves, and a child that floods both of its pipes.

#include "frontend/hreporter.h"
#include "frontend/processrunner.h"
#include "frontend/tidemakeargparse.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(FrontendHostile, LongFullAndOddLinesOfIndirectFiles)
{
    // Read through 1024 bytes, a long line comes in pieces, each a line of its own; a NUL ends
    // its line; a line of 256 words is whole, one of 300 is dropped and reported.
    ScratchDir dir;
    const QByteArray contents =
        "-config " + QByteArray(1100, 'a') + "\n" + QByteArray("-project n\0ul b\n", 16) +
        QByteArray("w ").repeated(300) + "\n" + QByteArray("w ").repeated(254) +
        "-solution whole\n" + QByteArray("abcdefg ").repeated(12500) + "\nend\n";
    const QString file = dir.write("odd", contents);
    std::ostringstream messages;
    HReporter reporter("prog", &messages);
    TidemakeArgParse p(&reporter);
    p.parse(("@" + file).toLocal8Bit().constData());
    EXPECT_EQ(p.config, QString(1023 - 8, 'a'));
    EXPECT_EQ(p.project, "n");
    EXPECT_EQ(p.solution, "whole");
    EXPECT_EQ(p.hdpFile, "end");
    EXPECT_EQ(messages.str(),
              "prog: too many words in indirect file " + file.toStdString() + "(4)\n");
}

TEST(FrontendHostile, ASelfIncludingIndirectFileStopsAtTheDepthLimit)
{
    ScratchDir dir;
    dir.write("self", "x @self\n");
    // Naming itself twice would double the work with each level; ten files naming the next
    // one twice, over a thousand times the limit in all.
    dir.write("twice", "@twice @twice\n");
    for (int level = 0; level < 10; ++level)
        dir.write("wide" + QString::number(level),
                  QString("@wide%1 @wide%1\n").arg(level + 1).toUtf8().repeated(10));
    dir.write("wide10", "x\n");
    for (const char *start : {"@self", "@twice", "@wide0"}) {
        const RunResult run =
            runTidemake({start, "a.hdp", "-config", "Debug"}, dir.path(), dir.file("home"));
        EXPECT_EQ(run.exitCode, 1) << start;
        EXPECT_EQ(run.err, tidemakeExecutable() + ": too many indirect files\n") << start;
    }
}

TEST(FrontendHostile, AChildFloodingBothPipesIsDrained)
{
    // More than a pipe holds on stderr before stdout is written at all.
    QStringList output, errors;
    EXPECT_EQ(QTx::spawnProcess({"sh", "-c", "seq 1 40000 >&2; seq 1 40000"}, true, QString(),
                                false, &output, &errors),
              0);
    EXPECT_EQ(output.size(), 40000);
    EXPECT_EQ(output.last(), "40000");
    EXPECT_EQ(errors.size(), 40000);
    EXPECT_EQ(errors.last(), "40000");
}
