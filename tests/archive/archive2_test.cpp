#include "archive/archive2.h"
#include "archive/packagetesting.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QFile>

#include <string>

namespace {

std::string path(const ScratchDir &dir, const char *name)
{
    return QFile::encodeName(dir.file(name)).toStdString();
}

/// Opens the file `name` of `dir` into `archive`; the result of `open`.
int openFile(Archive2 &archive, const ScratchDir &dir, const char *name)
{
    const std::string file = path(dir, name);
    return archive.open(std::fopen(file.c_str(), "rb"), file.c_str());
}

/// Each member as "name size writable time offset".
std::vector<std::string> directory(const Archive2 &archive)
{
    std::vector<std::string> lines;
    for (const ArchiveChunk2 &m : archive.members())
        lines.push_back(m.name + ' ' + std::to_string(m.size) + ' ' + (m.writable ? "w" : "-") +
                        ' ' + std::to_string(m.time) + ' ' + std::to_string(m.offset));
    return lines;
}

} // namespace

TEST(Archive2, WritesMembersFromTheirSourcesAndReadsThemBack)
{
    ScratchDir dir;
    dir.write("one", "0123456789");
    // Large enough to take several of the copy's blocks.
    const QByteArray big(5000, 'x');
    dir.write("big", big);
    Archive2 written;
    written.addMember(path(dir, "one"), "part", 3, 4, false, 1700000000);
    written.addMember(path(dir, "big"), "sub/big", 0, big.size(), true, 0);
    written.addMember(path(dir, "one"), "part", 0, 1, true, 7);
    ASSERT_EQ(written.write(path(dir, "a.arc").c_str()), 0) << written.errorText();
    written.close();

    // Three records, then the data in directory order with no padding.
    const QByteArray bytes = dir.read("a.arc");
    ASSERT_EQ(bytes.size(), 8 + 3 * 1040 + 4 + 5000 + 1);
    EXPECT_EQ(bytes.left(8), QByteArray("\xC8\xC3\x52\x41\x03\x00\x00\x00", 8));
    EXPECT_EQ(bytes.mid(8 + 3 * 1040), "3456" + big + "0");

    Archive2 read;
    ASSERT_EQ(openFile(read, dir, "a.arc"), 0);
    EXPECT_EQ(directory(read),
              (std::vector<std::string>{"part 4 - 1700000000 3128", "sub/big 5000 w 0 3132",
                                        "part 1 w 7 8132"}));
    EXPECT_TRUE(read.dataWithinFile());
    EXPECT_EQ(read.memberCount(), 3);
    EXPECT_EQ(read.findMember("part")->time, 1700000000);
    EXPECT_EQ(read.findMember("sub"), nullptr);

    // Copying between archives: the opened members' data comes from the first archive.
    Archive2 copy;
    for (const ArchiveChunk2 &m : read.members())
        copy.addMember(m.source, m.name, m.offset, m.size, m.writable, m.time);
    ASSERT_EQ(copy.write(path(dir, "b.arc").c_str()), 0) << copy.errorText();
    copy.close();
    EXPECT_EQ(dir.read("b.arc"), bytes);

    read.remove();
    EXPECT_FALSE(QFile::exists(dir.file("a.arc")));
    EXPECT_EQ(read.archiveFileName(), "");
}

