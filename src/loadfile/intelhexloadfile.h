#pragma once

#include "loadfile/textloadfile.h"

/// An Intel Hex image, with segment and extended linear addresses; a start address record
/// gives the entry point.
class IntelHexLoadFile : public TextLoadFile
{
public:
    /// Reads `fileName` up to its end of file record; throws `HException` at the first bad
    /// record or if there is no end record.
    explicit IntelHexLoadFile(const char *fileName);

private:
    /// Reads one record; false after the end of file record.
    bool readRecord(const char *line);

    unsigned int upperAddress = 0;
    unsigned int segment = 0;
};
