// Projects meant to exhaust the stack: each must load, resolve and go, or fail with a message.

#include "project/projecttesting.h"

#include "xml/xmldocument.h"

TEST_F(ProjectTest, DeepFoldersAreLoadedResolvedWalkedAndFreedWithoutRecursion)
{
    const int levels = 100000;
    ASSERT_FALSE(loadError(writeSolution(
        "deep.hdp", "<solution Name=\"S\"><project Name=\"P\">" +
                        QByteArray("<folder Name=\"F\">").repeated(levels) +
                        "<file Name=\"f.c\" file_name=\"f.c\"/>" +
                        QByteArray("</folder>").repeated(levels) + "</project></solution>\n")));
    E *root = system.solutionElement();
    E *file = ProjectSystem::sourceFiles(root).value(0);
    ASSERT_NE(file, nullptr);
    set(root, "Common", "c_x", "top");
    PropertyClass single("c_x", PropertyClass::String, "G", "X", "");
    EXPECT_EQ(system.settingFor(file, &single, "Debug"), "top");
    root->startTransaction();
    root->rollbackTransaction();
    EXPECT_TRUE(ProjectSystem::isModified(root, true));
    ProjectSystem::clearModified(root, true, true);
    EXPECT_FALSE(ProjectSystem::isModified(root, true));
    // Saved with its indentation such a file would grow with the square of its depth, so
    // only the document is made.
    XMLDocument document;
    EXPECT_NE(system.elementToDom(&document, root), nullptr);
    system.closeSolution();
}

TEST_F(ProjectTest, LongDependencyChainsDoNotRecurse)
{
    E *solution = system.createSolution("S", scratch.path());
    E *previous = nullptr;
    for (int i = 0; i < 20000; ++i) {
        E *project = add(solution, E::Project, QString("P%1").arg(i));
        if (previous)
            set(previous, "Common", "project_dependencies", project->getName());
        previous = project;
    }
    system.updateProjectList();
    E *first = ProjectSystem::findProject(solution, "P0");
    EXPECT_EQ(system.buildOrder(first, "Debug").size(), 20000);
    EXPECT_EQ(system.dependsOn(first, "Debug").size(), 20000);
}
