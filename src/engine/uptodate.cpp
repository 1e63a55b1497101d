#include "engine/standardbuildsystem.h"

#include "engine/builder.h"
#include "engine/diskinterface.h"
#include "engine/sidefiles.h"
#include "macros/macrosystem.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"

#include <initializer_list>

namespace {

const std::initializer_list<const char *> compileProperties = {
    "file_type",
    "build_quietly",
    "build_debug_information",
    "build_treat_warnings_as_errors",
    "build_suppress_warnings",
    "c_additional_options",
    "asm_additional_options",
    "c_preprocessor_definitions",
    "c_preprocessor_undefinitions",
    "c_user_include_directories",
    "c_system_include_directories",
    "c_undefine_all_preprocessor_definitions",
    "c_enforce_ansi_checking",
    "cpp_enable_exceptions",
    "cpp_enable_rtti",
    "default_code_section",
    "default_data_section",
    "default_zeroed_section",
    "default_const_section",
    "default_vector_section"};

const std::initializer_list<const char *> linkProperties = {
    "project_type",
    "project_dependencies",
    "build_quietly",
    "build_debug_information",
    "build_treat_warnings_as_errors",
    "build_suppress_warnings",
    "link_include_standard_libraries",
    "link_standard_libraries_directory",
    "link_use_multi_threaded_libraries",
    "link_IOLibraryName",
    "linker_additional_files",
    "linker_additional_options",
    "linker_memory_map_file",
    "linker_output_format",
    "linker_map_file",
    "linker_printf_fp_enabled",
    "linker_printf_width_precision_supported",
    "linker_printf_fmt_level",
    "linker_scanf_fp_enabled",
    "linker_scanf_fmt_level",
    "linker_scanf_character_group_matching_enabled",
    "linker_post_build_command",
    "link_symbol_definitions",
    "linker_keep_symbols"};

const std::initializer_list<const char *> archiveProperties = {"project_type"};
const std::initializer_list<const char *> stageProperties = {"stage_output_filepath",
                                                             "stage_command", "stage_set_readonly"};
const std::initializer_list<const char *> combineProperties = {
    "combine_output_filepath", "combine_command", "combine_set_readonly"};

} // namespace

QString BuildSystem::getAbsPath(const QString &directory, const QString &path)
{
    if (path.startsWith(QLatin1Char('/')))
        return path;
    return directory + QLatin1Char('/') + path;
}

bool BuildSystem::exists(QString directory, const QString &file, QString &path, QDateTime &modified,
                         Builder *builder, bool quiet)
{
    path = getAbsPath(directory, file);
    const QDateTime time = m_disk->modified(path);
    if (time.isValid()) {
        modified = time;
        return true;
    }
    if (!quiet && builder)
        builder->message(file + QStringLiteral(" does not exist."));
    return false;
}

bool BuildSystem::upToDate(QString directory, const QString &target,
                           const QDateTime &targetModified, const QStringList &dependencies,
                           Builder *builder, bool quiet)
{
    for (const QString &dependency : dependencies) {
        const QDateTime time = m_disk->modified(getAbsPath(directory, dependency));
        if (!time.isValid()) {
            if (!quiet && builder)
                builder->message(dependency + QStringLiteral(" does not exist."));
            return false;
        }
        if (time > targetModified) {
            if (!quiet && builder)
                builder->message(dependency + QStringLiteral(" is newer than ") + target +
                                 QLatin1Char('.'));
            return false;
        }
    }
    return true;
}

QList<const PropertyClass *> StandardBuildSystem::commandProperties(BuildAction action) const
{
    auto known = m_commandProperties.constFind(int(action));
    if (known == m_commandProperties.cend()) {
        QList<const PropertyClass *> list;
        appendCommandProperties(action, list);
        known = m_commandProperties.insert(int(action), list);
    }
    return *known;
}

void StandardBuildSystem::appendCommandProperties(BuildAction action,
                                                  QList<const PropertyClass *> &classes) const
{
    std::initializer_list<const char *> names;
    switch (action) {
    case ActionCompileC:
    case ActionCompileCpp:
    case ActionCompileForth:
    case ActionCompileBasic:
    case ActionAssemble:
        names = compileProperties;
        break;
    case ActionLink:
        names = linkProperties;
        break;
    case ActionArchive:
        names = archiveProperties;
        break;
    case ActionStage:
        names = stageProperties;
        break;
    case ActionCombine:
        names = combineProperties;
        break;
    default:
        break;
    }
    for (const char *name : names) {
        const QString saveName = QLatin1String(name);
        const PropertyClass *propertyClass = findPropertyClass(saveName);
        if (!propertyClass)
            propertyClass = projectSystem->findPropertyClass(saveName);
        if (propertyClass)
            classes.append(propertyClass);
    }
}

