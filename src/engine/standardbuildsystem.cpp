#include "engine/standardbuildsystem.h"

#include "foundation/product.h"

StandardBuildSystem *standardBuildSystem = nullptr;

namespace {
const char *const xmlFileFilter = "XML (*.xml)";
} // namespace

StandardBuildSystem::StandardBuildSystem(const QStringList &)
{
    makeBuildAndCompilerClasses();
    makeLinkerClasses();
    makePreprocessorAndSectionClasses();
    makePrintfScanfClasses();
    makeExternalTargetAndDebugClasses();
    // The final text of the class; it replaces the first one in the member and the catalogue.
    linkerKeepSymbolsProperty = makePropertyClass(
        "linker_keep_symbols", PropertyClass::StringList, "Linker Options", "Keep Symbols",
        "Specifies the symbols that should be kept by the linker.");
    standardBuildSystem = this;
}

StandardBuildSystem::~StandardBuildSystem()
{
    if (standardBuildSystem == this)
        standardBuildSystem = nullptr;
}

void StandardBuildSystem::makeBuildAndCompilerClasses()
{
    const char *const buildOptions = "Build Options";
    propertyGroupsFilePathProperty = makePropertyClass(
        "property_groups_file_path", PropertyClass::ProjFileName, buildOptions,
        "Property Groups File", "The file containing the property groups for this project.",
        "$(BenchDir)/targets/propertyGroups.xml");
    propertyGroupsFilePathProperty->setSpecialValueText(QString::fromLatin1(xmlFileFilter));
    buildRemoveUnusedSymbolsProperty =
        makePropertyClass("build_remove_unused_symbols", PropertyClass::Boolean, buildOptions,
                          "Enable Unused Symbol Removal",
                          "Enable the removal of unused symbols from the executable.");

    const char *const compilerOptions = "Compiler Options";
    cEnforceAnsiCheckingProperty = makePropertyClass(
        "c_enforce_ansi_checking", PropertyClass::Boolean, compilerOptions, "Enforce ANSI Checking",
        "Ensure programs conform to the ANSI-C/C++ standard.");
    const QString compilerText =
        QStringLiteral("Enables additional options to be supplied to the C") +
        (Get_TARGET_CPP() ? QStringLiteral("/C++") : QString()) + QStringLiteral(" compiler.");
    cAdditionalOptionsProperty =
        makePropertyClass("c_additional_options", PropertyClass::StringList, compilerOptions,
                          "Additional Compiler Options", compilerText);
    cppEnableExceptionsProperty = makePropertyClass(
        "cpp_enable_exceptions", PropertyClass::Boolean, compilerOptions,
        "Enable Exception Support", "Specifies whether exception support is enabled.", "No");
    cppEnableRttiProperty = makePropertyClass("cpp_enable_rtti", PropertyClass::Boolean,
                                              compilerOptions, "Enable RTTI Support",
                                              "Specifies whether RTTI support is enabled.", "No");
}

void StandardBuildSystem::makeLinkerClasses()
{
    const char *const linkerOptions = "Linker Options";
    linkIncludeStandardLibrariesProperty = makePropertyClass(
        "link_include_standard_libraries", PropertyClass::Boolean, linkerOptions,
        "Include Standard Libraries",
        "Specifies whether the standard libraries should be linked into your application.", "Yes");
    linkStandardLibrariesDirectoryProperty =
        makePropertyClass("link_standard_libraries_directory", PropertyClass::String, linkerOptions,
                          "Standard Libraries Directory",
                          "Specifies where to find the standard libraries", "$(BenchDir)/lib");
    linkUseMultiThreadedLibrariesProperty =
        makePropertyClass("link_use_multi_threaded_libraries", PropertyClass::Boolean,
                          linkerOptions, "Use Multi Threaded Libraries",
                          "Specifies whether to use thread safe standard libraries.", "No");
    linkIOLibraryNameProperty = makeEnumerationClass(
        "link_IOLibraryName",
        {QStringLiteral("debug"), QStringLiteral("target"), QStringLiteral("none")}, linkerOptions,
        "IO Library Name", "Specifies the IO library (printf etc) to use.", "target");
    linkSymbolDefinitionsProperty = makePropertyClass(
        "link_symbol_definitions", PropertyClass::StringList, linkerOptions,
        "Linker Symbol Definitions", "Specifies one or more linker symbol definitions.");
    linkerAdditionalFilesProperty = makePropertyClass(
        "linker_additional_files", PropertyClass::StringList, linkerOptions,
        "Additional Input Files",
        "Enables additional object and library files to be supplied to the linker.");
    linkerAdditionalOptionsProperty = makePropertyClass(
        "linker_additional_options", PropertyClass::StringList, linkerOptions,
        "Additional Linker Options", "Enables additional options to be supplied to the linker.");
    linkerMemoryMapFileProperty = makePropertyClass(
        "linker_memory_map_file", PropertyClass::ProjFileName, linkerOptions, "Memory Map File",
        "The name of the file containing the memory map description.");
    linkerMemoryMapFileProperty->setSpecialValueText(QString::fromLatin1(xmlFileFilter));
    linkerSectionPlacementFileProperty = makePropertyClass(
        "linker_section_placement_file", PropertyClass::ProjFileName, linkerOptions,
        "Section Placement File", "The name of the file containing section placement description.");
    linkerSectionPlacementFileProperty->setSpecialValueText(QString::fromLatin1(xmlFileFilter));
    // The tool-chain layer fills in the formats.
    linkerOutputFormatProperty = makeEnumerationClass(
        "linker_output_format", QStringList(), linkerOptions, "Additional Output Format",
        "The format used when creating an additional linked output file.");
    linkerMapFileProperty = makePropertyClass(
        "linker_map_file", PropertyClass::Boolean, linkerOptions, "Generate Map File",
        "Specifies whether to generate a linkage map file.", "Yes");
    linkerPostBuildCommandProperty =
        makePropertyClass("linker_post_build_command", PropertyClass::String, linkerOptions,
                          "Post Build Command", "A command to run after the link has completed.");
    // Replaced by the final text at the end of the constructor.
    linkerKeepSymbolsProperty = makePropertyClass(
        "linker_keep_symbols", PropertyClass::StringList, linkerOptions, "Keep Symbols",
        "Specifies the symbols that should be kept by the linker even if they are not "
        "reachable.");
}

