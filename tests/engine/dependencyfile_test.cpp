#include "engine/dependencyfile.h"
#include "engine/sidefiles.h"
#include "enginefixture.h"

#include <gtest/gtest.h>

TEST(DependencyFile, NamesBehindTheFirstColonWithEscapesAndContinuations)
{
    EXPECT_EQ(parseDependencyFile("Debug/a.o: src/a.c \\\n  inc/a\\ b.h /usr/x.h\n", "/p"),
              (QStringList{"/p/src/a.c", "/p/inc/a b.h", "/usr/x.h"}));
    // A line end alone joins; a backslash before anything else stays, as does a final one.
    EXPECT_EQ(parseDependencyFile("o: a\nb c\\d e\\", "/p"),
              (QStringList{"/p/ab", "/p/c\\d", "/p/e\\"}));
    EXPECT_EQ(parseDependencyFile("o:   \\\n   ", "/p"), QStringList());
    // A second colon is part of a name.
    EXPECT_EQ(parseDependencyFile("c:/o: d:x", "/p"), (QStringList{"/o:", "/p/d:x"}));
}

TEST(DependencyFile, HostileContentsGiveWhatTheyHoldAndNoMore)
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

TEST(DependencyFile, NamedBesideTheObjectAndReadThroughTheDisk)
{
    EXPECT_EQ(dependencyFilePath("/p/Debug/a.b.o"), "/p/Debug/a.d");
    EXPECT_EQ(dependencyFilePath("a.o"), "./a.d");

    FakeDisk disk;
    disk.touch("/p/Debug/a.d", 1, "Debug/a.o: src/a.c\n");
    EXPECT_EQ(readDependencyFile("/p/Debug/a.d", "/p", &disk), QStringList{"/p/src/a.c"});
    EXPECT_EQ(readDependencyFile("/p/Debug/missing.d", "/p", &disk), QStringList());
}
