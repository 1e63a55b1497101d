#include "enginefixture.h"
#include "foundation/qtx.h"

#include <QFile>
#include <QThread>

#include <sys/stat.h>

namespace {

class BuiltinCommands : public EngineTest
{
protected:
    /// Offers `command` to the build system as the console builder does.
    bool run(QStringList command)
    {
        error.clear();
        last = command;
        return system->builtinCommand(scratch.path(), last, error);
    }

    QString error;
    QStringList last;
};

} // namespace

TEST_F(BuiltinCommands, CopyChmodAndRemoveInPlace)
{
    scratch.write("in.txt", "new");
    scratch.write("out/copy.txt", "old");
    QTx::setWriteable(scratch.file("out/copy.txt"), false);
    // A read-only earlier copy is replaced; relative names are the directory's.
    EXPECT_TRUE(run({"cp", "in.txt", "out/copy.txt"}));
    EXPECT_EQ(scratch.read("out/copy.txt"), "new");
    EXPECT_TRUE(run({"chmod", "-w", "out/copy.txt"}));
    EXPECT_FALSE(QFile::permissions(scratch.file("out/copy.txt")) & QFile::WriteOwner);
    EXPECT_TRUE(run({"chmod", "+w", scratch.file("out/copy.txt")}));
    EXPECT_TRUE(QFile::permissions(scratch.file("out/copy.txt")) & QFile::WriteOwner);
    EXPECT_TRUE(run({"rm", "out/copy.txt"}));
    EXPECT_FALSE(QFile::exists(scratch.file("out/copy.txt")));
    EXPECT_EQ(error, "");
}

TEST_F(BuiltinCommands, FailuresAndMissingWordsAreToldInTheErrorText)
{
    const QString none = "\"" + scratch.file("none.txt") + "\"";
    const QList<std::pair<QStringList, QString>> cases = {
        {{"cp", "none.txt", "x.txt"},
         "cp failed: can't copy " + none + " to \"" + scratch.file("x.txt") + "\""},
        {{"chmod", "-w", "none.txt"}, "chmod failed: can't make " + none + " writable"},
        {{"cp"}, "cp failed: expected 2 arguments, got 0"},
        {{"chmod", "+w"}, "chmod failed: expected 2 arguments, got 1"},
        {{"rm"}, "rm failed: expected 1 argument, got 0"},
    };
    for (const auto &[command, message] : cases) {
        EXPECT_TRUE(run(command));
        EXPECT_EQ(error, message);
    }
}

TEST_F(BuiltinCommands, OtherCommandsAreLeftAlone)
{
    EXPECT_FALSE(run({"Cp", "a", "b"}));
    EXPECT_EQ(last, (QStringList{"Cp", "a", "b"}));
    EXPECT_FALSE(run({}));
}

TEST(RealDiskInterface, AsksTheFileSystemOnceUntilToldOtherwise)
{
    ScratchDir scratch;
    const QString path = scratch.write("f.txt", "x");
    RealDiskInterface disk;
    EXPECT_EQ(disk.modified(path), QFileInfo(path).lastModified());
    QFile::remove(path);
    EXPECT_TRUE(disk.modified(path).isValid());
    disk.invalidate(path);
    EXPECT_FALSE(disk.modified(path).isValid());
    scratch.write("f.txt", "y");
    disk.invalidateAll();
    EXPECT_TRUE(disk.modified(path).isValid());
    EXPECT_EQ(disk.statCount(), 3);

    QByteArray contents;
    EXPECT_TRUE(disk.readFile(path, 10, contents));
    EXPECT_EQ(contents, "y");
    EXPECT_FALSE(disk.readFile(path, 0, contents));
    // A directory, or a pipe with no writer, gives nothing and at once.
    EXPECT_FALSE(disk.readFile(scratch.path(), 10, contents));
    ASSERT_EQ(::mkfifo(QFile::encodeName(scratch.file("pipe.d")).constData(), 0600), 0);
    EXPECT_FALSE(disk.readFile(scratch.file("pipe.d"), 10, contents));
}

TEST(RealDiskInterface, FollowsDirectoriesThatAppearOrAreReplaced)
{
    // Files are looked at through descriptors of their directories; those must never outlive
    // what a command or the build itself does to the directories.
    ScratchDir scratch;
    RealDiskInterface disk;
    const QString late = scratch.file("late/a.o");
    EXPECT_FALSE(disk.modified(late).isValid());
    const quint64 generation = disk.generation();
    ASSERT_TRUE(disk.writeFile(late, "made"));
    EXPECT_NE(disk.generation(), generation);
    EXPECT_TRUE(disk.modified(late).isValid()) << "a directory once missing is not remembered";

    const QString kept = scratch.write("sub/b.o", "old");
    EXPECT_TRUE(disk.modified(kept).isValid());
    ASSERT_TRUE(QDir(scratch.path()).rename("sub", "gone"));
    ASSERT_TRUE(QDir(scratch.path()).mkdir("sub"));
    disk.invalidateAll();
    EXPECT_FALSE(disk.modified(kept).isValid()) << "the replaced directory is asked, not the old";
}

TEST(RealDiskInterface, StampsAreExactAndADirectoryMovesOnWhenAFileComesOrGoes)
{
    ScratchDir scratch;
    RealDiskInterface disk;
    const QString file = scratch.write("d/f.o", "x");
    const QString directory = scratch.file("d");
    const qint64 before = disk.stamp(directory);
    ASSERT_GT(before, 0);
    ASSERT_TRUE(disk.setStamp(file, before));
    EXPECT_EQ(disk.stamp(file), before) << "to the nanosecond";
    EXPECT_EQ(disk.stamp(directory), before) << "a file's time is not its directory's";
    EXPECT_EQ(disk.stamp(scratch.file("none")), -1);

    // Later than the clock's step, so that the change shows.
    QThread::msleep(20);
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_GT(disk.stamp(directory), before);

    // Names beyond ASCII are asked about as the file system has them.
    const QString accented = scratch.write(QStringLiteral("d/\u00e9t\u00e9.o"), "y");
    EXPECT_TRUE(disk.modified(accented).isValid());
}
