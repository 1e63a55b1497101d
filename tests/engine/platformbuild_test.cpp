#include "enginefixture.h"

#include <QRegularExpression>

#include <functional>

namespace {

constexpr int verbose = 0;
constexpr int quiet = BUILD_QUIET;
constexpr int cleanOnly = BUILD_CLEAN | BUILD_FORCE | BUILD_CLEAN_ONLY;

class PlatformBuild : public EngineTest
{
protected:
    /// App links a.c, b.c and the library Lib; a.c includes h.h, as a.d says. All is made and up
    /// to date: sources at 100, objects at 200, the library at 300, the program at 400.
    void loadBuilt()
    {
        disk->files.clear();
        disk->invalidateAll();
        load(projectXml("App",
                        "project_type=\"Executable\" project_dependencies=\"Lib\" "
                        "linker_output_format=\"None\" linker_map_file=\"No\"",
                        "    <folder Name=\"Source\">\n"
                        "      <file Name=\"a.c\" file_name=\"src/a.c\"/>\n"
                        "      <file Name=\"b.c\" file_name=\"src/b.c\"/>\n"
                        "    </folder>\n") +
             projectXml("Lib", "project_type=\"Library\"",
                        "    <file Name=\"l.c\" file_name=\"src/l.c\"/>\n"));
        for (const char *source : {"src/a.c", "src/b.c", "src/l.c", "include/h.h"})
            disk->touch(at(source), 100);
        for (const char *object : {"Debug/a.o", "Debug/b.o", "Debug/l.o"})
            disk->touch(at(object), 200);
        disk->touch(at("Debug/Lib.a"), 300);
        disk->touch(at("Debug/App.elf"), 400);
        disk->touch(at("Debug/a.d"), 200, "Debug/a.o: src/a.c \\\n include/h.h\n");
        disk->touch(at("Debug/b.d"), 200, "Debug/b.o: src/b.c\n");
        system->dependencyCache.clear();
    }
    bool buildProject(const QString &name, int type)
    {
        return system->platformBuild(element(name), "Debug", &builder, type);
    }
    /// Sets `name` to `value` in the "Common" configuration of the element `of`.
    void set(const char *of, const char *name, const char *value)
    {
        projectSystem->setProperty(element(of), name, "Common", value);
    }

    const QString compileA = "command 2 Debug/a.o src/a.c";
    const QString link = "command 10 Debug/App.elf Debug/a.o Debug/b.o " + at("Debug/Lib.a");
    const QString upToDateA = "success: 'Debug/a.o' is up to date";
    const QString upToDateB = "success: 'Debug/b.o' is up to date";
};

} // namespace

TEST_F(PlatformBuild, UpToDateSaysSoOnlyWhenVerboseAndANewerHeaderRebuildsAndRelinks)
{
    loadBuilt();
    EXPECT_FALSE(buildProject("App", quiet));
    EXPECT_EQ(events(), QStringList());
    EXPECT_FALSE(buildProject("App", verbose));
    EXPECT_EQ(events(),
              (QStringList{upToDateA, upToDateB, "success: 'Debug/App.elf' is up to date"}));
    // The list read from the dependency file is kept for an object found up to date.
    EXPECT_EQ(system->dependencyCache.value(at("Debug/a.o")),
              (QStringList{at("src/a.c"), at("include/h.h")}));

    disk->touch(at("include/h.h"), 250);
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(events(), (QStringList{"message: " + at("include/h.h") + " is newer than Debug/a.o.",
                                     compileA, upToDateB, link}));
    EXPECT_TRUE(system->dependencyCache.value(at("Debug/a.o")).isEmpty());
}

TEST_F(PlatformBuild, WhatPutsAnObjectOutOfDateAndHowItIsTold)
{
    const QString h = at("include/h.h"), a = at("src/a.c");
    const QList<std::pair<std::function<void()>, QStringList>> cases = {
        // A header with the very time of the object keeps it up to date.
        {[&] { disk->touch(h, 200); }, {}},
        {[&] { disk->erase(h); }, {"message: " + h + " does not exist.", compileA}},
        // Without its dependency file an object depends on its source alone.
        {[&] { disk->erase(at("Debug/a.d")), disk->touch(h, 300); }, {}},
        {[&] { disk->erase(at("Debug/a.d")), disk->touch(a, 300); },
         {"message: " + a + " is newer than Debug/a.o.", compileA}},
        // A source gone since the last build: out of date, and the tool gets to say why.
        {[&] { disk->erase(a); }, {"message: " + a + " does not exist.", compileA}},
        {[&] { disk->erase(at("Debug/b.o")); },
         {"message: Debug/b.o does not exist.", "command 2 Debug/b.o src/b.c"}},
        // An object of the library is no input of the program.
        {[&] { disk->touch(at("Debug/l.o"), 350); }, {}},
    };
    for (const auto &[change, expected] : cases) {
        loadBuilt();
        change();
        EXPECT_EQ(buildProject("App", verbose), !expected.isEmpty());
        EXPECT_EQ(events().filter(QRegularExpression("^(message|command 2)")), expected);
    }
}

