#pragma once

#include <cstdio>
#include <string>
#include <vector>

/// One member of an archive: its directory record, and the file that holds its data now.
struct ArchiveChunk2
{
    std::string name;      ///< at most `Archive2::nameSize` bytes
    long offset = 0;       ///< where the data starts in `source`
    long size = 0;         ///< the data's length in bytes
    bool writable = false; ///< the owner-write bit of the file the data came from
    long time = 0;         ///< modification time in seconds since 1970; 0 when not known
    std::string source;    ///< the file the data is read from when the archive is written
};

/// The program's own container of named byte strings, the payload of packages. It holds only
/// the directory: member data stays in the files it names and moves, in blocks, on `write`.
/// An object is either opened to read a directory or filled by `addMember` and written.
class Archive2
{
public:
    static constexpr unsigned long archiveMagic = 0x4152C3C8;
    static constexpr long headerSize = 8;
    static constexpr long recordSize = 1040;
    static constexpr std::size_t nameSize = 1024;

    /// An archive with no members and no file.
    Archive2();
    ~Archive2();
    Archive2(const Archive2 &) = delete;
    Archive2 &operator=(const Archive2 &) = delete;

    /// Reads the directory of `file`, taking the handle over; a null `file` is a new, empty
    /// archive. 0 on success, 1 for a bad header (no members), 2 for a directory cut short
    /// (the members read so far stay).
    int open(FILE *file, const char *fileName);
    /// Appends a member whose data are `size` bytes at `offset` in the file `source`.
    void addMember(std::string source, std::string name, long offset, long size, bool writable,
                   long time);
    /// The first member called exactly `name`, or null.
    ArchiveChunk2 *findMember(const char *name);
    /// Writes the archive to a new file `fileName`, which stays open until `close`: 0 on
    /// success (or when the file can't be created), 3 on failure, told by `errorText`.
    int write(const char *fileName);
    /// Closes the file, if one is open.
    void close();
    /// Closes the file and deletes the file of `fileName` from disk.
    void remove();

    /// Copies the data of `member` from its source to `to` (named `toName` in messages) in
    /// blocks; 0 on success, 3 on failure, told by `errorText`.
    int copyMember(const ArchiveChunk2 &member, FILE *to, const char *toName);
    /// Whether the data of every member lies within the open file; an archive whose records
    /// point past its end is damaged. True for an archive with no file.
    bool dataWithinFile() const;

    const std::vector<ArchiveChunk2> &members() const { return chunks; }
    /// The number of members.
    int memberCount() const { return count; }
    /// The file last opened or written.
    const std::string &archiveFileName() const { return fileName; }
    /// The last failure of `write` or `copyMember`.
    const std::string &errorText() const { return error; }

private:
    std::vector<ArchiveChunk2> chunks;
    unsigned long magic;
    int count = 0;
    std::string fileName;
    FILE *file = nullptr;
    std::string error;
};
