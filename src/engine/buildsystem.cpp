#include "engine/buildsystem.h"

#include "engine/builder.h"
#include "engine/diskinterface.h"
#include "engine/filemacros.h"
#include "macros/macrosystem.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>

BuildSystem *buildSystem = nullptr;

namespace {

QString nameOf(const ProjectElement *element)
{
    return element ? element->attributes().value(QStringLiteral("Name")) : QString();
}

// Deeper chains of project dependencies than this are refused rather than risking the stack.
constexpr int maximumDependencyDepth = 1000;

} // namespace

BuildSystem::BuildSystem() : m_disk(std::make_unique<RealDiskInterface>())
{
    const char *const buildOptions = "Build Options";
    const char *const compilerOptions = "Compiler Options";

    buildTreatWarningsAsErrorsProperty =
        makePropertyClass("build_treat_warnings_as_errors", PropertyClass::Boolean, buildOptions,
                          "Treat Warnings as Errors", "Treat all warnings as errors.", "No");
    buildSuppressWarningsProperty =
        makePropertyClass("build_suppress_warnings", PropertyClass::Boolean, buildOptions,
                          "Suppress Warnings", "Don't report warnings.", "No");
    buildIntermediateDirectoryProperty = makePropertyClass(
        "build_intermediate_directory", PropertyClass::FileName, buildOptions,
        "Intermediate Directory", "Specifies a relative path to the intermediate file directory.",
        "$(Configuration)");
    buildOutputDirectoryProperty = makePropertyClass(
        "build_output_directory", PropertyClass::FileName, buildOptions, "Output Directory",
        "Specifies a relative path to the output file directory.", "$(Configuration)");
    buildObjectFileNameProperty = makePropertyClass(
        "build_object_file_name", PropertyClass::FileName, compilerOptions, "Object File Name",
        "Specifies a name to override the default object file name.",
        "$(IntDir)/$(InputName)$(OBJ)");
    // One save name, two classes: the action decides which one a build reads. The catalogue
    // keeps the library's, made last.
    linkerOutputFileNameProperty = makePropertyClass(
        "build_output_file_name", PropertyClass::FileName, "Linker Options", "Executable File Name",
        "Specifies a name to override the default executable file name.",
        "$(OutDir)/$(ProjectName)$(EXE)");
    libraryOutputFileNameProperty = makePropertyClass(
        "build_output_file_name", PropertyClass::FileName, "Library Options", "Library File Name",
        "Specifies a name to override the default library file name.",
        "$(OutDir)/$(ProjectName)$(LIB)");
    buildQuietlyProperty = makePropertyClass(
        "build_quietly", PropertyClass::Boolean, buildOptions, "Build Quietly",
        "Suppress the display of startup banners and information messages.", "Yes");
    buildActionProperty =
        makePropertyClass("build_action", PropertyClass::String, "(Information)", "Build Action",
                          "Specifies what action builds the output file.");
    buildDebugInformationProperty =
        makePropertyClass("build_debug_information", PropertyClass::Boolean, buildOptions,
                          "Include Debug Information",
                          "Specifies whether symbolic debug information is generated.", "Yes");
    buildExcludeFromBuildProperty = makePropertyClass(
        "build_exclude_from_build", PropertyClass::Boolean, buildOptions, "Exclude From Build",
        "Specifies whether or not to exclude the project/file from the build.", "No");

    const char *const staging = "Staging Options";
    const QString stageMacrosNote =
        QStringLiteral(" The macros $(StageOutputFilePath) and "
                       "$(StageBenchDirRelativeOutputFilePath) are defined.");
    stageOutputFilePathProperty = makePropertyClass(
        "stage_output_filepath", PropertyClass::String, staging, "Output File Path",
        "The output file path the stage command will create.", "$(OutDir)/$(RelInputPath)");
    stagePackageFilePathProperty = makePropertyClass(
        "stage_package_filepath", PropertyClass::String, staging, "Package File Path",
        "The package file path that the stage command will update.");
    stagePackageMemberNameProperty = makePropertyClass(
        "stage_package_member_name", PropertyClass::String, staging, "Package Member Name",
        "The name of the package member." + stageMacrosNote,
        "$(StageBenchDirRelativeOutputFilePath)");
    stageCommandProperty =
        makePropertyClass("stage_command", PropertyClass::String, staging, "Stage command",
                          "The command to execute." + stageMacrosNote,
                          "cp \"$(RelInputPath)\" \"$(StageOutputFilePath)\"");
    stageSetReadOnlyProperty =
        makePropertyClass("stage_set_readonly", PropertyClass::Boolean, staging, "Set To Read-only",
                          "Set the output file to read only or read/write.", "No");

    const char *const combining = "Combining Options";
    combineOutputFilePathProperty = makePropertyClass(
        "combine_output_filepath", PropertyClass::String, combining, "Output File Path",
        "The output file path the stage command will create.", "$(OutDir)/$(InputFileName)");
    combineCommandProperty = makePropertyClass("combine_command", PropertyClass::String, combining,
                                               "Combine command", "The command to execute.");
    combineSetReadOnlyProperty = makePropertyClass(
        "combine_set_readonly", PropertyClass::Boolean, combining, "Set To Read-only",
        "Set the output file to read only or read/write.", "No");

    if (projectSystem)
        projectSystem->setSettingExpander(this);
}

