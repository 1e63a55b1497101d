#include "toolchain/gccbuildsystem.h"

#include "engine/builder.h"
#include "engine/dependencyfile.h"
#include "engine/sidefiles.h"
#include "macros/macrosystem.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "settings/environmentpropertyvalue.h"
#include "settings/environmentsettings.h"

#include <QFileInfo>

GCCBuildSystem::GCCBuildSystem(const QStringList &args, const char *toolPrefix,
                               const char *defaultToolChainRoot, bool linkerStartGroup)
    : StandardBuildSystem(args), toolPrefix(QString::fromLatin1(toolPrefix)),
      linkerStartGroup(linkerStartGroup)
{
    gccOptimizationLevelProperty = makeEnumerationClass(
        "gcc_optimization_level",
        {QStringLiteral("None"), QStringLiteral("Level 1"), QStringLiteral("Level 2"),
         QStringLiteral("Level 3"), QStringLiteral("Optimize For Size")},
        "Compiler Options", "Optimization Level", "Specifies the optimization level to use.",
        "None");
    gccOmitFramePointerProperty = makePropertyClass(
        "gcc_omit_frame_pointer", PropertyClass::Boolean, "Compiler Options", "Omit Frame Pointer",
        QStringLiteral("Specifies whether a frame pointer register is omitted if not required."),
        "No");
    gccEntryPointProperty = makePropertyClass(
        "gcc_entry_point", PropertyClass::String, "Linker Options", "Entry Point",
        QStringLiteral("Specifies the entry point of the program."), "0x00000000");

    linkerOutputFormatProperty->setEnumerates({QStringLiteral("None"), QStringLiteral("bin"),
                                               QStringLiteral("srec"), QStringLiteral("hex")});
    linkerOutputFormatProperty->setDefault(QStringLiteral("None"));
    // The settings object exists before the build system in the program; a test may do
    // without one.
    if (environment && environment->toolChainRootDirectory())
        environment->toolChainRootDirectory()->propertyClass()->setDefault(
            QString::fromLatin1(defaultToolChainRoot));
}

QString GCCBuildSystem::preprocess(ProjectElement *, const QString &, Builder *)
{
    return QString();
}

void GCCBuildSystem::appendSplitItems(QStringList &list, const QString &prefix,
                                      const QString &value)
{
    const QStringList items = value.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &item : items)
        list.append(prefix + item);
}

QString GCCBuildSystem::toolChainRoot() const
{
    if (!environment || !environment->toolChainRootDirectory())
        return QString();
    return macroSystem.replaceMacros(macroSystem.globalMacros(true),
                                     environment->toolChainRootDirectory()->propertyValue());
}

bool GCCBuildSystem::isOn(ProjectElement *element, const PropertyClass *propertyClass,
                          const QString &configuration) const
{
    return projectSystem->settingFor(element, propertyClass, configuration) == QLatin1String("Yes");
}

void GCCBuildSystem::createCommandFor(ProjectElement *element, const QString &configuration,
                                      BuildAction action, const QString &output,
                                      const QString &absoluteOutput, const QStringList &inputs,
                                      Builder *builder, bool, bool)
{
    const QString tools = toolChainRoot() + QLatin1Char('/') + toolPrefix;
    const QString projectDirectory =
        ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(element));
    builder->init();
    builder->setDirectory(projectDirectory);

    switch (action) {
    case ActionCompileC:
    case ActionCompileCpp:
    case ActionAssemble:
        compileCommand(element, configuration, action, output, absoluteOutput,
                       getAbsPath(projectDirectory, inputs.value(0)), tools, builder);
        break;
    case ActionLink:
        linkCommands(element, configuration, output, absoluteOutput, inputs, tools, builder);
        break;
    case ActionArchive:
        archiveCommands(element, output, absoluteOutput, inputs, tools, builder);
        break;
    default:
        break;
    }
}

void GCCBuildSystem::compileCommand(ProjectElement *element, const QString &configuration,
                                    BuildAction action, const QString &output,
                                    const QString &absoluteOutput, const QString &input,
                                    const QString &tools, Builder *builder)
{
    QStringList command{
        tools + (action == ActionCompileCpp ? QStringLiteral("g++") : QStringLiteral("gcc")),
        QStringLiteral("-c")};
    if (action == ActionCompileCpp) {
        if (projectSystem->settingFor(element, cppEnableExceptionsProperty, configuration) ==
            QLatin1String("No"))
            command << QStringLiteral("-fno-exceptions");
        if (projectSystem->settingFor(element, cppEnableRttiProperty, configuration) ==
            QLatin1String("No"))
            command << QStringLiteral("-fno-rtti");
    }
    command << QStringLiteral("-fmessage-length=0");
    addPreprocessorOptions(element, configuration, output, command);
    if (isOn(element, buildDebugInformationProperty, configuration))
        command << QStringLiteral("-g");
    if (isOn(element, cEnforceAnsiCheckingProperty, configuration))
        command << QStringLiteral("-std=c99");
    const QString optimization = optimizationOption(
        projectSystem->settingFor(element, gccOptimizationLevelProperty, configuration));
    if (!optimization.isEmpty())
        command << optimization;
    if (isOn(element, gccOmitFramePointerProperty, configuration))
        command << QStringLiteral("-fomit-frame-pointer");
    command << input << QStringLiteral("-o") << output;

    builder->beginGroup(
        element, QStringLiteral("Compiling ") + element->attribute(QStringLiteral("Name")), false);
    builder->setOutputFiles({absoluteOutput});
    builder->setCommand(command);
    builder->doit();
    builder->endGroup(element);
}

