#pragma once

#include "loadfile/textloadfile.h"

/// A Motorola S-Record image; a start record gives the entry point.
class SRecordLoadFile : public TextLoadFile
{
public:
    /// Reads `fileName` whole; throws `HException` at the first bad record.
    explicit SRecordLoadFile(const char *fileName);

private:
    void readRecord(const char *line);

    unsigned int dataRecords = 0;
};
