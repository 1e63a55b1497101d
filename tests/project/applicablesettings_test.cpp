#include "projecttesting.h"

#include "project/propertyvaluegroupvalue.h"
#include "project/settingexpander.h"
#include "properties/propertyvaluelist.h"

#include <memory>
#include <vector>

namespace {

using E = ProjectElement;

/// The build side as the project model sees it: a catalogue of the generic build classes and
/// a few ARM ones (some ARM names deliberately missing), and expansion of one macro.
class FakeBuildCatalogue : public SettingExpander
{
public:
    FakeBuildCatalogue(ProjectSystem &system, const QString &scratchDir)
        : m_system(system), m_scratchDir(scratchDir)
    {
        for (const char *name : {"c_preprocessor_definitions",
                                 "c_preprocessor_undefinitions",
                                 "c_user_include_directories",
                                 "c_system_include_directories",
                                 "c_undefine_all_preprocessor_definitions",
                                 "c_ignore_includes",
                                 "build_treat_warnings_as_errors",
                                 "build_suppress_warnings",
                                 "build_debug_information",
                                 "build_quietly",
                                 "default_code_section",
                                 "default_data_section",
                                 "default_zeroed_section",
                                 "default_const_section",
                                 "default_vector_section",
                                 "c_additional_options",
                                 "c_enforce_ansi_checking",
                                 "cpp_enable_exceptions",
                                 "cpp_enable_rtti",
                                 "asm_additional_options",
                                 "linker_memory_map_file",
                                 "linker_post_build_command",
                                 "target_reset_script",
                                 "debug_working_directory",
                                 "build_output_directory",
                                 "build_intermediate_directory",
                                 "build_object_file_name",
                                 "build_exclude_from_build",
                                 "stage_command",
                                 "stage_output_filepath",
                                 "stage_package_filepath",
                                 "stage_package_member_name",
                                 "stage_set_readonly",
                                 "combine_command",
                                 "combine_output_filepath",
                                 "combine_set_readonly",
                                 "external_build_command",
                                 "gcc_optimization_level",
                                 "gcc_entry_point",
                                 "arm_instruction_set",
                                 "arm_keep_assembly",
                                 "arm_long_calls",
                                 "build_remove_unused_symbols",
                                 "arm_library_instruction_set",
                                 "arm_fp_format"})
            add(name);
        groupsPath = add("property_groups_file_path");
        groupsPath->setDefault("None");
        linkerOutput = add("build_output_file_name");
        libraryOutput = add("build_output_file_name");
    }

    QString settingForExpanded(ProjectElement *element, const PropertyClass *propertyClass,
                               const QString &configuration) override
    {
        return m_system.settingFor(element, propertyClass, configuration)
            .replace("$(Scratch)", m_scratchDir);
    }
    PropertyClass *findPropertyClass(const QString &saveName) const override
    {
        return m_byName.value(saveName);
    }
    PropertyClass *linkerOutputFileNameClass() const override { return linkerOutput; }

    PropertyClass *groupsPath;
    PropertyClass *linkerOutput;
    PropertyClass *libraryOutput;

private:
    PropertyClass *add(const char *name)
    {
        m_classes.push_back(std::make_unique<PropertyClass>(QString::fromLatin1(name),
                                                            PropertyClass::String, "G", "T", "L"));
        m_byName.insert(name, m_classes.back().get());
        return m_classes.back().get();
    }

    ProjectSystem &m_system;
    QString m_scratchDir;
    std::vector<std::unique_ptr<PropertyClass>> m_classes;
    QMap<QString, PropertyClass *> m_byName;
};

class ApplicableSettingsTest : public ProjectTest
{
protected:
    ApplicableSettingsTest() : catalogue(system, scratch.path())
    {
        system.setSettingExpander(&catalogue);
        solution = system.createSolution("S", scratch.path());
    }
    ~ApplicableSettingsTest() override { system.setSettingExpander(nullptr); }

    /// The applicable values of `element` in "Debug", as save names.
    QStringList names(E *element)
    {
        std::unique_ptr<PropertyValueList> values(system.applicableSettingsFor(element, "Debug"));
        QStringList result;
        for (PropertyValue *value : *values) {
            auto *bound = dynamic_cast<ProjectPropertyValue *>(value);
            EXPECT_TRUE(bound && bound->element() == element && bound->configuration() == "Debug");
            result.append(value->propertyClass()->saveName());
        }
        return result;
    }
    /// A new project of `type`; an empty type leaves "project_type" unset.
    E *project(const QString &type)
    {
        E *made =
            system.createProject(solution, QString("P%1").arg(++m_projects), scratch.path(), type);
        if (type.isEmpty())
            system.removeProperty(made, system.projectTypeClass, "Common");
        return made;
    }

