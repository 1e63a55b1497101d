#pragma once

#include "loadfile/expandingloadfilesection.h"
#include "loadfile/loadfileinterface.h"

#include <cstddef>
#include <functional>

/// Reads two hexadecimal digits of either case at `cursor`, steps over them and gives the
/// byte, added to `*sum` in 8 bits unless `sum` is null. Throws `HException` with "invalid
/// ASCII encoded byte" at any other character.
unsigned char getAsciiHexByte(const char *&cursor, unsigned char *sum);

/// `bytes` bytes read as `getAsciiHexByte` does, most significant first.
unsigned int getAsciiHexNumber(const char *&cursor, int bytes, unsigned char *sum);

/// The common part of the readers of line-oriented text images, which carry their own
/// addresses and make their sections while the constructor reads the file.
class TextLoadFile : public LoadFileInterface
{
public:
    bool hasEntryPoint() const override { return hasEntry; }
    bool hasLoadAddress() const override { return true; }
    void setLoadAddress(unsigned long) override {}
    bool createLoadFileSections() override { return true; }

protected:
    /// Hands `takeLine` each line of `fileName` with its length, read through a buffer of
    /// `bufferSize` characters (a longer line comes in pieces), until it returns false. An
    /// `HException` from a line is thrown again with " : line N". If the file ends first and
    /// `missingEndText` isn't null, that is thrown, for the line after the last.
    void readLines(const char *fileName, int bufferSize, const char *missingEndText,
                   const std::function<bool(const char *line, std::size_t length)> &takeLine);

    /// Room for `length` bytes of data at `address`: behind the section written last if the
    /// run starts where it ends, else in a new section. Null, and no section, for no bytes.
    unsigned char *dataRun(unsigned int address, unsigned int length);

    bool hasEntry = false;

private:
    // Only while `readLines` runs: the sections may be dropped afterwards.
    ExpandingLoadFileSection *lastSection = nullptr;
};
