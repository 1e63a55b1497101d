#include "engine/dependencyfile.h"
#include "engine/sidefiles.h"
#include "enginefixture.h"

TEST(DependencyFile, NamesBehindTheFirstColonBesideTheObject)
{
    const std::pair<const char *, QStringList> cases[] = {
        {"Debug/a.o: src/a.c \\\n  inc/a\\ b.h /usr/x.h\n",
         {"/p/src/a.c", "/p/inc/a b.h", "/usr/x.h"}},
        // A line end alone joins; a backslash before anything else stays, as does a final one.
        {"o: a\nb c\\d e\\", {"/p/ab", "/p/c\\d", "/p/e\\"}},
        // A second colon is part of a name; without any colon there are no names.
        {"c:/o: d:x", {"/o:", "/p/d:x"}},
        {"o:   \\\n   ", {}},
        {"no colon at all \\ here", {}},
    };
    for (const auto &[text, names] : cases)
        EXPECT_EQ(parseDependencyFile(text, "/p"), names) << text;
    EXPECT_EQ(dependencyFilePath("/p/Debug/a.b.o"), "/p/Debug/a.d");
    EXPECT_EQ(dependencyFilePath("a.o"), "./a.d");
}
