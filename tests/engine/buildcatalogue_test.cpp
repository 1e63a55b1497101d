#include "buildfixture.h"

#include "engine/standardbuildsystem.h"

namespace {

struct Expected
{
    const char *saveName;
    PropertyClass::Type type;
    const char *group;
};

// Save names are the attribute names of solution files; a spot check of each type and of the
// groups a family shares.
const Expected catalogue[] = {
    {"build_treat_warnings_as_errors", PropertyClass::Boolean, "Build Options"},
    {"build_intermediate_directory", PropertyClass::FileName, "Build Options"},
    {"property_groups_file_path", PropertyClass::ProjFileName, "Build Options"},
    {"build_object_file_name", PropertyClass::FileName, "Compiler Options"},
    {"c_additional_options", PropertyClass::StringList, "Compiler Options"},
    {"link_standard_libraries_directory", PropertyClass::String, "Linker Options"},
    {"link_IOLibraryName", PropertyClass::Enumeration, "Linker Options"},
    {"linker_section_placement_file", PropertyClass::ProjFileName, "Linker Options"},
    {"build_action", PropertyClass::String, "(Information)"},
    {"stage_set_readonly", PropertyClass::Boolean, "Staging Options"},
    {"combine_command", PropertyClass::String, "Combining Options"},
    {"c_user_include_directories", PropertyClass::StringList, "Preprocessor Options"},
    {"asm_additional_options", PropertyClass::StringList, "Assembler Options"},
    {"default_vector_section", PropertyClass::String, "Section Options"},
    {"linker_scanf_character_group_matching_enabled", PropertyClass::Boolean,
     "Printf/Scanf Options"},
    {"external_load_file_type", PropertyClass::Enumeration, "External Build Options"},
    {"target_disconnect_script", PropertyClass::String, "Target Options"},
    {"debug_working_directory", PropertyClass::DirPath, "Debugging Options"},
};

QString defaultOf(const BuildSystem &system, const char *saveName)
{
    const PropertyClass *propertyClass = system.findPropertyClass(QString::fromLatin1(saveName));
    return propertyClass ? propertyClass->defaultValue() : QStringLiteral("<missing>");
}

} // namespace

TEST(BuildCatalogue, EverySaveNameWithItsTypeAndGroup)
{
    ARMBuildSystem system{QStringList()};
    for (const Expected &expected : catalogue) {
        SCOPED_TRACE(expected.saveName);
        const PropertyClass *found =
            system.findPropertyClass(QString::fromLatin1(expected.saveName));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->saveName(), QString::fromLatin1(expected.saveName));
        EXPECT_EQ(found->type(), expected.type);
        EXPECT_EQ(found->group(), QString::fromLatin1(expected.group));
    }
    EXPECT_EQ(system.findPropertyClass(QStringLiteral("no_such_setting")), nullptr);
}

TEST(BuildCatalogue, DuplicatesResolveAsTheBuildNeeds)
{
    ARMBuildSystem system{QStringList()};
    // Two output file name classes: both kept, the catalogue holds the library's.
    EXPECT_EQ(system.linkerOutputFileNameProperty->defaultValue(),
              QStringLiteral("$(OutDir)/$(ProjectName)$(EXE)"));
    EXPECT_EQ(system.linkerOutputFileNameProperty->shortDescription(),
              QStringLiteral("Executable File Name"));
    EXPECT_EQ(system.libraryOutputFileNameProperty->defaultValue(),
              QStringLiteral("$(OutDir)/$(ProjectName)$(LIB)"));
    EXPECT_EQ(system.findPropertyClass(QStringLiteral("build_output_file_name")),
              system.libraryOutputFileNameProperty);

    // The keep-symbols class made last replaces the first in the member and the catalogue.
    EXPECT_EQ(system.findPropertyClass(QStringLiteral("linker_keep_symbols")),
              system.linkerKeepSymbolsProperty);
    EXPECT_EQ(system.linkerKeepSymbolsProperty->longDescription(),
              QStringLiteral("Specifies the symbols that should be kept by the linker."));

    // A later class of a save name replaces the earlier one; unknown names give null.
    PropertyClass replacement(QStringLiteral("build_quietly"), PropertyClass::Boolean,
                              QStringLiteral("G"), QStringLiteral("S"), QStringLiteral("L"));
    system.addPropertyClass(&replacement);
    EXPECT_EQ(system.findPropertyClass(QStringLiteral("build_quietly")), &replacement);
}

