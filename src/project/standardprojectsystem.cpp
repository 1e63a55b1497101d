#include "project/standardprojectsystem.h"

#include "foundation/path.h"
#include "foundation/product.h"
#include "project/projectelement.h"
#include "project/projectpropertyvalue.h"
#include "project/propertyvaluegroupclass.h"
#include "project/propertyvaluegroupfile.h"
#include "project/propertyvaluegroups.h"
#include "project/propertyvaluegroupvalue.h"
#include "project/settingexpander.h"
#include "project/tooldatabase.h"
#include "properties/propertyclasslist.h"
#include "properties/propertyvaluelist.h"
#include "xml/xmldocument.h"

namespace {

/// The file type of an XML file, from its document type.
QString xmlFileType(const QString &path)
{
    const char *documentType = XMLDocument::xmlDocumentType(Path::toOsBytes(path).constData());
    const QString type = documentType ? QString::fromLatin1(documentType) : QString();
    if (type == QLatin1String("Board_Memory_Definition_File"))
        return QStringLiteral("Memory Map");
    if (type == QLatin1String("Linker_Placement_File"))
        return QStringLiteral("Section Placement");
    if (type == QLatin1String("Tarnbench_Target_Definition_File"))
        return QStringLiteral("Target Definitions");
    return QString();
}

/// The type of the project `element` lies in; empty outside a project.
QString containingProjectType(const ProjectElement *element)
{
    ProjectElement *project = ProjectSystem::projectContaining(element);
    return project ? ProjectSystem::getProjectType(project) : QString();
}

} // namespace

StandardProjectSystem::StandardProjectSystem() : ProjectSystem(filetypes(), projecttypes()) {}

QStringList StandardProjectSystem::filetypes()
{
    return {QStringLiteral("C"),
            QStringLiteral("C++"),
            QStringLiteral("Basic"),
            QStringLiteral("Assembly"),
            QStringLiteral("Section Placement"),
            QStringLiteral("Memory Map"),
            QStringLiteral("Target Definitions"),
            QStringLiteral("Threads Script"),
            QStringLiteral("Target Script"),
            QStringLiteral("Reset Script"),
            QStringLiteral("Linker Script"),
            QStringLiteral("Executable"),
            QStringLiteral("Library"),
            QStringLiteral("Object file")};
}

QStringList StandardProjectSystem::projecttypes()
{
    return {QStringLiteral("Executable"),  QStringLiteral("Library"),
            QStringLiteral("Object file"), QStringLiteral("Staging"),
            QStringLiteral("Combining"),   QStringLiteral("Externally Built Executable")};
}

PropertyValueList *StandardProjectSystem::applicableSettingsFor(ProjectElement *element,
                                                                const QString &configuration)
{
    PropertyClassList classes;
    appendApplicableClasses(element, configuration, &classes);
    auto *values = new PropertyValueList(true);
    for (PropertyClass *propertyClass : std::as_const(classes))
        values->append(new ProjectPropertyValue(propertyClass, configuration, element));
    appendGroupValues(element, configuration, values);
    return values;
}

void StandardProjectSystem::appendApplicableClasses(ProjectElement *element,
                                                    const QString &configuration,
                                                    PropertyClassList *list)
{
    for (Tool *tool : toolDatabase.tools())
        tool->appendApplicableSettings(element, configuration, list);
    switch (element->type()) {
    case ProjectElement::Solution:
        appendSolutionProperties(list);
        break;
    case ProjectElement::Project:
        appendProjectProperties(list, getProjectType(element));
        appendClasses(list, {"build_exclude_from_build"});
        break;
    case ProjectElement::Folder:
        appendFolderClasses(element, list);
        break;
    case ProjectElement::File:
        appendFileClasses(element, list);
        break;
    default:
        break;
    }
}

void StandardProjectSystem::appendFolderClasses(ProjectElement *folder, PropertyClassList *list)
{
    const QString projectType = containingProjectType(folder);
    if (projectType == QLatin1String("Executable") || projectType == QLatin1String("Library") ||
        projectType == QLatin1String("Object file")) {
        appendProjectProperties(list, QStringLiteral("Object file"));
        appendClasses(list, {"build_intermediate_directory"});
    } else if (projectType == QLatin1String("Staging")) {
        appendProjectProperties(list, projectType);
    }
    appendClasses(list, {"build_exclude_from_build"});
}

