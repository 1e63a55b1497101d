#include "loadfile/textloadfile.h"

#include "foundation/hexception.h"
#include "foundation/numberhelpers.h"
#include "loadfile/loadfilestream.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

std::string onLine(const std::string &text, int line)
{
    return text + " : line " + std::to_string(line);
}

} // namespace

unsigned char getAsciiHexByte(const char *&cursor, unsigned char *sum)
{
    // The second digit is looked at only if the first is one, so a line's terminating
    // zero is never stepped over.
    const int high = hexDigitValue(cursor[0]);
    const int low = high < 0 ? -1 : hexDigitValue(cursor[1]);
    if (low < 0)
        throw HException("invalid ASCII encoded byte");
    cursor += 2;
    const auto byte = static_cast<unsigned char>(high << 4 | low);
    if (sum)
        *sum = static_cast<unsigned char>(*sum + byte);
    return byte;
}

unsigned int getAsciiHexNumber(const char *&cursor, int bytes, unsigned char *sum)
{
    unsigned int value = 0;
    for (int i = 0; i < bytes; ++i)
        value = value << 8 | getAsciiHexByte(cursor, sum);
    return value;
}

void TextLoadFile::readLines(const char *fileName, int bufferSize, const char *missingEndText,
                             const std::function<bool(const char *, std::size_t)> &takeLine)
{
    LoadFileStream stream(fileName);
    std::vector<char> buffer(bufferSize);
    int line = 0;
    bool ended = false;
    while (!ended && std::fgets(buffer.data(), bufferSize, stream.file())) {
        ++line;
        try {
            ended = !takeLine(buffer.data(), std::strlen(buffer.data()));
        } catch (const HException &error) {
            throw HException(onLine(error.message(), line));
        }
    }
    lastSection = nullptr;
    if (std::ferror(stream.file()))
        throw HException(std::string("cannot read ") + fileName);
    if (!ended && missingEndText)
        throw HException(onLine(missingEndText, line + 1));
}

unsigned char *TextLoadFile::dataRun(unsigned int address, unsigned int length)
{
    if (length == 0)
        return nullptr;
    // In 64 bits, so that a run at 0 doesn't join a section that ends at the top of memory.
    if (!lastSection ||
        static_cast<unsigned long long>(lastSection->address()) + lastSection->length() !=
            address) {
        auto section = std::make_unique<ExpandingLoadFileSection>(address);
        lastSection = section.get();
        sections.add(std::move(section));
    }
    return lastSection->expand(length);
}