TEST_F(PlatformBuild, ALibraryRebuiltInThisRunForcesTheLink)
{
    loadBuilt();
    // The program is still newer than the library.
    disk->touch(at("Debug/l.o"), 350);
    EXPECT_EQ(system->build(element("App"), "Debug", &builder, verbose, true, false), 1);
    EXPECT_EQ(events().filter(QRegularExpression("^(message|command)")),
              (QStringList{"message: Debug/l.o is newer than Debug/Lib.a.",
                           "command 11 Debug/Lib.a Debug/l.o", link}));
}

TEST_F(PlatformBuild, LinkSideFilesAndPostBuildCommand)
{
    loadBuilt();
    set("App", "linker_output_format", "bin");
    set("App", "linker_map_file", "Yes");
    set("App", "linker_post_build_command", "sh -c \"echo $(ProjectName)");
    disk->touch(at("Debug/App.elf"), QDateTime::currentMSecsSinceEpoch() + 100000);
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(
        events(),
        (QStringList{upToDateA, upToDateB, "message: " + at("Debug/App.bin") + " does not exist.",
                     link, "group Post build command ", "command sh -c \"echo App\"", "end"}));
    disk->touch(at("Debug/App.bin"), 1);
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(events().value(2), "message: " + at("Debug/App.map") + " does not exist.");
    disk->touch(at("Debug/App.map"), 1);
    EXPECT_FALSE(buildProject("App", quiet));

    // A failed link runs no post-build command.
    builder.failOn = "10";
    EXPECT_TRUE(buildProject("App", BUILD_FORCE | quiet));
    EXPECT_EQ(events().last(), link);
}

TEST_F(PlatformBuild, RebuildRunsAllAndRemovesNothingCleanRemovesAndRunsNothing)
{
    loadBuilt();
    EXPECT_TRUE(buildProject("App", BUILD_FORCE));
    EXPECT_EQ(events(), (QStringList{compileA, "command 2 Debug/b.o src/b.c", link}));
    EXPECT_TRUE(disk->removed.isEmpty());
    // A failed command ends the walk.
    builder.failOn = "2";
    EXPECT_FALSE(buildProject("App", BUILD_FORCE));
    EXPECT_EQ(events(), QStringList{compileA});
    system->errorOccurred = false;

    disk->readOnly << at("Debug/b.o");
    EXPECT_TRUE(buildProject("App", cleanOnly));
    EXPECT_EQ(events(), (QStringList{"note: Remove " + at("Debug/a.o"),
                                     "error: Cannot remove " + at("Debug/b.o"),
                                     "note: Remove " + at("Debug/App.elf")}));
    // Quiet, or with no builder at all, the same removals without a word.
    EXPECT_TRUE(buildProject("Lib", cleanOnly | quiet));
    EXPECT_EQ(events(), QStringList());
    disk->touch(at("Debug/a.o"), 200);
    EXPECT_TRUE(system->platformBuild(element("App"), "Debug", nullptr, cleanOnly));
    for (const char *gone : {"Debug/a.o", "Debug/l.o", "Debug/Lib.a", "Debug/App.elf"})
        EXPECT_FALSE(disk->files.contains(at(gone))) << gone;
}

TEST_F(PlatformBuild, ExternalProjectsRunTheirCommandsWhole)
{
    load(projectXml("Ext", "project_type=\"Externally Built Executable\" "
                           "external_build_command=\"make $(X) all\" "
                           "external_clean_command=\"make clean\" "
                           "external_build_file_name=\"out/x.elf\""));
    EXPECT_FALSE(buildProject("Ext", quiet));
    EXPECT_EQ(events(),
              (QStringList{"init", "dir " + scratch.path(), "group Running Build command Ext",
                           "command \"make $(X) all\"", "outputs " + at("out/x.elf"), "end"}));
    EXPECT_TRUE(buildProject("Ext", cleanOnly | quiet));
    EXPECT_EQ(events().mid(2),
              (QStringList{"group Running Clean command Ext", "command \"make clean\"", "end"}));
}

TEST_F(PlatformBuild, EachFileGetsItsOwnIntermediateDirectoryWhenItNamesOne)
{
    // Directories that use no macro of a file are worked out once per project; one that does
    // differs from file to file.
    loadBuilt();
    set("App", "build_intermediate_directory", "Debug/$(InputName)");
    EXPECT_TRUE(
        system->build(element("App"), "Debug", &builder, BUILD_FORCE | quiet, false, false));
    EXPECT_EQ(events().filter(QRegularExpression("^command 2")),
              (QStringList{"command 2 Debug/a/a.o src/a.c", "command 2 Debug/b/b.o src/b.c"}));
}
