#include "engine/standardbuildsystem.h"

#include "engine/builder.h"
#include "engine/diskinterface.h"
#include "foundation/path.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"

namespace {

bool isYes(const QString &value)
{
    return value == QLatin1String("Yes");
}

bool isNo(const QString &value)
{
    return value == QLatin1String("No");
}

QString projectDirectoryOf(const ProjectElement *element)
{
    return ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(element));
}

} // namespace

BuildAction StandardBuildSystem::buildAction(ProjectElement *element, const QString &configuration)
{
    // The walk, the steps and the outputs each ask for the action of a file; during a build
    // the answer can't change.
    if (!buildSerial())
        return actionOf(element, configuration);
    forgetEarlierBuilds();
    const OutputKey key{element, -1, configuration};
    auto known = m_actions.constFind(key);
    if (known == m_actions.cend())
        known = m_actions.insert(key, actionOf(element, configuration));
    return *known;
}

void StandardBuildSystem::forgetEarlierBuilds()
{
    if (buildSerial() != m_outputsSerial) {
        m_outputs.clear();
        m_actions.clear();
        m_outputsSerial = buildSerial();
    }
}

BuildAction StandardBuildSystem::actionOf(ProjectElement *element, const QString &configuration)
{
    if (!element)
        return ActionNone;
    if (element->type() == ProjectElement::Project) {
        const QString type = ProjectSystem::getProjectType(element);
        if (type == QLatin1String("Library"))
            return ActionArchive;
        if (type == QLatin1String("Object file") || type == QLatin1String("Staging"))
            return ActionNone;
        if (type == QLatin1String("Combining"))
            return ActionCombine;
        if (type == QLatin1String("Externally Built Executable"))
            return ActionExternal;
        return ActionLink;
    }
    if (element->type() != ProjectElement::File)
        return ActionNone;

    if (isYes(projectSystem->settingFor(element, buildExcludeFromBuildProperty, configuration)))
        return ActionExcluded;
    const QString projectType =
        ProjectSystem::getProjectType(ProjectSystem::projectContaining(element));
    if (projectType == QLatin1String("Staging"))
        return ActionStage;
    if (projectType == QLatin1String("Combining"))
        return ActionNone;

    const QString fileType = projectSystem->getFileType(element);
    if (fileType == QLatin1String("C"))
        return ActionCompileC;
    if (fileType == QLatin1String("C++"))
        return ActionCompileCpp;
    if (fileType == QLatin1String("Basic"))
        return ActionCompileBasic;
    if (fileType == QLatin1String("Forth"))
        return ActionCompileForth;
    if (fileType == QLatin1String("Assembly"))
        return ActionAssemble;
    if (fileType == QLatin1String("Object file") || fileType == QLatin1String("Executable") ||
        fileType == QLatin1String("Library"))
        return ActionExternal;
    return ActionNone;
}

QString StandardBuildSystem::output(ProjectElement *element, const QString &configuration,
                                    bool absolute)
{
    return output(buildAction(element, configuration), element, configuration, absolute);
}

QString StandardBuildSystem::output(BuildAction action, ProjectElement *element,
                                    const QString &configuration, bool absolute)
{
    if (!element)
        return QString();
    forgetEarlierBuilds();
    const OutputKey key{element, int(action), configuration};
    auto known = buildSerial() ? m_outputs.constFind(key) : m_outputs.cend();
    QString result;
    if (known != m_outputs.cend()) {
        result = *known;
    } else {
        result = outputOf(action, element, configuration);
        if (buildSerial())
            m_outputs.insert(key, result);
    }
    // An empty name is no path, so it is not made into the project directory.
    if (absolute && !result.isEmpty())
        return getAbsPath(projectDirectoryOf(element), result);
    return result;
}

QString StandardBuildSystem::outputOf(BuildAction action, ProjectElement *element,
                                      const QString &configuration)
{
    const bool isFile = element->type() == ProjectElement::File;
    const bool isProject = element->type() == ProjectElement::Project;
    QString raw;
    switch (int(action)) {
    case ActionCompileC:
    case ActionCompileCpp:
    case 4:
    case ActionCompileForth:
    case ActionCompileBasic:
    case ActionAssemble:
        raw = projectSystem->settingFor(element, buildObjectFileNameProperty, configuration);
        break;
    case ActionExternal:
        raw = isFile ? element->relativePath()
                     : projectSystem->settingFor(element, externalBuildFileNameProperty,
                                                 configuration);
        break;
    case 9:
        raw = QLatin1String("");
        break;
    case ActionLink:
        raw = projectSystem->settingFor(element, linkerOutputFileNameProperty, configuration);
        break;
    case ActionArchive:
        raw = projectSystem->settingFor(element, libraryOutputFileNameProperty, configuration);
        break;
    case ActionStage:
        if (!isProject)
            raw = projectSystem->settingFor(element, stageOutputFilePathProperty, configuration);
        break;
    case ActionCombine:
        if (isProject)
            raw = projectSystem->settingFor(element, combineOutputFilePathProperty, configuration);
        else if (!isFile)
            raw = QLatin1String("");
        break;
    default:
        break;
    }
    return raw.isNull() ? QString() : replaceMacros(element, raw, configuration);
}

bool StandardBuildSystem::mustCompile(ProjectElement *element, const QString &configuration)
{
    const BuildAction action = buildAction(element, configuration);
    return (action >= ActionCompileC && action <= ActionAssemble) || action == ActionStage;
}

