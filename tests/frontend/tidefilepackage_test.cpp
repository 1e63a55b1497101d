#include "archive/packagetesting.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

namespace {

class TidefilePackage : public ::testing::Test
{
protected:
    /// Runs tidefile with `arguments`: its exit code, ": ", and all it printed.
    QString run(const QStringList &arguments)
    {
        const RunResult result = runTidefile(arguments, dir.path());
        return QString::number(result.exitCode) + ": " + result.out + result.err;
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
    EXPECT_EQ(run({"package", "p.hdq"}), "0: z.txt\t5\tw\t1000\nd/b.bin\t5\t-\t0\n");

    // Over a read-only earlier copy too; a member of unknown time keeps the time of writing.
    dir.write("out/d/b.bin", "old");
    QFile::setPermissions(dir.file("out/d/b.bin"), QFile::ReadOwner);
    EXPECT_EQ(run({"package", "-x", "out", "p.hdq"}), "0: ");
    const QFileInfo z(dir.file("out/z.txt")), b(dir.file("out/d/b.bin"));
    EXPECT_EQ(dir.read("out/z.txt") + "|" + dir.read("out/d/b.bin"), "alpha|beta!");
    EXPECT_TRUE((z.permissions() & QFile::WriteOwner) && !(b.permissions() & QFile::WriteOwner));
    EXPECT_EQ(z.lastModified().toSecsSinceEpoch(), 1000);
    EXPECT_NE(b.lastModified().toSecsSinceEpoch(), 0);
    EXPECT_EQ(run({"package", "none.hdq"}), "1: tidefile: none.hdq: no such file\n");
}

TEST_F(TidefilePackage, RefusesNamesThatLeadOutOfTheDirectory)
{
    for (const QByteArray name : {"../up", "/tmp/abs", "a/../../up", "a/..", ""}) {
        dir.write("p.hdq",
                  packageBytes(archiveBytes(
                      2, {{"fine", data, 1, true, 1}, {name, data + 1, 1, true, 1}}, "xy")));
        EXPECT_EQ(run({"package", "-x", "out/in", "p.hdq"}),
                  "1: tidefile: p.hdq: refusing member \"" + name +
                      "\": its name leads out of the directory\n");
        // Checked before anything is written, the members before it included.
        EXPECT_FALSE(QFileInfo::exists(dir.file("out"))) << name.data();
    }
    // Nor does a link inside the directory lead out.
    QDir().mkpath(dir.file("out"));
    QFile::link(dir.path(), dir.file("out/link"));
    dir.write("p.hdq", packageBytes(archiveBytes(1, {{"link/planted", 1048, 1, true, 1}}, "x")));
    const QString said = run({"package", "-x", "out", "p.hdq"});
    EXPECT_TRUE(said.startsWith("1: tidefile: p.hdq: cannot make the directory of member \"link/"))
        << said.toStdString();
    EXPECT_FALSE(QFileInfo::exists(dir.file("planted")));
}
