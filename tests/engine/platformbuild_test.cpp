#include "enginefixture.h"

namespace {

constexpr int verbose = 0;
constexpr int quiet = BUILD_QUIET;
constexpr int cleanOnly = BUILD_CLEAN | BUILD_FORCE | BUILD_CLEAN_ONLY;

// App links a.c, b.c and the library Lib; a.c includes h.h, as a.d says.
const QByteArray solution =
    "  <project Name=\"App\">\n"
    "    <configuration Name=\"Common\" project_type=\"Executable\" project_dependencies=\"Lib\" "
    "linker_output_format=\"None\" linker_map_file=\"No\"/>\n"
    "    <folder Name=\"Source\">\n"
    "      <file Name=\"a.c\" file_name=\"src/a.c\"/>\n"
    "      <file Name=\"b.c\" file_name=\"src/b.c\"/>\n"
    "    </folder>\n"
    "  </project>\n"
    "  <project Name=\"Lib\">\n"
    "    <configuration Name=\"Common\" project_type=\"Library\"/>\n"
    "    <file Name=\"l.c\" file_name=\"src/l.c\"/>\n"
    "  </project>\n";

class PlatformBuild : public EngineFixture
{
protected:
    /// Loads the solution with everything made and up to date: sources at 100, objects at 200,
    /// the library at 300, the program at 400.
    void loadBuilt(const QByteArray &more = QByteArray())
    {
        load(solution + more);
        for (const char *source : {"src/a.c", "src/b.c", "src/l.c", "include/h.h"})
            disk->touch(at(source), 100);
        for (const char *object : {"Debug/a.o", "Debug/b.o", "Debug/l.o"})
            disk->touch(at(object), 200);
        disk->touch(at("Debug/a.d"), 200, "Debug/a.o: src/a.c \\\n include/h.h\n");
        disk->touch(at("Debug/b.d"), 200, "Debug/b.o: src/b.c\n");
        disk->touch(at("Debug/Lib.a"), 300);
        disk->touch(at("Debug/App.elf"), 400);
    }

    QString runLink() const
    {
        return "run 10|Debug/App.elf|Debug/a.o|Debug/b.o|" + at("Debug/Lib.a");
    }
    const QString upToDateA = "success: 'Debug/a.o' is up to date";
    const QString upToDateB = "success: 'Debug/b.o' is up to date";
    const QString upToDateApp = "success: 'Debug/App.elf' is up to date";
};

} // namespace

TEST_F(PlatformBuild, UpToDateSaysSoOnlyWhenVerbose)
{
    loadBuilt();
    EXPECT_FALSE(buildProject("App", quiet));
    EXPECT_EQ(builder.take(), QStringList());
    EXPECT_FALSE(buildProject("App", verbose));
    EXPECT_EQ(builder.take(), (QStringList{upToDateA, upToDateB, upToDateApp}));
    EXPECT_FALSE(buildProject("Lib", verbose));
    EXPECT_EQ(builder.take(), (QStringList{"success: 'Debug/l.o' is up to date",
                                           "success: 'Debug/Lib.a' is up to date"}));

    // A header with the very time of the object keeps it up to date.
    disk->touch(at("include/h.h"), 200);
    EXPECT_FALSE(buildProject("App", quiet));
    // The lists read from dependency files are kept for objects found up to date.
    EXPECT_EQ(system->dependencyCache.value(at("Debug/a.o")),
              (QStringList{at("src/a.c"), at("include/h.h")}));
}

TEST_F(PlatformBuild, ANewerHeaderRebuildsItsObjectAndForcesTheLink)
{
    loadBuilt();
    disk->touch(at("include/h.h"), 250);
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(builder.take(),
              (QStringList{"message: " + at("include/h.h") + " is newer than Debug/a.o.",
                           "run 2|Debug/a.o|src/a.c", upToDateB, runLink()}));
    EXPECT_FALSE(system->dependencyCache.contains(at("Debug/a.o")));

    // Quiet, the same decisions and no explanation.
    EXPECT_TRUE(buildProject("App", quiet));
    EXPECT_EQ(builder.take(), (QStringList{"run 2|Debug/a.o|src/a.c", runLink()}));
}

TEST_F(PlatformBuild, DependencyFileAbsentOrNamingADeletedHeader)
{
    loadBuilt();
    disk->erase(at("include/h.h"));
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(builder.take().mid(0, 2),
              (QStringList{"message: " + at("include/h.h") + " does not exist.",
                           "run 2|Debug/a.o|src/a.c"}));

    // Without its dependency file an object depends on its source alone.
    disk->erase(at("Debug/a.d"));
    EXPECT_FALSE(buildProject("App", quiet));
    disk->touch(at("src/a.c"), 300);
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(builder.take().mid(0, 2),
              (QStringList{"message: " + at("src/a.c") + " is newer than Debug/a.o.",
                           "run 2|Debug/a.o|src/a.c"}));

    // A source gone since the last build: out of date, and the tool gets to say why.
    disk->erase(at("src/a.c"));
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(
        builder.take().mid(0, 2),
        (QStringList{"message: " + at("src/a.c") + " does not exist.", "run 2|Debug/a.o|src/a.c"}));
}