TEST(BuildCatalogue, DefaultsAndTextsThatDriveTheBuild)
{
    ARMBuildSystem system{QStringList()};
    EXPECT_EQ(defaultOf(system, "build_intermediate_directory"),
              QStringLiteral("$(Configuration)"));
    EXPECT_EQ(defaultOf(system, "build_output_directory"), QStringLiteral("$(Configuration)"));
    EXPECT_EQ(defaultOf(system, "build_object_file_name"),
              QStringLiteral("$(IntDir)/$(InputName)$(OBJ)"));
    EXPECT_EQ(defaultOf(system, "build_exclude_from_build"), QStringLiteral("No"));
    EXPECT_EQ(defaultOf(system, "build_quietly"), QStringLiteral("Yes"));
    EXPECT_EQ(defaultOf(system, "build_debug_information"), QStringLiteral("Yes"));
    // A Boolean without a default of its own reads "No".
    EXPECT_EQ(defaultOf(system, "build_remove_unused_symbols"), QStringLiteral("No"));
    EXPECT_EQ(defaultOf(system, "c_enforce_ansi_checking"), QStringLiteral("No"));
    EXPECT_EQ(defaultOf(system, "stage_command"),
              QStringLiteral("cp \"$(RelInputPath)\" \"$(StageOutputFilePath)\""));
    EXPECT_EQ(defaultOf(system, "stage_output_filepath"),
              QStringLiteral("$(OutDir)/$(RelInputPath)"));
    EXPECT_EQ(defaultOf(system, "combine_output_filepath"),
              QStringLiteral("$(OutDir)/$(InputFileName)"));
    EXPECT_EQ(defaultOf(system, "c_user_include_directories"), QStringLiteral("."));
    EXPECT_EQ(defaultOf(system, "c_system_include_directories"),
              QStringLiteral("$(BenchDir)/include"));
    EXPECT_EQ(defaultOf(system, "link_standard_libraries_directory"),
              QStringLiteral("$(BenchDir)/lib"));
    // The tool-chain layers change these two: no group file, and no additional output.
    EXPECT_EQ(defaultOf(system, "property_groups_file_path"), QStringLiteral("None"));
    EXPECT_EQ(defaultOf(system, "linker_output_format"), QStringLiteral("None"));
    EXPECT_TRUE(defaultOf(system, "build_action").isNull());

    const QStringList sections = {
        defaultOf(system, "default_code_section"), defaultOf(system, "default_data_section"),
        defaultOf(system, "default_zeroed_section"), defaultOf(system, "default_const_section"),
        defaultOf(system, "default_vector_section")};
    EXPECT_EQ(sections, (QStringList{".text", ".data", ".bss", ".rodata", ".vectors"}));

    EXPECT_EQ(system.linkIOLibraryNameProperty->enumerates(),
              (QStringList{"debug", "target", "none"}));
    EXPECT_EQ(defaultOf(system, "link_IOLibraryName"), QStringLiteral("target"));
    EXPECT_EQ(system.linkerScanfFmtLevelProperty->enumerates(),
              (QStringList{"int", "long", "long long"}));
    EXPECT_EQ(system.externalLoadFileTypeProperty->enumerates(), QStringList{"Detect"});

    EXPECT_EQ(system.cAdditionalOptionsProperty->longDescription(),
              QStringLiteral("Enables additional options to be supplied to the C/C++ compiler."));
    EXPECT_EQ(system.stageCommandProperty->longDescription(),
              QStringLiteral("The command to execute. The macros $(StageOutputFilePath) and "
                             "$(StageBenchDirRelativeOutputFilePath) are defined."));

    for (const PropertyClass *xmlFile :
         {system.linkerMemoryMapFileProperty, system.linkerSectionPlacementFileProperty,
          system.propertyGroupsFilePathProperty})
        EXPECT_EQ(xmlFile->specialValueText(), QStringLiteral("XML (*.xml)"));
    EXPECT_TRUE(system.externalBuildFileNameProperty->specialValueText().isEmpty());
}

TEST(BuildCatalogue, PublishesTheGenericLayerForItsLifetime)
{
    {
        ARMBuildSystem system{QStringList()};
        EXPECT_EQ(standardBuildSystem, &system);
    }
    EXPECT_EQ(standardBuildSystem, nullptr);
}
