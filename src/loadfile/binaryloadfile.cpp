#include "loadfile/binaryloadfile.h"

#include "foundation/hexception.h"
#include "loadfile/loadfilestream.h"
#include "loadfile/standardloadfilesection.h"

#include <new>
#include <string>

BinaryLoadFile::BinaryLoadFile(const char *fileName)
{
    LoadFileStream stream(fileName);
    const unsigned long long fileSize = stream.size();
    // A section's length has 32 bits; a file beyond that can't be one image.
    if (fileSize <= 0xFFFFFFFF)
        data.reset(new (std::nothrow) unsigned char[fileSize]);
    if (!data || std::fread(data.get(), 1, fileSize, stream.file()) != fileSize)
        throw HException(std::string("cannot read ") + fileName);
    size = static_cast<unsigned int>(fileSize);
}

void BinaryLoadFile::setLoadAddress(unsigned long address)
{
    if (address == loadAddress)
        return;
    invalidateLoadFileSections();
    loadAddress = address;
}

bool BinaryLoadFile::createLoadFileSections()
{
    sections.add(std::make_unique<StandardLoadFileSection>(
        "data", static_cast<unsigned int>(loadAddress), size, data.get()));
    return true;
}
