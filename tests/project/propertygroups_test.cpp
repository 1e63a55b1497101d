#include "projecttesting.h"

#include "project/propertyvaluegroupclass.h"
#include "project/propertyvaluegroupfile.h"
#include "project/propertyvaluegroups.h"
#include "project/propertyvaluegroupvalue.h"

#include <QFile>

namespace {

using E = ProjectElement;

const QByteArray groupFile = R"(<!DOCTYPE Property_Groups>
<propertyGroups>
  <group name="cpu_type" group="Target" short="CPU" long="The processor." default="small">
    <groupEntry name="small">
      <property name="arm_core_type" value="ARM7TDMI"/>
      <property name="heap_size" value="0" configuration="Common"/>
      <cdefine name="__SMALL" value="1"/>
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
)";

const QByteArray moreGroups = R"(<more>
  <group name="board" default="none"/>
  <group name="cpu_type" default="fast"/>
</more>
)";

/// Sets the modification time of `path` `seconds` from now, so a change is seen whatever
/// the file system's time resolution.
void touch(const QString &path, int seconds)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(seconds),
                                 QFileDevice::FileModificationTime));
}

class PropertyGroupsTest : public ProjectTest
{
protected:
    PropertyGroupsTest()
    {
        path = scratch.write("groups.xml", groupFile);
        scratch.write("more.xml", moreGroups);
    }

    QString path;
    PropertyValueGroups groups;
};

TEST_F(PropertyGroupsTest, FilesAreReusedWhileUnchangedAndReloadedWhenTouched)
{
    groups.setGroupFile(path);
    PropertyValueGroupFile *first = groups.currentFile();
    ASSERT_NE(first, nullptr);
    PropertyValueGroupClass *firstClass = groups.getGroupClass("cpu_type");
    ASSERT_NE(firstClass, nullptr);

    groups.setGroupFile(path);
    EXPECT_EQ(groups.currentFile(), first) << "an unchanged file isn't loaded again";
    EXPECT_EQ(groups.files().size(), 1);

    groups.setGroupFile("None");
    EXPECT_EQ(groups.currentFile(), nullptr);
    EXPECT_EQ(groups.getGroupClass("cpu_type"), nullptr);

    touch(path, 10);
    groups.setGroupFile(path);
    ASSERT_NE(groups.currentFile(), nullptr);
    EXPECT_NE(groups.currentFile(), first);
    EXPECT_EQ(groups.files(), QList<PropertyValueGroupFile *>{groups.currentFile()});
    EXPECT_EQ(groups.outdatedFiles(), QList<PropertyValueGroupFile *>{first});
    EXPECT_EQ(firstClass->getGroupEntry("fast").getTaggedNames("cdefine"),
              QStringList({"__FAST", "__CACHE"}))
        << "classes of an outdated file stay usable";

    QFile::remove(path);
    groups.setGroupFile(path);
    EXPECT_EQ(groups.currentFile(), nullptr) << "a vanished file can't be reloaded";
    EXPECT_TRUE(groups.files().isEmpty());
    EXPECT_EQ(groups.outdatedFiles().size(), 2);

    groups.setGroupFile(scratch.write("broken.xml", "<propertyGroups><group"));
    EXPECT_EQ(groups.currentFile(), nullptr);
    groups.setGroupFile(scratch.file("missing.xml"));
    EXPECT_EQ(groups.currentFile(), nullptr);
    EXPECT_TRUE(groups.files().isEmpty());
}

TEST_F(PropertyGroupsTest, GroupsEntriesAndTaggedItems)
{
    groups.setGroupFile(path);
    const auto &classes = groups.currentFile()->groupClasses();
    ASSERT_EQ(classes.size(), 3) << "other tags skipped, the include expanded";
    PropertyValueGroupClass *cpu = classes[0];
    EXPECT_EQ(cpu->saveName(), "cpu_type");
    EXPECT_EQ(cpu->type(), PropertyClass::Enumeration);
    EXPECT_EQ(cpu->group(), "Target");
    EXPECT_EQ(cpu->shortDescription(), "CPU");
    EXPECT_EQ(cpu->longDescription(), "The processor.");
    EXPECT_EQ(cpu->defaultValue(), "small");
    EXPECT_EQ(cpu->enumerates(), QStringList({"small", "fast"}));
    EXPECT_EQ(groups.getGroupClass("cpu_type"), cpu) << "the first of a name wins";
    EXPECT_EQ(classes[1]->saveName(), "board");
    EXPECT_TRUE(classes[1]->enumerates().isEmpty());

    const PropertyValueGroupEntry fast = cpu->getGroupEntry("fast");
    ASSERT_FALSE(fast.isNull());
    EXPECT_TRUE(cpu->getGroupEntry("skipped").isNull());
    EXPECT_TRUE(cpu->getGroupEntry("slow").isNull());
    EXPECT_TRUE(cpu->getGroupEntry("slow").getTaggedNames("cdefine").isEmpty());

    QString configuration = "Debug";
    EXPECT_EQ(fast.getTaggedValue("cdefine", "__FAST", configuration), "2");
    EXPECT_EQ(configuration, "Release");
    configuration = "Debug";
    const QString empty = fast.getTaggedValue("cdefine", "__CACHE", configuration);
    EXPECT_TRUE(empty.isEmpty() && !empty.isNull());
    EXPECT_EQ(configuration, "Debug") << "kept without a configuration attribute";
    EXPECT_TRUE(fast.getTaggedValue("cdefine", "__SMALL", configuration).isNull());
    EXPECT_TRUE(fast.getTaggedValue("property", "__FAST", configuration).isNull());
}

TEST_F(PropertyGroupsTest, ChoosingAnEntrySetsItsProperties)
{
    groups.setGroupFile(path);
    E *solution = system.createSolution("S", scratch.path());
    E *project = system.createProject(solution, "App", scratch.path(), "Executable");
    auto stored = [project](const QString &configuration, const QString &saveName) {
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
    EXPECT_TRUE(stored("Debug", "heap_size").isNull());
    EXPECT_TRUE(project->getConfigurationElement("Debug")->attributeFromTemplate("arm_core_type"));

    value.removeProperty();
    EXPECT_TRUE(stored("Debug", "cpu_type").isNull());
    EXPECT_TRUE(stored("Debug", "arm_core_type").isNull());
    EXPECT_TRUE(stored("Common", "heap_size").isNull());

    PropertyValueGroupValue board(groups.getGroupClass("board"), project, "Debug");
    const auto before = project->getConfigurationElement("Debug")->attributes().size();
    board.setPropertyValue("anything");
    EXPECT_EQ(stored("Debug", "board"), "none") << "without entries only the choice is stored";
    EXPECT_EQ(project->getConfigurationElement("Debug")->attributes().size(), before + 1);
}

} // namespace