TEST_F(PlatformBuild, MissingOutputsAndChangedProperties)
{
    loadBuilt();
    disk->erase(at("Debug/b.o"));
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(builder.take(), (QStringList{upToDateA, "message: Debug/b.o does not exist.",
                                           "run 2|Debug/b.o|src/b.c", runLink()}));

    disk->touch(at("Debug/b.o"), 200);
    projectSystem->setProperty(element("a.c"), "c_preprocessor_definitions", "Common", "X");
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(builder.take().mid(0, 2),
              (QStringList{"message: Preprocessor Definitions property has changed.",
                           "run 2|Debug/a.o|src/a.c"}));
}

TEST_F(PlatformBuild, LinkAndArchiveDecisions)
{
    loadBuilt();
    // A library built earlier in this run forces the link; one of another configuration not.
    system->recordBuilt(project("Lib"), "Release", true);
    EXPECT_FALSE(buildProject("App", quiet));
    system->recordBuilt(project("Lib"), "Debug", true);
    EXPECT_TRUE(buildProject("App", quiet));
    EXPECT_EQ(builder.take(), QStringList{runLink()});

    // A newer input relinks; the library's own inputs are its objects.
    disk->touch(at("Debug/Lib.a"), 500);
    disk->touch(at("Debug/l.o"), 600);
    EXPECT_TRUE(buildProject("Lib", verbose));
    EXPECT_EQ(builder.take(), (QStringList{"success: 'Debug/l.o' is up to date",
                                           "message: Debug/l.o is newer than Debug/Lib.a.",
                                           "run 11|Debug/Lib.a|Debug/l.o"}));
}

TEST_F(PlatformBuild, LinkSideFilesAndPostBuildCommand)
{
    loadBuilt();
    projectSystem->setProperty(project("App"), "linker_output_format", "Common", "bin");
    projectSystem->setProperty(project("App"), "linker_map_file", "Common", "Yes");
    projectSystem->setProperty(project("App"), "linker_post_build_command", "Common",
                               "sh -c \"echo $(ProjectName)");
    disk->touch(at("Debug/App.elf"), QDateTime::currentMSecsSinceEpoch() + 100000);
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(
        builder.take(),
        (QStringList{upToDateA, upToDateB, "message: " + at("Debug/App.bin") + " does not exist.",
                     runLink(), "Post build command ", "run sh|-c|echo App", "end"}));
    disk->touch(at("Debug/App.bin"), 1);
    EXPECT_TRUE(buildProject("App", verbose));
    EXPECT_EQ(builder.take().mid(2, 1),
              QStringList{"message: " + at("Debug/App.map") + " does not exist."});
    disk->touch(at("Debug/App.map"), 1);
    EXPECT_FALSE(buildProject("App", quiet));
}

TEST_F(PlatformBuild, CleanRemovesAndRunsNothing)
{
    loadBuilt();
    disk->readOnly << at("Debug/b.o");
    EXPECT_TRUE(buildProject("App", cleanOnly));
    EXPECT_EQ(builder.take(), (QStringList{"note: Remove " + at("Debug/a.o"),
                                           "error: Cannot remove " + at("Debug/b.o"),
                                           "note: Remove " + at("Debug/App.elf")}));
    EXPECT_FALSE(disk->files.contains(at("Debug/a.o")));

    // Quiet, or with no builder at all, the same removals without a word.
    loadBuilt();
    EXPECT_TRUE(buildProject("Lib", cleanOnly | quiet));
    EXPECT_EQ(builder.take(), QStringList());
    EXPECT_FALSE(disk->files.contains(at("Debug/Lib.a")));
    disk->touch(at("Debug/Lib.a"), 300);
    EXPECT_TRUE(system->platformBuild(project("Lib"), "Debug", nullptr, cleanOnly));
    EXPECT_FALSE(disk->files.contains(at("Debug/Lib.a")));
}

TEST_F(PlatformBuild, RebuildRunsEverythingAndRemovesNothing)
{
    loadBuilt();
    EXPECT_TRUE(buildProject("App", BUILD_FORCE));
    EXPECT_EQ(builder.take(),
              (QStringList{"run 2|Debug/a.o|src/a.c", "run 2|Debug/b.o|src/b.c", runLink()}));
    EXPECT_TRUE(disk->removed.isEmpty());
}

