#include "loadfile/srecordloadfile.h"

#include "foundation/hexception.h"

SRecordLoadFile::SRecordLoadFile(const char *fileName)
{
    // An end record is optional: the end of the file ends the image.
    readLines(fileName, 530, nullptr, [this](const char *line, std::size_t) {
        readRecord(line);
        return true;
    });
}

void SRecordLoadFile::readRecord(const char *line)
{
    const char *cursor = line;
    if (*cursor != 'S')
        throw HException("no leading 'S' character");
    ++cursor;
    const char type = *cursor;
    if (type != '\0')
        ++cursor;

    unsigned char sum = 0;
    const int count = getAsciiHexByte(cursor, &sum);
    switch (type) {
    case '0':
        for (int i = 0; i < count - 1; ++i)
            getAsciiHexByte(cursor, &sum);
        break;
    case '1':
    case '2':
    case '3': {
        const int addressBytes = type - '0' + 1;
        const unsigned int address = getAsciiHexNumber(cursor, addressBytes, &sum);
        const int length = count - addressBytes - 1;
        if (length > 0) {
            unsigned char *bytes = dataRun(address, length);
            for (int i = 0; i < length; ++i)
                bytes[i] = getAsciiHexByte(cursor, &sum);
        }
        ++dataRecords;
        break;
    }
    case '5':
        if (getAsciiHexNumber(cursor, 2, &sum) != dataRecords)
            throw HException("incorrect data record count");
        break;
    case '7':
    case '8':
    case '9':
        // S7 has a 4-byte address, S8 three bytes, S9 two.
        m_entryPoint = getAsciiHexNumber(cursor, '9' - type + 2, &sum);
        hasEntry = true;
        break;
    default:
        break;
    }

    if (getAsciiHexByte(cursor, nullptr) != static_cast<unsigned char>(~sum))
        throw HException("invalid checksum");
}
