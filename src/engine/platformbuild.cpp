#include "engine/standardbuildsystem.h"

#include "engine/builder.h"
#include "engine/diskinterface.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "project/propertyvaluegroups.h"

#include <vector>

namespace {

/// The bits of a build type as the flows read them.
struct BuildFlags
{
    explicit BuildFlags(int type)
        : clean(type & BUILD_CLEAN), cleanOnly(type & BUILD_CLEAN_ONLY), quiet(type & BUILD_QUIET)
    {
    }
    bool clean;
    bool cleanOnly;
    bool quiet;
};

QString nameOf(const ProjectElement *element)
{
    return element->attribute(QStringLiteral("Name"));
}

bool isCompile(BuildAction action)
{
    return action >= ActionCompileC && action <= ActionAssemble;
}

QString upToDateLine(const QString &output)
{
    return QLatin1Char('\'') + output + QStringLiteral("' is up to date");
}

/// Whether the step of `action` on `element` may read what commands of earlier steps make.
bool readsEarlierOutputs(const ProjectElement *element, BuildAction action)
{
    switch (int(action)) {
    case ActionLink:
    case ActionArchive:
    case ActionStage:
    case ActionCombine:
        return true;
    case ActionExternal:
        return element->type() == ProjectElement::Project;
    default:
        return false;
    }
}

/// Waits for every command handed to `builder` so far; false when one of them failed or the
/// build is to stop.
bool commandsFinished(Builder *builder, const BuildSystem &system)
{
    if (builder)
        builder->wait();
    return !system.errorOccurred && !system.stopRequested;
}

} // namespace

bool StandardBuildSystem::platformBuild(ProjectElement *element, const QString &configuration,
                                        Builder *builder, int type)
{
    buildDirectory = ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(element));
    // What was kept of the files of other projects is rarely asked again; it would only
    // hold memory.
    m_outputs.clear();
    m_actions.clear();
    const QString groupFile =
        settingForExpanded(element, propertyGroupsFilePathProperty, configuration);
    if (!groupFile.isEmpty())
        propertyValueGroups.setGroupFile(groupFile);
    const bool quiet = type & BUILD_QUIET;
    openRecord(element, configuration, builder, quiet);
    const bool worked = platformBuild1(element, configuration, builder, type);
    // What the record says of the commands' outputs holds only once they have all ended.
    if (builder)
        builder->wait();
    saveRecord(builder, quiet);
    if (!dryRun)
        dependencyCache.save();
    return worked;
}

bool StandardBuildSystem::platformBuild1(ProjectElement *element, const QString &configuration,
                                         Builder *builder, int type)
{
    if (!element)
        return false;
    // Children before their parent, walked with a stack of our own rather than by recursion,
    // so that no nesting of folders is too deep. A child's true result forces its parent.
    struct Frame
    {
        ProjectElement *element;
        BuildAction action;
        ProjectElement *nextChild;
        bool force;
    };
    std::vector<Frame> stack;
    auto stopped = [this] { return errorOccurred || stopRequested; };
    auto enter = [&](ProjectElement *entered) {
        if (builder)
            builder->idle();
        const BuildAction action = buildAction(entered, configuration);
        const bool walkChildren =
            action != ActionExternal && !(type & BUILD_NODE_ONLY) && !stopped();
        stack.push_back({entered, action, walkChildren ? entered->firstChild() : nullptr,
                         (type & BUILD_FORCE) != 0});
    };

    enter(element);
    for (;;) {
        Frame &top = stack.back();
        if (top.nextChild && !stopped()) {
            ProjectElement *child = top.nextChild;
            top.nextChild = child->nextSibling();
            enter(child);
            continue;
        }
        const Frame done = top;
        stack.pop_back();
        const bool worked = !stopped() && buildElement(done.element, configuration, builder, type,
                                                       done.action, done.force);
        if (stack.empty())
            return worked;
        if (worked)
            stack.back().force = true;
    }
}

