#include "toolchain/armbuildsystem.h"

#include "engine/builder.h"
#include "engine/sidefiles.h"
#include "macros/macrosystem.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "project/propertyvaluegroupclass.h"
#include "project/propertyvaluegroupfile.h"
#include "project/propertyvaluegroups.h"

#include <QFileInfo>

namespace {

/// `options` split into arguments, if there are any.
void appendOptions(QStringList &command, const QString &options)
{
    if (!options.isEmpty())
        command << MacroSystem::stringListFromString(options, false);
}

/// The "Name" attribute of `element`, which group headings show.
QString nameOf(const ProjectElement *element)
{
    return element->attribute(QStringLiteral("Name"));
}

} // namespace

void ARMBuildSystem::compileCommands(const ObjectJob &job, BuildAction action,
                                     const QString &source)
{
    ProjectElement *element = job.element;
    const QString &configuration = job.configuration;
    const bool cpp = action == ActionCompileCpp;
    QStringList command{job.toolRoot + (cpp ? QStringLiteral("/cc1plus") : QStringLiteral("/cc1"))};
    if (cpp) {
        if (setting(element, cppEnableExceptionsProperty, configuration) == QLatin1String("No"))
            command << QStringLiteral("-fno-exceptions");
        if (setting(element, cppEnableRttiProperty, configuration) == QLatin1String("No"))
            command << QStringLiteral("-fno-rtti");
    }
    command << QStringLiteral("-fmessage-length=0");
    addARMOptions(element, configuration, command, false);
    addPreprocessorOptions(element, configuration, job.output, command);
    if (isOn(element, buildDebugInformationProperty, configuration))
        command << QStringLiteral("-gdwarf-2");
    if (isOn(element, cEnforceAnsiCheckingProperty, configuration))
        command << (cpp ? QStringLiteral("-std=c++98") : QStringLiteral("-std=c99"));
    const QString optimization =
        optimizationOption(setting(element, gccOptimizationLevelProperty, configuration));
    if (!optimization.isEmpty())
        command << optimization;
    if (isOn(element, gccOmitFramePointerProperty, configuration))
        command << QStringLiteral("-fomit-frame-pointer");
    const bool longCalls = isOn(element, armLongCallsProperty, configuration);
    if (longCalls)
        command << QStringLiteral("-mlong-calls");
    command << QStringLiteral("-fno-builtin");
    if (isOn(element, buildRemoveUnusedSymbolsProperty, configuration))
        command << QStringLiteral("-ffunction-sections");

    const bool keepAssembly = isOn(element, armKeepAssemblyProperty, configuration);
    const QString assembly = keepAssembly
                                 ? sideFilePath(QFileInfo(job.absoluteOutput).absolutePath(),
                                                job.output, QStringLiteral(".asm"))
                                 : createTmpFile(element, configuration);
    command << source << QStringLiteral("-o") << assembly;

    job.builder->beginGroup(element, QStringLiteral("Compiling ") + nameOf(element), false);
    job.builder->setCommand(command);
    if (keepAssembly)
        job.builder->setOutputFiles({assembly});
    job.builder->setTemporaryFiles({assembly});
    job.builder->doit();
    if (mustStop())
        return;

    if (!dryRun && longCalls && isOn(element, armModuleCallViasProperty, configuration) &&
        setting(element, armInstructionSetProperty, configuration) == QLatin1String("Thumb")) {
        // The rewrite reads what the compiler wrote.
        job.builder->wait();
        if (mustStop())
            return;
        workaroundCallViaBug(assembly);
    }
    assembleObject(job, assembly, {}, !keepAssembly);
}

void ARMBuildSystem::assembleCommands(const ObjectJob &job, const QString &source)
{
    ProjectElement *element = job.element;
    const QString &configuration = job.configuration;
    const bool debug = isOn(element, buildDebugInformationProperty, configuration);
    const QString preprocessed = createTmpFile(element, configuration);
    QStringList command{job.toolRoot + QStringLiteral("/cc1"), QStringLiteral("-E")};
    if (!debug)
        command << QStringLiteral("-P");
    addARMOptions(element, configuration, command, false);
    addPreprocessorOptions(element, configuration, job.output, command);
    command << QStringLiteral("-lang-asm") << source << QStringLiteral("-o") << preprocessed;

    job.builder->beginGroup(element, QStringLiteral("Assembling ") + nameOf(element), false);
    job.builder->setCommand(command);
    job.builder->setTemporaryFiles({preprocessed});
    job.builder->doit();

    // The assembler runs on whatever the preprocessor left.
    QStringList debugOptions;
    if (debug)
        debugOptions << QStringLiteral("--gdwarf2");
    if (isOn(element, buildTreatWarningsAsErrorsProperty, configuration))
        debugOptions << QStringLiteral("--fatal-warnings");
    assembleObject(job, preprocessed, debugOptions, true);
}

void ARMBuildSystem::assembleObject(const ObjectJob &job, const QString &input,
                                    const QStringList &trailingOptions, bool scratch)
{
    QStringList command{job.toolRoot + QStringLiteral("/as")};
    addAssemblerOptions(job.element, job.configuration, input, job.output, command);
    command << trailingOptions;
    job.builder->setCommand(command);
    job.builder->setOutputFiles({job.absoluteOutput});
    job.builder->setTemporaryFiles({});
    job.builder->doit();
    // A scratch input goes even when the assembler failed on it.
    if (scratch) {
        job.builder->setCommand({QStringLiteral("rm"), input});
        job.builder->setOutputFiles({});
        job.builder->doit();
    }
    if (mustStop())
        return;

    command.clear();
    addSectionRenaming(job.element, job.configuration, job.output, job.toolRoot, command);
    if (!command.isEmpty()) {
        job.builder->setCommand(command);
        job.builder->setOutputFiles({});
        job.builder->doit();
    }
    job.builder->endGroup(job.element);
}

