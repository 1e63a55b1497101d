#include "projecttesting.h"

#include "project/propertyvaluegroupclass.h"
#include "project/propertyvaluegroupfile.h"
#include "project/propertyvaluegroups.h"
#include "project/propertyvaluegroupvalue.h"

#include <QFile>

namespace {

class PropertyGroupsTest : public ProjectTest
{
protected:
    PropertyGroupsTest()
    {
        scratch.write("more.xml", "<more><group name=\"board\" default=\"none\"/>"
                                  "<group name=\"cpu_type\" default=\"fast\"/></more>");
        path = scratch.write("groups.xml", R"(<!DOCTYPE Property_Groups>
<propertyGroups>
  <group name="cpu_type" default="small">
    <groupEntry name="small">
      <property name="arm_core_type" value="ARM7TDMI"/>
      <property name="heap_size" value="0" configuration="Common"/>
    </groupEntry>
    <note name="skipped"/>
    <groupEntry name="fast">
      <property name="arm_core_type" value="ARM9"/>
      <cdefine name="__FAST" value="2" configuration="Release"/>
      <cdefine name="__CACHE" value=""/>
    </groupEntry>
  </group>
  <other name="skipped"/>
  <include filename="more.xml" no_root="1"/>
</propertyGroups>
)");
        groups.setGroupFile(path);
    }

    QString path;
    PropertyValueGroups groups;
};

TEST_F(PropertyGroupsTest, GroupsEntriesAndTaggedItems)
{
    const auto &classes = groups.currentFile()->groupClasses();
    ASSERT_EQ(classes.size(), 3) << "other tags skipped, the include expanded";
    PropertyValueGroupClass *cpu = classes[0];
    EXPECT_EQ(cpu->enumerates(), QStringList({"small", "fast"}));
    EXPECT_EQ(groups.getGroupClass("cpu_type"), cpu) << "the first of a name wins";
    EXPECT_TRUE(cpu->getGroupEntry("skipped").isNull()) << "only groupEntry elements are entries";
    // An item's configuration, if it names one, replaces the one asked for.
    const PropertyValueGroupEntry fast = cpu->getGroupEntry("fast");
    QString configuration = "Debug";
    EXPECT_EQ(fast.getTaggedValue("cdefine", "__FAST", configuration), "2");
    EXPECT_EQ(configuration, "Release");
    configuration = "Debug";
    EXPECT_FALSE(fast.getTaggedValue("cdefine", "__CACHE", configuration).isNull());
    EXPECT_EQ(configuration, "Debug");
    EXPECT_TRUE(fast.getTaggedValue("property", "__FAST", configuration).isNull());
}

TEST_F(PropertyGroupsTest, FilesAreReusedWhileUnchangedAndReloadedWhenTouched)
{
    PropertyValueGroupFile *first = groups.currentFile();
    PropertyValueGroupClass *firstClass = groups.getGroupClass("cpu_type");
    groups.setGroupFile(path);
    EXPECT_EQ(groups.currentFile(), first) << "an unchanged file isn't loaded again";
    QFile file(path); // ten seconds on, whatever the file system's time resolution
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime::currentDateTime().addSecs(10), QFileDevice::FileModificationTime);
    file.close();
    groups.setGroupFile(path);
    EXPECT_EQ(groups.outdatedFiles(), QList<PropertyValueGroupFile *>{first});
    EXPECT_EQ(firstClass->getGroupEntry("fast").getTaggedNames("cdefine"),
              QStringList({"__FAST", "__CACHE"}))
        << "classes of an outdated file stay usable";
    QFile::remove(path);
    groups.setGroupFile(path);
    EXPECT_EQ(groups.currentFile(), nullptr) << "a vanished file can't be reloaded";
    groups.setGroupFile(scratch.write("broken.xml", "<propertyGroups><group"));
    EXPECT_EQ(groups.currentFile(), nullptr);
    EXPECT_TRUE(groups.files().isEmpty());
}

TEST_F(PropertyGroupsTest, ChoosingAnEntrySetsItsProperties)
{
    E *project = system.createProject(system.createSolution("S", scratch.path()), "App",
                                      scratch.path(), "Executable");
    const auto stored = [project](const QString &configuration, const QString &saveName) {
        const E *child = project->getConfigurationElement(configuration);
        return child ? child->attribute(saveName) : QString();
    };
    PropertyValueGroupValue value(groups.getGroupClass("cpu_type"), project, "Debug");
    value.setPropertyValue("fast");
    EXPECT_EQ(value.propertyValue(), "fast");
    EXPECT_EQ(stored("Debug", "arm_core_type"), "ARM9");
    value.setPropertyValue("turbo", true);
    EXPECT_EQ(stored("Debug", "cpu_type"), "small") << "an unknown entry stores the default";
    EXPECT_EQ(stored("Debug", "arm_core_type"), "ARM7TDMI");
    EXPECT_EQ(stored("Common", "heap_size"), "0") << "an item's own configuration wins";
    EXPECT_TRUE(project->getConfigurationElement("Debug")->attributeFromTemplate("arm_core_type"));
    value.removeProperty();
    EXPECT_TRUE(stored("Debug", "cpu_type").isNull());
    EXPECT_TRUE(stored("Debug", "arm_core_type").isNull() &&
                stored("Common", "heap_size").isNull());
    PropertyValueGroupValue board(groups.getGroupClass("board"), project, "Debug");
    board.setPropertyValue("anything");
    EXPECT_EQ(stored("Debug", "board"), "none") << "without entries the default is stored";
}

} // namespace
