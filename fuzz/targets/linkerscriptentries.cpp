#include "targets/fuzzentries.h"

#include "memorymap/linkerscriptwriter.h"
#include "memorymap/memorymap.h"

#include <QTextStream>

int fuzzLinkerScript(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!staysInScratch(input, "import") || !staysInScratch(input, "include"))
        return 0;
    // The first byte holds the options; the rest is the memory map, then after a NUL the
    // section placement.
    const bool checkOverflow = input[0] & 1;
    const bool usePreprocessor = input[0] & 2;
    const QByteArray files = input.mid(1);
    const qsizetype split = files.indexOf('\0');
    const QByteArray mapText = split < 0 ? files : files.left(split);
    const QByteArray placementText = split < 0 ? QByteArray() : files.mid(split + 1);

    const QString mapPath = writeScratchFile(QStringLiteral("map/memory.xml"),
                                             reinterpret_cast<const uint8_t *>(mapText.constData()),
                                             size_t(mapText.size()));
    MemoryMap map;
    if (!map.load(mapPath, QString(), usePreprocessor))
        return 0;
    MemoryMap placement;
    bool withPlacement = false;
    if (split >= 0) {
        const QString placementPath =
            writeScratchFile(QStringLiteral("map/placement.xml"),
                             reinterpret_cast<const uint8_t *>(placementText.constData()),
                             size_t(placementText.size()));
        withPlacement = placement.load(placementPath, QString(), usePreprocessor);
    }

    QString script;
    QTextStream stream(&script);
    const LinkerScriptSizes sizes{"1024", "256", "256", "0", "0", "0", "1024"};
    try {
        LinkerScriptWriter(stream, &map, checkOverflow)
            .write(withPlacement ? &placement : nullptr, sizes);
    } catch (const QString &) {
        // A map the writer refuses is told to the user; nothing more to check.
    }
    return 0;
}
