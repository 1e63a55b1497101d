#include "toolchain/armbuildsystem.h"

#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "settings/armtarnbenchenvironmentsettings.h"
#include "settings/environmentpropertyvalue.h"

namespace {

/// The `LoaderType` macro of a flash loader type.
QString loaderType(const QString &flashLoaderType)
{
    if (flashLoaderType == QLatin1String("Comms Channel Loader") ||
        flashLoaderType == QLatin1String("Fast Comms Channel Loader"))
        return QStringLiteral("dcc");
    if (flashLoaderType == QLatin1String("RAM Loader"))
        return QStringLiteral("ram");
    if (flashLoaderType == QLatin1String("FLASHKIT RPC Loader"))
        return QStringLiteral("rpc");
    return QString();
}

/// The library variant of an integer level of printf or scanf; "int" shares that of "long".
QString integerLevelVariant(const QString &level)
{
    if (level == QLatin1String("long") || level == QLatin1String("int"))
        return QStringLiteral("long");
    if (level == QLatin1String("long long"))
        return QStringLiteral("long_long");
    return QString();
}

/// The compiler's option for a floating point calling convention, or a null string.
QString floatAbiOption(const QString &abi)
{
    if (abi == QLatin1String("Soft"))
        return QStringLiteral("-mfloat-abi=soft");
    if (abi == QLatin1String("SoftFP"))
        return QStringLiteral("-mfloat-abi=softfp");
    if (abi == QLatin1String("Hard"))
        return QStringLiteral("-mfloat-abi=hard");
    return QString();
}

/// Whether the user's settings ask for "-mfpu=vfp"; on unless the ARM settings say no.
bool generateFPUOption()
{
    const auto *settings = dynamic_cast<ARMTarnbenchEnvironmentSettings *>(environment);
    if (!settings || !settings->generateFPUOption())
        return true;
    return settings->generateFPUOption()->toBool();
}

} // namespace

QString ARMBuildSystem::architectureVersion(const QString &architecture)
{
    // Older project files say "ARM4T".
    if (architecture == QLatin1String("v4T") || architecture == QLatin1String("ARM4T"))
        return QStringLiteral("4T");
    if (architecture == QLatin1String("v5T") || architecture == QLatin1String("v5TE") ||
        architecture == QLatin1String("v7M"))
        return architecture.mid(1);
    return QString();
}

QString ARMBuildSystem::setting(ProjectElement *element, const PropertyClass *propertyClass,
                                const QString &configuration) const
{
    return projectSystem->settingFor(element, propertyClass, configuration);
}

QMap<QString, QString> ARMBuildSystem::macros(ProjectElement *element, const QString &configuration)
{
    QMap<QString, QString> map = BuildSystem::macros(element, configuration);
    if (!element || element->type() != ProjectElement::Project)
        return map;
    map.insert(QStringLiteral("LibExt"), libraryExtension(element, configuration));
    map.insert(QStringLiteral("LoaderType"),
               loaderType(setting(element, armTargetFlashLoaderTypeProperty, configuration)));
    return map;
}

QString ARMBuildSystem::libraryExtension(ProjectElement *project, const QString &configuration)
{
    QString extension = QStringLiteral("_");
    const QString version =
        architectureVersion(setting(project, armArchitectureProperty, configuration));
    // Version 5T uses the libraries of 4T.
    if (version == QLatin1String("4T") || version == QLatin1String("5T"))
        extension += isOn(project, armInterworkProperty, configuration) ? QLatin1String("v4t")
                                                                        : QLatin1String("v4");
    else if (!version.isEmpty())
        extension += QLatin1Char('v') + version.toLower();

    if (setting(project, armFpAbiProperty, configuration) == QLatin1String("SoftFP"))
        extension += QLatin1String("_vfp");

    // An executable links with the libraries of its library instruction set; every other
    // project is built for its own.
    const PropertyClass *instructionSetClass =
        ProjectSystem::getProjectType(project) == QLatin1String("Executable")
            ? armLibraryInstructionSetProperty
            : armInstructionSetProperty;
    const bool arm = setting(project, instructionSetClass, configuration) == QLatin1String("ARM");
    extension += arm ? QLatin1String("_a") : QLatin1String("_t");
    if (generate_1_5_commandLine && arm)
        extension += isOn(project, armInterworkProperty, configuration) ? QLatin1String("_i")
                                                                        : QLatin1String("_ni");

    extension += setting(project, armEndianProperty, configuration) == QLatin1String("Little")
                     ? QLatin1String("_le")
                     : QLatin1String("_be");
    if (isOn(project, linkUseMultiThreadedLibrariesProperty, configuration))
        extension += QLatin1String("_mt");
    return extension;
}

QString ARMBuildSystem::getPrintfVariant(ProjectElement *element, const QString &configuration)
{
    if (isOn(element, linkerPrintfFpEnabledProperty, configuration))
        return QStringLiteral("double_long_long");
    QString variant =
        integerLevelVariant(setting(element, linkerPrintfFmtLevelProperty, configuration));
    if (setting(element, linkerPrintfWidthPrecisionSupportedProperty, configuration) ==
        QLatin1String("No"))
        variant += QLatin1String("_nwp");
    return variant;
}

QString ARMBuildSystem::getScanfVariant(ProjectElement *element, const QString &configuration)
{
    QString variant =
        isOn(element, linkerScanfFpEnabledProperty, configuration)
            ? QStringLiteral("double_long_long")
            : integerLevelVariant(setting(element, linkerScanfFmtLevelProperty, configuration));
    if (isOn(element, linkerScanfCharacterGroupMatchingEnabledProperty, configuration))
        variant += QLatin1String("_cc");
    return variant;
}

void ARMBuildSystem::addARMOptions(ProjectElement *element, const QString &configuration,
                                   QStringList &command, bool forAssembler)
{
    const QString core = setting(element, armCoreTypeProperty, configuration).toLower();
    if (core != QLatin1String("none") && !generate_1_5_commandLine) {
        command << QStringLiteral("-mcpu=") + core;
    } else {
        const QString version =
            architectureVersion(setting(element, armArchitectureProperty, configuration));
        if (!version.isEmpty())
            command << QStringLiteral("-march=armv") + version.toLower();
    }

    const QString instructionSet = setting(element, armInstructionSetProperty, configuration);
    if (instructionSet == QLatin1String("Thumb") || instructionSet == QLatin1String("THUMB"))
        command << QStringLiteral("-mthumb");
    if (isOn(element, armInterworkProperty, configuration))
        command << QStringLiteral("-mthumb-interwork");

    const bool little =
        setting(element, armEndianProperty, configuration) == QLatin1String("Little");
    if (forAssembler)
        command << (little ? QStringLiteral("-EL") : QStringLiteral("-EB"));
    else
        command << (little ? QStringLiteral("-mlittle-endian") : QStringLiteral("-mbig-endian"));
    if (generate_1_5_commandLine)
        return;

    if (generateFPUOption())
        command << QStringLiteral("-mfpu=vfp");
    const QString abi = floatAbiOption(setting(element, armFpAbiProperty, configuration));
    if (!abi.isEmpty())
        command << abi;
}

void ARMBuildSystem::setGenerate_1_5_commandLine(bool on)
{
    generate_1_5_commandLine = on;
    linkerKeepSymbolsProperty->setDefault(on ? QString() : QStringLiteral("_vectors"));
    gccEntryPointProperty->setDefault(on ? QStringLiteral("0") : QStringLiteral("reset_handler"));
}