bool StandardBuildSystem::buildElement(ProjectElement *element, const QString &configuration,
                                       Builder *builder, int type, BuildAction action, bool force)
{
    if (isCompile(action))
        return compileStep(element, configuration, builder, type, action, force);
    if (readsEarlierOutputs(element, action) && !commandsFinished(builder, *this))
        return false;
    switch (int(action)) {
    case ActionLink:
        return linkStep(element, configuration, builder, type, force);
    case ActionArchive:
        return archiveStep(element, configuration, builder, type, force);
    case ActionExternal:
        return externalStep(element, configuration, builder, type, action, force);
    case ActionStage:
        return stageStep(element, configuration, builder, type, force);
    case ActionCombine:
        return combineStep(element, configuration, builder, type, force);
    case 9:
        return false;
    default:
        // Folders and the like pass the news of rebuilt children on.
        return force;
    }
}

bool StandardBuildSystem::compileStep(ProjectElement *file, const QString &configuration,
                                      Builder *builder, int type, BuildAction action, bool force)
{
    const BuildFlags flags(type);
    const QString objectFile = output(action, file, configuration, false);
    const QString input = file->relativePath();
    QString absolute;
    QDateTime modified;
    const bool present =
        exists(buildDirectory, objectFile, absolute, modified, builder, flags.quiet);
    const BuildSignature signature = commandSignature(file, configuration, action, {input});
    if (present && !force) {
        // A kept list whose files are all known to be older needs neither a look at each name
        // nor a copy; any other answer is worked out, and told, name by name.
        const bool current = dependencyCache.noneNewer(absolute, modified);
        QStringList dependencies;
        if (!current) {
            dependencies = dependencyCache.value(absolute, modified);
            if (dependencies.isEmpty())
                dependencies = getObjectFileDependencies(buildDirectory, input, absolute);
            if (dependencies.isEmpty())
                dependencies.append(file->path().canonicalPathQString());
        }
        if ((current ||
             upToDate(buildDirectory, objectFile, modified, dependencies, builder, flags.quiet)) &&
            commandUpToDate(file, configuration, modified, action, builder, flags.quiet) &&
            recordUpToDate(objectFile, signature, builder, flags.quiet)) {
            if (!current)
                dependencyCache.insert(absolute, dependencies);
            if (!flags.quiet && builder)
                builder->success(upToDateLine(objectFile));
            return false;
        }
    }
    dependencyCache.remove(absolute);
    if (flags.clean)
        cleanFile(absolute, flags.quiet, builder);
    if (!flags.cleanOnly && builder) {
        createCommandFor(file, configuration, action, objectFile, absolute, {input}, builder,
                         flags.quiet, flags.clean);
        disk().invalidateAll();
        recordCommand(objectFile, signature);
    }
    return true;
}

bool StandardBuildSystem::linkStep(ProjectElement *project, const QString &configuration,
                                   Builder *builder, int type, bool force)
{
    const BuildFlags flags(type);
    const QString executable = output(ActionLink, project, configuration, false);
    QStringList inputs;
    findOutputs(project->firstChild(), configuration, inputs, false);
    const QList<ProjectElement *> dependencies =
        projectSystem->directlyDependsOn(project, configuration);
    for (ProjectElement *dependency : dependencies) {
        if (projectSystem->settingFor(dependency, buildExcludeFromBuildProperty, configuration) !=
            QLatin1String("No"))
            continue;
        const QString dependencyType = ProjectSystem::getProjectType(dependency);
        if (dependencyType == QLatin1String("Library"))
            inputs.append(output(ActionArchive, dependency, configuration, true));
        else if (dependencyType == QLatin1String("Object file"))
            findOutputs(dependency->firstChild(), configuration, inputs, true);
        bool rebuilt = false;
        if (justBuilt(dependency, configuration, rebuilt) && rebuilt)
            force = true;
    }
    inputs += settingForExpanded(project, linkerAdditionalFilesProperty, configuration)
                  .split(QLatin1Char(';'), Qt::SkipEmptyParts);

    QString absolute;
    QDateTime modified;
    const bool present =
        exists(buildDirectory, executable, absolute, modified, builder, flags.quiet);
    const BuildSignature signature = commandSignature(project, configuration, ActionLink, inputs);
    if (present && !force) {
        QStringList dependencies = inputs;
        appendLinkControlFiles(project, configuration, dependencies, false);
        appendGeneratedLinkFiles(project, configuration, executable, dependencies);
        if (upToDate(buildDirectory, executable, modified, dependencies, builder, flags.quiet) &&
            commandUpToDate(project, configuration, modified, ActionLink, builder, flags.quiet) &&
            recordUpToDate(executable, signature, builder, flags.quiet) &&
            additionalOutputFileUpToDate(project, configuration, absolute, dependencies, builder,
                                         flags.quiet) &&
            mapOutputFileUpToDate(project, configuration, absolute, dependencies, builder,
                                  flags.quiet)) {
            if (!flags.quiet && builder)
                builder->success(upToDateLine(executable));
            return false;
        }
    }
    if (flags.clean)
        cleanFile(absolute, flags.quiet, builder);
    if (flags.cleanOnly || !builder)
        return true;
    // The linker control files are not inputs: the tool layer finds them itself.
    createCommandFor(project, configuration, ActionLink, executable, absolute, inputs, builder,
                     flags.quiet, flags.clean);
    disk().invalidateAll();
    recordCommand(executable, signature);
    if (!errorOccurred && !stopRequested)
        postBuildStep(project, configuration, builder);
    return true;
}

