#include "projecttesting.h"

#include "project/propertyvaluegroupvalue.h"
#include "project/settingexpander.h"
#include "properties/propertyvaluelist.h"

#include <memory>

namespace {

/// The build side as the project model sees it: a few classes of the build catalogue, one of
/// each list and those the lists share (any others are skipped), and two forms of the output
/// file name.
struct FakeBuildCatalogue : SettingExpander
{
    explicit FakeBuildCatalogue(ProjectSystem &system) : system(system)
    {
        for (const char *name :
             {"build_output_directory", "build_intermediate_directory", "build_object_file_name",
              "build_exclude_from_build", "build_quietly", "c_additional_options",
              "cpp_enable_rtti", "asm_additional_options", "gcc_entry_point",
              "debug_working_directory", "arm_keep_assembly", "arm_long_calls",
              "build_remove_unused_symbols", "arm_fp_format", "stage_command", "combine_command",
              "external_build_command", "property_groups_file_path", "build_output_file_name"})
            classes[name] =
                std::make_shared<PropertyClass>(name, PropertyClass::String, "", "", "");
        classes["property_groups_file_path"]->setDefault("None");
    }
    QString settingForExpanded(ProjectElement *element, const PropertyClass *propertyClass,
                               const QString &configuration) override
    {
        return system.settingFor(element, propertyClass, configuration);
    }
    PropertyClass *findPropertyClass(const QString &saveName) const override
    {
        return classes.value(saveName).get();
    }
    PropertyClass *linkerOutputFileNameClass() const override { return linkerOutput.get(); }

    ProjectSystem &system;
    QMap<QString, std::shared_ptr<PropertyClass>> classes;
    std::shared_ptr<PropertyClass> linkerOutput = std::make_shared<PropertyClass>(
        "build_output_file_name", PropertyClass::String, "", "", "");
};

class ApplicableSettingsTest : public ProjectTest
{
protected:
    ApplicableSettingsTest() : catalogue(system)
    {
        system.setSettingExpander(&catalogue);
        solution = system.createSolution("S", scratch.path());
    }
    ~ApplicableSettingsTest() override { system.setSettingExpander(nullptr); }

    /// The applicable values of `element` in "Debug": the save names of its own classes, then
    /// "group:" and the names of the property groups.
    QString names(E *element)
    {
        std::unique_ptr<PropertyValueList> values(system.applicableSettingsFor(element, "Debug"));
        QStringList result;
        for (PropertyValue *value : *values) {
            auto *bound = dynamic_cast<ProjectPropertyValue *>(value);
            const bool group = dynamic_cast<PropertyValueGroupValue *>(value);
            EXPECT_TRUE(group || (bound && bound->element() == element &&
                                  bound->configuration() == "Debug"));
            result.append((group ? "group:" : "") + value->propertyClass()->saveName());
        }
        return result.join(' ');
    }
    /// A new project of `type`; an empty type leaves "project_type" unset.
    E *project(const QString &type)
    {
        E *made =
            system.createProject(solution, QString("P%1").arg(++projects), scratch.path(), type);
        if (type.isEmpty())
            system.removeProperty(made, system.projectTypeClass, "Common");
        return made;
    }
    E *file(E *parent, const QString &name) { return system.addFile(parent, scratch.file(name)); }

    FakeBuildCatalogue catalogue;
    E *solution;
    int projects = 0;
};

TEST_F(ApplicableSettingsTest, FileTypesComeFromTheSettingTheSuffixOrTheDocumentType)
{
    E *app = project("Executable");
    EXPECT_EQ(system.getFileType(file(app, "never/written.CC")), "C++") << "no file needed";
    scratch.write("place.xml", "<!DOCTYPE Linker_Placement_File><Root/>");
    scratch.write("later.xml", "<Root/>");
    E *placement = file(app, "place.xml");
    E *later = file(app, "later.xml");
    EXPECT_EQ(system.getFileType(placement), "Section Placement");
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

TEST_F(ApplicableSettingsTest, ListsGoByElementKindAndKeepTheFirstPlaceOfARepeatedClass)
{
    // The C++ file's list shows the layers in order, a repeated class in its first place only
    // and the names the catalogue lacks skipped; the rest show which lists each kind takes.
    E *library = project("Library");
    scratch.write("unknown.xml", "<!DOCTYPE Unknown><Root/>");
    const std::pair<E *, const char *> kinds[] = {
        {file(library, "m.cpp"),
         "file_codec file_type c_additional_options build_quietly asm_additional_options "
         "arm_keep_assembly arm_long_calls build_remove_unused_symbols cpp_enable_rtti "
         "build_object_file_name build_exclude_from_build"},
        {solution, "build_output_directory build_intermediate_directory c_additional_options "
                   "build_quietly asm_additional_options arm_keep_assembly arm_long_calls "
                   "build_remove_unused_symbols cpp_enable_rtti gcc_entry_point stage_command"},
        {project(""), "build_exclude_from_build"},
        {project("Combining"), "build_output_directory combine_command build_exclude_from_build"},
        {project("Externally Built Executable"), "external_build_command debug_working_directory "
                                                 "arm_fp_format property_groups_file_path "
                                                 "build_exclude_from_build"},
        {file(project("Staging"), "x.c"), "stage_command build_exclude_from_build"},
        {system.createFolder(project("Combining"), "F", ""), "build_exclude_from_build"},
        {file(library, "unknown.xml"), "file_codec file_type build_exclude_from_build"}};
    for (const auto &[element, expected] : kinds)
        EXPECT_EQ(names(element), expected) << element->getName().toStdString();
    // The other compiled kinds take the same compilers' lists and differ at their ends.
    EXPECT_TRUE(names(project("Executable"))
                    .endsWith("rtti gcc_entry_point debug_working_directory arm_fp_format "
                              "build_output_file_name property_groups_file_path "
                              "build_exclude_from_build"));
    EXPECT_TRUE(names(library).endsWith("rtti build_output_file_name build_exclude_from_build"));
    EXPECT_TRUE(names(system.createFolder(library, "Source", "c"))
                    .endsWith("rtti build_intermediate_directory build_exclude_from_build"));
    // Executables take the linker's form of the output file name, libraries the catalogue's.
    std::unique_ptr<PropertyValueList> values(system.applicableSettingsFor(library, "Debug"));
    EXPECT_NE(values->find(catalogue.classes["build_output_file_name"].get()), nullptr);
    values.reset(system.applicableSettingsFor(project("Executable"), "Debug"));
    EXPECT_NE(values->find(catalogue.linkerOutput.get()), nullptr);
}

TEST_F(ApplicableSettingsTest, GroupValuesFollowForSolutionsAndExecutables)
{
    const QString groups = scratch.write("g.xml", "<groups><group name=\"cpu\" default=\"a\">"
                                                  "<groupEntry name=\"a\"/></group>"
                                                  "<group name=\"board\" default=\"b\"/></groups>");
    E *app = project("Executable");
    EXPECT_FALSE(names(app).contains("group:")) << "the default path here is None";
    PropertyClass *groupsPath = catalogue.classes["property_groups_file_path"].get();
    system.setProperty(solution, groupsPath, "Common", groups);
    for (E *element : {solution, app, project("Externally Built Executable")})
        EXPECT_TRUE(names(element).endsWith("group:cpu group:board"));
    EXPECT_FALSE(names(project("Library")).contains("group:"));
    system.setProperty(app, groupsPath, "Debug", "");
    EXPECT_FALSE(names(app).contains("group:")) << "an empty path leaves the groups out";
}

} // namespace
