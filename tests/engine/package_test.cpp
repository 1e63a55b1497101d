#include "archive/archive2.h"
#include "archive/packagetesting.h"
#include "engine/package.h"
#include "foundation/qtx.h"
#include "support/recordingbuilder.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <utime.h>

namespace {

/// A scratch directory that is the working directory while the test runs, as the package
/// step writes its "tmp" there; the package is "pkg.hdq" in it.
class Package : public ::testing::Test
{
protected:
    Package() : previous(QDir::currentPath())
    {
        QDir::setCurrent(work.path());
        builder.reportsInEvents = true;
    }
    ~Package() override { QDir::setCurrent(previous); }

    /// Writes `name` with `contents`, modified at `time` seconds since 1970.
    QString source(const QString &name, const QByteArray &contents, long time)
    {
        const QString file = work.write(name, contents);
        setTime(name, time);
        return file;
    }
    void setTime(const QString &name, long time)
    {
        const utimbuf times{time, time};
        utime(QFile::encodeName(work.file(name)).constData(), &times);
    }
    /// Adds `name` of the scratch directory as `member`; what the builder was told, with the
    /// scratch directory shown as "@".
    QStringList add(const QString &member, const QString &name, bool force, bool quiet = false,
                    bool dryRun = false)
    {
        addToRemoveFromArchive("pkg.hdq", member, name.isEmpty() ? name : work.file(name), &builder,
                               quiet, force, dryRun);
        return builder.take().replaceInStrings(work.path(), "@");
    }
    /// The members of the package as "name size w|- time data".
    QStringList members()
    {
        const QString archive = work.file("unpacked");
        if (!QTx::decompressFile("pkg.hdq", archive))
            return {"not a package"};
        Archive2 read;
        const QByteArray name = QFile::encodeName(archive);
        if (read.open(std::fopen(name.constData(), "rb"), name.constData()) != 0)
            return {"damaged"};
        const QByteArray bytes = work.read("unpacked");
        QStringList list;
        for (const ArchiveChunk2 &m : read.members())
            list << QString::fromStdString(m.name) + ' ' + QString::number(m.size) + ' ' +
                        (m.writable ? 'w' : '-') + ' ' + QString::number(m.time) + ' ' +
                        bytes.mid(m.offset, m.size);
        QFile::remove(archive);
        return list;
    }
    bool exists(const char *name) const { return QFile::exists(work.file(name)); }

    ScratchDir work;
    QString previous;
    RecordingBuilder builder;
};

} // namespace

TEST_F(Package, KeepsEachMemberCurrentAndMovesAReplacedOneToTheEnd)
{
    source("a", "alpha", 1000);
    EXPECT_EQ(add("m/a", "a", false), (QStringList{"message: pkg.hdq(m/a) does not exist.",
                                                   "message: adding @/a to pkg.hdq(m/a)."}));
    EXPECT_EQ(members(), QStringList{"m/a 5 w 1000 alpha"});
    EXPECT_FALSE(exists("tmp"));
    EXPECT_FALSE(exists("pkg.hdq.decompressed"));

    // Up to date: the decompressed copy is left behind for the next run to overwrite.
    EXPECT_EQ(add("m/a", "a", false), QStringList{"success: 'pkg.hdq(m/a)' is up to date."});
    EXPECT_TRUE(exists("pkg.hdq.decompressed"));

    source("b", "beta", 1500);
    QFile::setPermissions(work.file("b"), QFile::ReadOwner);
    add("m/b", "b", true);
    source("a", "alpha 2", 1001);
    EXPECT_EQ(add("m/a", "a", false), (QStringList{"message: @/a is newer than pkg.hdq(m/a).",
                                                   "message: adding @/a to pkg.hdq(m/a)."}));
    EXPECT_EQ(members(), (QStringList{"m/b 4 - 1500 beta", "m/a 7 w 1001 alpha 2"}));

    // Quiet: only what changes the package is told, and forced, it changes.
    EXPECT_EQ(add("m/b", "b", true, true), QStringList{"message: adding @/b to pkg.hdq(m/b)."});
    EXPECT_EQ(add("m/a", "", true, true), QStringList{"message: removing pkg.hdq(m/a)."});
    EXPECT_EQ(members(), QStringList{"m/b 4 - 1500 beta"});
}

TEST_F(Package, ReadsAForeignPackageAndTakesAZeroTimeForMissing)
{
    work.write("pkg.hdq", foreignPackage());
    source("b", "new b", 1);
    EXPECT_EQ(add("dir/b.bin", "b", false),
              (QStringList{"message: pkg.hdq(dir/b.bin) does not exist.",
                           "message: adding @/b to pkg.hdq(dir/b.bin)."}));
    EXPECT_EQ(members(), (QStringList{"a.txt 5 w 1000 alpha", "dir/b.bin 5 w 1 new b"}));
}

TEST_F(Package, APackageThatCantBeReadCountsAsEmpty)
{
    source("a", "alpha", 1000);
    for (const BadPackage &bad : badPackages()) {
        work.write("pkg.hdq", bad.bytes);
        add("m", "a", false, true);
        EXPECT_EQ(members(), QStringList{"m 5 w 1000 alpha"}) << bad.what;
    }
    // A stale decompressed copy is not mistaken for the package.
    work.write("pkg.hdq", foreignPackage());
    add("m", "a", true);
    add("m", "a", false);
    work.write("pkg.hdq", "damaged");
    add("n", "a", false, true);
    EXPECT_EQ(members(), QStringList{"n 5 w 1000 alpha"});

    // A directory in the package's place stays as it is.
    QFile::remove(work.file("pkg.hdq"));
    QDir(work.path()).mkdir("pkg.hdq");
    EXPECT_EQ(add("m", "a", false, true), QStringList{"message: adding @/a to pkg.hdq(m)."});
    EXPECT_TRUE(QFileInfo(work.file("pkg.hdq")).isDir());
    EXPECT_FALSE(exists("tmp"));
}

TEST_F(Package, ASourceThatCantBeOpenedChangesNothing)
{
    source("a", "alpha", 1000);
    add("m", "a", true);
    const QByteArray before = work.read("pkg.hdq");
    EXPECT_EQ(add("m", "gone", true), QStringList{});
    EXPECT_EQ(work.read("pkg.hdq"), before);
    EXPECT_FALSE(exists("tmp"));
}

TEST_F(Package, ADryRunTellsWhatItWouldDoAndWritesNothing)
{
    source("a", "alpha", 1000);
    EXPECT_EQ(
        add("m", "a", false, false, true),
        (QStringList{"message: pkg.hdq(m) does not exist.", "message: adding @/a to pkg.hdq(m)."}));
    EXPECT_EQ(QDir(work.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{"a"});

    add("m", "a", true);
    QFile::remove(work.file("pkg.hdq.decompressed"));
    const QByteArray before = work.read("pkg.hdq");
    setTime("a", 2000);
    EXPECT_EQ(add("m", "a", false, false, true),
              (QStringList{"message: @/a is newer than pkg.hdq(m).",
                           "message: adding @/a to pkg.hdq(m)."}));
    EXPECT_EQ(add("gone", "", true, true, true), QStringList{"message: removing pkg.hdq(gone)."});
    EXPECT_EQ(work.read("pkg.hdq"), before);
    EXPECT_EQ(QDir(work.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              (QStringList{"a", "pkg.hdq"}));
}
