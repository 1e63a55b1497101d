#include "project/projecttesting.h"

namespace {

/// A solution "S" with projects A, B, C and Lib, and a nested solution Sub with App.
class Dependencies : public ProjectTest
{
protected:
    Dependencies()
    {
        root = system.createSolution("S", scratch.path());
        set(root, "Debug", "x", "");
        set(root, "Release", "x", "");
        for (const char *name : {"A", "B", "C", "Lib"})
            projects[name] = system.createProject(root, name, scratch.path(), "Executable");
        sub = add(root, E::Solution, "Sub");
        projects["App(Sub)"] = system.createProject(sub, "App", scratch.path(), "Library");
        system.updateProjectList();
    }

    void dependOn(const char *project, const QString &names)
    {
        set(projects[project], "Debug", "project_dependencies", names);
    }
    /// The global names of `list`, separated by spaces.
    QString names(const QList<E *> &list)
    {
        QStringList result;
        for (E *e : list)
            result.append(system.getGlobalProjectName(e));
        return result.join(' ');
    }

    E *root;
    E *sub;
    QMap<QString, E *> projects;
};

TEST_F(Dependencies, OrderPutsEachProjectAfterWhatItNeeds)
{
    dependOn("A", "B;Lib;Unknown;B");
    dependOn("B", "Lib");
    EXPECT_EQ(names(system.directlyDependsOn(projects["A"], "Debug")), "B Lib B");
    EXPECT_EQ(names(system.dependsOn(projects["A"], "Debug")), "A B Lib");
    EXPECT_EQ(names(system.buildOrder(root, "Debug")), "Lib B A App(Sub) C");
    EXPECT_EQ(names(system.buildOrder(projects["A"], "Release")), "A");
    EXPECT_TRUE(system.buildOrder(add(projects["A"], E::Folder, "F"), "Debug").isEmpty());
    EXPECT_TRUE(system.dependencyCycles(root, "Debug").isEmpty());
    set(sub, "Common", "project_dependencies", "Lib");
    EXPECT_EQ(names(system.directlyDependsOn(projects["App(Sub)"], "Debug")), "Lib")
        << "a name not in the nested solution is looked up in the enclosing one";
    dependOn("C", "App(Sub)");
    EXPECT_EQ(names(system.dependsOn(projects["C"], "Debug")), "C App(Sub) Lib");
}

TEST_F(Dependencies, CyclesAreCutAndReportedOnce)
{
    dependOn("A", "B");
    dependOn("B", "C;A");
    dependOn("C", "A");
    dependOn("Lib", "Lib;Lib");
    QList<ProjectSystem::DependencyCycle> cycles;
    EXPECT_EQ(names(system.buildOrder(root, "Debug", &cycles)), "C B A App(Sub) Lib");
    QStringList texts;
    for (const auto &cycle : cycles)
        texts.append(system.dependencyCycleText(cycle));
    EXPECT_EQ(texts, (QStringList{R"(project dependency cycle: "A" -> "B" -> "C" -> "A")",
                                  R"(project dependency cycle: "A" -> "B" -> "A")",
                                  R"(project dependency cycle: "Lib" -> "Lib")"}));
    EXPECT_EQ(names(system.dependsOn(projects["B"], "Debug")), "B C A");
    set(sub, "Common", "project_dependencies", "App");
    const auto selfCycles = system.dependencyCycles(projects["App(Sub)"], "Debug");
    ASSERT_EQ(selfCycles.size(), 1);
    EXPECT_EQ(system.dependencyCycleText(selfCycles[0]),
              R"x(project dependency cycle: "App(Sub)" -> "App(Sub)")x");
}

} // namespace