bool StandardBuildSystem::canCompile(ProjectElement *element, const QString &configuration)
{
    const BuildAction action = buildAction(element, configuration);
    return (action >= ActionExcluded && action <= ActionAssemble) || action == ActionStage;
}

bool StandardBuildSystem::canLoad(ProjectElement *project, const QString &configuration)
{
    if (!project)
        return false;
    const QString type = ProjectSystem::getProjectType(project);
    if (type == QLatin1String("Executable"))
        return true;
    if (type == QLatin1String("Externally Built Executable"))
        return !projectSystem->settingFor(project, externalBuildFileNameProperty, configuration)
                    .isEmpty();
    return false;
}

void StandardBuildSystem::findOutputs(ProjectElement *first, const QString &configuration,
                                      QStringList &list, bool absolute)
{
    // A pre-order walk without recursion, so that no nesting is too deep for it.
    const ProjectElement *boundary = first ? first->parent() : nullptr;
    for (ProjectElement *element = first; element;
         element = ProjectElement::nextInWalk(element, boundary)) {
        const QString name = output(element, configuration, absolute);
        if (!name.isEmpty())
            list.append(name);
    }
}

void StandardBuildSystem::findRelativeInputs(ProjectElement *first, const QString &configuration,
                                             QStringList &list)
{
    const ProjectElement *boundary = first ? first->parent() : nullptr;
    ProjectElement *element = first;
    while (element) {
        const bool input =
            element->type() == ProjectElement::File &&
            isNo(projectSystem->settingFor(element, buildExcludeFromBuildProperty, configuration));
        if (input)
            list.append(element->relativePath());
        element = ProjectElement::nextInWalk(element, boundary, !input);
    }
}

ProjectElement *StandardBuildSystem::findFileOfType(ProjectElement *element,
                                                    const QString &configuration,
                                                    const QString &fileType)
{
    for (ProjectElement *e = element; e; e = ProjectElement::nextInWalk(e, element)) {
        if (e->type() == ProjectElement::File && projectSystem->getFileType(e) == fileType &&
            isNo(projectSystem->settingFor(e, buildExcludeFromBuildProperty, configuration)))
            return e;
    }
    return nullptr;
}

bool StandardBuildSystem::useLinkerScriptFileForLink(ProjectElement *project,
                                                     const QString &configuration, QString &path)
{
    ProjectElement *file = findFileOfType(project, configuration, QStringLiteral("Linker Script"));
    if (!file)
        return false;
    path = file->path().osPathQString();
    return true;
}

bool StandardBuildSystem::useMemoryMapFileForLink(ProjectElement *project,
                                                  const QString &configuration, QString &path)
{
    return useFileForLink(project, configuration, QStringLiteral("Memory Map"),
                          linkerMemoryMapFileProperty, path);
}

bool StandardBuildSystem::useSectionPlacementFileForLink(ProjectElement *project,
                                                         const QString &configuration,
                                                         QString &path)
{
    return useFileForLink(project, configuration, QStringLiteral("Section Placement"),
                          linkerSectionPlacementFileProperty, path);
}

bool StandardBuildSystem::useFileForLink(ProjectElement *project, const QString &configuration,
                                         const QString &fileType, const PropertyClass *setting,
                                         QString &path)
{
    // A file in the project wins, whether or not it is on the disk.
    if (ProjectElement *file = findFileOfType(project, configuration, fileType)) {
        path = file->path().osPathQString();
        return true;
    }
    path = projectSystem->settingFor(project, setting, configuration);
    if (path.isEmpty())
        return false;
    path = replaceMacros(project, path, configuration);
    // As given, the name is taken relative to the working directory.
    if (disk().modified(path).isValid())
        return true;
    path = projectDirectoryOf(project) + QLatin1Char('/') + path;
    return disk().modified(path).isValid();
}

void StandardBuildSystem::appendLinkControlFiles(ProjectElement *project,
                                                 const QString &configuration, QStringList &list,
                                                 bool placementFirst)
{
    QString script;
    if (useLinkerScriptFileForLink(project, configuration, script)) {
        list.append(script);
        return;
    }
    QString memoryMap, placement;
    const bool haveMemoryMap = useMemoryMapFileForLink(project, configuration, memoryMap);
    const bool havePlacement = useSectionPlacementFileForLink(project, configuration, placement);
    if (havePlacement && placementFirst)
        list.append(placement);
    if (haveMemoryMap)
        list.append(memoryMap);
    if (havePlacement && !placementFirst)
        list.append(placement);
}

bool StandardBuildSystem::cleanFile(const QString &path, bool quiet, Builder *builder)
{
    const bool existed = disk().modified(path).isValid();
    // A dry run says what it would remove and removes nothing.
    const bool removed = dryRun || disk().removeFile(path);
    if (!quiet && existed && builder) {
        if (removed)
            builder->note(QStringLiteral("Remove ") + Path::toOsPath(path));
        else
            builder->error(QStringLiteral("Cannot remove ") + path);
    }
    return removed;
}

QStringList StandardBuildSystem::splitCommand(const QString &command)
{
    QStringList words;
    QString word;
    bool quoted = false;
    for (const QChar c : command) {
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
        } else if (c == QLatin1Char(' ') && !quoted) {
            if (!word.isEmpty())
                words.append(word);
            word.clear();
        } else {
            word += c;
        }
    }
    if (!word.isEmpty())
        words.append(word);
    return words;
}
