#include "project/projecttesting.h"

#include <QThread>

namespace {

/// Solution "S" offering Debug (inheriting Target then Base), Release and a hidden Private;
/// project App, folder Src, file main.c.
class Resolution : public ProjectTest
{
protected:
    Resolution()
    {
        solution.reset(add(nullptr, E::Solution, "S"));
        set(solution.get(), "Debug", "inherited_configurations", "Target;Base");
        set(solution.get(), "Release", "x", "");
        set(solution.get(), "Private", "hidden", "");
        solution->updateInheritenceMap();
        project = add(solution.get(), E::Project, "App");
        folder = add(project, E::Folder, "Src");
        file = add(folder, E::File, "main.c");
    }

    /// The resolved value of the single-valued "v" or the list "l".
    QString single(E *element, const QString &configuration = "Debug")
    {
        return resolved(element, &singleClass, configuration);
    }
    QString list(E *element, const QString &configuration = "Debug")
    {
        return resolved(element, &listClass, configuration);
    }
    /// The walk's answer, checked against the answers kept while settings are steady (as in a
    /// build): asked first, and asked after every element above has had its answer kept.
    QString resolved(E *element, const PropertyClass *propertyClass, const QString &configuration)
    {
        const QString walked = system.settingFor(element, propertyClass, configuration);
        for (const bool abovePrimed : {false, true}) {
            system.setSettingsSteady(true);
            for (E *above = element->parent(); abovePrimed && above; above = above->parent())
                system.settingFor(above, propertyClass, configuration);
            EXPECT_EQ(system.settingFor(element, propertyClass, configuration), walked);
            EXPECT_EQ(system.settingFor(element, propertyClass, configuration), walked);
            system.setSettingsSteady(false);
        }
        return walked;
    }

    PropertyClass singleClass{"v", PropertyClass::String, "G", "Value", "", "default"};
    PropertyClass listClass{"l", PropertyClass::StringList, "G", "Items", "", "d1;d2"};
    std::unique_ptr<E> solution;
    E *project, *folder, *file;
};

TEST_F(Resolution, SingleValuesGoByElementFirstThenConfiguration)
{
    EXPECT_EQ(single(file), "default");
    set(solution.get(), "Common", "v", "solution");
    EXPECT_EQ(single(file), "solution");
    set(project, "Common", "v", "common");
    EXPECT_EQ(single(file), "common");
    set(project, "Base", "v", "base");
    EXPECT_EQ(single(file), "base") << "inherited beats Common on one element";
    set(project, "Target", "v", "target");
    EXPECT_EQ(single(file), "target") << "earlier in the inherited list wins";
    set(project, "Debug", "v", "debug");
    EXPECT_EQ(single(file), "debug");
    EXPECT_EQ(single(file, "Release"), "common");
    set(file, "Common", "v", "file");
    EXPECT_EQ(single(file), "file") << "a file's Common beats its project's Debug";
    set(folder, "Debug", "v", "");
    EXPECT_EQ(single(folder), "") << "an empty value ends the search";
    EXPECT_EQ(single(project, "Common"), "common") << "Common never looks at inherited lists";
}

TEST_F(Resolution, ListsCollectEveryFindNearestFirst)
{
    EXPECT_EQ(list(file), "d1;d2");
    set(project, "Debug", "l", "a");
    set(project, "Common", "l", "b");
    set(project, "Base", "l", "base");
    set(file, "Common", "l", "f");
    set(solution.get(), "Debug", "l", "s");
    EXPECT_EQ(list(file), "f;a;base;b;s");
    EXPECT_EQ(list(file, "Common"), "f;b");
    set(folder, "Common", "l", "");
    EXPECT_EQ(list(folder, "Common"), "b") << "an empty find adds nothing to an empty result";
    E other(E::Project);
    set(&other, "Debug", "l", "");
    EXPECT_EQ(list(&other), "") << "found empty: not the default";
    set(&other, "Common", "l", "z");
    EXPECT_EQ(list(&other), "z");
    set(&other, "Debug", "l", "y");
    set(&other, "Common", "l", "");
    EXPECT_EQ(list(&other), "y;") << "an empty find behind text adds the separator";
}

TEST_F(Resolution, NestedSolutionsUseTheImportingListUnlessTheyHaveTheirOwn)
{
    E *inner = add(solution.get(), E::Solution, "Inner");
    set(inner, "Release", "x", "");
    inner->updateInheritenceMap();
    E *innerProject = add(inner, E::Project, "Lib");
    set(innerProject, "Base", "v", "base");
    set(innerProject, "Other", "v", "other");
    EXPECT_EQ(single(innerProject), "base");
    set(inner, "Debug", "inherited_configurations", "Other");
    EXPECT_EQ(single(innerProject), "other");
    set(solution.get(), "Common", "v", "outer");
    innerProject->getConfigurationElement("Other")->removeAttribute("v");
    innerProject->getConfigurationElement("Base")->removeAttribute("v");
    EXPECT_EQ(single(innerProject), "outer") << "the walk goes on into enclosing solutions";
}

TEST_F(Resolution, ConfigurationsComeFromTheSolutionsOnly)
{
    set(project, "OnlyOnProject", "v", "1");
    EXPECT_EQ(system.configurations(file, 4), (QStringList{"Debug", "Release"}));
    EXPECT_EQ(system.configurations(file, 6), (QStringList{"Debug", "Private", "Release"}));
    E *inner = add(solution.get(), E::Solution, "Inner");
    set(inner, "Test", "x", "");
    set(inner, "Common", "x", "");
    EXPECT_EQ(system.configurations(inner, 4), (QStringList{"Debug", "Release", "Test"}));
    EXPECT_EQ(system.configurations(nullptr, 4), QStringList{"Common"}) << "no root loaded";
}

TEST_F(Resolution, UpToDateFollowsTheStampsOnTheResolvingPath)
{
    RecordingBuilder builder;
    E loaded(E::Project);
    add(&loaded, E::Configuration, "Common")->storeAttribute("v", "as read from a file");
    EXPECT_TRUE(system.upToDate1(&loaded, &singleClass, "Debug", QDateTime::fromSecsSinceEpoch(0)))
        << "values read from a file carry no stamp";
    set(project, "Common", "v", "near");
    set(project, "Common", "l", "near");
    QThread::msleep(5);
    const QDateTime since = QDateTime::currentDateTime();
    QThread::msleep(5);
    EXPECT_TRUE(system.upToDate1(file, &singleClass, "Debug", since));
    set(solution.get(), "Debug", "v", "far");
    set(solution.get(), "Debug", "l", "far");
    EXPECT_TRUE(system.upToDate1(file, &singleClass, "Debug", since))
        << "an older stamp nearer by hides a newer one farther up";
    EXPECT_FALSE(system.upToDate(file, &listClass, "Debug", since, &builder, false));
    EXPECT_FALSE(system.upToDate(file, &listClass, "Debug", since, &builder, true));
    EXPECT_EQ(builder.messages, QStringList{"Items property has changed."});
    set(folder, "Base", "v", "inherited");
    EXPECT_FALSE(system.upToDate1(file, &singleClass, "Debug", since));
    EXPECT_TRUE(system.upToDate1(file, &singleClass, "Common", since));
    folder->getConfigurationElement("Base")->removeAttribute("v");
    EXPECT_FALSE(system.upToDate1(file, &singleClass, "Debug", since))
        << "a removal after the output counts as a change";
}

} // namespace
