#include "enginefixture.h"
#include "foundation/qtx.h"

#include <QFile>

#include <sys/stat.h>

namespace {

class BuiltinCommands : public EngineFixture
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
    EXPECT_EQ(error, "");
    EXPECT_EQ(scratch.read("out/copy.txt"), "new");

    EXPECT_TRUE(run({"chmod", "-w", "out/copy.txt"}));
    EXPECT_FALSE(QFile::permissions(scratch.file("out/copy.txt")) & QFile::WriteOwner);
    EXPECT_TRUE(run({"chmod", "+w", scratch.file("out/copy.txt")}));
    EXPECT_TRUE(QFile::permissions(scratch.file("out/copy.txt")) & QFile::WriteOwner);
    EXPECT_EQ(error, "");

    EXPECT_TRUE(run({"rm", "out/copy.txt"}));
    EXPECT_EQ(error, "");
    EXPECT_FALSE(QFile::exists(scratch.file("out/copy.txt")));
}

TEST_F(BuiltinCommands, FailuresAndMissingWordsAreToldInTheErrorText)
{
    EXPECT_TRUE(run({"cp", "none.txt", "x.txt"}));
    EXPECT_EQ(error, "cp failed: can't copy \"" + scratch.file("none.txt") + "\" to \"" +
                         scratch.file("x.txt") + "\"");
    EXPECT_TRUE(run({"chmod", "-w", "none.txt"}));
    EXPECT_EQ(error, "chmod failed: can't make \"" + scratch.file("none.txt") + "\" writable");
    EXPECT_TRUE(run({"rm", "none.txt"}));
    EXPECT_EQ(error, "rm failed: can't remove \"" + scratch.file("none.txt") + "\" writable");

    EXPECT_TRUE(run({"cp"}));
    EXPECT_EQ(error, "cp failed: expected 2 arguments, got 0");
    EXPECT_TRUE(run({"chmod", "+w"}));
    EXPECT_EQ(error, "chmod failed: expected 2 arguments, got 1");
    EXPECT_TRUE(run({"rm"}));
    EXPECT_EQ(error, "rm failed: expected 1 argument, got 0");
}

TEST_F(BuiltinCommands, HelpersAreRewrittenAndOthersLeftAlone)
{
    EXPECT_FALSE(run({"xmlcp", "a", "b"}));
    EXPECT_EQ(last, (QStringList{QTx::rootDirectory() + "/bin/xmlcp", "a", "b"}));
    EXPECT_FALSE(run({"mkhdr"}));
    EXPECT_EQ(last, QStringList{QTx::rootDirectory() + "/bin/mkhdr"});
    EXPECT_FALSE(run({"Cp", "a", "b"}));
    EXPECT_EQ(last, (QStringList{"Cp", "a", "b"}));
    EXPECT_FALSE(run({}));

    QString text;
    EXPECT_TRUE(system->getExportableBuiltinCommand("/d", {"cp", "a b", "/c"}, text));
    EXPECT_EQ(text, "cp -f \"/d/a b\" \"/c\"");
    EXPECT_TRUE(system->getExportableBuiltinCommand("/d", {"rm", "x"}, text));
    EXPECT_EQ(text, "rm -f \"/d/x\"");
    EXPECT_TRUE(system->getExportableBuiltinCommand("/d", {"mkhdr", "x"}, text));
    EXPECT_TRUE(text.isNull());
    EXPECT_FALSE(system->getExportableBuiltinCommand("/d", {"chmod", "+w", "x"}, text));
}

TEST(RealDiskInterface, AsksTheFileSystemOnceUntilToldOtherwise)
{
    ScratchDir scratch;
    const QString path = scratch.write("f.txt", "x");
    RealDiskInterface disk;
    const QDateTime time = disk.modified(path);
    EXPECT_EQ(time, QFileInfo(path).lastModified());
    EXPECT_TRUE(disk.isReadable(path));
    EXPECT_FALSE(disk.modified(scratch.path()).isValid());
    EXPECT_EQ(disk.statCount(), 2);

    QFile::remove(path);
    EXPECT_TRUE(disk.modified(path).isValid());
    disk.invalidate(path);
    EXPECT_FALSE(disk.modified(path).isValid());
    EXPECT_EQ(disk.statCount(), 3);
    scratch.write("f.txt", "y");
    disk.invalidateAll();
    EXPECT_TRUE(disk.modified(path).isValid());
    QByteArray contents;
    EXPECT_TRUE(disk.readFile(path, 10, contents));
    EXPECT_EQ(contents, "y");
    EXPECT_FALSE(disk.readFile(path, 0, contents));
    // Only plain files are read: a directory or a pipe with no writer gives nothing at once.
    EXPECT_FALSE(disk.readFile(scratch.path(), 10, contents));
    ASSERT_EQ(::mkfifo(QFile::encodeName(scratch.file("pipe.d")).constData(), 0600), 0);
    EXPECT_FALSE(disk.readFile(scratch.file("pipe.d"), 10, contents));
    EXPECT_TRUE(disk.removeFile(path));
    EXPECT_FALSE(disk.modified(path).isValid());
}
