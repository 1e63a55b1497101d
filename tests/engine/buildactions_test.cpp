#include "enginefixture.h"

namespace {

QByteArray file(const char *path, const char *common = nullptr)
{
    const QByteArray name = QByteArray(path).mid(QByteArray(path).lastIndexOf('/') + 1);
    QByteArray xml = "    <file Name=\"" + name + "\" file_name=\"" + path + "\"";
    if (!common)
        return xml + "/>\n";
    return xml + ">\n      <configuration Name=\"Common\" " + common + "/>\n    </file>\n";
}

QByteArray projectXml(const char *name, const char *common, const QByteArray &files = QByteArray())
{
    return QByteArray("  <project Name=\"") + name + "\">\n    <configuration Name=\"Common\" " +
           common + "/>\n" + files + "  </project>\n";
}

class BuildActions : public EngineFixture
{
protected:
    void loadTypes()
    {
        load(projectXml("App", "project_type=\"Executable\"",
                        file("a.c") + file("b.cpp") + file("c.bas") + file("d.fth") + file("e.s") +
                            "    <folder Name=\"Ready\">\n" + file("lib/f.o") + file("g.a") +
                            file("h.elf") + "    </folder>\n" + file("i.txt") +
                            file("x.c", "build_exclude_from_build=\"Yes\"")) +
             projectXml("Lib", "project_type=\"Library\"") +
             projectXml("Obj", "project_type=\"Object file\"") +
             projectXml("Stage", "project_type=\"Staging\"",
                        file("s.txt") + file("t.txt", "build_exclude_from_build=\"Yes\"")) +
             projectXml("Combine", "project_type=\"Combining\"", file("u.txt")) +
             projectXml("Ext", "project_type=\"Externally Built Executable\" "
                               "external_build_file_name=\"out/$(ProjectName).elf\"") +
             projectXml("NoFile", "project_type=\"Externally Built Executable\"") +
             projectXml("Plain", ""));
    }
    int action(const char *name) { return system->buildAction(element(name), "Debug"); }
    QString output(const char *name, bool absolute = false)
    {
        return system->output(element(name), "Debug", absolute);
    }
};

} // namespace

TEST_F(BuildActions, ActionsOfProjectsAndFiles)
{
    loadTypes();
    const QList<std::pair<const char *, int>> expected = {
        {"App", 10},   {"Lib", 11},  {"Obj", 0},   {"Stage", 0}, {"Combine", 13}, {"Ext", 8},
        {"Plain", 10}, {"a.c", 2},   {"b.cpp", 3}, {"c.bas", 6}, {"d.fth", 5},    {"e.s", 7},
        {"f.o", 8},    {"g.a", 8},   {"h.elf", 8}, {"i.txt", 0}, {"x.c", 1},      {"s.txt", 12},
        {"t.txt", 1},  {"u.txt", 0}, {"Ready", 0}, {"S", 0}};
    for (const auto &[name, value] : expected)
        EXPECT_EQ(action(name), value) << name;

    EXPECT_TRUE(system->mustCompile(element("a.c"), "Debug"));
    EXPECT_TRUE(system->mustCompile(element("s.txt"), "Debug"));
    EXPECT_FALSE(system->mustCompile(element("x.c"), "Debug"));
    EXPECT_TRUE(system->canCompile(element("x.c"), "Debug"));
    EXPECT_FALSE(system->canCompile(element("f.o"), "Debug"));

    EXPECT_TRUE(system->canLoad(project("App"), "Debug"));
    EXPECT_TRUE(system->canLoad(project("Ext"), "Debug"));
    EXPECT_FALSE(system->canLoad(project("NoFile"), "Debug"));
    EXPECT_FALSE(system->canLoad(project("Lib"), "Debug"));
    EXPECT_FALSE(system->canLoad(nullptr, "Debug"));
}