BuildSystem::~BuildSystem()
{
    if (projectSystem && projectSystem->settingExpander() == this)
        projectSystem->setSettingExpander(nullptr);
    if (buildSystem == this)
        buildSystem = nullptr;
}

PropertyClass *BuildSystem::makePropertyClass(const char *saveName, PropertyClass::Type type,
                                              const char *group, const char *shortDescription,
                                              const QString &longDescription,
                                              const char *defaultValue)
{
    m_ownedClasses.push_back(std::make_unique<PropertyClass>(
        QString::fromLatin1(saveName), type, QString::fromLatin1(group),
        QString::fromLatin1(shortDescription), longDescription,
        defaultValue ? QString::fromLatin1(defaultValue) : QString()));
    addPropertyClass(m_ownedClasses.back().get());
    return m_ownedClasses.back().get();
}

PropertyClass *BuildSystem::makeEnumerationClass(const char *saveName, const QStringList &values,
                                                 const char *group, const char *shortDescription,
                                                 const char *longDescription,
                                                 const char *defaultValue)
{
    m_ownedClasses.push_back(std::make_unique<PropertyClass>(
        QString::fromLatin1(saveName), PropertyClass::Enumeration, values,
        QString::fromLatin1(group), QString::fromLatin1(shortDescription),
        QString::fromLatin1(longDescription),
        defaultValue ? QString::fromLatin1(defaultValue) : QString()));
    addPropertyClass(m_ownedClasses.back().get());
    return m_ownedClasses.back().get();
}

void BuildSystem::setDisk(std::unique_ptr<DiskInterface> disk)
{
    m_disk = std::move(disk);
}

void BuildSystem::addPropertyClass(PropertyClass *propertyClass)
{
    m_propertyClasses.insert(propertyClass->saveName(), propertyClass);
}

PropertyClass *BuildSystem::findPropertyClass(const QString &saveName) const
{
    return m_propertyClasses.value(saveName, nullptr);
}

void BuildSystem::addMacros(ProjectElement *, const QString &, QMap<QString, QString> &) {}

bool BuildSystem::builtinCommand(const QString &, QStringList &, QString &)
{
    return false;
}

// The walk.

int BuildSystem::build(ProjectElement *element, const QString &configuration, Builder *builder,
                       int type, bool withDependencies, bool batch)
{
    stopRequested = false;
    errorOccurred = false;
    built.clear();
    // Files may change between builds, and settings only between builds: what one build
    // learnt of either is forgotten when it ends.
    m_disk->invalidateAll();
    struct BuildScope
    {
        BuildSystem *system;
        explicit BuildScope(BuildSystem *system) : system(system)
        {
            system->m_buildSerial = ++system->m_lastBuildSerial;
            if (projectSystem)
                projectSystem->setSettingsSteady(true);
        }
        ~BuildScope()
        {
            if (projectSystem)
                projectSystem->setSettingsSteady(false);
            system->m_buildSerial = 0;
            system->m_macroSet.clear();
            system->m_disk->invalidateAll();
        }
    } scope(this);
    m_inProgress.clear();
    m_reportedCycles.clear();

    bool any = false;
    if (element && element->type() == ProjectElement::Solution) {
        any = solutionBuild(element, configuration, builder, type, batch);
    } else if (element && element->type() == ProjectElement::Project && withDependencies) {
        any = projectBuild(element, configuration, builder, type, batch, configuration);
    } else {
        if (builder)
            displayProjectConfiguration(element, configuration, builder, type);
        builtStruct record;
        record.element = element;
        record.configuration = configuration;
        record.built = platformBuild(element, configuration, builder, type);
        built.append(record);
        any = record.built;
        if (builder)
            builder->endGroup(element);
    }

    if ((errorOccurred || stopRequested) && builder)
        builder->endGroup(element);
    if (stopRequested)
        return 3;
    if (errorOccurred)
        return 2;
    return any ? 1 : 0;
}

