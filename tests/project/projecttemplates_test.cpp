#include "projectoutline.h"

#include "macros/macrosystem.h"
#include "project/propertyvaluegroups.h"
#include "project/settingexpander.h"

namespace {

/// What templates ask of the build side: the groups file setting, with the global macros.
struct GroupsFileSetting : SettingExpander
{
    QString settingForExpanded(ProjectElement *element, const PropertyClass *propertyClass,
                               const QString &configuration) override
    {
        return macroSystem.replaceMacros(
            macroSystem.globalMacros(true),
            projectSystem->settingFor(element, propertyClass, configuration));
    }
    PropertyClass *findPropertyClass(const QString &saveName) const override
    {
        return saveName == path.saveName() ? &path : nullptr;
    }
    mutable PropertyClass path{
        "property_groups_file_path", PropertyClass::FileName, "", "", "", "None"};
};

/// The templates, a group of projects per item kind. The first "Folders" is replaced by the
/// later one; the chain of definitions is made by the preprocessor.
const QByteArray kit = R"x(<kit><project template_name="Folders" type="Library"/>
<configurations>
  <c name="Board"><p name="hidden" value="Yes"/><p name="arm_core_type" value="ARM9"/></c>
  <c name="Board Debug"><p name="inherited_configurations" value="Board;Cycle;Missing"/>
    <p name="build_output_directory" value="out"/><p name="" value="skipped"/></c>
  <c name="Cycle"><p name="inherited_configurations" value="Board Debug"/></c>
  <for index="i" start="0" end="9000" incr="1" add="1">
    <c name="L$(i)"><p name="inherited_configurations" value="L$(i_ap)"/></c></for>
</configurations>
<group><project template_name="Folders" type="Executable">
  <folder name="Src" filter="c"><folder name="Deep"/></folder>
  <folder name="Kept" filter="c"/><folder name="Given" filter="s"/><folder filter="c"/>
</project></group>
<project template_name="Files">
  <file name="$(BenchDir)/x.c"/><file name="$(BenchDir)/raw.s" expand="NO"/>
  <file name="copied.c" source="x/copied.c"/><file expand="no"/>
  <file name="listed.c"><property name="c_preprocessor_definitions" value="T"/></file>
</project>
<project template_name="Properties">
  <property name="c_preprocessor_definitions" value="TEMPLATE"/>
  <property name="linker_map_file" value="Yes" configuration="Debug"/>
  <property name="build_output_directory" value="$(BenchDir)" expand="Yes"/>
  <property name="build_intermediate_directory" value="$(BenchDir)"/>
  <property name="gcc_entry_point"/>
  <property name="property_groups_file_path" value="$(BenchDir)/groups.xml"/>
  <propertygroup name="board" value="big"/><propertygroup name="cpu" value="x"/>
  <folder name="F"><propertygroup name="board" value="huge" configuration="Debug"/></folder>
</project>
<project template_name="Configurations">
  <configuration name="Board Debug"/><configuration name="Nonesuch"/></project>
<project template_name="Chain"><configuration name="L0"/></project>
</kit>
)x";

const QByteArray groups = R"x(<groups><group name="board" default="small">
  <groupEntry name="small"><property name="arm_core_type" value="ARM7"/></groupEntry>
  <groupEntry name="big"><property name="arm_core_type" value="ARM9" configuration="Release"/>
  </groupEntry></group></groups>
)x";

/// Solutions naming templates of a file written into `$(BenchDir)/targets`.
class TemplatesTest : public OutlineTest
{
protected:
    TemplatesTest()
    {
        macroSystem.setSystemMacro("BenchDir", scratch.path());
        system.setSettingExpander(&expander);
        scratch.write("targets/project_templates.xml", kit);
        scratch.write("groups.xml", groups);
    }
    ~TemplatesTest() override
    {
        system.setSettingExpander(nullptr);
        macroSystem.setSystemMacro("BenchDir", QString());
        propertyValueGroups.setGroupFile("None");
    }

    GroupsFileSetting expander;
};

