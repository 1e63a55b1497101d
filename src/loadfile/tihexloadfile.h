#pragma once

#include "loadfile/textloadfile.h"

/// A TI text image: "@ADDR" lines set the address, lines of hexadecimal bytes follow it,
/// and a "q" line ends the file.
class TIHexLoadFile : public TextLoadFile
{
public:
    /// Reads `fileName` up to its "q" line; throws `HException` at a bad byte or if the
    /// file has no "q" line.
    explicit TIHexLoadFile(const char *fileName);

private:
    /// Reads one line; false at the "q" line.
    bool readLine(const char *line, std::size_t length);

    unsigned int address = 0;
};