void StandardProjectSystem::appendFileClasses(ProjectElement *file, PropertyClassList *list)
{
    if (containingProjectType(file) == QLatin1String("Staging")) {
        appendClasses(list, {"stage_output_filepath", "stage_package_filepath",
                             "stage_package_member_name", "stage_command",
                             "build_exclude_from_build", "stage_set_readonly"});
        return;
    }
    appendClasses(list, {"file_codec", "file_type"});
    const QString fileType = getFileType(file);
    bool compiled = true;
    if (fileType == QLatin1String("C")) {
        appendCCompilerProperties(list);
    } else if (fileType == QLatin1String("C++")) {
        appendCCompilerProperties(list);
        appendCppCompilerProperties(list);
    } else if (fileType == QLatin1String("Forth")) {
        appendForthCompilerProperties(list);
    } else if (fileType == QLatin1String("Basic")) {
        appendBasicCompilerProperties(list);
    } else if (fileType == QLatin1String("Assembly")) {
        appendAssemblerProperties(list);
    } else {
        compiled = false;
    }
    if (compiled)
        appendClasses(list, {"build_object_file_name"});
    appendClasses(list, {"build_exclude_from_build"});
}

void StandardProjectSystem::appendGroupValues(ProjectElement *element, const QString &configuration,
                                              PropertyValueList *values)
{
    if (element->type() == ProjectElement::Project) {
        const QString projectType = getProjectType(element);
        if (projectType != QLatin1String("Executable") &&
            projectType != QLatin1String("Externally Built Executable"))
            return;
    } else if (element->type() != ProjectElement::Solution) {
        return;
    }
    const PropertyClass *pathClass = catalogueClass(QStringLiteral("property_groups_file_path"));
    if (!pathClass || !settingExpander())
        return;
    const QString path = settingExpander()->settingForExpanded(element, pathClass, configuration);
    if (path.isEmpty())
        return;
    propertyValueGroups.setGroupFile(path);
    if (PropertyValueGroupFile *groupFile = propertyValueGroups.currentFile()) {
        for (PropertyValueGroupClass *groupClass : groupFile->groupClasses()) {
            if (!values->find(groupClass))
                values->append(new PropertyValueGroupValue(groupClass, element, configuration));
        }
    }
}

QString StandardProjectSystem::getFileType(ProjectElement *element)
{
    const QString setting =
        specificSettingFor(element, fileTypeClass, ProjectElement::commonConfiguration());
    if (!setting.isEmpty())
        return setting;
    if (!element->cachedFileType().isEmpty())
        return element->cachedFileType();

    // The suffix is that of the name as written unless a macro makes the name: headers and
    // other files without an action need no more worked out than that.
    const QString written = element->attribute(QStringLiteral("file_name"));
    const QString path =
        written.isEmpty() || written.contains(QLatin1Char('$')) ? element->filePath() : written;
    // What follows the last dot of the name, as QFileInfo::suffix has it.
    const QStringView name = QStringView(path).mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QString suffix = dot < 0 ? QString() : name.mid(dot + 1).toString().toLower();
    const QString dotted = QLatin1Char('.') + suffix;
    QString type;
    if (suffix == QLatin1String("c"))
        type = QStringLiteral("C");
    else if (suffix == QLatin1String("cpp") || suffix == QLatin1String("cxx") ||
             suffix == QLatin1String("cc"))
        type = QStringLiteral("C++");
    else if (suffix == QLatin1String("fth") || suffix == QLatin1String("4"))
        type = QStringLiteral("Forth");
    else if (suffix == QLatin1String("bas"))
        type = QStringLiteral("Basic");
    else if (suffix == QLatin1String("asm") || suffix == QLatin1String("s") ||
             dotted == assemblyCodeFileExtension())
        type = QStringLiteral("Assembly");
    else if (suffix == QLatin1String("xml"))
        type = xmlFileType(element->filePath());
    else if (dotted == objectFileExtension())
        type = QStringLiteral("Object file");
    else if (dotted == executableFileExtension())
        type = QStringLiteral("Executable");
    else if (dotted == libraryFileExtension())
        type = QStringLiteral("Library");
    if (!type.isEmpty())
        element->setCachedFileType(type);
    return type;
}

PropertyClass *StandardProjectSystem::catalogueClass(const QString &saveName) const
{
    if (PropertyClass *own = findPropertyClass(saveName))
        return own;
    return settingExpander() ? settingExpander()->findPropertyClass(saveName) : nullptr;
}

void StandardProjectSystem::appendClasses(PropertyClassList *list,
                                          std::initializer_list<const char *> saveNames)
{
    for (const char *saveName : saveNames) {
        if (PropertyClass *propertyClass = catalogueClass(QLatin1String(saveName)))
            list->appendUnique(propertyClass);
    }
}

void StandardProjectSystem::appendCompilerProperties(PropertyClassList *list)
{
    appendClasses(list, {"c_preprocessor_definitions", "c_preprocessor_undefinitions",
                         "c_user_include_directories", "c_system_include_directories",
                         "c_undefine_all_preprocessor_definitions", "c_ignore_includes",
                         "build_treat_warnings_as_errors", "build_suppress_warnings",
                         "build_debug_information", "build_quietly", "default_code_section",
                         "default_data_section", "default_zeroed_section", "default_const_section",
                         "default_vector_section"});
}

