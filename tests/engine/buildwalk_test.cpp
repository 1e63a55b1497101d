#include "enginefixture.h"

namespace {

const QByteArray release = "  <configuration Name=\"Release\"/>\n";

class BuildWalk : public EngineTest
{
protected:
    BuildWalk() { system->walkOnly = true; }

    // App and Tool need Lib, Tool needs App too; Off is out of Debug builds.
    ProjectElement *loadLibraryChain()
    {
        return load(
            release + projectXml("App", "project_dependencies=\"Lib\"") +
            projectXml("Tool", "project_dependencies=\"Lib;App\"") + projectXml("Lib", "") +
            projectXml("Off", "project_dependencies=\"Lib\"",
                       "    <configuration Name=\"Debug\" build_exclude_from_build=\"Yes\"/>\n"));
    }
    /// Builds `element` with the calls of this build alone recorded.
    int build(ProjectElement *element, const QString &configuration, int type = BUILD_QUIET,
              bool batch = false, bool withDependencies = true)
    {
        system->calls.clear();
        return system->build(element, configuration, &builder, type, withDependencies, batch);
    }
    static QString heading(const char *verb, const char *name)
    {
        return QStringLiteral("group %1 \"%2\" in configuration \"Debug\"").arg(verb, name);
    }
};

} // namespace

TEST_F(BuildWalk, DependenciesFirstAndOncePerConfiguration)
{
    ProjectElement *root = loadLibraryChain();
    system->working = {"Lib"};
    EXPECT_EQ(build(root, "Debug"), 1);
    EXPECT_EQ(builder.take(),
              (QStringList{heading("Building", "Lib"), "end", heading("Building", "App"), "end",
                           heading("Building", "Tool"), "end"}));
    EXPECT_EQ(system->calls.join(' '), "Lib/Debug App/Debug Tool/Debug");

    // A rebuilt dependency marks its dependants built; the excluded project has no record.
    bool flag = false;
    EXPECT_TRUE(system->justBuilt(element("Tool"), "Debug", flag));
    EXPECT_TRUE(flag);
    EXPECT_FALSE(system->justBuilt(element("Off"), "Debug", flag));

    // In Release the exclusion no longer applies; nothing did work, so the result is 0.
    system->working.clear();
    EXPECT_EQ(build(root, "Release"), 0);
    EXPECT_EQ(system->calls.join(' '), "Lib/Release App/Release Tool/Release Off/Release");
}

TEST_F(BuildWalk, VerbFollowsTheCleanBitsAndNodesNameTheirProject)
{
    load(projectXml("App", "", "    <folder Name=\"Src\"/>\n"));
    ProjectElement *app = element("App");
    build(app, "Debug", BUILD_CLEAN | BUILD_FORCE | BUILD_CLEAN_ONLY);
    build(app, "Debug", BUILD_CLEAN);
    // A folder, or a project without its dependencies, is built as a node of its project.
    build(element("Src"), "Debug");
    build(app, "Debug", BUILD_FORCE | BUILD_QUIET, false, false);
    EXPECT_EQ(builder.take(),
              (QStringList{heading("Cleaning", "App"), "end", heading("Rebuilding", "App"), "end",
                           heading("Building", "App"), "end", heading("Building", "App"), "end"}));
}

TEST_F(BuildWalk, BatchListsArePassedDown)
{
    // App asks for both configurations, whatever their spelling, Lib for Release alone.
    load(release +
         projectXml("App", "batch_build_configurations=\"debug;Release;Nope\" "
                           "project_dependencies=\"Lib\"") +
         projectXml("Lib", "batch_build_configurations=\"Release\""));
    EXPECT_EQ(build(element("App"), "Debug", BUILD_QUIET, true), 0);
    EXPECT_EQ(system->calls.join(' '), "Lib/Release App/Debug App/Release");
}

TEST_F(BuildWalk, AnErrorOrAStopEndsEverything)
{
    ProjectElement *root = loadLibraryChain();
    system->failing = {"App"};
    EXPECT_EQ(build(root, "Debug"), 2);
    EXPECT_EQ(system->calls.join(' '), "Lib/Debug App/Debug");
    // The failed project's group is closed as usual, and the build closes one more.
    EXPECT_EQ(builder.take(), (QStringList{heading("Building", "Lib"), "end",
                                           heading("Building", "App"), "end", "end"}));

    // The flags are cleared at the start of the next build; a stop wins over an error.
    system->failing = {"Lib"};
    system->stopping = {"Lib"};
    EXPECT_EQ(build(root, "Release"), 3);
    EXPECT_EQ(system->calls, QStringList{"Lib/Release"});
    system->failing.clear();
    system->stopping.clear();
    EXPECT_EQ(build(root, "Release"), 0);
    EXPECT_EQ(system->calls.size(), 4);
}

TEST_F(BuildWalk, ACycleIsToldOnceAndEachProjectBuildsOnce)
{
    ProjectElement *root =
        load("  <configuration Name=\"Common\" batch_build_configurations=\"Debug;Release\"/>\n" +
             release + projectXml("A", "project_dependencies=\"B\"") +
             projectXml("B", "project_dependencies=\"C\"") +
             projectXml("C", "project_dependencies=\"A\"") +
             projectXml("D", "project_dependencies=\"C;D\""));
    EXPECT_EQ(build(root, "Debug"), 0);
    EXPECT_EQ(system->calls.join(' '), "C/Debug B/Debug A/Debug D/Debug");
    EXPECT_EQ(builder.errors,
              (QStringList{"project dependency cycle: \"A\" -> \"B\" -> \"C\" -> \"A\"",
                           "project dependency cycle: \"D\" -> \"D\""}));

    // Met again in other configurations of a batch build, the cycle is still told once.
    builder.clear();
    build(root, "Debug", BUILD_QUIET, true);
    EXPECT_EQ(builder.errors.size(), 2);
    EXPECT_EQ(system->calls.size(), 8);
    EXPECT_EQ(system->calls.removeDuplicates(), 0);
}
