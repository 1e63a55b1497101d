#include "toolchain/linkerscriptgenerator.h"

#include "engine/builder.h"
#include "engine/buildsystem.h"
#include "engine/diskinterface.h"
#include "engine/sidefiles.h"
#include "engine/standardbuildsystem.h"
#include "foundation/path.h"
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

/// What the script is written from, as the build record keeps it: which files, and the values
/// of the settings.
QStringList scriptSignature(ProjectElement *project, const QString &configuration,
                            const QString &memoryMapPath, const QString &sectionPlacementPath)
{
    QStringList signature{QStringLiteral("memory map=") + memoryMapPath,
                          QStringLiteral("section placement=") + sectionPlacementPath};
    for (const char *saveName : scriptSettings)
        signature << QLatin1String(saveName) + QLatin1Char('=') +
                         setting(project, saveName, configuration);
    return signature;
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
        throw QString(QStringLiteral("section placement file does not exist: ") +
                      sectionPlacementPath);
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

/// Whether `path` holds exactly `text`.
bool fileHolds(const QString &path, const QByteArray &text)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.size() == text.size() && file.readAll() == text;
}

/// Writes the script to a scratch file beside `script` and puts it in place only when it is
/// complete, so that no partly written script can pass for a current one. A script that
/// already says the same is left alone, so that what depends on its time is not redone.
void writeScript(ProjectElement *project, const QString &configuration, const QString &script,
                 const QString &memoryMapPath, const QString &sectionPlacementPath,
                 Builder *builder)
{
    const bool checkOverflow =
        setting(project, overflowSetting, configuration) == QLatin1String("Yes");
    const MemoryMap *map = MemoryMapOpenFiles::getMemoryMapFile(memoryMapPath);
    if (!map)
        throw QString(QStringLiteral("cannot load memory map file: ") + memoryMapPath);
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
            throw QString(QStringLiteral("cannot load section placement file: ") +
                          sectionPlacementPath);
    }

    QByteArray text;
    {
        QTextStream stream(&text);
        stream.setEncoding(QStringConverter::Latin1);
        LinkerScriptWriter(stream, map, checkOverflow)
            .write(placement, sizesOf(project, configuration));
    }
    if (buildSystem->dryRun || fileHolds(script, text))
        return;
    buildSystem->ensureDirExists(script);
    QSaveFile file(script);
    if (!file.open(QIODevice::WriteOnly))
        throw QString(QStringLiteral("cannot create linker script file: ") + script);
    if (file.write(text) != text.size() || !file.commit())
        throw QString(QStringLiteral("cannot write linker script file: ") + script);
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
    // Without any record (the first build after an upgrade) the times alone decide, as they
    // did; with one, a script made from other files or settings is made again.
    const BuildSignature signature{
        scriptSignature(project, configuration, memoryMapPath, sectionPlacementPath), {}};
    BuildRecord *record = standardBuildSystem ? &standardBuildSystem->currentRecord() : nullptr;
    const BuildSignature *recorded = record ? record->find(script) : nullptr;
    const bool inputsChanged = record && record->present() && (!recorded || *recorded != signature);
    try {
        if (!clean && !inputsChanged &&
            scriptIsCurrent(project, configuration, script, memoryMapPath, sectionPlacementPath,
                            builder)) {
            if (record)
                record->set(script, signature);
            return script;
        }
        writeScript(project, configuration, script, memoryMapPath, sectionPlacementPath, builder);
    } catch (const QString &) {
        // An earlier script must not stand in for the one that could not be written.
        if (!buildSystem->dryRun) {
            QFile::remove(script);
            if (record)
                record->remove(script);
        }
        disk.invalidate(script);
        throw;
    }
    disk.invalidate(script);
    if (record && !buildSystem->dryRun)
        record->set(script, signature);
    return script;
}