bool BuildSystem::solutionBuild(ProjectElement *solution, const QString &configuration,
                                Builder *builder, int type, bool batch)
{
    if (errorOccurred || stopRequested || !solution || !solution->firstChild())
        return false;
    bool any = false;
    for (ProjectElement *child = solution->firstChild(); child; child = child->nextSibling()) {
        if (child->type() == ProjectElement::Project) {
            if (projectBuild(child, configuration, builder, type, batch, configuration))
                any = true;
        } else if (child->type() == ProjectElement::Solution) {
            if (solutionBuild(child, configuration, builder, type, batch))
                any = true;
        }
        if (errorOccurred || stopRequested)
            break;
    }
    return any;
}

bool BuildSystem::projectBuild(ProjectElement *project, const QString &configuration,
                               Builder *builder, int type, bool batch,
                               const QString &batchConfiguration)
{
    const QStringList configurations =
        batch ? projectSystem->getBatchBuildConfigurations(project, batchConfiguration)
              : QStringList{configuration};
    if (errorOccurred || stopRequested)
        return false;

    bool any = false;
    for (const QString &thatConfiguration : configurations) {
        if (projectSystem->settingFor(project, buildExcludeFromBuildProperty, thatConfiguration) !=
            QLatin1String("No"))
            continue;
        bool flag = false;
        if (justBuilt(project, thatConfiguration, flag)) {
            any = any || flag;
            continue;
        }
        const qsizetype underWay = inProgressIndex(project, thatConfiguration);
        if (underWay >= 0) {
            // A dependency cycle: this build is already under way further up, so the edge
            // that led back here is cut.
            reportCycle(underWay, builder);
            continue;
        }
        if (m_inProgress.size() >= maximumDependencyDepth) {
            if (builder)
                builder->error(QStringLiteral("project dependencies nested too deeply at \"") +
                               nameOf(project) + QLatin1Char('"'));
            errorOccurred = true;
            break;
        }
        m_inProgress.append({project, thatConfiguration});
        if (projectBuildConfiguration(project, thatConfiguration, builder, type, batch,
                                      batchConfiguration))
            any = true;
        m_inProgress.removeLast();
        if (errorOccurred || stopRequested)
            break;
    }
    return any;
}

bool BuildSystem::projectBuildConfiguration(ProjectElement *project, const QString &configuration,
                                            Builder *builder, int type, bool batch,
                                            const QString &batchConfiguration)
{
    bool any = false;
    const QList<ProjectElement *> dependencies =
        projectSystem->directlyDependsOn(project, configuration);
    for (ProjectElement *dependency : dependencies) {
        if (errorOccurred || stopRequested)
            break;
        if (projectBuild(dependency, configuration, builder, type, batch, batchConfiguration))
            any = true;
    }
    if (errorOccurred || stopRequested)
        return any;

    if (builder)
        displayProjectConfiguration(project, configuration, builder, type);
    builtStruct record;
    record.element = project;
    record.configuration = configuration;
    record.built = platformBuild(project, configuration, builder, type) || any;
    built.append(record);
    if (builder)
        builder->endGroup(nullptr);
    return record.built;
}

qsizetype BuildSystem::inProgressIndex(const ProjectElement *project,
                                       const QString &configuration) const
{
    for (qsizetype i = 0; i < m_inProgress.size(); ++i) {
        if (m_inProgress[i].project == project && m_inProgress[i].configuration == configuration)
            return i;
    }
    return -1;
}

void BuildSystem::reportCycle(qsizetype start, Builder *builder)
{
    ProjectSystem::DependencyCycle cycle;
    for (qsizetype i = start; i < m_inProgress.size(); ++i)
        cycle.append(m_inProgress[i].project);

    // The same cycle met from another member or in another configuration is told once.
    QList<ProjectElement *> members = cycle;
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());
    if (m_reportedCycles.contains(members))
        return;
    m_reportedCycles.insert(members);

    cycle.append(cycle.first());
    if (builder)
        builder->error(projectSystem->dependencyCycleText(cycle));
}

