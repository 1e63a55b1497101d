#include "project/projecttesting.h"

#include "macros/macrosystem.h"

#include <QThread>

TEST_F(ProjectTest, TheLaterConfigurationOfANameIsHeldUntilItGoes)
{
    E root(E::Solution);
    E *a = add(&root, E::Configuration, "Debug");
    E *b = add(&root, E::Configuration, "Debug");
    root.setModified(false);
    EXPECT_EQ(root.getConfigurationElement("Debug"), b);
    root.removeChild(b);
    EXPECT_TRUE(root.modified());
    EXPECT_EQ(root.getConfigurationElement("Debug"), a) << "the earlier one stands again";
    delete b;
}

TEST_F(ProjectTest, ChangesAreStampedAtOnceOrAtCommitAndVanishOnRollback)
{
    E root(E::Solution);
    E *child = add(&root, E::Configuration, "Common");
    QDateTime stamp;
    child->storeAttribute("kept", "old");
    child->storeAttribute("gone", "x");
    const auto change = [&] {
        root.startTransaction();
        child->setAttribute("kept", "new");
        child->setAttribute("temp", "t");
        child->removeAttribute("temp");
        child->removeAttribute("gone");
    };
    change();
    EXPECT_EQ(child->attribute("kept"), "new");
    EXPECT_EQ(child->attributes().value("kept"), "old") << "nothing committed yet";
    root.rollbackTransaction();
    EXPECT_EQ(child->attribute("kept"), "old");
    EXPECT_TRUE(child->hasAttribute("gone"));
    change();
    QThread::msleep(5);
    const QDateTime beforeCommit = QDateTime::currentDateTime();
    root.commitTransaction();
    EXPECT_EQ(child->attributes(), (QMap<QString, QString>{{"Name", "Common"}, {"kept", "new"}}));
    ASSERT_TRUE(child->hasModifiedProperty("kept", stamp));
    EXPECT_GE(stamp, beforeCommit) << "changes are dated at commit";
}

TEST_F(ProjectTest, FileNamesAreStoredRelativeToProjectOrInstallation)
{
    const QString bench = scratch.file("bench");
    macroSystem.setSystemMacro("BenchDir", bench);
    E *project = system.createProject(system.createSolution("S", scratch.path()), "App",
                                      scratch.file("app"), "Executable");
    EXPECT_EQ(ProjectSystem::getProjectDirectory(project), "app");
    const std::pair<QString, const char *> cases[] = {
        {scratch.file("app/src/main.c"), "src/main.c"},
        {scratch.file("lib/x.c"), "../lib/x.c"},
        {bench + "/lib/crt0.s", "$(BenchDir)/lib/crt0.s"},
        {"rel/b.c", "rel/b.c"}};
    for (const auto &[name, stored] : cases)
        EXPECT_EQ(system.addFile(project, name)->attribute("file_name"), stored);
    // A name is read as it is stored: macros expanded, relative to the project directory.
    EXPECT_EQ(system.addFile(project, "$(BenchDir)/s.s")->path(), Path(bench + "/s.s"));
    EXPECT_EQ(system.addFile(project, "rel/c.c")->path(), Path(scratch.file("app/rel/c.c")));
    macroSystem.setSystemMacro("BenchDir", QString());
}
