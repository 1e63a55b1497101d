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
                          "  -exitstatus       exit with status 2 if the build fails\n"
                          "  -j N              run up to N commands at once\n"
                          "  -compdb           write compile_commands.json instead of building\n";

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

TEST_F(TidemakeRun, ChecksTheCommandLine)
{
    work.write("open", "a.hdp\n-config \"Debug\n");
    work.write("args", "# options\n-config Debug \"b.hdp\"\n-project \"\"\n");
    // Words parted by spaces, '' an empty one; the messages of a refusal parted by "|". Every
    // parse error is told, and they stop the run before the checks of the options. Accepted,
    // the last file named is the one loaded; none exists.
    const QList<QPair<QString, QString>> cases = {
        {"-x a.hdp -DNAME @missing -config Debug -project p -solution s -config",
         "unrecognised option -x|unrecognised option -DNAME|can't open indirect file missing: "
         "No such file or directory|expected argument for option -config"},
        {"@open", "unterminated string in indirect file open(2)"},
        {"-solution '' -project p", "-solution and -project are exclusive."},
        {"-solution s -project '' a.hdp -config D", "-solution and -project are exclusive."},
        {"-config Debug", ".hdp file must be specified."},
        {"a.hdp", "-config must be specified."},
        {"a.hdp -config ''", "-config must be specified."},
        {"a.hdp @args", "load error: b.hdp does not exist"},
        {"-batch -clean -echo -show -rebuild -verbose -BenchDir /x -config Release a.hdp",
         "load error: a.hdp does not exist"},
    };
    for (const auto &[line, message] : cases) {
        const QStringList arguments = line.split(' ').replaceInStrings("''", "");
        const bool accepted = message.startsWith("load error: ");
        const RunResult result = run(arguments);
        EXPECT_EQ(result.exitCode, accepted ? 0 : 1) << line.toStdString();
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, accepted ? message + "\n" : reported(message.split('|')));
    }
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
