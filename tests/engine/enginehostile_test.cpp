// Inputs built to hurt: chains and trees deeper than any stack, and dependency files that are
// huge, not text, or not plain files at all.

#include "engine/dependencyfile.h"
#include "enginefixture.h"

#include <sys/stat.h>

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

TEST(DependencyFileHostile, ContentsGiveWhatTheyHoldAndNoMore)
{
    EXPECT_EQ(parseDependencyFile("", "/p"), QStringList());
    EXPECT_EQ(parseDependencyFile("no colon at all \\ here", "/p"), QStringList());
    QByteArray binary(4096, '\0');
    for (int i = 0; i < binary.size(); ++i)
        binary[i] = char(i * 7 % 256);
    EXPECT_FALSE(parseDependencyFile(binary, "/p").isEmpty());

    QByteArray many = "o:";
    for (int i = 0; i < 100000; ++i)
        many += " h" + QByteArray::number(i) + ".h \\\n";
    const QStringList names = parseDependencyFile(many, "/p");
    ASSERT_EQ(names.size(), 100000);
    EXPECT_EQ(names.last(), "/p/h99999.h");
}

TEST(DependencyFileHostile, OnlyPlainFilesAreRead)
{
    // A directory, or a pipe with no writer, gives nothing and at once.
    ScratchDir scratch;
    RealDiskInterface disk;
    QByteArray contents;
    EXPECT_FALSE(disk.readFile(scratch.path(), 10, contents));
    ASSERT_EQ(::mkfifo(QFile::encodeName(scratch.file("pipe.d")).constData(), 0600), 0);
    EXPECT_FALSE(disk.readFile(scratch.file("pipe.d"), 10, contents));
}
