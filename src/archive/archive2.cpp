#include "archive/archive2.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::size_t blockSize = 1024;

void putLong(unsigned char *at, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        at[i] = static_cast<unsigned char>(value >> (8 * i));
}

std::uint32_t getLong(const unsigned char *at)
{
    return std::uint32_t(at[0]) | std::uint32_t(at[1]) << 8 | std::uint32_t(at[2]) << 16 |
           std::uint32_t(at[3]) << 24;
}

// The padding behind a name and after the flag is undefined in the format; zeroes keep two
// writes of one archive byte for byte the same.
void encodeRecord(const ArchiveChunk2 &chunk, unsigned long offset,
                  unsigned char (&record)[Archive2::recordSize])
{
    std::memset(record, 0, sizeof record);
    std::memcpy(record, chunk.name.data(), std::min(chunk.name.size(), Archive2::nameSize));
    putLong(record + 1024, std::uint32_t(offset));
    putLong(record + 1028, std::uint32_t(chunk.size));
    record[1032] = chunk.writable ? 1 : 0;
    putLong(record + 1036, std::uint32_t(chunk.time));
}

std::string message(const char *format, const std::string &file)
{
    std::string text(format);
    text.replace(text.find("%s"), 2, file);
    return text;
}

} // namespace

Archive2::Archive2() : magic(archiveMagic) {}

Archive2::~Archive2()
{
    close();
}

int Archive2::open(FILE *handle, const char *name)
{
    close();
    fileName = name ? name : "";
    chunks.clear();
    count = 0;
    file = handle;
    if (!file)
        return 0;

    unsigned char header[headerSize];
    if (std::fseek(file, 0, SEEK_SET) != 0 || std::fread(header, 1, headerSize, file) != headerSize)
        return 1;
    const auto stored = static_cast<std::int32_t>(getLong(header + 4));
    if (getLong(header) != archiveMagic || stored < 0)
        return 1;
    // Records are taken one at a time as they are read, so a count that the file can't back
    // costs no more memory than the file's own size.
    for (std::int32_t i = 0; i < stored; ++i) {
        unsigned char record[recordSize];
        if (std::fread(record, 1, recordSize, file) != std::size_t(recordSize))
            return 2;
        const auto *text = reinterpret_cast<const char *>(record);
        const auto terminator = static_cast<const char *>(std::memchr(text, 0, nameSize));
        addMember(fileName, std::string(text, terminator ? terminator - text : nameSize),
                  getLong(record + 1024), getLong(record + 1028), record[1032] != 0,
                  getLong(record + 1036));
    }
    return 0;
}

void Archive2::addMember(std::string source, std::string name, long offset, long size,
                         bool writable, long time)
{
    // Cut as the record will hold it, so that a member is found again after a round trip.
    if (name.size() > nameSize)
        name.resize(nameSize);
    chunks.push_back({std::move(name), offset, size, writable, time, std::move(source)});
    ++count;
}

ArchiveChunk2 *Archive2::findMember(const char *name)
{
    const std::string wanted = std::string(name).substr(0, nameSize);
    for (ArchiveChunk2 &chunk : chunks) {
        if (chunk.name == wanted)
            return &chunk;
    }
    return nullptr;
}

int Archive2::write(const char *name)
{
    close();
    fileName = name;
    file = std::fopen(name, "wb+");
    if (!file)
        return 0;

    unsigned char header[headerSize];
    putLong(header, magic);
    putLong(header + 4, std::uint32_t(count));
    if (std::fwrite(header, 1, headerSize, file) != std::size_t(headerSize)) {
        error = message("FATAL: write error on %s.\n", fileName);
        return 3;
    }
    // The records take the offsets the data will have here; those in memory keep theirs,
    // since the data is still to be read from there.
    unsigned long long offset = headerSize + recordSize * static_cast<unsigned long long>(count);
    for (const ArchiveChunk2 &chunk : chunks) {
        unsigned char record[recordSize];
        encodeRecord(chunk, offset, record);
        // The format's offsets and sizes are 32 bits wide.
        if (offset > UINT32_MAX || static_cast<unsigned long>(chunk.size) > UINT32_MAX ||
            std::fwrite(record, 1, recordSize, file) != std::size_t(recordSize)) {
            error = message("FATAL: write error on %s.\n", fileName);
            return 3;
        }
        offset += static_cast<unsigned long>(chunk.size);
    }
    for (const ArchiveChunk2 &chunk : chunks) {
        if (copyMember(chunk, file, fileName.c_str()) != 0)
            return 3;
    }
    // Buffered data still has to reach the disk for a full disk to show.
    if (std::fflush(file) != 0) {
        error = message("FATAL: write error on %s.\n", fileName);
        return 3;
    }
    return 0;
}

int Archive2::copyMember(const ArchiveChunk2 &member, FILE *to, const char *toName)
{
    FILE *from = std::fopen(member.source.c_str(), "rb");
    if (!from || member.offset < 0 || member.size < 0 ||
        std::fseek(from, member.offset, SEEK_SET) != 0) {
        if (from)
            std::fclose(from);
        error = message("FATAL: read error on %s.\n", member.source);
        return 3;
    }
    char block[blockSize];
    for (long left = member.size; left > 0;) {
        const std::size_t wanted = std::size_t(std::min<long>(left, blockSize));
        if (std::fread(block, 1, wanted, from) != wanted) {
            error = message("FATAL: read error on %s.\n", member.source);
            std::fclose(from);
            return 3;
        }
        if (std::fwrite(block, 1, wanted, to) != wanted) {
            error = message("FATAL: write error on %s.\n", toName);
            std::fclose(from);
            return 3;
        }
        left -= long(wanted);
    }
    std::fclose(from);
    return 0;
}

bool Archive2::dataWithinFile() const
{
    if (!file)
        return true;
    struct stat status;
    if (fstat(fileno(file), &status) != 0)
        return false;
    for (const ArchiveChunk2 &chunk : chunks) {
        if (static_cast<unsigned long long>(chunk.offset) + chunk.size >
            static_cast<unsigned long long>(status.st_size))
            return false;
    }
    return true;
}

void Archive2::close()
{
    if (file)
        std::fclose(file);
    file = nullptr;
}

void Archive2::remove()
{
    close();
    std::remove(fileName.c_str());
    fileName.clear();
}
