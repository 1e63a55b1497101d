#include "project/projecttesting.h"

#include "macros/macrosystem.h"

#include <QThread>

namespace {

using E = ProjectElement;

TEST_F(ProjectTest, TreeLinksAndConfigurationMap)
{
    E root(E::Solution);
    E *a = add(&root, E::Configuration, "Debug");
    E *project = add(&root, E::Project, "App");
    E *b = add(&root, E::Configuration, "Debug");
    root.setModified(false);

    EXPECT_EQ(root.firstChild(), a);
    EXPECT_EQ(a->nextSibling(), project);
    EXPECT_EQ(project->parent(), &root);
    EXPECT_EQ(root.getConfigurationElement("Debug"), b) << "the later of one name is held";

    root.removeChild(b);
    EXPECT_TRUE(root.modified());
    EXPECT_EQ(root.getConfigurationElement("Debug"), a) << "the earlier one stands again";
    EXPECT_EQ(project->nextSibling(), nullptr);
    delete b;
    root.removeChild(a);
    EXPECT_EQ(root.getConfigurationElement("Debug"), nullptr);
    delete a;

    EXPECT_EQ(E::tagName(E::Folder), "folder");
    EXPECT_TRUE(E::tagName(7).isNull());
    EXPECT_EQ(E(QString("import")).type(), E::NoType);
    EXPECT_EQ(E(QString("file")).type(), E::File);
}

TEST_F(ProjectTest, DeepTreesAreWalkedAndFreedWithoutRecursion)
{
    auto *root = new E(E::Project);
    E *deepest = root;
    for (int i = 0; i < 100000; ++i)
        deepest = add(deepest, E::Folder, "F");
    set(root, "Common", "c_x", "top");
    PropertyClass single("c_x", PropertyClass::String, "G", "X", "");
    EXPECT_EQ(system.settingFor(deepest, &single, "Debug"), "top");
    root->startTransaction();
    root->rollbackTransaction();
    EXPECT_TRUE(ProjectSystem::isModified(root, true));
    ProjectSystem::clearModified(root, true, true);
    EXPECT_FALSE(ProjectSystem::isModified(root, true));
    delete root;
}

TEST_F(ProjectTest, AttributesOutsideATransactionAreStamped)
{
    E element(E::Configuration);
    QDateTime stamp;
    EXPECT_TRUE(element.getName().isEmpty());
    EXPECT_TRUE(element.attributes().contains("Name")) << "asking for the name makes the entry";

    element.setAttribute("a", "1");
    EXPECT_TRUE(element.modified());
    EXPECT_TRUE(element.hasModifiedProperty("a", stamp));
    element.removeAttribute("a");
    EXPECT_FALSE(element.hasAttribute("a"));
    EXPECT_TRUE(element.attribute("a").isNull());
    EXPECT_TRUE(element.hasModifiedProperty("a", stamp)) << "the stamp outlives the value";

    element.storeAttribute("b", "2");
    EXPECT_FALSE(element.hasModifiedProperty("b", stamp));
}

TEST_F(ProjectTest, TransactionsApplyAtCommitAndVanishOnRollback)
{
    E root(E::Solution);
    E *child = add(&root, E::Configuration, "Common");
    child->storeAttribute("kept", "old");
    child->storeAttribute("gone", "x");

    root.startTransaction();
    child->setAttribute("kept", "new");
    child->setAttribute("temp", "t");
    child->removeAttribute("temp");
    child->removeAttribute("gone");
    EXPECT_EQ(child->attribute("kept"), "new");
    EXPECT_FALSE(child->hasAttribute("temp"));
    EXPECT_FALSE(child->hasAttribute("gone"));
    EXPECT_EQ(child->attributes().value("kept"), "old") << "nothing committed yet";
    root.rollbackTransaction();
    EXPECT_EQ(child->attribute("kept"), "old");
    EXPECT_TRUE(child->hasAttribute("gone"));

    const QDateTime before = QDateTime::currentDateTime();
    QThread::msleep(5);
    root.startTransaction();
    child->setAttribute("kept", "new");
    child->setAttribute("temp", "t");
    child->removeAttribute("temp");
    child->removeAttribute("gone");
    QThread::msleep(5);
    const QDateTime beforeCommit = QDateTime::currentDateTime();
    root.commitTransaction();
    EXPECT_FALSE(child->inTransaction());
    EXPECT_EQ(child->attributes().value("kept"), "new");
    EXPECT_FALSE(child->attributes().contains("temp"));
    EXPECT_FALSE(child->attributes().contains("gone"));
    QDateTime stamp;
    ASSERT_TRUE(child->hasModifiedProperty("kept", stamp));
    EXPECT_GE(stamp, beforeCommit) << "changes are dated at commit";
    EXPECT_GT(stamp, before);
}

TEST_F(ProjectTest, GetPropertyAccumulatesAndTraces)
{
    E project(E::Project);
    E *debug = add(&project, E::Configuration, "Debug");
    debug->storeAttribute("empty", "");
    debug->storeAttribute("list", "a");

    QString result;
    PropertyInheritanceInformation trace;
    EXPECT_TRUE(project.getProperty("Debug", "empty", result, &trace));
    EXPECT_TRUE(result.isEmpty());
    EXPECT_FALSE(result.isNull()) << "an empty value counts as found";
    EXPECT_FALSE(project.getProperty("Release", "list", result, &trace));
    EXPECT_FALSE(project.getProperty("Debug", "none", result, &trace));
    result = "x";
    EXPECT_TRUE(project.getProperty("Debug", "list", result, &trace));
    EXPECT_EQ(result, "x;a");
    ASSERT_EQ(trace.size(), 2);
    EXPECT_EQ(trace[1].configuration, "Debug");
    EXPECT_EQ(trace[1].element, &project);
}

TEST_F(ProjectTest, PropertyHasChangedDecidesOnlyWhereAStampStands)
{
    E project(E::Project);
    E *debug = add(&project, E::Configuration, "Debug");
    debug->storeAttribute("loaded", "1");
    bool changed = false;
    EXPECT_FALSE(project.propertyHasChanged("Release", "loaded", {}, changed));
    EXPECT_FALSE(project.propertyHasChanged("Debug", "loaded", {}, changed))
        << "values read from a file carry no stamp";

    debug->setAttribute("old", "1");
    debug->setAttribute("removed", "1");
    debug->removeAttribute("removed");
    QThread::msleep(5);
    const QDateTime since = QDateTime::currentDateTime();
    EXPECT_TRUE(project.propertyHasChanged("Debug", "old", since, changed));
    EXPECT_FALSE(changed);
    EXPECT_FALSE(project.propertyHasChanged("Debug", "removed", since, changed))
        << "removed before: the stamp no longer decides";
    QThread::msleep(5);
    debug->setAttribute("new", "1");
    EXPECT_TRUE(project.propertyHasChanged("Debug", "new", since, changed));
    EXPECT_TRUE(changed);
}

TEST_F(ProjectTest, FileNamesAreStoredRelativeToProjectOrInstallation)
{
    const QString bench = scratch.file("bench");
    macroSystem.setSystemMacro("BenchDir", bench);
    ProjectElement *solution = system.createSolution("S", scratch.path());
    ProjectElement *project =
        system.createProject(solution, "App", scratch.file("app"), "Executable");
    EXPECT_EQ(ProjectSystem::getProjectDirectory(project), "app");
    EXPECT_EQ(ProjectSystem::projectDirectoryPath(project), scratch.file("app"));

    E *inside = system.addFile(project, scratch.file("app/src/main.c"));
    EXPECT_EQ(inside->attribute("file_name"), "src/main.c");
    EXPECT_EQ(inside->getName(), "main.c");
    EXPECT_EQ(inside->relativePath(), "src/main.c");
    EXPECT_EQ(inside->path(), Path(scratch.file("app/src/main.c")));

    E *sibling = system.addFile(project, scratch.file("lib/x.c"));
    EXPECT_EQ(sibling->attribute("file_name"), "../lib/x.c");

    E *installed = system.addFile(project, bench + "/lib/crt0.s");
    EXPECT_EQ(installed->attribute("file_name"), "$(BenchDir)/lib/crt0.s");

    E *withMacro = system.addFile(project, "$(BenchDir)/src/startup.s");
    EXPECT_EQ(withMacro->attribute("file_name"), "$(BenchDir)/src/startup.s");
    EXPECT_EQ(withMacro->path(), Path(bench + "/src/startup.s"));
    EXPECT_EQ(withMacro->getName(), "startup.s");

    E *relative = system.addFile(project, "rel/b.c");
    EXPECT_EQ(relative->attribute("file_name"), "rel/b.c");
    EXPECT_EQ(relative->path(), Path(scratch.file("app/rel/b.c")));
    macroSystem.setSystemMacro("BenchDir", QString());
}

} // namespace