void StandardBuildSystem::makePreprocessorAndSectionClasses()
{
    const char *const preprocessorOptions = "Preprocessor Options";
    cUndefineAllPreprocessorDefinitionsProperty =
        makePropertyClass("c_undefine_all_preprocessor_definitions", PropertyClass::Boolean,
                          preprocessorOptions, "Undefine All Preprocessor Definitions",
                          "Does not define any standard preprocessor definitions.");
    cPreprocessorDefinitionsProperty = makePropertyClass(
        "c_preprocessor_definitions", PropertyClass::StringList, preprocessorOptions,
        "Preprocessor Definitions", "Specifies one or more preprocessor definitions.");
    cPreprocessorUndefinitionsProperty = makePropertyClass(
        "c_preprocessor_undefinitions", PropertyClass::StringList, preprocessorOptions,
        "Preprocessor Undefinitions", "Specifies one or more preprocessor undefinitions.");
    cIgnoreIncludesProperty =
        makePropertyClass("c_ignore_includes", PropertyClass::Boolean, preprocessorOptions,
                          "Ignore Includes", "Ignore the include directories properties.", "No");
    cSystemIncludeDirectoriesProperty = makePropertyClass(
        "c_system_include_directories", PropertyClass::StringList, preprocessorOptions,
        "System Include Directories", "Specifies the system include path.", "$(BenchDir)/include");
    cUserIncludeDirectoriesProperty = makePropertyClass(
        "c_user_include_directories", PropertyClass::StringList, preprocessorOptions,
        "User Include Directories", "Specifies the user include path.", ".");

    asmAdditionalOptionsProperty =
        makePropertyClass("asm_additional_options", PropertyClass::StringList, "Assembler Options",
                          "Additional Assembler Options",
                          "Enables additional options to be supplied to the assembler.");

    const char *const sectionOptions = "Section Options";
    defaultCodeSectionProperty = makePropertyClass(
        "default_code_section", PropertyClass::String, sectionOptions, "Code Section Name",
        "Specifies the default name to use for the program code section.",
        Get_DEFAULT_CODE_SECTION_NAME());
    defaultDataSectionProperty = makePropertyClass(
        "default_data_section", PropertyClass::String, sectionOptions, "Data Section Name",
        "Specifies the default name to use for the initialised, writable data section.",
        Get_DEFAULT_DATA_SECTION_NAME());
    defaultZeroedSectionProperty = makePropertyClass(
        "default_zeroed_section", PropertyClass::String, sectionOptions, "Zeroed Section Name",
        "Specifies the default name to use for the zero-initialised, writable data section.",
        Get_DEFAULT_ZEROED_SECTION_NAME());
    defaultConstSectionProperty = makePropertyClass(
        "default_const_section", PropertyClass::String, sectionOptions, "Constant Section Name",
        "Specifies the default name to use for the read-only constant section.",
        Get_DEFAULT_CONST_SECTION_NAME());
    defaultVectorSectionProperty = makePropertyClass(
        "default_vector_section", PropertyClass::String, sectionOptions, "Vector Section Name",
        "Specifies the default name to use for the interrupt vector section.",
        Get_DEFAULT_VECTORS_SECTION_NAME());
}