bool StandardBuildSystem::commandUpToDate(ProjectElement *element, const QString &configuration,
                                          QDateTime targetModified, BuildAction action,
                                          Builder *builder, bool quiet)
{
    // No setting changed in this run after the target was made: none of them can say
    // otherwise, and a build asks this of every file.
    if (!ProjectElement::changedAfter(targetModified))
        return true;
    const QList<const PropertyClass *> classes = commandProperties(action);
    for (const PropertyClass *propertyClass : classes) {
        if (!projectSystem->upToDate(element, propertyClass, configuration, targetModified, builder,
                                     quiet))
            return false;
    }
    return true;
}

bool StandardBuildSystem::sideFileExists(const QString &output, const QString &extension,
                                         Builder *builder, bool quiet)
{
    const QString side =
        sideFilePath(getAbsPath(buildDirectory, output), QLatin1Char('.') + extension);
    if (disk().modified(side).isValid())
        return true;
    if (!quiet && builder)
        builder->message(side + QStringLiteral(" does not exist."));
    return false;
}

bool StandardBuildSystem::additionalOutputFileUpToDate(ProjectElement *element,
                                                       const QString &configuration,
                                                       const QString &output, const QStringList &,
                                                       Builder *builder, bool quiet)
{
    const QString format =
        projectSystem->settingFor(element, linkerOutputFormatProperty, configuration);
    if (format == QLatin1String("None"))
        return true;
    return sideFileExists(output, format, builder, quiet);
}

bool StandardBuildSystem::mapOutputFileUpToDate(ProjectElement *element,
                                                const QString &configuration, const QString &output,
                                                const QStringList &, Builder *builder, bool quiet)
{
    if (projectSystem->settingFor(element, linkerMapFileProperty, configuration) !=
        QLatin1String("Yes"))
        return true;
    return sideFileExists(output, QStringLiteral("map"), builder, quiet);
}

void StandardBuildSystem::getDependencies(ProjectElement *element, const QString &configuration,
                                          QStringList &dependencies)
{
    const BuildAction action = buildAction(element, configuration);
    if (action >= ActionCompileC && action <= ActionAssemble) {
        const QString object = output(action, element, configuration, true);
        QStringList list = dependencyCache.value(object);
        if (list.isEmpty())
            list = getObjectFileDependencies(
                ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(element)),
                element->relativePath(), object);
        if (!list.isEmpty())
            dependencyCache.insert(object, list);
        dependencies += list;
    } else if (action == ActionLink) {
        findOutputs(element->firstChild(), configuration, dependencies, true);
        const QList<ProjectElement *> projects = projectSystem->buildOrder(element, configuration);
        for (ProjectElement *project : projects) {
            const QString type = ProjectSystem::getProjectType(project);
            if (type == QLatin1String("Library"))
                dependencies.append(output(ActionArchive, project, configuration, true));
            else if (type == QLatin1String("Object file"))
                findOutputs(project->firstChild(), configuration, dependencies, true);
        }
        appendLinkControlFiles(element, configuration, dependencies, true);
        dependencies += settingForExpanded(element, linkerAdditionalFilesProperty, configuration)
                            .split(QLatin1Char(';'), Qt::SkipEmptyParts);
    } else if (action == ActionArchive) {
        findOutputs(element->firstChild(), configuration, dependencies, true);
    }
}

QString StandardBuildSystem::findIncludeFile(const QString &projectDirectory,
                                             const QString &fileDirectory, const QString &file,
                                             const QStringList &directories)
{
    const QString slash = QStringLiteral("/");
    for (const QString &directory : directories) {
        for (const QString &candidate :
             {QString(projectDirectory + slash + directory + slash + file),
              QString(directory + slash + file),
              QString(fileDirectory + slash + directory + slash + file)}) {
            if (disk().isReadable(candidate))
                return candidate;
        }
    }
    return QString();
}

QString StandardBuildSystem::findIncludeFile(bool, const QString &file, ProjectElement *element,
                                             const QString &configuration)
{
    if (disk().isReadable(file))
        return file;
    const QString projectDirectory =
        ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(element));
    const QString fileDirectory = element && element->type() == ProjectElement::File
                                      ? element->fileInfo().absolutePath()
                                      : projectDirectory;
    for (const PropertyClass *directories :
         {cUserIncludeDirectoriesProperty, cSystemIncludeDirectoriesProperty}) {
        const QString found =
            findIncludeFile(projectDirectory, fileDirectory, file,
                            MacroSystem::stringListFromString(
                                settingForExpanded(element, directories, configuration), false));
        if (!found.isNull())
            return found;
    }
    return QString();
}
