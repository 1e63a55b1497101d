#include "support/faketoolchain.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <utime.h>

namespace {

/// A work directory with the sources and solution of one project, built by the program.
class Scenario : public ::testing::Test
{
protected:
    /// Writes the solution with the project `name` of `type`, its "Common" `settings` and
    /// `files` (XML lines).
    void setProject(const QByteArray &name, const QByteArray &type, const QByteArray &settings,
                    const QByteArray &files)
    {
        work.write("s.hdp", solutionText("  <configuration Name=\"Debug\"/>\n  <project Name=\"" +
                                         name + "\">\n    <configuration Name=\"Common\"" +
                                         " project_directory=\".\" project_type=\"" + type +
                                         "\" build_output_directory=\"out\" " + settings + "/>\n" +
                                         files + "  </project>\n"));
    }
    /// Builds in "Debug" with `options`; standard output, the work directory shown as "@".
    QString build(const QStringList &options = {}, const QString &failing = QString())
    {
        const RunResult run = runTidemake(QStringList{"-config", "Debug", "-BenchDir", benchDir} +
                                              options + QStringList{"s.hdp"},
                                          work.path(), settings.path(), tools.environment(failing));
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.err, "");
        return QString(run.out).replace(work.path(), "@");
    }
    /// Sets the modification time of `relative` to `time` seconds since 1970.
    void setTime(const QString &relative, long time)
    {
        const utimbuf times{time, time};
        utime(QFile::encodeName(work.file(relative)).constData(), &times);
    }
    bool writable(const QString &relative) const
    {
        return QFileInfo(work.file(relative)).permissions() & QFile::WriteOwner;
    }
    /// Every entry below the work directory with its size, time and permissions.
    QStringList listing() const
    {
        QStringList entries;
        QDirIterator it(work.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo info(it.next());
            entries << info.filePath() + ' ' + QString::number(info.size()) + ' ' +
                           QString::number(info.lastModified().toMSecsSinceEpoch()) + ' ' +
                           QString::number(info.permissions(), 16);
        }
        entries.sort();
        return entries;
    }

    ScratchDir work;
    ScratchDir settings;
    FakeToolChain tools{work};
    QString benchDir = tools.benchDir();
};

const QByteArray stagedFiles = "    <file Name=\"a.txt\" file_name=\"in/a.txt\"/>\n"
                               "    <file Name=\"b c.txt\" file_name=\"in/b c.txt\"/>\n";

/// A "Staging" project "dist" of two files, one with a blank in its name, copied below "out"
/// and packed into "pkg.hdq". The work directory is the installation, so the default member
/// names are the copies' paths below it.
class Staging : public Scenario
{
protected:
    Staging()
    {
        benchDir = work.path();
        work.write("in/a.txt", "alpha\n");
        work.write("in/b c.txt", "beta\n");
        setTime("in/a.txt", 1600000000);
        setTime("in/b c.txt", 1600000100);
        stage("stage_set_readonly=\"Yes\"");
    }
    void stage(const QByteArray &settings, const QByteArray &files = stagedFiles)
    {
        setProject("dist", "Staging", "stage_package_filepath=\"pkg.hdq\" " + settings, files);
    }
    /// `tidefile package pkg.hdq`, one member a line.
    QStringList package()
    {
        const RunResult run = runTidefile({"package", "pkg.hdq"}, work.path());
        return run.out.split('\n', Qt::SkipEmptyParts) + run.err.split('\n', Qt::SkipEmptyParts);
    }

    const QString heading = "  Building \"dist\" in configuration \"Debug\"\n";
    const QString addA = "    adding @/out/in/a.txt to pkg.hdq(out/in/a.txt).\n";
    const QString addB = "    adding @/out/in/b c.txt to pkg.hdq(out/in/b c.txt).\n";
    const QString firstBuild =
        heading + "    Copying a.txt\n" + addA + "    Copying b c.txt\n" + addB;
};

} // namespace

