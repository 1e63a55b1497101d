#include "foundation/product.h"
#include "settings/environmentsettings.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QSettings>

namespace {

const char *const usage = "Halden for ARM tidemake   Release 1.7\n"
                          "Copyright (c) 2026 Halden Software. All rights reserved.\n"
                          "\n"
                          "\n"
                          "Usage: tidemake [option] <project>.hdp\n"
                          "\n"
                          "  -batch            batch build\n"
                          "  -config 'name'    build in 'name' configuration\n"
                          "  -clean            remove output files as build occurs\n"
                          "  -D macro=value    set the value of a macro\n"
                          "  -echo             show command lines as they are executed\n"
                          "  -project 'name'   build/batch build 'name' project\n"
                          "  -rebuild          always do the build step\n"
                          "  -show             show command lines but don't execute them\n"
                          "  -BenchDir 'name' set $(BenchDir) to 'name'\n"
                          "  -solution 'name'  build/batch build 'name' solution\n"
                          "  -verbose          show build information\n"
                          "  -exitstatus       exit with status 2 if the build fails\n";

// Runs tidemake in a scratch directory of its own with its own settings store.
class TidemakeRun : public ::testing::Test
{
protected:
    RunResult run(const QStringList &arguments)
    {
        return runTidemake(arguments, work.path(), settings.path());
    }

    // The standard error lines the program writes for `messages`.
    QString reported(const QStringList &messages)
    {
        QString text;
        for (const QString &message : messages)
            text += tidemakeExecutable() + ": " + message + "\n";
        return text;
    }

    // The global macros the settings store holds after a run.
    QStringList globalMacros()
    {
        const QString file =
            settings.path() + "/.config/" + Get_OWNER() + "/" + Get_BENCH_BRANDING() + ".ini";
        QSettings store(file, QSettings::IniFormat);
        return store.value(EnvironmentSettings::rootKey() + "Environment/Macros/Global Macros")
            .toStringList();
    }

    ScratchDir work;
    ScratchDir settings;
};

} // namespace

TEST_F(TidemakeRun, PrintsUsageWithoutArgumentsOrOnHelp)
{
    const RunResult bare = run({});
    EXPECT_EQ(bare.exitCode, 0);
    EXPECT_EQ(bare.out, "");
    EXPECT_EQ(bare.err, usage);
    // -help ends the run at once, with status 0 even after an error.
    const RunResult help = run({"-x", "-help", "-y"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.err, reported({"unrecognised option -x"}) + usage);
}

TEST_F(TidemakeRun, ReportsEveryParseErrorAndExitsWithOne)
{
    const RunResult result = run({"-x", "a.hdp", "-DNAME", "@missing", "-config", "Debug",
                                  "-project", "p", "-solution", "s", "-config"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    // Parse errors stop the run before the checks of the options.
    EXPECT_EQ(result.err, reported({"unrecognised option -x", "unrecognised option -DNAME",
                                    "can't open indirect file missing: No such file or directory",
                                    "expected argument for option -config"}));
}

TEST_F(TidemakeRun, RefusesIncompleteCommandLines)
{
    const QList<QPair<QStringList, QString>> cases = {
        {{"-solution", "", "-project", "p"}, "-solution and -project are exclusive."},
        {{"-solution", "s", "-project", "", "a.hdp", "-config", "D"},
         "-solution and -project are exclusive."},
        {{"-config", "Debug"}, ".hdp file must be specified."},
        {{"a.hdp"}, "-config must be specified."},
        {{"a.hdp", "-config", ""}, "-config must be specified."},
    };
    for (const auto &c : cases) {
        const RunResult result = run(c.first);
        EXPECT_EQ(result.exitCode, 1) << c.first.join(' ').toStdString();
        EXPECT_EQ(result.err, reported({c.second})) << c.first.join(' ').toStdString();
    }
}

TEST_F(TidemakeRun, AcceptsAValidCommandLine)
{
    work.write("args", "# options\n-config Debug \"b.hdp\"\n-project \"\"\n");
    const QList<QPair<QStringList, QString>> cases = {
        {{"a.hdp", "b.hdp", "-config", "Debug"}, "b.hdp"},
        {{"a.hdp", "@args"}, "b.hdp"},
        {{"-batch", "-clean", "-echo", "-show", "-rebuild", "-verbose", "-BenchDir", "/x",
          "-config", "Release", "a.hdp"},
         "a.hdp"},
    };
    // The options pass their checks and the last file named is the one loaded; none exists.
    for (const auto &c : cases) {
        const RunResult result = run(c.first);
        EXPECT_EQ(result.exitCode, 0) << c.first.join(' ').toStdString();
        EXPECT_FALSE(result.err.contains(tidemakeExecutable())) << result.err.toStdString();
        EXPECT_TRUE(result.err.contains(c.second)) << result.err.toStdString();
    }
}

TEST_F(TidemakeRun, ReportsBadIndirectFiles)
{
    work.write("self", "@self\n");
    work.write("open", "a.hdp\n-config \"Debug\n");
    const RunResult self = run({"@self", "a.hdp", "-config", "Debug"});
    EXPECT_EQ(self.exitCode, 1);
    EXPECT_EQ(self.err, reported({"too many indirect files"}));
    const RunResult open = run({"@open"});
    EXPECT_EQ(open.exitCode, 1);
    EXPECT_EQ(open.err, reported({"unterminated string in indirect file open(2)"}));
}

TEST_F(TidemakeRun, DefinesGlobalMacrosForGood)
{
    EXPECT_EQ(run({"-D", "X=1", "-config", "Debug", "a.hdp"}).exitCode, 0);
    EXPECT_EQ(globalMacros(), QStringList{"X=1"});
    EXPECT_EQ(run({"-D", "A=b=c", "-D", "B=", "-config", "Debug", "a.hdp"}).exitCode, 0);
    EXPECT_EQ(globalMacros(), QStringList({"A=b=c", "X=1"}));
    // The settings change even when the command line is refused later.
    const RunResult refused = run({"-D", "X", "-D", "A="});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(globalMacros().isEmpty());
}
