#include "buildfixture.h"

namespace {

QByteArray projectXml(const char *name, const char *common, const char *more = "")
{
    return QByteArray("  <project Name=\"") + name + "\">\n    <configuration Name=\"Common\" " +
           common + "/>\n" + more + "  </project>\n";
}

class BuildWalk : public BuildFixture
{
protected:
    // App and Tool need Lib, Tool needs App too; Off is out of Debug builds.
    void loadLibraryChain()
    {
        load("  <configuration Name=\"Debug\"/>\n  <configuration Name=\"Release\"/>\n" +
             projectXml("App", "project_dependencies=\"Lib\"") +
             projectXml("Tool", "project_dependencies=\"Lib;App\"") + projectXml("Lib", "") +
             projectXml("Off", "project_dependencies=\"Lib\"",
                        "    <configuration Name=\"Debug\" build_exclude_from_build=\"Yes\"/>\n"));
    }

    GroupBuilder builder;
};

} // namespace

TEST_F(BuildWalk, DependenciesFirstAndOncePerConfiguration)
{
    loadLibraryChain();
    system->working = {"Lib"};
    ProjectElement *root = projectSystem->solutionElement();
    EXPECT_EQ(system->build(root, "Debug", &builder, BUILD_QUIET, true, false), 1);
    EXPECT_EQ(builder.lines, (QStringList{"Building \"Lib\" in configuration \"Debug\"", "end",
                                          "Building \"App\" in configuration \"Debug\"", "end",
                                          "Building \"Tool\" in configuration \"Debug\"", "end"}));
    EXPECT_EQ(system->calls, (QStringList{"Lib/Debug", "App/Debug", "Tool/Debug"}));

    // A rebuilt dependency marks its dependants built; the excluded project has no record.
    bool flag = false;
    EXPECT_TRUE(system->justBuilt(project("Tool"), "Debug", flag));
    EXPECT_TRUE(flag);
    EXPECT_FALSE(system->justBuilt(project("Off"), "Debug", flag));
    EXPECT_FALSE(system->justBuilt(project("Lib"), "Release", flag));

    // In Release the exclusion no longer applies; nothing did work, so the result is 0.
    system->calls.clear();
    system->working.clear();
    EXPECT_EQ(system->build(root, "Release", nullptr, BUILD_QUIET, true, false), 0);
    EXPECT_EQ(system->calls,
              (QStringList{"Lib/Release", "App/Release", "Tool/Release", "Off/Release"}));
    ASSERT_EQ(system->builtList().size(), 4);
    EXPECT_FALSE(system->builtList().last().built);
}

TEST_F(BuildWalk, VerbFollowsTheCleanBitsAndNodesNameTheirProject)
{
    load("  <configuration Name=\"Debug\"/>\n" +
         projectXml("App", "", "    <folder Name=\"Src\"/>\n"));
    ProjectElement *app = project("App");
    system->build(app, "Debug", &builder, BUILD_CLEAN | BUILD_FORCE | BUILD_CLEAN_ONLY, true,
                  false);
    system->build(app, "Debug", &builder, BUILD_CLEAN, true, false);
    system->build(app, "Debug", &builder, BUILD_FORCE | BUILD_QUIET, true, false);
    EXPECT_EQ(builder.lines, (QStringList{"Cleaning \"App\" in configuration \"Debug\"", "end",
                                          "Rebuilding \"App\" in configuration \"Debug\"", "end",
                                          "Building \"App\" in configuration \"Debug\"", "end"}));

    // A folder, or a project without its dependencies, is built as a node and closed by name.
    builder.lines.clear();
    system->calls.clear();
    ProjectElement *folder = app->firstChild()->nextSibling();
    ASSERT_EQ(folder->type(), ProjectElement::Folder);
    system->build(folder, "Debug", &builder, BUILD_QUIET, true, false);
    system->build(app, "Debug", &builder, BUILD_QUIET, false, false);
    EXPECT_EQ(builder.lines,
              (QStringList{"Building \"App\" in configuration \"Debug\"", "end Src",
                           "Building \"App\" in configuration \"Debug\"", "end App"}));
    EXPECT_EQ(system->calls, (QStringList{"Src/Debug", "App/Debug"}));
}

