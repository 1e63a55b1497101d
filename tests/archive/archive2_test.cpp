#include "archive/archive2.h"
#include "archive/packagetesting.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QFile>

namespace {

class Archive2Test : public ::testing::Test
{
protected:
    /// Where `name` is in the scratch directory.
    std::string path(const char *name) const { return dir.file(name).toStdString(); }
    /// Writes `archive` to `name`; its bytes.
    QByteArray written(Archive2 &archive, const char *name) const
    {
        EXPECT_EQ(archive.write(path(name).c_str()), 0) << archive.errorText();
        archive.close();
        return dir.read(name);
    }

    ScratchDir dir;
};

} // namespace

TEST_F(Archive2Test, WritesTheFormatFromTheSourcesAndReadsItBack)
{
    dir.write("one", "0123456789");
    const QByteArray big(5000, 'x'); // several of the copy's blocks
    dir.write("big", big);
    const std::string longName(1030, 'n');
    Archive2 archive;
    archive.addMember(path("one"), "part", 3, 4, false, 1700000000);
    archive.addMember(path("big"), longName, 0, 5000, true, 0);
    archive.addMember(path("one"), "part", 0, 1, true, 7);
    // The long name is cut to fill its field with no terminator; the undefined bytes are zero.
    const QByteArray bytes = written(archive, "a");
    EXPECT_EQ(bytes, archiveBytes(3,
                                  {{"part", 3128, 4, false, 1700000000},
                                   {QByteArray(1024, 'n'), 3132, 5000, true, 0},
                                   {"part", 8132, 1, true, 7}},
                                  "3456" + big + "0", 0x4152C3C8, '\0'));

    Archive2 read, copy, empty;
    ASSERT_EQ(read.open(std::fopen(path("a").c_str(), "rb"), path("a").c_str()), 0);
    ASSERT_EQ(read.memberCount(), 3);
    EXPECT_EQ(read.findMember(longName.c_str()), &read.members()[1]);
    // Copied member by member, the data comes from the first archive.
    for (const ArchiveChunk2 &m : read.members())
        copy.addMember(m.source, m.name, m.offset, m.size, m.writable, m.time);
    EXPECT_EQ(written(copy, "b"), bytes);
    read.remove();
    EXPECT_FALSE(QFile::exists(dir.file("a")));
    EXPECT_EQ(written(empty, "empty"), archiveBytes(0, {}, ""));
}

TEST_F(Archive2Test, WriteFailuresAreTold)
{
    dir.write("short", "ab");
    Archive2 beyond, full, nowhere;
    beyond.addMember(path("short"), "m", 1, 5, true, 1);
    EXPECT_EQ(beyond.write(path("out").c_str()), 3);
    EXPECT_EQ(beyond.errorText(), "FATAL: read error on " + path("short") + ".\n");
    full.addMember(path("short"), "m", 0, 2, true, 1);
    EXPECT_EQ(full.write("/dev/full"), 3);
    EXPECT_EQ(full.errorText(), "FATAL: write error on /dev/full.\n");
    // A file that can't be made is no failure of the write: nothing is written.
    EXPECT_EQ(nowhere.write(path("no/dir/out").c_str()), 0);
}
