#include "loadfile/tihexloadfile.h"

TIHexLoadFile::TIHexLoadFile(const char *fileName)
{
    readLines(fileName, 64, "unexpected end of file",
              [this](const char *line, std::size_t length) { return readLine(line, length); });
}

bool TIHexLoadFile::readLine(const char *line, std::size_t length)
{
    const char *cursor = line;
    if (*cursor == '@') {
        ++cursor;
        address = 0;
        while (static_cast<unsigned char>(*cursor) > 32)
            address = address << 8 | getAsciiHexByte(cursor, nullptr);
        return true;
    }
    if (*cursor == 'q')
        return false;

    // Each byte is two digits and one character of separation, which the last byte may
    // lack; the count keeps every read inside the line.
    const auto count = static_cast<unsigned int>((length + 1) / 3);
    unsigned char *bytes = dataRun(address, count);
    for (unsigned int i = 0; i < count; ++i) {
        bytes[i] = getAsciiHexByte(cursor, nullptr);
        ++cursor;
    }
    address += count;
    return true;
}
