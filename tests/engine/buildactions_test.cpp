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

const char *const excluded = "build_exclude_from_build=\"Yes\"";

} // namespace

using BuildActions = EngineTest;

TEST_F(BuildActions, ActionsAndOutputsOfProjectsAndFiles)
{
    load(projectXml("App", "project_type=\"Executable\"",
                    file("a.c") + file("b.cpp") + file("c.bas") + file("d.fth") + file("e.s") +
                        "    <folder Name=\"Ready\">\n" + file("lib/f.o") + file("g.a") +
                        file("h.elf") + "    </folder>\n" + file("i.txt") + file("x.c", excluded)) +
         projectXml("Lib", "project_type=\"Library\"") +
         projectXml("Obj", "project_type=\"Object file\"") +
         projectXml("Stage", "project_type=\"Staging\"", file("s.txt") + file("t.txt", excluded)) +
         projectXml("Combine", "project_type=\"Combining\"", file("u.txt")) +
         projectXml("Ext", "project_type=\"Externally Built Executable\" "
                           "external_build_file_name=\"out/$(ProjectName).elf\"") +
         projectXml("NoFile", "project_type=\"Externally Built Executable\"") +
         projectXml("Plain", ""));
    // Each element, its action and the absolute path of what it makes, "~" standing for the
    // solution directory; "-" where it makes nothing, a null string even when asked for a path.
    const QStringList expected =
        QStringLiteral("App 10 ~/Debug/App.elf|Lib 11 ~/Debug/Lib.a|Obj 0 -|Stage 0 -|"
                       "Combine 13 ~/Debug/$(InputFileName)|Ext 8 ~/out/Ext.elf|NoFile 8 -|"
                       "Plain 10 ~/Debug/Plain.elf|a.c 2 ~/Debug/a.o|b.cpp 3 ~/Debug/b.o|"
                       "c.bas 6 ~/Debug/c.o|d.fth 5 ~/Debug/d.o|e.s 7 ~/Debug/e.o|f.o 8 ~/lib/f.o|"
                       "g.a 8 ~/g.a|h.elf 8 ~/h.elf|i.txt 0 -|x.c 1 -|s.txt 12 ~/Debug/s.txt|"
                       "t.txt 1 -|u.txt 0 -|Ready 0 -|S 0 -")
            .split('|');
    for (const QString &entry : expected) {
        ProjectElement *named = element(entry.section(' ', 0, 0));
        const QString made = system->output(named, "Debug", true);
        EXPECT_EQ(entry.section(' ', 0, 0) + ' ' +
                      QString::number(system->buildAction(named, "Debug")) + ' ' +
                      (made.isNull() ? QString("-") : QString(made).replace(scratch.path(), "~")),
                  entry);
    }
    // The two classes of one save name are told apart by the action alone.
    EXPECT_EQ(system->output(ActionArchive, element("App"), "Debug", false), "Debug/App.a");

    QStringList outputs, inputs;
    system->findOutputs(element("App")->firstChild(), "Debug", outputs, false);
    EXPECT_EQ(outputs.join(' '),
              "Debug/a.o Debug/b.o Debug/c.o Debug/d.o Debug/e.o lib/f.o g.a h.elf");
    system->findRelativeInputs(element("App")->firstChild(), "Debug", inputs);
    EXPECT_EQ(inputs.join(' '), "a.c b.cpp c.bas d.fth e.s lib/f.o g.a h.elf i.txt");
}

TEST_F(BuildActions, LinkControlFiles)
{
    const char *const withMap =
        "project_type=\"Executable\" linker_memory_map_file=\"$(ProjectName).xml\"";
    load(projectXml("App", withMap,
                    file("one.ld", "file_type=\"Linker Script\"") +
                        file("two.ld", "file_type=\"Linker Script\"") +
                        file("gone.xml", "file_type=\"Section Placement\"")) +
         projectXml("Set", withMap + QByteArray(" linker_section_placement_file=\"missing.xml\""),
                    file("x.ld", "file_type=\"Linker Script\" build_exclude_from_build=\"Yes\"")));
    QString path;
    EXPECT_TRUE(system->useLinkerScriptFileForLink(element("App"), "Debug", path));
    EXPECT_EQ(path, at("one.ld"));
    // A file in the project wins over the setting, present on the disk or not.
    EXPECT_TRUE(system->useSectionPlacementFileForLink(element("App"), "Debug", path));
    EXPECT_EQ(path, at("gone.xml"));

    EXPECT_FALSE(system->useLinkerScriptFileForLink(element("Set"), "Debug", path));
    disk->touch(at("Set.xml"), 1);
    EXPECT_TRUE(system->useMemoryMapFileForLink(element("Set"), "Debug", path));
    EXPECT_EQ(path, at("Set.xml"));
    EXPECT_FALSE(system->useSectionPlacementFileForLink(element("Set"), "Debug", path));
    EXPECT_EQ(path, at("missing.xml"));
}

TEST(SplitCommand, QuotesGroupAndVanish)
{
    EXPECT_EQ(StandardBuildSystem::splitCommand("a \"b c\"d"), (QStringList{"a", "b cd"}));
    EXPECT_EQ(StandardBuildSystem::splitCommand("  cp  \"\"  x  "), (QStringList{"cp", "x"}));
    EXPECT_EQ(StandardBuildSystem::splitCommand(""), QStringList());
}

TEST(BuildCatalogue, ALaterClassOfASaveNameReplacesTheEarlier)
{
    {
        ARMBuildSystem system{QStringList()};
        EXPECT_EQ(standardBuildSystem, &system);
        // The link and the archive each keep their output file name class; the catalogue
        // holds the one made last, the library's.
        EXPECT_NE(system.linkerOutputFileNameProperty, system.libraryOutputFileNameProperty);
        EXPECT_EQ(system.findPropertyClass("build_output_file_name"),
                  system.libraryOutputFileNameProperty);
    }
    // The generic layer is published for the build system's lifetime only.
    EXPECT_EQ(standardBuildSystem, nullptr);
}
