#include "toolchain/armbuildsystem.h"

#include "engine/builder.h"
#include "engine/sidefiles.h"
#include "project/projectsystem.h"

#include <QDir>

void ARMBuildSystem::createCommandFor(ProjectElement *element, const QString &configuration,
                                      BuildAction action, const QString &output,
                                      const QString &absoluteOutput, const QStringList &inputs,
                                      Builder *builder, bool, bool clean)
{
    const QString toolRoot = toolChainRoot();
    const QString projectDirectory =
        ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(element));
    builder->init();
    builder->setDirectory(projectDirectory);

    const ObjectJob job{element, configuration, output, absoluteOutput, toolRoot, builder};
    switch (action) {
    case ActionCompileC:
    case ActionCompileCpp:
        compileCommands(job, action, getAbsPath(projectDirectory, inputs.value(0)));
        break;
    case ActionAssemble:
        assembleCommands(job, getAbsPath(projectDirectory, inputs.value(0)));
        break;
    case ActionLink:
        linkCommands(element, configuration, output, absoluteOutput, inputs, projectDirectory,
                     toolRoot, builder, clean);
        break;
    case ActionArchive:
        archiveCommands(element, output, absoluteOutput, inputs, projectDirectory, toolRoot,
                        builder);
        break;
    default:
        break;
    }
}

void ARMBuildSystem::appendCommandProperties(BuildAction action,
                                             QList<const PropertyClass *> &properties) const
{
    GCCBuildSystem::appendCommandProperties(action, properties);
    switch (action) {
    case ActionCompileC:
    case ActionCompileCpp:
    case ActionAssemble:
        properties += {armInstructionSetProperty,
                       armArchitectureProperty,
                       armCoreTypeProperty,
                       armFpuTypeProperty,
                       armFpAbiProperty,
                       armEndianProperty,
                       armLongCallsProperty,
                       armInterworkProperty,
                       armKeepAssemblyProperty,
                       armModuleCallViasProperty,
                       buildRemoveUnusedSymbolsProperty};
        break;
    case ActionLink:
        properties +=
            {armLibraryInstructionSetProperty, armLibraryCheckMemorySegmentOverflowProperty,
             buildRemoveUnusedSymbolsProperty, armUseGccLibrariesProperty,
             armLinkerStackSizeProperty,       armLinkerIrqStackSizeProperty,
             armLinkerFiqStackSizeProperty,    armLinkerSvcStackSizeProperty,
             armLinkerAbtStackSizeProperty,    armLinkerUndStackSizeProperty,
             armLinkerHeapSizeProperty,        armLinkerTreatWarningsAsErrorsProperty};
        break;
    default:
        break;
    }
}

void ARMBuildSystem::appendGeneratedLinkFiles(ProjectElement *project, const QString &configuration,
                                              const QString &output, QStringList &list)
{
    QString path;
    if (useLinkerScriptFileForLink(project, configuration, path) ||
        !useMemoryMapFileForLink(project, configuration, path))
        return;
    list << linkerScriptPath(
        buildDirectory,
        settingForExpanded(project, buildIntermediateDirectoryProperty, configuration), output);
}