TEST_F(PlatformBuild, AFailedCommandStopsTheWalk)
{
    loadBuilt("  <project Name=\"Post\">\n"
              "    <configuration Name=\"Common\" project_type=\"Executable\" "
              "linker_post_build_command=\"post\"/>\n"
              "    <file Name=\"p.c\" file_name=\"src/p.c\"/>\n"
              "  </project>\n");
    builder.failOn << "2";
    disk->touch(at("src/a.c"), 300);
    disk->touch(at("src/b.c"), 300);
    EXPECT_FALSE(buildProject("App", quiet));
    EXPECT_EQ(builder.take(), QStringList{"run 2|Debug/a.o|src/a.c"});

    // A failed link runs no post-build command.
    system->errorOccurred = false;
    builder.failOn = QStringList{"10"};
    EXPECT_TRUE(buildProject("Post", quiet));
    EXPECT_EQ(builder.take(),
              (QStringList{"run 2|Debug/p.o|src/p.c", "run 10|Debug/Post.elf|Debug/p.o"}));
}

TEST_F(PlatformBuild, ExternalProjectsRunTheirCommandsWhole)
{
    load("  <project Name=\"Ext\">\n"
         "    <configuration Name=\"Common\" project_type=\"Externally Built Executable\" "
         "external_build_command=\"make $(X) all\" external_clean_command=\"make clean\" "
         "external_build_file_name=\"out/x.elf\"/>\n"
         "    <file Name=\"e.c\" file_name=\"e.c\"/>\n"
         "  </project>\n");
    EXPECT_FALSE(buildProject("Ext", quiet));
    EXPECT_EQ(builder.take(), (QStringList{"Running Build command Ext", "out " + at("out/x.elf"),
                                           "run make $(X) all", "end"}));
    EXPECT_EQ(builder.directory, scratch.path());
    EXPECT_TRUE(buildProject("Ext", cleanOnly | quiet));
    EXPECT_EQ(builder.take(), (QStringList{"Running Clean command Ext", "run make clean", "end"}));
}

TEST_F(PlatformBuild, HostileNestingIsWalkedWithoutRecursion)
{
    load("  <project Name=\"Deep\">\n"
         "    <configuration Name=\"Common\" project_type=\"Executable\"/>\n"
         "  </project>\n");
    ProjectElement *parent = project("Deep");
    for (int i = 0; i < 100000; ++i) {
        auto *folder = new ProjectElement(ProjectElement::Folder);
        parent->appendChild(folder);
        parent = folder;
    }
    EXPECT_TRUE(buildProject("Deep", BUILD_FORCE | quiet));
    EXPECT_EQ(builder.take(), QStringList{"run 10|Debug/Deep.elf"});
    QStringList outputs;
    system->findOutputs(project("Deep"), "Debug", outputs, false);
    EXPECT_EQ(outputs, QStringList{"Debug/Deep.elf"});
}

TEST_F(PlatformBuild, DependenciesAndIncludeFilesForCallersOutsideTheBuild)
{
    loadBuilt();
    projectSystem->setProperty(project("App"), "linker_additional_files", "Common",
                               "x.a;;/abs/y.o");
    QStringList list;
    system->getDependencies(element("a.c"), "Debug", list);
    EXPECT_EQ(list, (QStringList{at("src/a.c"), at("include/h.h")}));
    EXPECT_EQ(system->dependencyCache.value(at("Debug/a.o")), list);
    list.clear();
    system->getDependencies(project("App"), "Debug", list);
    EXPECT_EQ(list, (QStringList{at("Debug/a.o"), at("Debug/b.o"), at("Debug/Lib.a"), "x.a",
                                 "/abs/y.o"}));
    list.clear();
    system->getDependencies(project("Lib"), "Debug", list);
    EXPECT_EQ(list, QStringList{at("Debug/l.o")});

    // As given, then below the user and system include directories, each tried against the
    // project directory, as it stands and against the file's directory.
    projectSystem->setProperty(project("App"), "c_user_include_directories", "Common",
                               "include;other");
    EXPECT_EQ(system->findIncludeFile(false, at("src/a.c"), element("a.c"), "Debug"),
              at("src/a.c"));
    EXPECT_EQ(system->findIncludeFile(true, "h.h", element("a.c"), "Debug"), at("include/h.h"));
    disk->touch(at("src/other/o.h"), 1);
    EXPECT_EQ(system->findIncludeFile(true, "o.h", element("a.c"), "Debug"), at("src/other/o.h"));
    EXPECT_TRUE(system->findIncludeFile(true, "none.h", element("a.c"), "Debug").isNull());
}
