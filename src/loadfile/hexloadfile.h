#pragma once

#include "loadfile/textloadfile.h"

/// A plain hexadecimal listing: each line an 8-digit address followed by bytes, each
/// behind a blank.
class HexLoadFile : public TextLoadFile
{
public:
    /// Reads `fileName` whole; throws `HException` at the first bad line.
    explicit HexLoadFile(const char *fileName);

private:
    void readLine(const char *line, std::size_t length);
};
