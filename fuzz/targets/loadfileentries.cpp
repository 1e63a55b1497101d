#include "targets/fuzzentries.h"

#include "foundation/hexception.h"
#include "loadfile/loadfilefactory.h"
#include "loadfile/loadfilesections.h"

#include <QFile>

int fuzzLoadFile(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte: the reader in its low three bits, whether the image is then made
    // contiguous in the next, and the fill byte's low nibble in the high four.
    const LoadFileTypeInfo &type =
        LoadFileFactory::types()[(data[0] & 7) % LoadFileFactory::typeCount];
    const bool contiguous = data[0] & 8;
    const unsigned char fill = data[0] >> 4;
    const QByteArray name =
        QFile::encodeName(writeScratchFile(QStringLiteral("image"), data + 1, size - 1));
    try {
        auto file = LoadFileFactory::instance()->create(name.constData(), type.type);
        if (!file->hasLoadAddress())
            file->setLoadAddress(0x1000);
        file->loadFileSections();
        file->sortLoadFileSections();
        if (contiguous)
            file->makeContiguous(fill);
        file->loadFileSections()->length();
    } catch (const HException &) {
        // A bad file is refused with a message; that is the reader doing its job.
    }
    return 0;
}
