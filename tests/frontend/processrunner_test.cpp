#include "frontend/processrunner.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>

namespace {

int runShell(const QString &script, QStringList *output = nullptr, QStringList *errors = nullptr,
             const QString &directory = QString())
{
    return QTx::spawnProcess({"sh", "-c", script}, true, directory, false, output, errors);
}

QStringList captured(const QString &script)
{
    QStringList output, errors;
    runShell(script, &output, &errors);
    return output;
}

void addChunk(ProcessBufferList &buffers, const QByteArray &bytes)
{
    std::unique_ptr<unsigned char[]> data(new unsigned char[bytes.size()]);
    memcpy(data.get(), bytes.constData(), size_t(bytes.size()));
    buffers.emplace_back(unsigned(bytes.size()), std::move(data));
}

} // namespace

TEST(SpawnProcess, GivesTheSignedExitStatus)
{
    EXPECT_EQ(QTx::spawnProcess({"no-such-program-here"}, true, QString(), false, nullptr, nullptr),
              -1);
    EXPECT_EQ(runShell("exit 0"), 0);
    EXPECT_EQ(runShell("exit 1"), 1);
    EXPECT_EQ(runShell("exit 200"), -56);
    EXPECT_EQ(runShell("exit 255"), -1);
    EXPECT_EQ(runShell("kill -9 $$"), -1);
    EXPECT_EQ(QTx::spawnProcess({}, true, QString(), false, nullptr, nullptr), -1);
}

TEST(SpawnProcess, CapturesLinesOfBothStreams)
{
    QStringList output, errors;
    EXPECT_EQ(runShell("printf 'a\\r\\nb\\r\\nc\\r\\n'; printf 'e1\\n\\ne2\\nx' >&2; exit 3",
                       &output, &errors),
              3);
    EXPECT_EQ(output, QStringList({"a", "b", "c"}));
    ASSERT_EQ(errors.size(), 3);
    EXPECT_EQ(errors[0], "e1");
    EXPECT_TRUE(errors[1].isNull());
    EXPECT_EQ(errors[2], "e2");

    EXPECT_EQ(captured("printf 'a\\nxy'"), QStringList({"a", "xy"}));
    EXPECT_TRUE(captured("true").isEmpty());
    // With only one list given there is no capture, and the list stays as it was.
    QStringList only{"kept"};
    EXPECT_EQ(QTx::spawnProcess({"true"}, true, QString(), false, &only, nullptr), 0);
    EXPECT_EQ(only, QStringList{"kept"});
}

TEST(SpawnProcess, DrainsBothPipesOfALargeOutput)
{
    // More than a pipe holds on stderr before stdout is written at all.
    QStringList output, errors;
    EXPECT_EQ(runShell("seq 1 40000 >&2; seq 1 40000", &output, &errors), 0);
    ASSERT_EQ(output.size(), 40000);
    EXPECT_EQ(output.last(), "40000");
    ASSERT_EQ(errors.size(), 40000);
    EXPECT_EQ(errors.last(), "40000");
}

TEST(SpawnProcess, RunsInTheGivenDirectory)
{
    ScratchDir dir;
    QStringList output, errors;
    runShell("pwd -P", &output, &errors, dir.path());
    EXPECT_EQ(output, QStringList{QDir(dir.path()).canonicalPath()});
    // Null and empty both leave the child where the caller is.
    const QStringList here{QDir::current().canonicalPath()};
    EXPECT_EQ(captured("pwd -P"), here);
    output.clear();
    runShell("pwd -P", &output, &errors, QString(""));
    EXPECT_EQ(output, here);
}

TEST(SpawnProcess, WithoutWaitingReturnsWhileTheChildRuns)
{
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(QTx::spawnProcess({"sleep", "2"}, false, QString(), false, nullptr, nullptr), 0);
    EXPECT_LT(timer.elapsed(), 1000);
}

TEST(BufferListToQStringList, SplitsAcrossChunks)
{
    ProcessBufferList buffers;
    addChunk(buffers, "one\r");
    addChunk(buffers, "\ntwo\n\n");
    addChunk(buffers, "three\rXfour\r");
    QStringList lines;
    bufferListToQStringList(buffers, &lines);
    EXPECT_TRUE(buffers.empty());
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "one");
    EXPECT_EQ(lines[1], "two");
    EXPECT_TRUE(lines[2].isNull());
    // A CR takes the next character along, whatever it is.
    EXPECT_EQ(lines[3], "three");
    EXPECT_EQ(lines[4], "four");
}
