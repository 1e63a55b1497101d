#include "loadfile/loadfilefactory.h"

#include "loadfile/binaryloadfile.h"
#include "loadfile/hexloadfile.h"
#include "loadfile/intelhexloadfile.h"
#include "loadfile/srecordloadfile.h"
#include "loadfile/tihexloadfile.h"

#include <cstring>

namespace {

const LoadFileTypeInfo typeTable[LoadFileFactory::typeCount] = {
    {"bin", "*.bin *.rom", "Binary"},
    {"ihex", "*.hex", "Intel Hex"},
    {"hex", "*.lst", "Hex"},
    {"tihex", "*.txt", "TI Hex"},
    {"srec", "*.s19 *.srec", "Motorola S-Record"},
};

// Suffixes in the order they are tried; mixed case is deliberately not matched.
const struct
{
    const char *lower;
    const char *upper;
    const char *type;
} suffixes[] = {
    {".srec", ".SREC", "srec"}, {".s19", ".S19", "srec"}, {".bin", ".BIN", "bin"},
    {".rom", ".ROM", "bin"},    {".hex", ".HEX", "ihex"}, {".lst", ".LST", "hex"},
    {".txt", ".TXT", "tihex"},
};

} // namespace

LoadFileFactory *LoadFileFactory::instance()
{
    static LoadFileFactory factory;
    return &factory;
}

LoadFileFactory::~LoadFileFactory() = default;

const LoadFileTypeInfo *LoadFileFactory::types()
{
    return typeTable;
}

std::unique_ptr<LoadFileInterface> LoadFileFactory::create(const char *fileName, const char *type)
{
    if (!type)
        return nullptr;
    if (std::strcmp(type, "bin") == 0)
        return std::make_unique<BinaryLoadFile>(fileName);
    if (std::strcmp(type, "ihex") == 0)
        return std::make_unique<IntelHexLoadFile>(fileName);
    if (std::strcmp(type, "hex") == 0)
        return std::make_unique<HexLoadFile>(fileName);
    if (std::strcmp(type, "tihex") == 0)
        return std::make_unique<TIHexLoadFile>(fileName);
    if (std::strcmp(type, "srec") == 0)
        return std::make_unique<SRecordLoadFile>(fileName);
    return nullptr;
}

const char *LoadFileFactory::detect(const char *fileName)
{
    if (!fileName)
        return nullptr;
    const std::size_t length = std::strlen(fileName);
    for (const auto &suffix : suffixes) {
        const std::size_t suffixLength = std::strlen(suffix.lower);
        if (length < suffixLength)
            continue;
        const char *end = fileName + length - suffixLength;
        if (std::strcmp(end, suffix.lower) == 0 || std::strcmp(end, suffix.upper) == 0)
            return suffix.type;
    }
    return nullptr;
}
