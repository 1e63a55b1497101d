#include "archive/packagetesting.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace {

class TidefilePackage : public ::testing::Test
{
protected:
    RunResult run(const QStringList &arguments) { return runTidefile(arguments, dir.path()); }
    /// Every entry below `relative` with its size, write permission and time.
    QStringList tree(const QString &relative) const
    {
        QStringList entries;
        QDirIterator it(dir.file(relative), QDir::AllEntries | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo info(it.next());
            entries << QDir(dir.file(relative)).relativeFilePath(info.filePath()) + ' ' +
                           (info.isDir()
                                ? QString("dir")
                                : QString::number(info.size()) + ' ' +
                                      (info.permissions() & QFile::WriteOwner ? 'w' : '-') + ' ' +
                                      QString::number(info.lastModified().toSecsSinceEpoch()));
        }
        entries.sort();
        return entries;
    }

    ScratchDir dir;
};

} // namespace

TEST_F(TidefilePackage, ListsAndExtractsMembersInArchiveOrder)
{
    dir.write("p.hdq", foreignPackage());
    RunResult result = run({"package", "p.hdq"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "a.txt\t5\tw\t1000\ndir/b.bin\t5\t-\t0\n");
    EXPECT_EQ(result.err, "");

    // Over an earlier read-only copy too; a member of unknown time takes the time of writing.
    dir.write("out/dir/b.bin", "old");
    QFile::setPermissions(dir.file("out/dir/b.bin"), QFile::ReadOwner);
    result = run({"package", "-x", "out", "p.hdq"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    const QStringList extracted = tree("out");
    ASSERT_EQ(extracted.size(), 3);
    EXPECT_EQ(extracted[0], "a.txt 5 w 1000");
    EXPECT_EQ(extracted[1], "dir dir");
    EXPECT_TRUE(extracted[2].startsWith("dir/b.bin 5 - ")) << extracted[2].toStdString();
    EXPECT_NE(extracted[2], "dir/b.bin 5 - 0");
    EXPECT_EQ(dir.read("out/a.txt") + dir.read("out/dir/b.bin"), "alphabeta!");
}

TEST_F(TidefilePackage, RefusesNamesThatLeaveTheDirectory)
{
    for (const QByteArray &name :
         {QByteArray("../escape"), QByteArray("/tmp/abs"), QByteArray("a/../../escape"),
          QByteArray("a/.."), QByteArray("")}) {
        const quint32 data = 8 + 2 * 1040;
        dir.write("p.hdq",
                  packageBytes(archiveBytes(
                      2, {{"fine", data, 1, true, 1}, {name, data + 1, 1, true, 1}}, "xy")));
        const RunResult result = run({"package", "-x", "out/inner", "p.hdq"});
        EXPECT_EQ(result.exitCode, 1) << name.data();
        EXPECT_EQ(result.err, "tidefile: p.hdq: refusing member \"" + name +
                                  "\": its name leads out of the directory\n");
        // Nothing is written, not even the members before it.
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                  QStringList{"p.hdq"});
    }

    // A link inside the directory is not followed out of it.
    QDir().mkpath(dir.file("out"));
    QFile::link(dir.path(), dir.file("out/link"));
    dir.write("p.hdq", packageBytes(archiveBytes(1, {{"link/planted", 1048, 1, true, 1}}, "x")));
    const RunResult result = run({"package", "-x", "out", "p.hdq"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.err.startsWith("tidefile: p.hdq: cannot make the directory of member "
                                      "\"link/planted\""))
        << result.err.toStdString();
    EXPECT_FALSE(QFileInfo::exists(dir.file("planted")));
}

TEST_F(TidefilePackage, DamagedPackagesAreToldAndNothingIsExtracted)
{
    for (const BadPackage &bad : badPackages()) {
        dir.write("bad.hdq", bad.bytes);
        for (const QStringList &arguments :
             {QStringList{"package", "bad.hdq"}, QStringList{"package", "-x", "out", "bad.hdq"}}) {
            const RunResult result = run(arguments);
            EXPECT_EQ(result.exitCode, 1) << bad.what;
            EXPECT_EQ(result.err, "tidefile: bad.hdq: " + QString(bad.error) + "\n") << bad.what;
            EXPECT_EQ(result.out, "") << bad.what;
        }
        EXPECT_FALSE(QFileInfo::exists(dir.file("out"))) << bad.what;
    }
    QDir(dir.path()).mkdir("dir.hdq");
    EXPECT_EQ(run({"package", "dir.hdq"}).err, "tidefile: dir.hdq: not a package\n");
    EXPECT_EQ(run({"package", "none.hdq"}).err, "tidefile: none.hdq: no such file\n");
}

TEST_F(TidefilePackage, UsageErrors)
{
    for (const QStringList &arguments :
         {QStringList{"package"}, QStringList{"package", "-x"}, QStringList{"package", "-l", "p"},
          QStringList{"package", "a.hdq", "b.hdq"}}) {
        const RunResult result = run(arguments);
        EXPECT_EQ(result.exitCode, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(result.err.endsWith("       tidefile package FILE\n"
                                        "       tidefile package -x DIR FILE\n"))
            << result.err.toStdString();
    }
}