void StandardBuildSystem::postBuildStep(ProjectElement *project, const QString &configuration,
                                        Builder *builder)
{
    const QStringList command =
        splitCommand(settingForExpanded(project, linkerPostBuildCommandProperty, configuration));
    if (!command.isEmpty())
        runGroupCommand(project, QStringLiteral("Post build command "), command, builder);
}

bool StandardBuildSystem::archiveStep(ProjectElement *project, const QString &configuration,
                                      Builder *builder, int type, bool force)
{
    const BuildFlags flags(type);
    const QString library = output(ActionArchive, project, configuration, false);
    QStringList inputs;
    findOutputs(project->firstChild(), configuration, inputs, false);
    QString absolute;
    QDateTime modified;
    const bool present = exists(buildDirectory, library, absolute, modified, builder, flags.quiet);
    const BuildSignature signature =
        commandSignature(project, configuration, ActionArchive, inputs);
    if (present && !force &&
        upToDate(buildDirectory, library, modified, inputs, builder, flags.quiet) &&
        commandUpToDate(project, configuration, modified, ActionArchive, builder, flags.quiet) &&
        recordUpToDate(library, signature, builder, flags.quiet)) {
        if (!flags.quiet && builder)
            builder->success(upToDateLine(library));
        return false;
    }
    if (flags.clean)
        cleanFile(absolute, flags.quiet, builder);
    if (!flags.cleanOnly && builder) {
        createCommandFor(project, configuration, ActionArchive, library, absolute, inputs, builder,
                         flags.quiet, flags.clean);
        disk().invalidateAll();
        recordCommand(library, signature);
    }
    return true;
}

bool StandardBuildSystem::externalStep(ProjectElement *element, const QString &configuration,
                                       Builder *builder, int type, BuildAction action, bool force)
{
    // A ready-made file needs nothing; an externally built project always runs its commands,
    // which are handed over whole, unexpanded, for the process runner to interpret.
    if (element->type() != ProjectElement::Project || !builder)
        return force;
    const BuildFlags flags(type);
    builder->init();
    builder->setDirectory(ProjectSystem::projectDirectoryPath(element));
    const QString cleanCommand =
        projectSystem->settingFor(element, externalCleanCommandProperty, configuration);
    if (flags.clean && !cleanCommand.isEmpty())
        runGroupCommand(element, QStringLiteral("Running Clean command ") + nameOf(element),
                        {cleanCommand}, builder);
    const QString buildCommand =
        projectSystem->settingFor(element, externalBuildCommandProperty, configuration);
    if (!errorOccurred && !stopRequested && !flags.cleanOnly && !buildCommand.isEmpty()) {
        const QStringList outputs = {output(action, element, configuration, true)};
        runGroupCommand(element, QStringLiteral("Running Build command ") + nameOf(element),
                        {buildCommand}, builder, &outputs);
    }
    return force;
}

void StandardBuildSystem::runGroupCommand(ProjectElement *project, const QString &heading,
                                          const QStringList &command, Builder *builder,
                                          const QStringList *outputFiles)
{
    // Such a command comes after everything before it: a post-build command after its link,
    // a build command after its clean command.
    if (!commandsFinished(builder, *this))
        return;
    builder->beginGroup(project, heading, false);
    builder->setCommand(command);
    if (outputFiles)
        builder->setOutputFiles(*outputFiles);
    builder->doit();
    builder->endGroup(project);
    // What such a command made is unknown.
    disk().invalidateAll();
}