    FakeBuildCatalogue catalogue;
    E *solution;

private:
    int m_projects = 0;
};

TEST_F(ApplicableSettingsTest, FileTypesAreDecidedOnceAndKept)
{
    E *app = project("Executable");
    auto file = [&](const QString &name) { return system.addFile(app, scratch.file(name)); };
    EXPECT_EQ(system.getFileType(file("never/written.c")), "C") << "the suffix needs no file";
    EXPECT_EQ(system.getFileType(file("f.4")), "Forth");
    EXPECT_EQ(system.getFileType(file("b.BAS")), "Basic");
    EXPECT_EQ(system.getFileType(file("lib.a")), "Library");
    EXPECT_EQ(system.getFileType(file("start.asm")), "Assembly");

    scratch.write("place.xml", "<!DOCTYPE Linker_Placement_File><Root/>");
    scratch.write("target.xml", "<!DOCTYPE Tarnbench_Target_Definition_File><Root/>");
    scratch.write("later.xml", "<Root/>");
    E *placement = file("place.xml");
    E *later = file("later.xml");
    EXPECT_EQ(system.getFileType(placement), "Section Placement");
    EXPECT_EQ(system.getFileType(file("target.xml")), "Target Definitions");
    EXPECT_EQ(system.getFileType(later), "");

    scratch.write("place.xml", "<!DOCTYPE Board_Memory_Definition_File><Root/>");
    scratch.write("later.xml", "<!DOCTYPE Board_Memory_Definition_File><Root/>");
    EXPECT_EQ(system.getFileType(placement), "Section Placement") << "a found type is cached";
    EXPECT_EQ(system.getFileType(later), "Memory Map") << "an empty type is not";

    system.setProperty(placement, system.fileTypeClass, "Debug", "C");
    EXPECT_EQ(system.getFileType(placement), "Section Placement") << "only Common's setting";
    system.setProperty(placement, system.fileTypeClass, "Common", "Threads Script");
    EXPECT_EQ(system.getFileType(placement), "Threads Script");
}

TEST_F(ApplicableSettingsTest, ListsByElementKind)
{
    EXPECT_EQ(names(project("")), QStringList{"build_exclude_from_build"});
    EXPECT_EQ(names(project("Combining")),
              QStringList({"build_output_directory", "combine_command", "combine_output_filepath",
                           "combine_set_readonly", "build_exclude_from_build"}));

    E *staging = project("Staging");
    const QStringList stagingProject{"build_output_directory",    "stage_command",
                                     "stage_output_filepath",     "stage_package_filepath",
                                     "stage_package_member_name", "stage_set_readonly",
                                     "build_exclude_from_build"};
    EXPECT_EQ(names(staging), stagingProject);
    EXPECT_EQ(names(system.createFolder(staging, "Files", "")), stagingProject);
    EXPECT_EQ(
        names(system.addFile(staging, scratch.file("x.c"))),
        QStringList({"stage_output_filepath", "stage_package_filepath", "stage_package_member_name",
                     "stage_command", "build_exclude_from_build", "stage_set_readonly"}));
    EXPECT_EQ(names(system.createFolder(project("Combining"), "F", "")),
              QStringList{"build_exclude_from_build"});

    E *library = project("Library");
    const QStringList libraryList = names(library);
    EXPECT_EQ(libraryList.mid(0, 4),
              QStringList({"build_output_directory", "build_intermediate_directory",
                           "build_object_file_name", "c_additional_options"}));
    EXPECT_EQ(libraryList.mid(libraryList.size() - 2),
              QStringList({"build_output_file_name", "build_exclude_from_build"}));
    std::unique_ptr<PropertyValueList> libraryValues(
        system.applicableSettingsFor(library, "Debug"));
    EXPECT_NE(libraryValues->find(catalogue.libraryOutput), nullptr);

    const QStringList folder = names(system.createFolder(library, "Source", "c"));
    EXPECT_EQ(folder.first(), "build_output_directory");
    EXPECT_EQ(folder.mid(folder.size() - 2),
              QStringList({"build_intermediate_directory", "build_exclude_from_build"}))
        << "an object-file list has no intermediate directory of its own";

    const QStringList c = names(system.addFile(library, scratch.file("m.c")));
    EXPECT_EQ(c.mid(0, 3), QStringList({"file_codec", "file_type", "c_additional_options"}));
    EXPECT_EQ(c.mid(c.size() - 2),
              QStringList({"build_object_file_name", "build_exclude_from_build"}));
    const QStringList cpp = names(system.addFile(library, scratch.file("m.cpp")));
    EXPECT_EQ(cpp.mid(cpp.size() - 4),
              QStringList({"cpp_enable_exceptions", "cpp_enable_rtti", "build_object_file_name",
                           "build_exclude_from_build"}));
    scratch.write("unknown.xml", "<!DOCTYPE Unknown><Root/>");
    EXPECT_EQ(names(system.addFile(library, scratch.file("unknown.xml"))),
              QStringList({"file_codec", "file_type", "build_exclude_from_build"}));

    const QStringList solutionList = names(solution);
    EXPECT_EQ(solutionList.first(), "build_output_directory");
    EXPECT_EQ(solutionList.last(), "stage_set_readonly");
    EXPECT_FALSE(solutionList.contains("build_exclude_from_build"));
    EXPECT_TRUE(solutionList.contains("gcc_entry_point"));
}

TEST_F(ApplicableSettingsTest, ToolChainListsKeepTheFirstPlaceOfARepeatedClass)
{
    E *app = project("Executable");
    const QStringList list = names(app);
    EXPECT_EQ(list.count("arm_keep_assembly"), 1);
    EXPECT_LT(list.indexOf("arm_keep_assembly"), list.indexOf("arm_long_calls"))
        << "the ARM assembler list comes before the ARM C additions";
    EXPECT_LT(list.indexOf("gcc_optimization_level"), list.indexOf("arm_instruction_set"));
    EXPECT_LT(list.indexOf("linker_post_build_command"), list.indexOf("gcc_entry_point"));
    EXPECT_LT(list.indexOf("gcc_entry_point"), list.indexOf("arm_library_instruction_set"));
    EXPECT_LT(list.indexOf("debug_working_directory"), list.indexOf("arm_fp_format"));
    EXPECT_EQ(list.count("build_remove_unused_symbols"), 1);
    EXPECT_FALSE(list.contains("arm_fp_abi")) << "names the catalogue lacks are skipped";
    EXPECT_EQ(list.mid(list.size() - 3),
              QStringList({"build_output_file_name", "property_groups_file_path",
                           "build_exclude_from_build"}));
    std::unique_ptr<PropertyValueList> values(system.applicableSettingsFor(app, "Debug"));
    EXPECT_NE(values->find(catalogue.linkerOutput), nullptr);
    EXPECT_EQ(values->find(catalogue.libraryOutput), nullptr);
}

TEST_F(ApplicableSettingsTest, GroupValuesFollowForSolutionsAndExecutables)
{
    scratch.write("groups/g.xml", R"(<groups>
  <group name="cpu" default="a"><groupEntry name="a"/></group>
  <group name="board" default="b"/>
</groups>)");
    auto groupNames = [this](E *element) {
        std::unique_ptr<PropertyValueList> values(system.applicableSettingsFor(element, "Debug"));
        QStringList result;
        for (PropertyValue *value : *values) {
            if (dynamic_cast<PropertyValueGroupValue *>(value))
                result.append(value->propertyClass()->saveName());
        }
        return result;
    };
    E *app = project("Executable");
    E *external = project("Externally Built Executable");
    E *library = project("Library");
    EXPECT_TRUE(groupNames(app).isEmpty()) << "the default path here is None";

    system.setProperty(solution, catalogue.groupsPath, "Common", "$(Scratch)/groups/g.xml");
    const QStringList both{"cpu", "board"};
    EXPECT_EQ(groupNames(solution), both);
    EXPECT_EQ(groupNames(app), both);
    EXPECT_EQ(groupNames(external), both);
    EXPECT_TRUE(groupNames(library).isEmpty());

    system.setProperty(app, catalogue.groupsPath, "Debug", "");
    EXPECT_TRUE(groupNames(app).isEmpty()) << "an empty path leaves the groups out";
}

} // namespace