void BuildSystem::displayProjectConfiguration(ProjectElement *element, const QString &configuration,
                                              Builder *builder, int type)
{
    QString verb = QStringLiteral("Building");
    if ((type & BUILD_CLEAN) && (type & BUILD_CLEAN_ONLY))
        verb = QStringLiteral("Cleaning");
    else if (type & BUILD_CLEAN)
        verb = QStringLiteral("Rebuilding");
    const QString text =
        verb + QStringLiteral(" \"") + nameOf(ProjectSystem::projectContaining(element)) +
        QStringLiteral("\" in configuration \"") + configuration + QLatin1Char('"');
    builder->beginGroup(element, text, true);
}

bool BuildSystem::justBuilt(ProjectElement *element, const QString &configuration,
                            bool &builtFlag) const
{
    for (const builtStruct &record : built) {
        if (record.element == element && record.configuration == configuration) {
            builtFlag = record.built;
            return true;
        }
    }
    return false;
}

// Macros and settings.

QMap<QString, QString> BuildSystem::projectLevelMacros(ProjectElement *element,
                                                       const QString &configuration,
                                                       const QString &projectMacros,
                                                       const QString &platform)
{
    QMap<QString, QString> map = macroSystem.overwriteMacros(
        macroSystem.globalMacros(true),
        macroSystem.macrosFromStringList(MacroSystem::stringListFromString(projectMacros)));

    if (ProjectElement *project = ProjectSystem::projectContaining(element)) {
        map.insert(QStringLiteral("ProjectDir"), ProjectSystem::projectDirectoryPath(project));
        map.insert(QStringLiteral("ProjectName"), nameOf(project));
    }
    map.insert(QStringLiteral("Configuration"), configuration);
    map.insert(QStringLiteral("Platform"), platform);

    ProjectElement *solution = ProjectSystem::solutionContaining(element);
    const QFileInfo solutionFile(solution ? solution->path().filePath() : QString());
    const bool haveSolutionFile = !solutionFile.filePath().isEmpty();
    map.insert(QStringLiteral("SolutionDir"),
               haveSolutionFile ? solutionFile.absolutePath() : QString());
    map.insert(QStringLiteral("SolutionName"), solutionFile.baseName());
    map.insert(QStringLiteral("SolutionFileName"), solutionFile.fileName());
    map.insert(QStringLiteral("SolutionPath"),
               haveSolutionFile ? solutionFile.absoluteFilePath() : QString());
    map.insert(QStringLiteral("SolutionExt"), solutionFile.completeSuffix());

    map.insert(QStringLiteral("OBJ"), projectSystem->objectFileExtension());
    map.insert(QStringLiteral("EXE"), projectSystem->executableFileExtension());
    map.insert(QStringLiteral("LIB"), projectSystem->libraryFileExtension());
    map.insert(QStringLiteral("PackageExt"), QStringLiteral("hdq"));
    return map;
}

const QMap<QString, QString> &BuildSystem::projectMacroBase(ProjectElement *element,
                                                            const QString &configuration)
{
    const QString projectMacros =
        projectSystem->settingFor(element, projectSystem->macrosClass, configuration);
    const QString platform = projectSystem->platform(element).toLower();
    // What the project gives is the same for each of its files, so during a build it is worked
    // out once for the files of a project.
    ProjectElement *project = ProjectSystem::projectContaining(element);
    ProjectMacros &known = m_projectMacros;
    if (!(m_buildSerial && known.serial == m_buildSerial && known.project == project &&
          known.configuration == configuration && known.settings == projectMacros &&
          known.platform == platform)) {
        known = {m_buildSerial, project, configuration, projectMacros, platform, {}, {}};
        known.map = projectLevelMacros(element, configuration, projectMacros, platform);
    }
    return known.map;
}

QString BuildSystem::directoryMacro(MacroSource &own,
                                    const QMap<QString, QString> &base,
                                    const PropertyClass *propertyClass, ProjectElement *element,
                                    const QString &configuration)
{
    // The directories of most files come from their project's macros alone; such an answer is
    // kept with the project's set, for the files after.
    const QString setting = projectSystem->settingFor(element, propertyClass, configuration);
    // Only a file's answers, worked out over the project's set itself (shared, so unchanged),
    // are kept: another element has no Input macros, so not using its own says nothing.
    const bool keep = m_buildSerial && element && element->type() == ProjectElement::File &&
                      !base.isEmpty() && base.isSharedWith(m_projectMacros.map);
    QHash<QString, QString> &kept = m_projectMacros.directories;
    if (keep) {
        auto known = kept.constFind(setting);
        if (known != kept.cend())
            return *known;
    }
    bool ownUsed = false;
    const QString directory = dotify(macroSystem.replaceMacros(own, base, setting, &ownUsed));
    if (keep && !ownUsed)
        kept.insert(setting, directory);
    return directory;
}

