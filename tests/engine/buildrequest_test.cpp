// The build request as a user meets it: the built tidemake run on solution files. The
// projects are of a type that makes nothing of its own, so no tool chain is needed.

#include "buildfixture.h"

namespace {

class BuildRequest : public ::testing::Test
{
protected:
    BuildRequest()
    {
        scratch.write("sub.hdp", "<!DOCTYPE Tarnbench_Project_File>\n"
                                 "<solution Name=\"Sub\" version=\"1\">\n"
                                 "  <project Name=\"App\">\n"
                                 "    <configuration Name=\"Common\" project_dependencies=\"Lib\" "
                                 "project_type=\"Object file\"/>\n"
                                 "  </project>\n"
                                 "</solution>\n");
        scratch.write(
            "app.hdp",
            "<!DOCTYPE Tarnbench_Project_File>\n"
            "<solution Name=\"Top\" version=\"1\">\n"
            "  <configuration Name=\"Common\" batch_build_configurations=\"Release;Debug\"/>\n"
            "  <configuration Name=\"Debug\"/>\n"
            "  <configuration Name=\"Release\"/>\n"
            "  <configuration Name=\"Secret\" hidden=\"Yes\"/>\n"
            "  <project Name=\"App\">\n"
            "    <configuration Name=\"Common\" project_dependencies=\"Lib\" "
            "project_type=\"Object file\"/>\n"
            "    <configuration Name=\"OnlyHere\"/>\n"
            "  </project>\n"
            "  <project Name=\"Lib\">\n"
            "    <configuration Name=\"Common\" project_type=\"Object file\"/>\n"
            "  </project>\n"
            "  <import file_name=\"sub.hdp\"/>\n"
            "</solution>\n");
    }

    RunResult run(const QStringList &arguments)
    {
        return runTidemake(arguments, scratch.path(), scratch.file("home"));
    }

    ScratchDir scratch;
};

} // namespace

TEST_F(BuildRequest, BuildsInDependencyOrder)
{
    const RunResult result = run({"-config", "Debug", "app.hdp"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "  Building \"Lib\" in configuration \"Debug\"\n"
                          "  Building \"App\" in configuration \"Debug\"\n"
                          "  Building \"App\" in configuration \"Debug\"\n");
    EXPECT_EQ(result.err, "");

    EXPECT_EQ(run({"-config", "Debug", "-clean", "-project", "Lib", "app.hdp"}).out,
              "  Cleaning \"Lib\" in configuration \"Debug\"\n");
}

TEST_F(BuildRequest, ChoosesTheElementAndTheConfigurations)
{
    // The imported solution's App, whose Lib is found in the enclosing solution.
    EXPECT_EQ(run({"-config", "Release", "-project", "App(Sub)", "app.hdp"}).out,
              "  Building \"Lib\" in configuration \"Release\"\n"
              "  Building \"App\" in configuration \"Release\"\n");
    EXPECT_EQ(run({"-config", "Debug", "-solution", "Sub", "app.hdp"}).out,
              "  Building \"Lib\" in configuration \"Debug\"\n"
              "  Building \"App\" in configuration \"Debug\"\n");
    // A batch build takes the batch list in its order.
    EXPECT_EQ(run({"-config", "Debug", "-batch", "-project", "Lib", "app.hdp"}).out,
              "  Building \"Lib\" in configuration \"Release\"\n"
              "  Building \"Lib\" in configuration \"Debug\"\n");
}

TEST_F(BuildRequest, RefusesWhatItCannotFind)
{
    RunResult result = run({"-config", "Debug", "-project", "Nope", "app.hdp"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "can't find project 'Nope' supported projects:\nApp\nApp(Sub)\nLib\n");

    result = run({"-config", "Debug", "-solution", "Nope", "app.hdp"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "can't find solution 'Nope' supported solutions:\nSub\nTop\n");

    // Hidden configurations and those of projects alone are not offered.
    for (const char *configuration : {"OnlyHere", "Secret", "Common"}) {
        result = run({"-config", configuration, "-project", "App", "app.hdp"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, QStringLiteral("can't find configuration '%1' supported "
                                             "configurations:\nDebug\nRelease\n")
                                  .arg(configuration));
    }
}

TEST_F(BuildRequest, ReportsLoadErrorsAndEndsWell)
{
    RunResult result = run({"-config", "Debug", "missing.hdp"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "load error: missing.hdp does not exist\n");

    scratch.write("bad.hdp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"a\">\n"
                             "  <project Name=\"x\">\n</solution>\n");
    result = run({"-config", "Debug", "bad.hdp"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(result.err.startsWith("load error: bad XML file - ")) << result.err.toStdString();
    EXPECT_EQ(result.err.count('\n'), 1);
}

TEST_F(BuildRequest, TellsADependencyCycleOnce)
{
    scratch.write("cycle.hdp", "<!DOCTYPE Tarnbench_Project_File>\n"
                               "<solution Name=\"C\" version=\"1\">\n"
                               "  <configuration Name=\"Debug\"/>\n"
                               "  <project Name=\"A\">\n"
                               "    <configuration Name=\"Common\" project_dependencies=\"B\" "
                               "project_type=\"Object file\"/>\n"
                               "  </project>\n"
                               "  <project Name=\"B\">\n"
                               "    <configuration Name=\"Common\" project_dependencies=\"A\" "
                               "project_type=\"Object file\"/>\n"
                               "  </project>\n"
                               "</solution>\n");
    const RunResult result = run({"-config", "Debug", "cycle.hdp"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "project dependency cycle: \"A\" -> \"B\" -> \"A\"\n"
                          "  Building \"B\" in configuration \"Debug\"\n"
                          "  Building \"A\" in configuration \"Debug\"\n");
}
