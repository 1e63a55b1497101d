#include "archive/packagetesting.h"
#include "support/faketoolchain.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

#include <utime.h>

namespace {

/// A project "P" of in/a.txt, "in/b c.txt" and an excluded file, in a work directory that is
/// also the installation. As a "Staging" project it copies them read-only below "out" and packs
/// them into pkg.hdq, the members named after the copies' paths below the installation.
class Staging : public ::testing::Test
{
protected:
    Staging()
    {
        work.write("in/a.txt", "alpha\n");
        work.write("in/b c.txt", "beta\n");
        setTime("in/a.txt", 1600000000);
        setTime("in/b c.txt", 1600000100);
        project("Staging", "stage_package_filepath=\"pkg.hdq\" stage_set_readonly=\"Yes\"");
    }
    void project(const QByteArray &type, const QByteArray &settings)
    {
        work.write("s.hdp",
                   solutionText("<configuration Name=\"Debug\"/><project Name=\"P\"><configuration "
                                "Name=\"Common\" project_directory=\".\" project_type=\"" +
                                type + "\" build_output_directory=\"out\" " + settings +
                                "/><file Name=\"a.txt\" file_name=\"in/a.txt\"/><file "
                                "Name=\"b c.txt\" file_name=\"in/b c.txt\"/><file Name=\"c.txt\" "
                                "file_name=\"in/c.txt\"><configuration Name=\"Common\" "
                                "build_exclude_from_build=\"Yes\"/></file></project>"));
    }
    /// Builds "Debug" with `options`; what it printed below its first line, the work directory
    /// shown as "@".
    QString build(const QStringList &options = {}, const QString &failing = QString())
    {
        const RunResult run =
            runTidemake(QStringList{"-config", "Debug", "-BenchDir", work.path()} + options +
                            QStringList{"s.hdp"},
                        work.path(), settings.path(), tools.environment(failing));
        EXPECT_EQ(QString::number(run.exitCode) + run.err, "0");
        return run.out.section('\n', 1).replace(work.path(), "@");
    }
    void setTime(const QString &relative, long time)
    {
        const utimbuf times{time, time};
        utime(QFile::encodeName(work.file(relative)).constData(), &times);
    }
    /// `tidefile package pkg.hdq`: its listing, or its error.
    QString package() const
    {
        const RunResult run = runTidefile({"package", "pkg.hdq"}, work.path());
        return run.out + run.err;
    }

    ScratchDir work, settings;
    FakeToolChain tools{work};
    // A copy's lines stand in its group, two spaces deeper than the project's own.
    const QString addA = "adding @/out/in/a.txt to pkg.hdq(out/in/a.txt).\n";
    const QString addB = "adding @/out/in/b c.txt to pkg.hdq(out/in/b c.txt).\n";
    const QString copies = "    Copying a.txt\n    " + addA + "    Copying b c.txt\n    " + addB;
    const QString members = "out/in/a.txt\t6\t-\t1600000000\nout/in/b c.txt\t5\t-\t1600000100\n";
};

} // namespace

