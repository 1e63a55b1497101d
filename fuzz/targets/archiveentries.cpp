#include "targets/fuzzentries.h"

#include "archive/archive2.h"
#include "engine/package.h"
#include "foundation/qtx.h"
#include "support/nullbuilder.h"

#include <QFile>

#include <cstdio>

int fuzzArchive(const uint8_t *data, size_t size)
{
    const QByteArray name =
        QFile::encodeName(writeScratchFile(QStringLiteral("archive"), data, size));
    Archive2 archive;
    if (archive.open(std::fopen(name.constData(), "rb"), name.constData()) == 1)
        return 0;
    // Member data is only ever copied out of an archive whose records lie within it.
    if (!archive.dataWithinFile())
        return 0;
    const QByteArray copyName = QFile::encodeName(fuzzScratchDir() + QStringLiteral("/member"));
    for (const ArchiveChunk2 &member : archive.members()) {
        archive.findMember(member.name.c_str());
        if (FILE *to = std::fopen(copyName.constData(), "wb")) {
            archive.copyMember(member, to, copyName.constData());
            std::fclose(to);
        }
    }
    archive.close();
    return 0;
}

int fuzzPackage(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    // With the first byte odd the rest is an archive that is compressed here, so that the
    // fuzzer's changes reach the archive inside a well-formed package; else it is the package.
    const QString package = writeScratchFile(QStringLiteral("package.hdq"), data + 1, size - 1);
    if (data[0] & 1) {
        const QString plain = writeScratchFile(QStringLiteral("package.plain"), data + 1, size - 1);
        QTx::compressFile(plain, package);
    }
    static const uint8_t member[] = "int x;\n";
    const QString input = writeScratchFile(QStringLiteral("member.c"), member, sizeof member - 1);
    NullBuilder builder;
    // A dry run reads the package as a real one and writes nothing beside it.
    addToRemoveFromArchive(package, QStringLiteral("member.c"), input, &builder, true, data[0] & 2,
                           true);
    return 0;
}