QMap<QString, QString> BuildSystem::macros(ProjectElement *element, const QString &configuration)
{
    // A copy: the base may be replaced by the next project's while the set is in use.
    QMap<QString, QString> map = projectMacroBase(element, configuration);
    const QMap<QString, QString> own = FileMacros(*this, element, configuration, map).all();
    for (auto it = own.cbegin(); it != own.cend(); ++it)
        map.insert(it.key(), it.value());
    return map;
}

const QMap<QString, QString> &BuildSystem::macroSet(ProjectElement *element,
                                                    const QString &configuration)
{
    if (m_buildSerial && m_macroSetSerial == m_buildSerial && m_macroSetElement == element &&
        m_macroSetConfiguration == configuration)
        return m_macroSet;
    m_macroSet = macros(element, configuration);
    m_macroSetElement = element;
    m_macroSetConfiguration = configuration;
    m_macroSetSerial = m_buildSerial;
    return m_macroSet;
}

QString BuildSystem::replaceMacros(ProjectElement *element, const QString &text,
                                   const QString &configuration)
{
    // A file's macros are its project's with its own laid over them (tool chains add macros to
    // projects only): expanded as such, no whole set is made for each of thousands of files.
    if (!m_buildSerial || !element || element->type() != ProjectElement::File)
        return macroSystem.replaceMacros(macroSet(element, configuration), text);
    FileMacros *file = m_fileMacros.get();
    if (!(file && m_fileMacrosSerial == m_buildSerial && file->element() == element &&
          file->configuration() == configuration)) {
        m_fileMacros = std::make_unique<FileMacros>(*this, element, configuration,
                                                    projectMacroBase(element, configuration));
        m_fileMacrosSerial = m_buildSerial;
        file = m_fileMacros.get();
    }
    return macroSystem.replaceMacros(*file, file->base(), text);
}

QString BuildSystem::settingForExpanded(ProjectElement *element, const PropertyClass *propertyClass,
                                        const QString &configuration)
{
    return replaceMacros(element, projectSystem->settingFor(element, propertyClass, configuration),
                         configuration);
}

// Services.

bool BuildSystem::recursiveMkdir(const QDir &dir)
{
    // The missing directories from the top down; a loop rather than recursion, so that no
    // path is too deep for the stack.
    QStringList missing;
    QString path = QDir::cleanPath(dir.absolutePath());
    while (!QDir(path).isRoot() && !QDir(path).exists()) {
        missing.prepend(path);
        path = QDir::cleanPath(path + QStringLiteral("/.."));
    }
    bool created = true;
    for (const QString &directory : std::as_const(missing))
        created = QDir().mkdir(directory);
    return created;
}

bool BuildSystem::ensureDirExists(const QString &filePath)
{
    if (dryRun)
        return true;
    return recursiveMkdir(QDir(QFileInfo(filePath).absolutePath()));
}

QString BuildSystem::createTmpFile(ProjectElement *element, const QString &configuration)
{
    const QString directory =
        ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(element)) +
        QLatin1Char('/') +
        settingForExpanded(element, buildIntermediateDirectoryProperty, configuration) +
        QLatin1Char('/');
    // The C library's temporary name, P_tmpdir "/file" and six characters, made here since
    // tmpnam itself is unsafe; a name is fresh if it was not handed out before and no such
    // file exists.
    static const char characters[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    for (;;) {
        QString name = QStringLiteral(P_tmpdir "/file");
        for (int i = 0; i < 6; ++i)
            name += QLatin1Char(characters[QRandomGenerator::global()->bounded(62)]);
        const QString path = directory + name;
        if (m_tmpNames.contains(path) || QFileInfo::exists(path) || QFileInfo::exists(name))
            continue;
        m_tmpNames.insert(path);
        return path;
    }
}

QString BuildSystem::dotify(const QString &text) const
{
    return text.isEmpty() ? QStringLiteral(".") : text;
}