TEST_F(Staging, CopiesReadOnlyAndKeepsThePackageAcrossRuns)
{
    EXPECT_EQ(build(), firstBuild);
    EXPECT_EQ(work.read("out/in/b c.txt"), "beta\n");
    EXPECT_FALSE(writable("out/in/a.txt"));
    EXPECT_EQ(package(),
              (QStringList{"out/in/a.txt\t6\t-\t1600000000", "out/in/b c.txt\t5\t-\t1600000100"}));

    EXPECT_EQ(build(), heading);
    // Lines outside a copy's group stand at the project's depth.
    EXPECT_EQ(build({"-verbose"}), heading + "  'out/in/a.txt' is up to date.\n"
                                             "  'pkg.hdq(out/in/a.txt)' is up to date.\n"
                                             "  'out/in/b c.txt' is up to date.\n"
                                             "  'pkg.hdq(out/in/b c.txt)' is up to date.\n");

    // Back to writable: both copies again, and the package takes them.
    stage("stage_set_readonly=\"No\"");
    EXPECT_EQ(build(), firstBuild);
    EXPECT_TRUE(writable("out/in/a.txt"));
    EXPECT_EQ(package(),
              (QStringList{"out/in/a.txt\t6\tw\t1600000000", "out/in/b c.txt\t5\tw\t1600000100"}));
}

TEST_F(Staging, ThePackageCatchesUpAndANewerSourceMovesToTheEnd)
{
    build();
    QFile::remove(work.file("pkg.hdq"));
    EXPECT_EQ(build(), heading + addA.mid(2) + addB.mid(2));
    EXPECT_EQ(build({"-verbose"}).count("is up to date."), 4);

    work.write("in/a.txt", "alpha, again\n");
    setTime("in/a.txt", 1700000000);
    EXPECT_EQ(build({"-verbose"}), heading +
                                       "  @/in/a.txt is newer than out/in/a.txt.\n"
                                       "    Copying a.txt\n" +
                                       addA +
                                       "  'out/in/b c.txt' is up to date.\n"
                                       "  'pkg.hdq(out/in/b c.txt)' is up to date.\n");
    EXPECT_EQ(package(),
              (QStringList{"out/in/b c.txt\t5\t-\t1600000100", "out/in/a.txt\t13\t-\t1700000000"}));
    EXPECT_FALSE(QFileInfo::exists(work.file("tmp")));
}

TEST_F(Staging, CleaningRemovesTheCopiesAndLeavesThePackage)
{
    build();
    const QByteArray before = work.read("pkg.hdq");
    EXPECT_EQ(build({"-clean", "-verbose"}), "  Cleaning \"dist\" in configuration \"Debug\"\n"
                                             "  Remove @/out/in/a.txt\n"
                                             "  Remove @/out/in/b c.txt\n");
    EXPECT_FALSE(QFileInfo::exists(work.file("out/in/a.txt")));
    EXPECT_EQ(work.read("pkg.hdq"), before);

    // A rebuild copies without asking and adds to the package as it goes.
    EXPECT_EQ(build({"-rebuild"}), firstBuild);
}

TEST_F(Staging, ADryRunShowsEveryStepAndChangesNothing)
{
    const QStringList fresh = listing();
    const QString steps = heading +
                          "    Copying a.txt\n"
                          "    cp in/a.txt @/out/in/a.txt\n"
                          "    chmod -w @/out/in/a.txt\n" +
                          addA +
                          "    Copying b c.txt\n"
                          "    cp in/b c.txt @/out/in/b c.txt\n"
                          "    chmod -w @/out/in/b c.txt\n" +
                          addB;
    EXPECT_EQ(build({"-show"}), steps);
    EXPECT_EQ(listing(), fresh);

    build();
    setTime("in/a.txt", 1700000000);
    QFile::remove(work.file("pkg.hdq.decompressed"));
    const QStringList built = listing();
    EXPECT_EQ(build({"-show"}), heading +
                                    "    Copying a.txt\n"
                                    "    cp in/a.txt @/out/in/a.txt\n"
                                    "    chmod -w @/out/in/a.txt\n" +
                                    addA);
    EXPECT_EQ(listing(), built);
    EXPECT_EQ(build({"-echo"}), heading +
                                    "    Copying a.txt\n"
                                    "    cp in/a.txt @/out/in/a.txt\n"
                                    "    chmod -w @/out/in/a.txt\n" +
                                    addA);
}

