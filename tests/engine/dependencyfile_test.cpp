#include "engine/dependencyfile.h"
#include "engine/sidefiles.h"
#include "enginefixture.h"

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

TEST(DependencyFile, NamedBesideTheObject)
{
    EXPECT_EQ(dependencyFilePath("/p/Debug/a.b.o"), "/p/Debug/a.d");
    EXPECT_EQ(dependencyFilePath("a.o"), "./a.d");
}