void StandardBuildSystem::makePrintfScanfClasses()
{
    const char *const printfScanfOptions = "Printf/Scanf Options";
    const QStringList integerLevels = {QStringLiteral("int"), QStringLiteral("long"),
                                       QStringLiteral("long long")};
    linkerPrintfFmtLevelProperty = makeEnumerationClass(
        "linker_printf_fmt_level", integerLevels, printfScanfOptions, "Printf Integer Support",
        "The largest integer type supported by the printf function group.", "int");
    linkerPrintfWidthPrecisionSupportedProperty = makePropertyClass(
        "linker_printf_width_precision_supported", PropertyClass::Boolean, printfScanfOptions,
        "Printf Width/Precision Supported",
        "Enables support for width and precision specification in the printf function group.",
        "Yes");
    linkerPrintfFpEnabledProperty = makePropertyClass(
        "linker_printf_fp_enabled", PropertyClass::Boolean, printfScanfOptions,
        "Printf Floating Point Supported",
        "Are floating point numbers supported by the printf function group.", "No");
    linkerScanfFmtLevelProperty = makeEnumerationClass(
        "linker_scanf_fmt_level", integerLevels, printfScanfOptions, "Scanf Integer Support",
        "The largest integer type supported by the scanf function group.", "int");
    linkerScanfFpEnabledProperty = makePropertyClass(
        "linker_scanf_fp_enabled", PropertyClass::Boolean, printfScanfOptions,
        "Scanf Floating Point Supported",
        "Are floating point numbers supported by the scanf function group.", "No");
    linkerScanfCharacterGroupMatchingEnabledProperty = makePropertyClass(
        "linker_scanf_character_group_matching_enabled", PropertyClass::Boolean, printfScanfOptions,
        "Scanf Classes Supported",
        "Enables support for %[...] and %[^...] character class matching in the scanf "
        "functions.",
        "No");
}

void StandardBuildSystem::makeExternalTargetAndDebugClasses()
{
    const char *const externalOptions = "External Build Options";
    externalBuildFileNameProperty =
        makePropertyClass("external_build_file_name", PropertyClass::ProjFileName, externalOptions,
                          "Executable File", "The name of the externally built executable.");
    externalBuildCommandProperty =
        makePropertyClass("external_build_command", PropertyClass::String, externalOptions,
                          "Build Command", "The command line to build the executable.");
    externalCleanCommandProperty =
        makePropertyClass("external_clean_command", PropertyClass::String, externalOptions,
                          "Clean Command", "The command line to clean the executable.");
    externalStartAddressProperty = makePropertyClass(
        "external_start_address", PropertyClass::String, externalOptions, "Start Address",
        "The address to start the externally built executable running from.");
    externalLoadAddressProperty =
        makePropertyClass("external_load_address", PropertyClass::String, externalOptions,
                          "Load Address", "The address to load the externally built executable.");
    externalLoadFileTypeProperty = makeEnumerationClass(
        "external_load_file_type", {QStringLiteral("Detect")}, externalOptions, "Load File Type",
        "The file type of the externally built executable.", "Detect");

    const char *const targetOptions = "Target Options";
    targetResetScriptProperty =
        makePropertyClass("target_reset_script", PropertyClass::String, targetOptions,
                          "Reset Script", "The script that is executed when the target is reset.");
    targetAttachScriptProperty = makePropertyClass(
        "target_attach_script", PropertyClass::String, targetOptions, "Attach Script",
        "The script that is executed when the target is attached to.");
    targetGoScriptProperty =
        makePropertyClass("target_go_script", PropertyClass::String, targetOptions, "Run Script",
                          "The script that is executed when the target is run.");
    targetStopScriptProperty =
        makePropertyClass("target_stop_script", PropertyClass::String, targetOptions, "Stop Script",
                          "The script that is executed when the target is stopped.");
    targetConnectScriptProperty = makePropertyClass(
        "target_connect_script", PropertyClass::String, targetOptions, "Connect Script",
        "The script that is executed when the target is connected to.");
    targetDisconnectScriptProperty = makePropertyClass(
        "target_disconnect_script", PropertyClass::String, targetOptions, "Disconnect Script",
        "The script that is executed when the target is disconnected from.");

    const char *const debuggingOptions = "Debugging Options";
    debugWorkingDirectoryProperty = makePropertyClass(
        "debug_working_directory", PropertyClass::DirPath, debuggingOptions, "Working Directory",
        "The working directory for a debug session.", "$(ProjectDir)");
    debugCommandArgumentsProperty = makePropertyClass(
        "debug_command_arguments", PropertyClass::String, debuggingOptions, "Command Arguments",
        "The command arguments passed to the executable.", "$(ProjectName)$(EXE)");
}
