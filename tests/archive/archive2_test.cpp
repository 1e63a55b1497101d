#include "archive/archive2.h"
#include "archive/packagetesting.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QFile>

namespace {

std::string path(const ScratchDir &dir, const char *name)
{
    return QFile::encodeName(dir.file(name)).toStdString();
}

/// Writes `archive` to `name` in `dir`; its bytes.
QByteArray written(Archive2 &archive, const ScratchDir &dir, const char *name)
{
    EXPECT_EQ(archive.write(path(dir, name).c_str()), 0) << archive.errorText();
    archive.close();
    return dir.read(name);
}

} // namespace

TEST(Archive2, WritesTheFormatFromTheSourcesAndReadsItBack)
{
    ScratchDir dir;
    dir.write("one", "0123456789");
    const QByteArray big(5000, 'x'); // several of the copy's blocks
    dir.write("big", big);
    const std::string longName(1030, 'n');
    Archive2 archive;
    archive.addMember(path(dir, "one"), "part", 3, 4, false, 1700000000);
    archive.addMember(path(dir, "big"), longName, 0, 5000, true, 0);
    archive.addMember(path(dir, "one"), "part", 0, 1, true, 7);
    // The long name is cut to fill its field with no terminator; the undefined bytes are zero.
    const QByteArray bytes = written(archive, dir, "a");
    EXPECT_EQ(bytes, archiveBytes(3,
                                  {{"part", 3128, 4, false, 1700000000},
                                   {QByteArray(1024, 'n'), 3132, 5000, true, 0},
                                   {"part", 8132, 1, true, 7}},
                                  "3456" + big + "0", 0x4152C3C8, '\0'));

    Archive2 read;
    const std::string file = path(dir, "a");
    ASSERT_EQ(read.open(std::fopen(file.c_str(), "rb"), file.c_str()), 0);
    ASSERT_EQ(read.memberCount(), 3);
    EXPECT_EQ(read.findMember("part"), &read.members()[0]);
    EXPECT_EQ(read.findMember(longName.c_str()), &read.members()[1]);
    // Copied member by member, the data comes from the first archive.
    Archive2 copy;
    for (const ArchiveChunk2 &m : read.members())
        copy.addMember(m.source, m.name, m.offset, m.size, m.writable, m.time);
    EXPECT_EQ(written(copy, dir, "b"), bytes);
    read.remove();
    EXPECT_FALSE(QFile::exists(dir.file("a")));

    Archive2 empty, single;
    EXPECT_EQ(written(empty, dir, "empty"), archiveBytes(0, {}, ""));
    single.addMember(path(dir, "one"), "x", 0, 1, true, 1);
    EXPECT_EQ(written(single, dir, "single").mid(8 + 1024, 4), littleEndian(1048));
}

TEST(Archive2, WriteFailuresAreTold)
{
    ScratchDir dir;
    dir.write("short", "ab");
    Archive2 beyond, full, nowhere;
    beyond.addMember(path(dir, "short"), "m", 1, 5, true, 1);
    EXPECT_EQ(beyond.write(path(dir, "out").c_str()), 3);
    EXPECT_EQ(beyond.errorText(), "FATAL: read error on " + path(dir, "short") + ".\n");
    full.addMember(path(dir, "short"), "m", 0, 2, true, 1);
    EXPECT_EQ(full.write("/dev/full"), 3);
    EXPECT_EQ(full.errorText(), "FATAL: write error on /dev/full.\n");
    // A file that can't be made is no failure of the write: nothing is written.
    EXPECT_EQ(nowhere.write(path(dir, "no/dir/out").c_str()), 0);
}