TEST_F(Staging, CopiesAndKeepsThePackageCurrentAcrossRuns)
{
    EXPECT_EQ(build(), copies);
    EXPECT_EQ(package(), members) << "the copies, read-only";
    EXPECT_EQ(build({"-verbose"}), "  'out/in/a.txt' is up to date.\n"
                                   "  'pkg.hdq(out/in/a.txt)' is up to date.\n"
                                   "  'out/in/b c.txt' is up to date.\n"
                                   "  'pkg.hdq(out/in/b c.txt)' is up to date.\n");

    // A member of unknown time catches up with a copy that is current.
    work.write("pkg.hdq", packageBytes(archiveBytes(1, {{"out/in/a.txt", 1048, 1, true, 0}}, "x")));
    EXPECT_EQ(build({"-verbose"}).section('\n', 0, 2),
              "  'out/in/a.txt' is up to date.\n  pkg.hdq(out/in/a.txt) does not exist.\n  " +
                  addA.chopped(1));

    // A newer source: a dry run only shows its copy; a build copies it again, and its member
    // moves to the end.
    work.write("in/a.txt", "alpha, again\n");
    setTime("in/a.txt", 1700000000);
    const QStringList entries = QDir(work.path()).entryList();
    const QByteArray before = work.read("pkg.hdq");
    EXPECT_EQ(build({"-show"}), "    Copying a.txt\n    cp in/a.txt @/out/in/a.txt\n"
                                "    chmod -w @/out/in/a.txt\n    " +
                                    addA);
    EXPECT_EQ(QDir(work.path()).entryList(), entries);
    EXPECT_EQ(work.read("out/in/a.txt") + work.read("pkg.hdq"), "alpha\n" + before);
    EXPECT_EQ(build(), "    Copying a.txt\n    " + addA);
    EXPECT_EQ(package(), "out/in/b c.txt\t5\t-\t1600000100\nout/in/a.txt\t13\t-\t1700000000\n");

    // Writable again: the changed setting copies both again.
    project("Staging", "stage_package_filepath=\"pkg.hdq\" stage_set_readonly=\"No\"");
    EXPECT_EQ(build(), copies);
    EXPECT_TRUE(QFileInfo(work.file("out/in/a.txt")).permissions() & QFile::WriteOwner);
    EXPECT_FALSE(QFileInfo::exists(work.file("tmp")));

    // Cleaning removes the copies but leaves the package as it is.
    const QByteArray built = work.read("pkg.hdq");
    EXPECT_EQ(build({"-clean"}), "");
    EXPECT_FALSE(QFileInfo::exists(work.file("out/in/a.txt")));
    EXPECT_EQ(work.read("pkg.hdq"), built);
}

TEST_F(Staging, ADamagedPackageIsToldByTidefileAndCountsAsEmptyInABuild)
{
    build();
    build({"-verbose"}); // leaves a decompressed copy, which must not be read again
    for (const BadPackage &bad : badPackages()) {
        work.write("pkg.hdq", bad.bytes);
        EXPECT_EQ(package(), "tidefile: pkg.hdq: " + QString(bad.error) + "\n") << bad.what;
        EXPECT_EQ(build(), "  " + addA + "  " + addB) << bad.what;
        EXPECT_EQ(package(), members) << bad.what;
    }
}

TEST_F(Staging, AFailedCopyStopsTheBuild)
{
    QFile::remove(work.file("in/a.txt"));
    EXPECT_EQ(build(), "    Copying a.txt\n"
                       "    cp failed: can't copy \"@/in/a.txt\" to \"@/out/in/a.txt\"\n");
    EXPECT_FALSE(QFileInfo::exists(work.file("pkg.hdq")));
}

TEST_F(Staging, CombiningRunsOneCommandOverTheFilesWhenOutOfDateOrFailed)
{
    const QByteArray combine = "combine_output_filepath=\"out/sums.a\" combine_command=\""
                               "bench/gcc/bin/ar rc &quot;$(CombiningOutputFilePath)&quot; "
                               "$(CombiningRelInputPaths)\" combine_set_readonly=";
    project("Combining", combine + "\"No\"");
    EXPECT_EQ(build(), "    Combining P\n");
    EXPECT_EQ(tools.take(), QStringList{"ar rc @/out/sums.a in/a.txt in/b c.txt"});
    EXPECT_EQ(build({"-verbose"}), "  'out/sums.a' is up to date\n");
    setTime("out/sums.a", 1000000000);
    EXPECT_EQ(build({}, "ar"), "    Combining P\n");
    EXPECT_EQ(build(), "    Combining P\n") << "again, as it failed";
    EXPECT_EQ(build(), "");
    EXPECT_EQ(tools.take().size(), 2);

    // Read-only only when the command succeeded.
    QFile::remove(work.file("out/sums.a"));
    project("Combining", combine + "\"Yes\"");
    build({}, "ar");
    EXPECT_TRUE(QFileInfo(work.file("out/sums.a")).permissions() & QFile::WriteOwner);
}
