#include "archive/packagetesting.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

namespace {

class TidefilePackage : public ::testing::Test
{
protected:
    RunResult run(const QStringList &arguments) { return runTidefile(arguments, dir.path()); }
    /// `relative`'s size, write permission and time.
    QString describe(const QString &relative) const
    {
        const QFileInfo info(dir.file(relative));
        return QString::number(info.size()) +
               (info.permissions() & QFile::WriteOwner ? " w " : " - ") +
               QString::number(info.lastModified().toSecsSinceEpoch());
    }

    ScratchDir dir;
    const quint32 data = 8 + 2 * 1040; // the data of a two-member archive
};

} // namespace

TEST_F(TidefilePackage, ListsAndExtractsMembersInArchiveOrder)
{
    dir.write("p.hdq", packageBytes(archiveBytes(
                           2, {{"z.txt", data, 5, true, 1000}, {"d/b.bin", data + 5, 5, false, 0}},
                           "alphabeta!")));
    RunResult result = run({"package", "p.hdq"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "z.txt\t5\tw\t1000\nd/b.bin\t5\t-\t0\n");

    // Over a read-only earlier copy too; a member of unknown time keeps the time of writing.
    dir.write("out/d/b.bin", "old");
    QFile::setPermissions(dir.file("out/d/b.bin"), QFile::ReadOwner);
    result = run({"package", "-x", "out", "p.hdq"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(dir.read("out/z.txt") + dir.read("out/d/b.bin"), "alphabeta!");
    EXPECT_EQ(describe("out/z.txt"), "5 w 1000");
    EXPECT_TRUE(describe("out/d/b.bin").startsWith("5 - "))
        << describe("out/d/b.bin").toStdString();
    EXPECT_NE(describe("out/d/b.bin"), "5 - 0");

    QDir(dir.path()).mkdir("dir.hdq");
    EXPECT_EQ(run({"package", "dir.hdq"}).err, "tidefile: dir.hdq: not a package\n");
    EXPECT_EQ(run({"package", "none.hdq"}).err, "tidefile: none.hdq: no such file\n");
}

TEST_F(TidefilePackage, RefusesNamesThatLeadOutOfTheDirectory)
{
    for (const QByteArray name : {"../up", "/tmp/abs", "a/../../up", "a/..", ""}) {
        dir.write("p.hdq",
                  packageBytes(archiveBytes(
                      2, {{"fine", data, 1, true, 1}, {name, data + 1, 1, true, 1}}, "xy")));
        const RunResult result = run({"package", "-x", "out/in", "p.hdq"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.err, "tidefile: p.hdq: refusing member \"" + name +
                                  "\": its name leads out of the directory\n");
        // Checked before anything is written, the members before it included.
        EXPECT_FALSE(QFileInfo::exists(dir.file("out"))) << name.data();
    }
    // Nor does a link inside the directory lead out.
    QDir().mkpath(dir.file("out"));
    QFile::link(dir.path(), dir.file("out/link"));
    dir.write("p.hdq", packageBytes(archiveBytes(1, {{"link/planted", 1048, 1, true, 1}}, "x")));
    const RunResult result = run({"package", "-x", "out", "p.hdq"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(result.err.startsWith(
        "tidefile: p.hdq: cannot make the directory of member \"link/planted\""));
    EXPECT_FALSE(QFileInfo::exists(dir.file("planted")));
}