TEST_F(Staging, AFailedCopyStopsTheBuildBeforeItsReadOnlyAndPackageSteps)
{
    QFile::remove(work.file("in/a.txt"));
    EXPECT_EQ(build(), heading +
                           "    Copying a.txt\n"
                           "    cp failed: can't copy \"@/in/a.txt\" to \"@/out/in/a.txt\"\n");
    EXPECT_FALSE(QFileInfo::exists(work.file("out/in/b c.txt")));
    EXPECT_FALSE(QFileInfo::exists(work.file("pkg.hdq")));
}

TEST_F(Staging, CopiesMayLeaveTheTreeAndAnEmptyMemberNameLeavesOutThePackage)
{
    stage("stage_output_filepath=\"$(OutDir)/../staged/$(InputName) copy.$(InputExt)\" "
          "stage_package_member_name=\"\"",
          "    <file Name=\"a.txt\" file_name=\"in/a.txt\"/>\n");
    EXPECT_EQ(build(), heading + "    Copying a.txt\n");
    EXPECT_EQ(work.read("staged/a copy.txt"), "alpha\n");
    EXPECT_FALSE(QFileInfo::exists(work.file("pkg.hdq")));
}

namespace {

/// A "Combining" project "sums" whose command is the fake archiver over its two files that
/// are not excluded.
class Combining : public Scenario
{
protected:
    Combining()
    {
        for (const char *file : {"a.txt", "b.txt", "c.txt"})
            work.write(file, file);
        combine("No");
    }
    void combine(const QByteArray &readOnly)
    {
        setProject("sums", "Combining",
                   "combine_output_filepath=\"out/sums.a\" combine_set_readonly=\"" + readOnly +
                       "\" combine_command=\"$(BenchDir)/gcc/bin/ar rc "
                       "&quot;$(CombiningOutputFilePath)&quot; $(CombiningRelInputPaths)\"",
                   "    <file Name=\"a.txt\" file_name=\"a.txt\"/>\n"
                   "    <file Name=\"b.txt\" file_name=\"b.txt\"/>\n"
                   "    <file Name=\"c.txt\" file_name=\"c.txt\">\n"
                   "      <configuration Name=\"Common\" build_exclude_from_build=\"Yes\"/>\n"
                   "    </file>\n");
    }
    const QString heading = "  Building \"sums\" in configuration \"Debug\"\n";
    const QString combining = heading + "    Combining sums\n";
};

} // namespace

TEST_F(Combining, RunsItsCommandOnceOverItsFiles)
{
    EXPECT_EQ(build(), combining);
    EXPECT_EQ(tools.take(), QStringList{"ar rc @/out/sums.a a.txt b.txt"});
    EXPECT_TRUE(writable("out/sums.a"));

    EXPECT_EQ(build({"-verbose"}), heading + "  'out/sums.a' is up to date\n");
    EXPECT_EQ(tools.take(), QStringList{});

    setTime("out/sums.a", 1000000000);
    EXPECT_EQ(build(), combining);
    EXPECT_EQ(tools.take().size(), 1);
    EXPECT_EQ(build(), heading);
}

TEST_F(Combining, AFailedCommandIsNotMadeReadOnlyAndRunsAgain)
{
    combine("Yes");
    EXPECT_EQ(build({}, "ar"), combining);
    EXPECT_TRUE(writable("out/sums.a"));

    // Once the project has a record, it knows that the output a failed command left behind
    // was not made.
    QDir(work.file("out")).removeRecursively();
    combine("No");
    build();
    setTime("out/sums.a", 1000000000);
    EXPECT_EQ(build({}, "ar"), combining);
    EXPECT_EQ(build(), combining);
    EXPECT_EQ(build(), heading);
}
