#include "project/projecttesting.h"

namespace {

using E = ProjectElement;

/// A solution "S" with projects A, B, C and Lib, and a nested solution Sub with App.
class Dependencies : public ProjectTest
{
protected:
    Dependencies()
    {
        root = system.createSolution("S", scratch.path());
        set(root, "Debug", "x", "");
        set(root, "Release", "x", "");
        set(root, "Private", "hidden", "");
        for (const char *name : {"A", "B", "C", "Lib"})
            projects[name] = system.createProject(root, name, scratch.path(), "Executable");
        sub = add(root, E::Solution, "Sub");
        projects["App(Sub)"] = system.createProject(sub, "App", scratch.path(), "Library");
        system.updateProjectList();
    }

    void dependOn(const char *project, const QString &names, const QString &configuration = "Debug")
    {
        set(projects[project], configuration, "project_dependencies", names);
    }
    QStringList names(const QList<E *> &list)
    {
        QStringList result;
        for (E *e : list)
            result.append(system.getGlobalProjectName(e));
        return result;
    }

    E *root;
    E *sub;
    QMap<QString, E *> projects;
};

TEST_F(Dependencies, OrderPutsEachProjectAfterWhatItNeeds)
{
    dependOn("A", "B;Lib;Unknown;B");
    dependOn("B", "Lib");
    EXPECT_EQ(names(system.directlyDependsOn(projects["A"], "Debug")),
              (QStringList{"B", "Lib", "B"}));
    EXPECT_EQ(names(system.dependsOn(projects["A"], "Debug")), (QStringList{"A", "B", "Lib"}));
    EXPECT_EQ(names(system.dependsOn(projects["C"], "Debug")), QStringList{"C"});
    EXPECT_EQ(names(system.buildOrder(root, "Debug")),
              (QStringList{"Lib", "B", "A", "App(Sub)", "C"}));
    EXPECT_EQ(names(system.buildOrder(projects["A"], "Debug")), (QStringList{"Lib", "B", "A"}));
    EXPECT_EQ(names(system.buildOrder(projects["A"], "Release")), QStringList{"A"});
    EXPECT_TRUE(system.buildOrder(add(projects["A"], E::Folder, "F"), "Debug").isEmpty());
    EXPECT_TRUE(system.dependencyCycles(root, "Debug").isEmpty());

    set(sub, "Common", "project_dependencies", "Lib");
    EXPECT_EQ(names(system.directlyDependsOn(projects["App(Sub)"], "Debug")), QStringList{"Lib"})
        << "a name not in the nested solution is looked up in the enclosing one";
    dependOn("C", "App(Sub)");
    EXPECT_EQ(names(system.dependsOn(projects["C"], "Debug")),
              (QStringList{"C", "App(Sub)", "Lib"}));
}

TEST_F(Dependencies, CyclesAreCutAndReportedOnce)
{
    dependOn("A", "B");
    dependOn("B", "C;A");
    dependOn("C", "A");
    dependOn("Lib", "Lib;Lib");
    QList<ProjectSystem::DependencyCycle> cycles;
    EXPECT_EQ(names(system.buildOrder(root, "Debug", &cycles)),
              (QStringList{"C", "B", "A", "App(Sub)", "Lib"}));
    QStringList texts;
    for (const auto &cycle : cycles)
        texts.append(system.dependencyCycleText(cycle));
    EXPECT_EQ(texts, (QStringList{R"(project dependency cycle: "A" -> "B" -> "C" -> "A")",
                                  R"(project dependency cycle: "A" -> "B" -> "A")",
                                  R"(project dependency cycle: "Lib" -> "Lib")"}));
    EXPECT_EQ(names(system.dependsOn(projects["B"], "Debug")), (QStringList{"B", "C", "A"}));

    set(sub, "Common", "project_dependencies", "App");
    const auto selfCycles = system.dependencyCycles(projects["App(Sub)"], "Debug");
    ASSERT_EQ(selfCycles.size(), 1);
    EXPECT_EQ(system.dependencyCycleText(selfCycles[0]),
              R"x(project dependency cycle: "App(Sub)" -> "App(Sub)")x");
}

TEST_F(Dependencies, LongChainsDoNotRecurse)
{
    E *previous = nullptr;
    for (int i = 0; i < 20000; ++i) {
        E *project = add(sub, E::Project, QString("P%1").arg(i));
        if (previous)
            set(previous, "Common", "project_dependencies", project->getName());
        previous = project;
    }
    system.updateProjectList();
    E *first = ProjectSystem::findProject(sub, "P0");
    EXPECT_EQ(system.buildOrder(first, "Debug").size(), 20000);
    EXPECT_EQ(system.dependsOn(first, "Debug").size(), 20000);
}

TEST_F(Dependencies, BatchConfigurationsKeepTheSettingsOrderAndTheConfigurationsSpelling)
{
    EXPECT_TRUE(system.getBatchBuildConfigurations(projects["A"], "Debug").isEmpty());
    system.setBatchBuildConfigurations(root, "Common",
                                       {"release", "Common", "Private", "nope", "DEBUG"});
    EXPECT_EQ(system.getBatchBuildConfigurations(projects["A"], "Debug"),
              (QStringList{"Release", "Debug"}));
    system.removeProperty(root, "batch_build_configurations", "Common");
    system.setBatchBuildConfigurations(projects["A"], "Common", {"Common"});
    EXPECT_EQ(system.getBatchBuildConfigurations(projects["A"], "Release"), QStringList{"Common"})
        << "Common alone is offered with the other configurations";
}

} // namespace
