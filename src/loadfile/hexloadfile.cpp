#include "loadfile/hexloadfile.h"

#include "foundation/hexception.h"

HexLoadFile::HexLoadFile(const char *fileName)
{
    readLines(fileName, 64, nullptr, [this](const char *line, std::size_t length) {
        readLine(line, length);
        return true;
    });
}

void HexLoadFile::readLine(const char *line, std::size_t length)
{
    if (length <= 7)
        throw HException("invalid address");
    const char *cursor = line;
    const unsigned int address = getAsciiHexNumber(cursor, 4, nullptr);

    const auto count = static_cast<unsigned int>((length - 8) / 3);
    unsigned char *bytes = dataRun(address, count);
    for (unsigned int i = 0; i < count; ++i) {
        if (*cursor != ' ' && *cursor != '\t')
            throw HException("invalid seperator");
        ++cursor;
        bytes[i] = getAsciiHexByte(cursor, nullptr);
    }
}
