// The build request as a user meets it: the built tidemake run on solution files. The
// projects are of a type that makes nothing of its own, so no tool chain is needed.

#include "enginefixture.h"

namespace {

const char *const objectNeedingLib = "project_dependencies=\"Lib\" project_type=\"Object file\"";

class BuildRequest : public ::testing::Test
{
protected:
    BuildRequest()
    {
        scratch.write("sub.hdp", "<!DOCTYPE Tarnbench_Project_File>\n"
                                 "<solution Name=\"Sub\" version=\"1\">\n" +
                                     projectXml("App", objectNeedingLib) + "</solution>\n");
        scratch.write(
            "app.hdp",
            solutionText(
                "  <configuration Name=\"Common\" batch_build_configurations=\"Release;Debug\"/>\n"
                "  <configuration Name=\"Debug\"/>\n"
                "  <configuration Name=\"Release\"/>\n"
                "  <configuration Name=\"Secret\" hidden=\"Yes\"/>\n" +
                projectXml("App", objectNeedingLib, "    <configuration Name=\"OnlyHere\"/>\n") +
                projectXml("Lib", "project_type=\"Object file\"") +
                "  <import file_name=\"sub.hdp\"/>\n"));
        scratch.write("bad.hdp", solutionText("  <project Name=\"x\">\n"));
    }

    /// Runs tidemake with `arguments`, words parted by spaces.
    RunResult run(const QString &arguments)
    {
        return runTidemake(arguments.split(' '), scratch.path(), scratch.file("home"));
    }

    ScratchDir scratch;
};

// The lines that announce the builds "Project/Configuration" listed in `builds`.
QString building(const QString &builds)
{
    QString lines;
    for (const QString &build : builds.split(' '))
        lines += QStringLiteral("  Building \"%1\" in configuration \"%2\"\n")
                     .arg(build.section('/', 0, 0), build.section('/', 1));
    return lines;
}

} // namespace

TEST_F(BuildRequest, BuildsTheChosenElementsInDependencyOrderOrRefuses)
{
    const QString configurations = "' supported configurations:\nDebug\nRelease\n";
    const QList<std::tuple<QString, int, QString, QString>> cases = {
        {"-config Debug app.hdp", 0, building("Lib/Debug App/Debug App/Debug"), ""},
        // The imported solution's App, whose Lib is found in the enclosing solution.
        {"-config Release -project App(Sub) app.hdp", 0, building("Lib/Release App/Release"), ""},
        {"-config Debug -solution Sub app.hdp", 0, building("Lib/Debug App/Debug"), ""},
        // A batch build takes the batch list in its order.
        {"-config Debug -batch -project Lib app.hdp", 0, building("Lib/Release Lib/Debug"), ""},
        // A solution that can't be loaded is reported, and the run ends well.
        {"-config Debug bad.hdp", 0, "", "load error: bad XML file - tagName mismatch\n"},
        {"-config Debug -project Nope app.hdp", 1,
         "can't find project 'Nope' supported projects:\nApp\nApp(Sub)\nLib\n", ""},
        {"-config Debug -solution Nope app.hdp", 1,
         "can't find solution 'Nope' supported solutions:\nS\nSub\n", ""},
        // Hidden configurations and those of projects alone are not offered.
        {"-config OnlyHere -project App app.hdp", 1,
         "can't find configuration 'OnlyHere" + configurations, ""},
        {"-config Secret app.hdp", 1, "can't find configuration 'Secret" + configurations, ""},
    };
    for (const auto &[arguments, exitCode, out, err] : cases) {
        const RunResult result = run(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << arguments.toStdString();
        EXPECT_EQ(result.out, out);
        EXPECT_EQ(result.err, err);
    }
}