TEST_F(BuildWalk, BatchListsArePassedDown)
{
    // App asks for both configurations, whatever their spelling, Lib for Release alone.
    load("  <configuration Name=\"Debug\"/>\n  <configuration Name=\"Release\"/>\n" +
         projectXml("App", "batch_build_configurations=\"debug;Release;Nope\" "
                           "project_dependencies=\"Lib\"") +
         projectXml("Lib", "batch_build_configurations=\"Release\""));
    EXPECT_EQ(system->build(project("App"), "Debug", &builder, BUILD_QUIET, true, true), 0);
    EXPECT_EQ(system->calls, (QStringList{"Lib/Release", "App/Debug", "App/Release"}));
}

TEST_F(BuildWalk, AnErrorOrAStopEndsEverything)
{
    loadLibraryChain();
    ProjectElement *root = projectSystem->solutionElement();
    system->failing = {"App"};
    EXPECT_EQ(system->build(root, "Debug", &builder, BUILD_QUIET, true, false), 2);
    EXPECT_EQ(system->calls, (QStringList{"Lib/Debug", "App/Debug"}));
    // The failed project's group is closed as usual, and the build closes one more.
    EXPECT_EQ(builder.lines,
              (QStringList{"Building \"Lib\" in configuration \"Debug\"", "end",
                           "Building \"App\" in configuration \"Debug\"", "end", "end S"}));

    // The flags are cleared at the start of the next build; a stop wins over an error.
    system->calls.clear();
    system->failing = {"Lib"};
    system->stopping = {"Lib"};
    EXPECT_EQ(system->build(root, "Release", nullptr, BUILD_QUIET, true, false), 3);
    EXPECT_EQ(system->calls, QStringList{"Lib/Release"});
    system->failing.clear();
    system->stopping.clear();
    system->calls.clear();
    EXPECT_EQ(system->build(root, "Release", nullptr, BUILD_QUIET, true, false), 0);
    EXPECT_EQ(system->calls.size(), 4);
}

TEST_F(BuildWalk, ACycleIsToldOnceAndEachProjectBuildsOnce)
{
    load("  <configuration Name=\"Common\" batch_build_configurations=\"Debug;Release\"/>\n"
         "  <configuration Name=\"Debug\"/>\n  <configuration Name=\"Release\"/>\n" +
         projectXml("A", "project_dependencies=\"B\"") +
         projectXml("B", "project_dependencies=\"C\"") +
         projectXml("C", "project_dependencies=\"A\"") +
         projectXml("D", "project_dependencies=\"C;D\""));
    ProjectElement *root = projectSystem->solutionElement();
    EXPECT_EQ(system->build(root, "Debug", &builder, BUILD_QUIET, true, false), 0);
    EXPECT_EQ(system->calls, (QStringList{"C/Debug", "B/Debug", "A/Debug", "D/Debug"}));
    EXPECT_EQ(builder.lines.filter("error:"),
              (QStringList{"error: project dependency cycle: \"A\" -> \"B\" -> \"C\" -> \"A\"",
                           "error: project dependency cycle: \"D\" -> \"D\""}));

    // Met again in other configurations of a batch build, the cycle is still told once.
    builder.lines.clear();
    system->calls.clear();
    system->build(root, "Debug", &builder, BUILD_QUIET, true, true);
    EXPECT_EQ(builder.lines.filter("error:").size(), 2);
    EXPECT_EQ(system->calls.size(), 8);
    EXPECT_EQ(system->calls.removeDuplicates(), 0);
}

TEST_F(BuildWalk, TooDeepAChainOfDependenciesIsRefused)
{
    QByteArray body = "  <configuration Name=\"Debug\"/>\n";
    const int depth = 1100;
    for (int i = 0; i < depth; ++i) {
        const QByteArray dependency =
            i + 1 < depth ? "project_dependencies=\"P" + QByteArray::number(i + 1) + "\"" : "";
        body += projectXml(("P" + QByteArray::number(i)).constData(), dependency.constData());
    }
    load(body);
    EXPECT_EQ(system->build(project("P0"), "Debug", &builder, BUILD_QUIET, true, false), 2);
    EXPECT_TRUE(system->calls.isEmpty());
    ASSERT_FALSE(builder.lines.isEmpty());
    EXPECT_TRUE(builder.lines.first().startsWith("error: project dependencies nested too deeply"));
}