void StandardProjectSystem::appendCCompilerProperties(PropertyClassList *list)
{
    appendClasses(list, {"c_additional_options", "c_enforce_ansi_checking"});
    appendCompilerProperties(list);
}

void StandardProjectSystem::appendCppCompilerProperties(PropertyClassList *list)
{
    appendClasses(list, {"cpp_enable_exceptions", "cpp_enable_rtti"});
}

void StandardProjectSystem::appendBasicCompilerProperties(PropertyClassList *list)
{
    appendCompilerProperties(list);
}

void StandardProjectSystem::appendForthCompilerProperties(PropertyClassList *list)
{
    appendClasses(list, {"build_debug_information", "build_quietly"});
}

void StandardProjectSystem::appendAssemblerProperties(PropertyClassList *list)
{
    appendClasses(list, {"asm_additional_options"});
    appendCompilerProperties(list);
}

void StandardProjectSystem::appendLinkerProperties(PropertyClassList *list)
{
    appendClasses(list,
                  {"linker_memory_map_file", "linker_map_file", "linker_section_placement_file",
                   "link_include_standard_libraries", "link_standard_libraries_directory",
                   "link_use_multi_threaded_libraries", "link_IOLibraryName",
                   "linker_additional_files", "linker_additional_options", "linker_output_format",
                   "linker_printf_fmt_level", "linker_printf_fp_enabled",
                   "linker_printf_width_precision_supported", "linker_scanf_fmt_level",
                   "linker_scanf_fp_enabled", "linker_scanf_character_group_matching_enabled",
                   "linker_post_build_command", "link_symbol_definitions", "linker_keep_symbols"});
}

void StandardProjectSystem::appendArchiverProperties(PropertyClassList *) {}

void StandardProjectSystem::appendDefaultProjectValues(PropertyValueList *, const QString &) {}

void StandardProjectSystem::appendProjectProperties(PropertyClassList *list,
                                                    const QString &projectType)
{
    // The compiled kinds share their head: where the output goes and every compiler's list.
    auto appendCompiled = [this, list](bool intermediateDirectory) {
        appendClasses(list, {"build_output_directory"});
        if (intermediateDirectory)
            appendClasses(list, {"build_intermediate_directory"});
        appendClasses(list, {"build_object_file_name"});
        appendCCompilerProperties(list);
        appendBasicCompilerProperties(list);
        if (Get_TARGET_CPP())
            appendCppCompilerProperties(list);
        appendAssemblerProperties(list);
    };
    if (projectType == QLatin1String("Executable")) {
        appendCompiled(true);
        appendLinkerProperties(list);
        appendTargetProperties(list);
        if (SettingExpander *expander = settingExpander()) {
            if (PropertyClass *outputFileName = expander->linkerOutputFileNameClass())
                list->appendUnique(outputFileName);
        }
        appendClasses(list, {"property_groups_file_path"});
    } else if (projectType == QLatin1String("Library")) {
        appendCompiled(true);
        appendArchiverProperties(list);
        // The catalogue holds the library form of the output file name.
        appendClasses(list, {"build_output_file_name"});
    } else if (projectType == QLatin1String("Object file")) {
        appendCompiled(false);
    } else if (projectType == QLatin1String("Staging")) {
        appendClasses(list, {"build_output_directory", "stage_command", "stage_output_filepath",
                             "stage_package_filepath", "stage_package_member_name",
                             "stage_set_readonly"});
    } else if (projectType == QLatin1String("Combining")) {
        appendClasses(list, {"build_output_directory", "combine_command", "combine_output_filepath",
                             "combine_set_readonly"});
    } else if (projectType == QLatin1String("Externally Built Executable")) {
        appendClasses(list, {"external_build_file_name", "external_build_command",
                             "external_clean_command", "external_load_address",
                             "external_start_address", "external_load_file_type"});
        appendTargetProperties(list);
        appendClasses(list, {"property_groups_file_path"});
    }
}

void StandardProjectSystem::appendSolutionProperties(PropertyClassList *list)
{
    appendClasses(list, {"build_output_directory", "build_intermediate_directory"});
    appendCCompilerProperties(list);
    if (Get_TARGET_CPP())
        appendCppCompilerProperties(list);
    appendAssemblerProperties(list);
    appendLinkerProperties(list);
    appendClasses(list, {"stage_command", "stage_output_filepath", "stage_package_filepath",
                         "stage_package_member_name", "stage_set_readonly"});
}

void StandardProjectSystem::appendTargetProperties(PropertyClassList *list)
{
    appendClasses(list, {"target_reset_script", "target_attach_script", "target_go_script",
                         "target_stop_script", "target_connect_script", "target_disconnect_script",
                         "debug_command_arguments", "debug_working_directory"});
}
QString StandardProjectSystem::assemblyCodeFileExtension() const
{
    return QString();
}
