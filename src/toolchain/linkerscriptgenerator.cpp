#include "toolchain/linkerscriptgenerator.h"

#include "engine/sidefiles.h"
#include "engine/buildsystem.h"
#include "engine/diskinterface.h"
#include "foundation/path.h"
#include "engine/builder.h"
#include "memorymap/linkerscriptwriter.h"
#include "memorymap/memorymap.h"
#include "memorymap/memorymapopenfiles.h"
#include "project/projectsystem.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace {

const char overflowSetting[] = "arm_library_check_memory_segment_overflow";

/// The settings a script is written from, in the order their times are checked.
const char *const scriptSettings[] = {"linker_memory_map_file",    "arm_linker_stack_size",
                                      "arm_linker_irq_stack_size", "arm_linker_fiq_stack_size",
                                      "arm_linker_svc_stack_size", "arm_linker_abt_stack_size",
                                      "arm_linker_und_stack_size", overflowSetting,
                                      "arm_linker_heap_size"};

QString setting(ProjectElement *project, const char *saveName, const QString &configuration)
{
    const PropertyClass *propertyClass =
        buildSystem->findPropertyClass(QString::fromLatin1(saveName));
    return propertyClass ? projectSystem->settingFor(project, propertyClass, configuration)
                         : QString();
}

/// Whether no setting the script is written from changed after `scriptTime`.
bool settingsUpToDate(ProjectElement *project, const QString &configuration,
                      const QDateTime &scriptTime, Builder *builder)
{
    for (const char *saveName : scriptSettings) {
        const PropertyClass *propertyClass =
            buildSystem->findPropertyClass(QString::fromLatin1(saveName));
        if (propertyClass && !projectSystem->upToDate(project, propertyClass, configuration,
                                                      scriptTime, builder, true))
            return false;
    }
    return true;
}

/// Whether the script at `script` can be used as it is.
bool scriptIsCurrent(ProjectElement *project, const QString &configuration, const QString &script,
                     const QString &memoryMapPath, const QString &sectionPlacementPath,
                     Builder *builder)
{
    DiskInterface &disk = buildSystem->disk();
    const QDateTime scriptTime = disk.modified(script);
    const QDateTime mapTime = disk.modified(memoryMapPath);
    bool current = scriptTime.isValid() && mapTime.isValid() && mapTime < scriptTime &&
                   settingsUpToDate(project, configuration, scriptTime, builder);
    if (sectionPlacementPath.isEmpty())
        return current;
    const QDateTime placementTime = disk.modified(sectionPlacementPath);
    if (!placementTime.isValid())
        throw QStringLiteral("section placement file does not exist: ") + sectionPlacementPath;
    return current && placementTime < scriptTime;
}

LinkerScriptSizes sizesOf(ProjectElement *project, const QString &configuration)
{
    LinkerScriptSizes sizes;
    sizes.stack = setting(project, "arm_linker_stack_size", configuration);
    sizes.irqStack = setting(project, "arm_linker_irq_stack_size", configuration);
    sizes.fiqStack = setting(project, "arm_linker_fiq_stack_size", configuration);
    sizes.svcStack = setting(project, "arm_linker_svc_stack_size", configuration);
    sizes.abtStack = setting(project, "arm_linker_abt_stack_size", configuration);
    sizes.undStack = setting(project, "arm_linker_und_stack_size", configuration);
    sizes.heap = setting(project, "arm_linker_heap_size", configuration);
    return sizes;
}

/// Writes the script to a scratch file beside `script` and puts it in place only when it is
/// complete, so that no partly written script can pass for a current one.
void writeScript(ProjectElement *project, const QString &configuration, const QString &script,
                 const QString &memoryMapPath, const QString &sectionPlacementPath,
                 Builder *builder)
{
    const bool checkOverflow =
        setting(project, overflowSetting, configuration) == QLatin1String("Yes");
    const MemoryMap *map = MemoryMapOpenFiles::getMemoryMapFile(memoryMapPath);
    if (!map)
        throw QStringLiteral("cannot load memory map file: ") + memoryMapPath;
    if (builder)
        builder->message(QStringLiteral("Generating linker script"));

    const MemoryMap *placement = nullptr;
    if (!sectionPlacementPath.isEmpty()) {
        // One file can serve as both; a second lookup must not replace the map in the cache.
        placement =
            Path(sectionPlacementPath).osPathQString() == Path(memoryMapPath).osPathQString()
                ? map
                : MemoryMapOpenFiles::getMemoryMapFile(sectionPlacementPath);
        if (!placement)
            throw QStringLiteral("cannot load section placement file: ") + sectionPlacementPath;
    }

    buildSystem->ensureDirExists(script);
    QSaveFile file(script);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        throw QStringLiteral("cannot create linker script file: ") + script;
    QTextStream stream(&file);
    stream.setEncoding(QStringConverter::Latin1);
    LinkerScriptWriter(stream, map, checkOverflow)
        .write(placement, sizesOf(project, configuration));
    stream.flush();
    if (stream.status() != QTextStream::Ok || !file.commit())
        throw QStringLiteral("cannot write linker script file: ") + script;
}

} // namespace

QString generateLinkerScript(ProjectElement *project, const QString &configuration,
                             const QString &output, const QString &projectDirectory,
                             const QString &memoryMapPath, const QString &sectionPlacementPath,
                             Builder *builder, bool clean)
{
    const QString script = linkerScriptPath(
        projectDirectory,
        buildSystem->settingForExpanded(project, buildSystem->buildIntermediateDirectoryProperty,
                                        configuration),
        output);
    DiskInterface &disk = buildSystem->disk();
    try {
        if (scriptIsCurrent(project, configuration, script, memoryMapPath, sectionPlacementPath,
                            builder) &&
            !clean)
            return script;
        writeScript(project, configuration, script, memoryMapPath, sectionPlacementPath, builder);
    } catch (const QString &) {
        // An earlier script must not stand in for the one that could not be written.
        QFile::remove(script);
        disk.invalidate(script);
        throw;
    }
    disk.invalidate(script);
    return script;
}