TEST(Archive2, TheFormatsEdgeCases)
{
    ScratchDir dir;
    Archive2 empty;
    ASSERT_EQ(empty.write(path(dir, "empty").c_str()), 0);
    empty.close();
    EXPECT_EQ(dir.read("empty"), QByteArray("\xC8\xC3\x52\x41\0\0\0\0", 8));

    // A name of 1024 bytes fills its field with no terminator; a longer one is cut.
    dir.write("data", "d");
    const std::string exact(1024, 'n');
    Archive2 names;
    names.addMember(path(dir, "data"), exact, 0, 1, true, 1);
    names.addMember(path(dir, "data"), exact + "tail", 0, 1, true, 2);
    ASSERT_EQ(names.write(path(dir, "names").c_str()), 0);
    names.close();
    const QByteArray bytes = dir.read("names");
    EXPECT_EQ(bytes.mid(8, 1024), QByteArray(1024, 'n'));
    EXPECT_EQ(bytes.mid(8 + 1024, 4), littleEndian(8 + 2 * 1040)); // right behind the name
    Archive2 read;
    ASSERT_EQ(openFile(read, dir, "names"), 0);
    ASSERT_EQ(read.memberCount(), 2);
    EXPECT_EQ(read.members()[1].name, exact);
    EXPECT_EQ(read.findMember((exact + "tail").c_str())->time, 1);

    // A one-member archive's data starts at 1048.
    Archive2 one;
    one.addMember(path(dir, "data"), "x", 0, 1, true, 1);
    ASSERT_EQ(one.write(path(dir, "one").c_str()), 0);
    one.close();
    EXPECT_EQ(dir.read("one").mid(8 + 1024, 4), littleEndian(1048));

    // A null file is a new archive.
    Archive2 fresh;
    EXPECT_EQ(fresh.open(nullptr, "new"), 0);
    EXPECT_EQ(fresh.memberCount(), 0);
}

TEST(Archive2, ReadsAnArchiveWrittenByAnotherProgram)
{
    ScratchDir dir;
    const quint32 data = 8 + 2 * 1040;
    dir.write("foreign",
              archiveBytes(2, {{"a", data, 2, true, 5}, {"b", data + 2, 1, false, 0}}, "xyz"));
    Archive2 read;
    ASSERT_EQ(openFile(read, dir, "foreign"), 0);
    EXPECT_EQ(directory(read), (std::vector<std::string>{"a 2 w 5 2088", "b 1 - 0 2090"}));
    EXPECT_TRUE(read.dataWithinFile());
}

TEST(Archive2, RefusesDamagedDirectoriesWithinWhatTheFileHolds)
{
    const RawMember one{"m", 8 + 1040, 4, true, 1};
    struct Case
    {
        const char *what;
        QByteArray bytes;
        int result;
        int members;
        bool dataWithin;
    };
    const Case cases[] = {
        {"an empty file", "", 1, 0, true},
        {"a wrong magic", archiveBytes(1, {one}, "data", 0x4152C3C9), 1, 0, true},
        {"a negative count", archiveBytes(-5, {one}, "data"), 1, 0, true},
        // Stops at the end of the file instead of reserving two thousand million records.
        {"a count of 2^31 - 1", archiveBytes(0x7FFFFFFF, {one, one}, "data"), 2, 2, true},
        {"a record cut short", archiveBytes(2, {one, one}, "").left(8 + 1040 + 600), 2, 1, true},
        {"data past the end", archiveBytes(1, {one}, "dat"), 0, 1, false},
    };
    ScratchDir dir;
    for (const Case &c : cases) {
        dir.write("bad", c.bytes);
        Archive2 read;
        EXPECT_EQ(openFile(read, dir, "bad"), c.result) << c.what;
        EXPECT_EQ(read.memberCount(), c.members) << c.what;
        EXPECT_EQ(read.dataWithinFile(), c.dataWithin) << c.what;
    }
}

TEST(Archive2, WriteFailuresAreTold)
{
    ScratchDir dir;
    Archive2 missing;
    missing.addMember(path(dir, "gone"), "m", 0, 1, true, 1);
    EXPECT_EQ(missing.write(path(dir, "out").c_str()), 3);
    EXPECT_EQ(missing.errorText(), "FATAL: read error on " + path(dir, "gone") + ".\n");

    dir.write("short", "ab");
    Archive2 tooLong;
    tooLong.addMember(path(dir, "short"), "m", 1, 5, true, 1);
    EXPECT_EQ(tooLong.write(path(dir, "out").c_str()), 3);
    EXPECT_EQ(tooLong.errorText(), "FATAL: read error on " + path(dir, "short") + ".\n");

    Archive2 full;
    full.addMember(path(dir, "short"), "m", 0, 2, true, 1);
    EXPECT_EQ(full.write("/dev/full"), 3);
    EXPECT_EQ(full.errorText(), "FATAL: write error on /dev/full.\n");

    // A file that can't be made is no write failure; nothing is written.
    Archive2 nowhere;
    EXPECT_EQ(nowhere.write(path(dir, "no/such/dir/out").c_str()), 0);
}