TEST_F(TemplatesTest, ALoadEndsOnATemplateThatCantBeFound)
{
    // Not XML, no root element, and no file at all.
    const QByteArray files[] = {"<kit><project template_name=\"T\">", "<!-- none -->", {}};
    for (const QByteArray &text : files) {
        if (text.isNull())
            QFile::remove(scratch.file("targets/project_templates.xml"));
        else
            scratch.write("targets/project_templates.xml", text);
        const auto error = loadError(
            scratch.write("s.hdp", solutionText("<project Name=\"P\" template_name=\"T\"/>")));
        ASSERT_TRUE(error) << text.left(20).data();
        EXPECT_EQ(error->fileName + error->message, "T project template not found");
        EXPECT_FALSE(system.haveSolution());
    }
}

TEST_F(TemplatesTest, ItemsFillTheProjectAndTheSolutionFileWins)
{
    load(R"x(<project Name="Folders" template_name="Folders">
  <configuration Name="Common" project_type="Library"/>
  <folder Name="Kept"><configuration Name="Common" filter="h"/></folder><folder Name="Given"/>
</project>
<project Name="Files" template_name="Files"><file Name="listed.c" file_name="listed.c"/></project>
<project Name="Properties" template_name="Properties">
  <configuration Name="Common" c_preprocessor_definitions="MINE"/></project>
)x");
    // A file name is expanded with the build macros unless "expand" says no, and a name that
    // keeps its "$" is stored as it stands; a file with a source adds nothing. A group choice
    // that isn't an entry stores the default entry's values.
    EXPECT_EQ(project("Folders") + project("Files") + project("Properties"),
              "project Folders\n"
              "  configuration Common project_type=Executable\n"
              "  folder Kept\n"
              "    configuration Common filter=h\n"
              "  folder Given\n"
              "    configuration Common filter=s\n"
              "  folder Src\n"
              "    configuration Common filter=c\n"
              "    folder Deep\n"
              "project Files\n"
              "  file listed.c file_name=listed.c\n"
              "    configuration Common c_preprocessor_definitions=T\n"
              "  configuration Common project_type=\n"
              "  file x.c file_name=x.c\n"
              "  file raw.s file_name=$(BenchDir)/raw.s\n"
              "project Properties\n"
              "  configuration Common board=big build_intermediate_directory=$(BenchDir) "
              "build_output_directory=" +
                  scratch.path() +
                  " c_preprocessor_definitions=MINE project_type= "
                  "property_groups_file_path=$(BenchDir)/groups.xml\n"
                  "  configuration Debug linker_map_file=Yes\n"
                  "  configuration Release arm_core_type=ARM9\n"
                  "  folder F\n"
                  "    configuration Debug arm_core_type=ARM7 board=small\n");
    EXPECT_FALSE(system.modified());
}

TEST_F(TemplatesTest, ConfigurationsComeFromDefinitionsAndInheritedOnesEndOnACycle)
{
    // The nested solution already says otherwise in one value: its project takes the
    // template's value for itself.
    E *root = load(R"x(<project Name="P" template_name="Configurations"/>
<project Name="C" template_name="Chain"/>
<solution Name="Inner"><configuration Name="Board Debug" build_output_directory="mine"/>
  <project Name="Q" template_name="Configurations"/></solution>
)x");
    QString configurations;
    for (const char *name : {"Board Debug", "Board", "Cycle"})
        configurations += outline(root->getConfigurationElement(name));
    EXPECT_EQ(configurations, "configuration Board Debug build_output_directory=out "
                              "inherited_configurations=Board;Cycle;Missing\n"
                              "configuration Board arm_core_type=ARM9 hidden=Yes\n"
                              "configuration Cycle inherited_configurations=Board Debug\n");
    EXPECT_EQ(project("P") + project("Q(Inner)"),
              "project P\n  configuration Common project_type=\n"
              "project Q\n  configuration Common project_type=\n"
              "  configuration Board Debug build_output_directory=out\n");
    E *inner = system.solutionSolutions().value("Inner");
    EXPECT_EQ(inner->getConfigurationElement("Board Debug")->attribute("build_output_directory"),
              "mine");
    EXPECT_NE(root->getConfigurationElement("L8999"), nullptr) << "a long chain is followed";
    EXPECT_EQ(root->getConfigurationElement("L9000"), nullptr) << "without a definition";
}

} // namespace