void ARMBuildSystem::addPreprocessorOptions(ProjectElement *element, const QString &configuration,
                                            const QString &objectFile, QStringList &command)
{
    addIncludeAndDefinitionOptions(element, configuration, command);
    if (!objectFile.isNull()) {
        // The compiler proper takes the dependency file by name, beside the object.
        command << QStringLiteral("-MD") << dependencyFilePath(objectFile) << QStringLiteral("-MQ")
                << objectFile;
        if (isOn(element, buildTreatWarningsAsErrorsProperty, configuration))
            command << QStringLiteral("-Werror");
        command << (isOn(element, buildQuietlyProperty, configuration) ? QStringLiteral("-quiet")
                                                                       : QStringLiteral("-v"));
    }
    appendOptions(command, setting(element, cAdditionalOptionsProperty, configuration));
}

void ARMBuildSystem::addIncludeAndDefinitionOptions(ProjectElement *element,
                                                    const QString &configuration,
                                                    QStringList &command)
{
    command << QStringLiteral("-nostdinc");
    if (setting(element, cIgnoreIncludesProperty, configuration) == QLatin1String("No")) {
        appendSplitItems(
            command, QStringLiteral("-isystem"),
            settingForExpanded(element, cSystemIncludeDirectoriesProperty, configuration));
        appendSplitItems(
            command, QStringLiteral("-I"),
            settingForExpanded(element, cUserIncludeDirectoriesProperty, configuration));
    }
    if (isOn(element, cUndefineAllPreprocessorDefinitionsProperty, configuration)) {
        command << QStringLiteral("-undef");
    } else {
        const QString version =
            architectureVersion(setting(element, armArchitectureProperty, configuration));
        if (!version.isEmpty())
            command << QStringLiteral("-D__ARM_ARCH_") + version + QStringLiteral("__");
        command << QStringLiteral("-D__HALDEN_ARM");
        addGroupDefinitions(element, configuration, command);
    }
    appendSplitItems(command, QStringLiteral("-D"),
                     setting(element, cPreprocessorDefinitionsProperty, configuration));
    appendSplitItems(command, QStringLiteral("-U"),
                     setting(element, cPreprocessorUndefinitionsProperty, configuration));
}

void ARMBuildSystem::addGroupDefinitions(ProjectElement *element, const QString &configuration,
                                         QStringList &command)
{
    const PropertyValueGroupFile *file = propertyValueGroups.currentFile();
    if (!file)
        return;
    const QString tag = QStringLiteral("cdefine");
    for (const PropertyValueGroupClass *group : file->groupClasses()) {
        const PropertyValueGroupEntry entry =
            group->getGroupEntry(setting(element, group, configuration));
        const QStringList names = entry.getTaggedNames(tag);
        for (const QString &name : names) {
            QString itemConfiguration;
            command << QStringLiteral("-D") + name + QLatin1Char('=') +
                           entry.getTaggedValue(tag, name, itemConfiguration);
        }
    }
}

void ARMBuildSystem::addAssemblerOptions(ProjectElement *element, const QString &configuration,
                                         const QString &input, const QString &output,
                                         QStringList &command)
{
    command << QStringLiteral("--traditional-format");
    addARMOptions(element, configuration, command, true);
    appendOptions(command, setting(element, asmAdditionalOptionsProperty, configuration));
    command << input << QStringLiteral("-o") << output;
}

void ARMBuildSystem::addSectionRenaming(ProjectElement *element, const QString &configuration,
                                        const QString &objectFile, const QString &toolRoot,
                                        QStringList &command)
{
    const struct
    {
        const PropertyClass *setting;
        const char *standardName;
    } sections[] = {{defaultCodeSectionProperty, ".text"},
                    {defaultDataSectionProperty, ".data"},
                    {defaultZeroedSectionProperty, ".bss"},
                    {defaultConstSectionProperty, ".rodata"}};
    QStringList renaming;
    for (const auto &section : sections) {
        const QString name = setting(element, section.setting, configuration);
        const QString standardName = QString::fromLatin1(section.standardName);
        if (name != standardName)
            renaming << QStringLiteral("--rename-section")
                     << standardName + QLatin1Char('=') + name;
    }
    if (renaming.isEmpty())
        return;
    command << toolRoot + QStringLiteral("/objcopy") << renaming << objectFile;
}

QString ARMBuildSystem::preprocess(ProjectElement *element, const QString &configuration,
                                   Builder *builder)
{
    const QString toolRoot = toolChainRoot();
    const QString projectDirectory =
        ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(element));
    builder->init();
    builder->setDirectory(projectDirectory);

    const QFileInfo file(getAbsPath(projectDirectory, element->relativePath()));
    const QString result = file.absolutePath() + QLatin1Char('/') + file.completeBaseName() +
                           QStringLiteral("_PP.") + file.completeSuffix();
    const bool cpp = projectSystem->getFileType(element) == QLatin1String("C++");
    QStringList command{toolRoot + (cpp ? QStringLiteral("/cc1plus") : QStringLiteral("/cc1")),
                        QStringLiteral("-E")};
    addARMOptions(element, configuration, command, false);
    addPreprocessorOptions(element, configuration, QString(), command);
    command << file.filePath() << QStringLiteral("-o") << result;

    builder->beginGroup(element, QStringLiteral("Preprocessing ") + nameOf(element), false);
    builder->setCommand(command);
    builder->setOutputFiles({result});
    builder->doit();
    builder->endGroup(element);
    return result;
}
