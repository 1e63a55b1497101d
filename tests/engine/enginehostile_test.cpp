// Inputs built to hurt: chains and trees deeper than any stack, and huge dependency files.

#include "engine/dependencyfile.h"
#include "enginefixture.h"

using EngineHostile = EngineTest;

TEST_F(EngineHostile, TooDeepAChainOfDependenciesIsRefused)
{
    // Each project needs the next; the last names one that isn't there.
    QByteArray body;
    for (int i = 0; i < 1100; ++i)
        body += projectXml("P" + QByteArray::number(i),
                           "project_dependencies=\"P" + QByteArray::number(i + 1) + "\"");
    load(body);
    system->walkOnly = true;
    EXPECT_EQ(system->build(element("P0"), "Debug", &builder, BUILD_QUIET, true, false), 2);
    EXPECT_TRUE(system->calls.isEmpty());
    EXPECT_TRUE(builder.errors.value(0).startsWith("project dependencies nested too deeply"));
}

TEST_F(EngineHostile, DeepFolderNestingIsWalkedWithoutRecursion)
{
    load(projectXml("Deep", "project_type=\"Executable\""));
    ProjectElement *parent = element("Deep");
    for (int i = 0; i < 100000; ++i) {
        auto *folder = new ProjectElement(ProjectElement::Folder);
        parent->appendChild(folder);
        parent = folder;
    }
    EXPECT_TRUE(
        system->platformBuild(element("Deep"), "Debug", &builder, BUILD_FORCE | BUILD_QUIET));
    EXPECT_EQ(builder.commands, QStringList{"10 Debug/Deep.elf"});
    QStringList outputs;
    system->findOutputs(element("Deep"), "Debug", outputs, false);
    EXPECT_EQ(outputs, QStringList{"Debug/Deep.elf"});
}

TEST(DependencyFileHostile, AHundredThousandNamesAreAllRead)
{
    QByteArray many = "o:";
    for (int i = 0; i < 100000; ++i)
        many += " h" + QByteArray::number(i) + ".h \\\n";
    const QStringList names = parseDependencyFile(many, "/p");
    ASSERT_EQ(names.size(), 100000);
    EXPECT_EQ(names.last(), "/p/h99999.h");
}
