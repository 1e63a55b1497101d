#include "toolchain/armbuildsystem.h"

#include "engine/builder.h"
#include "engine/diskinterface.h"
#include "engine/sidefiles.h"
#include "macros/macrosystem.h"
#include "project/projectsystem.h"
#include "toolchain/linkerscriptgenerator.h"

#include <QFileInfo>

namespace {

/// `output` with its last extension replaced by `extension`, in `directory`.

} // namespace

void ARMBuildSystem::archiveCommands(ProjectElement *element, const QString &output,
                                     const QString &absoluteOutput, const QStringList &inputs,
                                     const QString &projectDirectory, const QString &toolRoot,
                                     Builder *builder)
{
    // The archiver adds to a library it finds, so members of earlier builds would stay.
    if (!dryRun)
        disk().removeFile(getAbsPath(projectDirectory, output));
    const QStringList command =
        QStringList{toolRoot + QStringLiteral("/ar"), QStringLiteral("-rcs"), output} + inputs;

    builder->beginGroup(element,
                        QStringLiteral("Archiving ") + QFileInfo(absoluteOutput).fileName(), false);
    builder->setCommand(command);
    builder->setOutputFiles({absoluteOutput});
    builder->doit();
    if (!mustStop())
        builder->endGroup(element);
}

QStringList ARMBuildSystem::linkInputs(ProjectElement *project, const QString &configuration,
                                       const QStringList &inputs)
{
    QStringList list = inputs;
    if (!isOn(project, linkIncludeStandardLibrariesProperty, configuration))
        return list;

    const QString interface = setting(project, armTargetDebugInterfaceTypeProperty, configuration);
    QStringList names;
    if (interface == QLatin1String("ADIv5"))
        names << QStringLiteral("/libadiv5");
    else if (interface.startsWith(QLatin1String("XScale")))
        names << QStringLiteral("/libxscale");
    else
        names << QStringLiteral("/libarmdi");
    names << QStringLiteral("/libm") << QStringLiteral("/libc") << QStringLiteral("/libcpp");
    if (!generate_1_5_commandLine) {
        names << QStringLiteral("/libdebugio");
        const QString io = setting(project, linkIOLibraryNameProperty, configuration);
        if (io == QLatin1String("target"))
            names << QStringLiteral("/libc_targetio_impl");
        else if (io == QLatin1String("debug"))
            names << QStringLiteral("/libc_debugio_impl");
    }
    const bool gccLibraries = isOn(project, armUseGccLibrariesProperty, configuration);
    if (gccLibraries && (isOn(project, cppEnableExceptionsProperty, configuration) ||
                         isOn(project, cppEnableRttiProperty, configuration)))
        names << QStringLiteral("/libgccxceptrtti");
    if (generate_1_5_commandLine)
        names << (gccLibraries ? QStringLiteral("/libgccfp") : QStringLiteral("/libkmffp"));
    names << QStringLiteral("/lib_vfprintf_") + getPrintfVariant(project, configuration)
          << QStringLiteral("/lib_vfscanf_") + getScanfVariant(project, configuration);

    const QString directory =
        setting(project, linkStandardLibrariesDirectoryProperty, configuration);
    for (const QString &name : std::as_const(names))
        list << replaceMacros(project, directory + name + QStringLiteral("$(LibExt)"),
                              configuration) +
                    QStringLiteral(".a");
    return list;
}