void GCCBuildSystem::addPreprocessorOptions(ProjectElement *element, const QString &configuration,
                                            const QString &objectFile, QStringList &command)
{
    if (projectSystem->settingFor(element, cIgnoreIncludesProperty, configuration) ==
        QLatin1String("No"))
        appendSplitItems(
            command, QStringLiteral("-I"),
            settingForExpanded(element, cUserIncludeDirectoriesProperty, configuration));
    if (isOn(element, cUndefineAllPreprocessorDefinitionsProperty, configuration))
        command << QStringLiteral("-undef");
    appendSplitItems(
        command, QStringLiteral("-D"),
        projectSystem->settingFor(element, cPreprocessorDefinitionsProperty, configuration));
    appendSplitItems(
        command, QStringLiteral("-U"),
        projectSystem->settingFor(element, cPreprocessorUndefinitionsProperty, configuration));
    command << QStringLiteral("-MD") << QStringLiteral("-MQ") << objectFile;
    if (isOn(element, buildTreatWarningsAsErrorsProperty, configuration))
        command << QStringLiteral("-Werror");
    if (!isOn(element, buildQuietlyProperty, configuration))
        command << QStringLiteral("-v");
    const QString additional =
        projectSystem->settingFor(element, cAdditionalOptionsProperty, configuration);
    if (!additional.isEmpty())
        command << MacroSystem::stringListFromString(additional, false);
}

void GCCBuildSystem::linkCommands(ProjectElement *element, const QString &configuration,
                                  const QString &output, const QString &absoluteOutput,
                                  const QStringList &inputs, const QString &tools, Builder *builder)
{
    QStringList command{tools + QStringLiteral("g++")};
    if (!isOn(element, buildQuietlyProperty, configuration))
        command << QStringLiteral("-v");
    if (isOn(element, buildDebugInformationProperty, configuration))
        command << QStringLiteral("-g");
    if (isOn(element, buildTreatWarningsAsErrorsProperty, configuration))
        command << QStringLiteral("--fatal-warnings");
    command << MacroSystem::stringListFromString(
        settingForExpanded(element, linkerAdditionalOptionsProperty, configuration), false);
    // The group is left open: the driver's own libraries join it behind the inputs.
    if (linkerStartGroup)
        command << QStringLiteral("-Wl,--start-group");
    command << inputs << QStringLiteral("-o") << output;

    const QFileInfo outputInfo(absoluteOutput);
    builder->beginGroup(element, QStringLiteral("Linking ") + outputInfo.fileName(), false);
    builder->setOutputFiles({absoluteOutput});
    builder->setCommand(command);
    builder->doit();

    const QString format =
        projectSystem->settingFor(element, linkerOutputFormatProperty, configuration);
    if (format != QLatin1String("None")) {
        const QString extraFile =
            sideFilePath(outputInfo.absolutePath(), absoluteOutput, QLatin1Char('.') + format);
        builder->setCommand(
            {tools + QStringLiteral("objcopy"), output, extraFile, objcopyFormatOption(format)});
        builder->setOutputFiles({extraFile});
        builder->doit();
    }
    builder->endGroup(element);
}

void GCCBuildSystem::archiveCommands(ProjectElement *element, const QString &output,
                                     const QString &absoluteOutput, const QStringList &inputs,
                                     const QString &tools, Builder *builder)
{
    builder->beginGroup(element,
                        QStringLiteral("Archiving ") + QFileInfo(absoluteOutput).fileName(), false);
    builder->setOutputFiles({absoluteOutput});
    builder->setCommand(QStringList{tools + QStringLiteral("ar"), QStringLiteral("-rcs"), output}
                        << inputs);
    builder->doit();
    builder->setCommand({tools + QStringLiteral("ranlib"), output});
    builder->doit();
    builder->endGroup(element);
}

void GCCBuildSystem::appendCommandProperties(BuildAction action,
                                             QList<const PropertyClass *> &properties) const
{
    StandardBuildSystem::appendCommandProperties(action, properties);
    switch (action) {
    case ActionCompileC:
    case ActionCompileCpp:
    case ActionAssemble:
        properties << gccOptimizationLevelProperty << gccOmitFramePointerProperty;
        break;
    case ActionLink:
        properties << gccEntryPointProperty;
        break;
    default:
        break;
    }
}

QStringList GCCBuildSystem::toolSignature()
{
    return StandardBuildSystem::toolSignature()
           << QStringLiteral("tool chain root=") + toolChainRoot();
}

QString GCCBuildSystem::optimizationOption(const QString &level)
{
    if (level == QLatin1String("None"))
        return QString();
    if (level == QLatin1String("Level 1"))
        return QStringLiteral("-O1");
    if (level == QLatin1String("Level 2"))
        return QStringLiteral("-O2");
    if (level == QLatin1String("Level 3"))
        return QStringLiteral("-O3");
    return QStringLiteral("-Os");
}

QString GCCBuildSystem::objcopyFormatOption(const QString &format)
{
    if (format == QLatin1String("bin"))
        return QStringLiteral("-Obinary");
    if (format == QLatin1String("hex"))
        return QStringLiteral("-Oihex");
    return QStringLiteral("-O") + format;
}

QStringList GCCBuildSystem::getObjectFileDependencies(const QString &projectDirectory,
                                                      const QString &, const QString &objectPath)
{
    // Commands run in the project directory, so that is where a relative object lies.
    return readDependencyFile(dependencyFilePath(getAbsPath(projectDirectory, objectPath)),
                              projectDirectory, &disk());
}
