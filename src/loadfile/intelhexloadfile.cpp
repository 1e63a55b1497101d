#include "loadfile/intelhexloadfile.h"

#include "foundation/hexception.h"

IntelHexLoadFile::IntelHexLoadFile(const char *fileName)
{
    readLines(fileName, 530, "invalid end of file in hex file",
              [this](const char *line, std::size_t) { return readRecord(line); });
}

bool IntelHexLoadFile::readRecord(const char *line)
{
    const char *cursor = line;
    if (*cursor != ':')
        throw HException("missing record mark in hex file");
    ++cursor;

    unsigned char sum = 0;
    const unsigned int count = getAsciiHexByte(cursor, &sum);
    const unsigned int offset = getAsciiHexNumber(cursor, 2, &sum);
    const unsigned char type = getAsciiHexByte(cursor, &sum);
    switch (type) {
    case 0: {
        const unsigned int address = ((upperAddress << 16) | offset) + (segment << 4);
        unsigned char *bytes = dataRun(address, count);
        for (unsigned int i = 0; i < count; ++i)
            bytes[i] = getAsciiHexByte(cursor, &sum);
        break;
    }
    case 2:
        segment = getAsciiHexNumber(cursor, 2, &sum);
        break;
    case 3:
    case 5:
        m_entryPoint = getAsciiHexNumber(cursor, 4, &sum);
        hasEntry = true;
        break;
    case 4:
        upperAddress = getAsciiHexNumber(cursor, 2, &sum);
        break;
    default:
        break;
    }

    if (getAsciiHexByte(cursor, nullptr) != static_cast<unsigned char>(0 - sum))
        throw HException("invalid checksum");
    return type != 1;
}