bool ARMBuildSystem::linkerScript(ProjectElement *project, const QString &configuration,
                                  const QString &output, const QString &projectDirectory,
                                  Builder *builder, bool clean, QString &script, bool &generated)
{
    generated = false;
    if (useLinkerScriptFileForLink(project, configuration, script))
        return true;
    QString memoryMap;
    if (!useMemoryMapFileForLink(project, configuration, memoryMap)) {
        builder->error(QStringLiteral("no linker script or memory map file specified"));
        return false;
    }
    if (!disk().modified(memoryMap).isValid()) {
        builder->error(QStringLiteral("memory map file does not exist: ") + memoryMap);
        return false;
    }
    QString sectionPlacement;
    if (!useSectionPlacementFileForLink(project, configuration, sectionPlacement))
        sectionPlacement = QString();
    try {
        script = generateLinkerScript(project, configuration, output, projectDirectory, memoryMap,
                                      sectionPlacement, builder, clean);
    } catch (const QString &text) {
        builder->error(text);
        return false;
    }
    generated = true;
    return true;
}

void ARMBuildSystem::linkCommands(ProjectElement *project, const QString &configuration,
                                  const QString &output, const QString &absoluteOutput,
                                  const QStringList &inputs, const QString &projectDirectory,
                                  const QString &toolRoot, Builder *builder, bool clean)
{
    QStringList command{
        toolRoot + QStringLiteral("/ld"), QStringLiteral("-X"), QStringLiteral("-nostdlib"),
        QStringLiteral("-e") + setting(project, gccEntryPointProperty, configuration),
        QStringLiteral("--omagic")};
    const QStringList inputList = linkInputs(project, configuration, inputs);

    if (!isOn(project, buildQuietlyProperty, configuration))
        command << QStringLiteral("-v");
    if (isOn(project, buildTreatWarningsAsErrorsProperty, configuration) ||
        isOn(project, armLinkerTreatWarningsAsErrorsProperty, configuration))
        command << QStringLiteral("--fatal-warnings");
    if (isOn(project, armLinkerNoWarnOnMismatchProperty, configuration))
        command << QStringLiteral("--no-warn-mismatch");
    const QString additional = setting(project, linkerAdditionalOptionsProperty, configuration);
    if (!additional.isEmpty())
        command << MacroSystem::stringListFromString(additional, false);
    command << (setting(project, armEndianProperty, configuration) == QLatin1String("Little")
                    ? QStringLiteral("-EL")
                    : QStringLiteral("-EB"));
    if (isOn(project, buildRemoveUnusedSymbolsProperty, configuration))
        command << QStringLiteral("--gc-sections");

    QString script;
    bool generated = false;
    if (!linkerScript(project, configuration, output, projectDirectory, builder, clean, script,
                      generated))
        return;

    command << QStringLiteral("-T") + script;
    const bool mapFile = isOn(project, linkerMapFileProperty, configuration);
    if (mapFile)
        command << QStringLiteral("-Map") << sideFilePath(output, QStringLiteral(".map"));
    const QStringList definitions = setting(project, linkSymbolDefinitionsProperty, configuration)
                                        .split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &definition : definitions)
        command << QStringLiteral("--defsym") << definition;
    appendSplitItems(command, QStringLiteral("-u"),
                     setting(project, linkerKeepSymbolsProperty, configuration));
    // The group stays open: ld closes it at the end of the line.
    command << QStringLiteral("-o") << output << QStringLiteral("--start-group") << inputList;

    const QFileInfo absolute(absoluteOutput);
    builder->beginGroup(project, QStringLiteral("Linking ") + absolute.fileName(), false);
    builder->setCommand(command);
    builder->setOutputFiles({absoluteOutput});
    builder->doit();
    if (mustStop())
        return;

    if (mapFile)
        builder->setOutputFiles(
            {sideFilePath(absolute.absolutePath(), output, QStringLiteral(".map"))});
    if (generated)
        builder->setOutputFiles({script});
    const QString format = setting(project, linkerOutputFormatProperty, configuration);
    if (format != QLatin1String("None")) {
        const QString extraFile = sideFilePath(absoluteOutput, QLatin1Char('.') + format);
        builder->setCommand({toolRoot + QStringLiteral("/objcopy"), output, extraFile,
                             objcopyFormatOption(format)});
        builder->setOutputFiles({extraFile});
        builder->doit();
    }
    builder->endGroup(project);
}