TEST_F(BuildActions, OutputsFollowTheActionAndItsSetting)
{
    loadTypes();
    EXPECT_EQ(output("a.c"), "Debug/a.o");
    EXPECT_EQ(output("e.s", true), at("Debug/e.o"));
    EXPECT_EQ(output("f.o"), "lib/f.o");
    EXPECT_EQ(output("App"), "Debug/App.elf");
    EXPECT_EQ(output("Lib"), "Debug/Lib.a");
    EXPECT_EQ(output("Ext", true), at("out/Ext.elf"));
    EXPECT_EQ(output("s.txt"), "Debug/s.txt");
    // Nothing made: a null string, even when asked for an absolute path.
    for (const char *name : {"x.c", "i.txt", "Obj", "Stage", "u.txt", "NoFile", "Ready"})
        EXPECT_TRUE(output(name, true).isNull()) << name;
    // The two classes of one save name are told apart by the action alone.
    EXPECT_EQ(system->output(ActionArchive, project("App"), "Debug", false), "Debug/App.a");

    QStringList outputs;
    system->findOutputs(project("App")->firstChild(), "Debug", outputs, false);
    EXPECT_EQ(outputs, (QStringList{"Debug/a.o", "Debug/b.o", "Debug/c.o", "Debug/d.o", "Debug/e.o",
                                    "lib/f.o", "g.a", "h.elf"}));
    QStringList inputs;
    system->findRelativeInputs(project("App")->firstChild(), "Debug", inputs);
    EXPECT_EQ(inputs, (QStringList{"a.c", "b.cpp", "c.bas", "d.fth", "e.s", "lib/f.o", "g.a",
                                   "h.elf", "i.txt"}));
}

TEST_F(BuildActions, LinkControlFiles)
{
    load(projectXml("App",
                    "project_type=\"Executable\" linker_memory_map_file=\"$(ProjectName).xml\"",
                    file("one.ld", "file_type=\"Linker Script\"") +
                        file("two.ld", "file_type=\"Linker Script\"") +
                        file("gone.xml", "file_type=\"Section Placement\"")) +
         projectXml("Set",
                    "project_type=\"Executable\" linker_memory_map_file=\"$(ProjectName).xml\" "
                    "linker_section_placement_file=\"missing.xml\"",
                    file("x.ld", "file_type=\"Linker Script\" build_exclude_from_build=\"Yes\"")));
    QString path;
    EXPECT_TRUE(system->useLinkerScriptFileForLink(project("App"), "Debug", path));
    EXPECT_EQ(path, at("one.ld"));
    // A file in the project wins over the setting, present on the disk or not.
    EXPECT_TRUE(system->useSectionPlacementFileForLink(project("App"), "Debug", path));
    EXPECT_EQ(path, at("gone.xml"));

    EXPECT_FALSE(system->useLinkerScriptFileForLink(project("Set"), "Debug", path));
    disk->touch(at("Set.xml"), 1);
    EXPECT_TRUE(system->useMemoryMapFileForLink(project("Set"), "Debug", path));
    EXPECT_EQ(path, at("Set.xml"));
    EXPECT_FALSE(system->useSectionPlacementFileForLink(project("Set"), "Debug", path));
    EXPECT_EQ(path, at("missing.xml"));
}

TEST(SplitCommand, QuotesGroupAndVanish)
{
    EXPECT_EQ(StandardBuildSystem::splitCommand("a \"b c\"d"), (QStringList{"a", "b cd"}));
    EXPECT_EQ(StandardBuildSystem::splitCommand("  cp  \"\"  x  "), (QStringList{"cp", "x"}));
    // An unbalanced quote runs to the end.
    EXPECT_EQ(StandardBuildSystem::splitCommand("echo \"a  b"), (QStringList{"echo", "a  b"}));
    EXPECT_EQ(StandardBuildSystem::splitCommand(""), QStringList());
    EXPECT_EQ(BuildSystem::getAbsPath("/d", "x/y"), "/d/x/y");
    EXPECT_EQ(BuildSystem::getAbsPath("/d", "/x"), "/x");
}
