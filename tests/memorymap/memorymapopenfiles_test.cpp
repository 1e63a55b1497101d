#include "memorymaptesting.h"

#include "memorymap/memorymapopenfiles.h"

class MemoryMapOpenFilesTest : public ::testing::Test
{
protected:
    ~MemoryMapOpenFilesTest() override { MemoryMapOpenFiles::clear(); }
    ScratchDir dir;
};

TEST_F(MemoryMapOpenFilesTest, LoadsOnceUntilAFileChanges)
{
    const QString chip = dir.write("chip.xml", memoryMapXml("<MemorySegment name=\"SRAM\"/>\n"));
    const QString path = dir.write("map.xml", memoryMapXml("<Import filename=\"chip.xml\"/>\n"
                                                           "<MemorySegment name=\"FLASH\"/>\n"));
    age(chip, 7200);
    age(path, 7200);

    MemoryMap *first = MemoryMapOpenFiles::getMemoryMapFile(path);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->getSegments(false).size(), 2);
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), first);

    // A rewritten file is read afresh.
    dir.write("map.xml", memoryMapXml("<MemorySegment name=\"ONLY\"/>\n"));
    age(path, 5000);
    MemoryMap *second = MemoryMapOpenFiles::getMemoryMapFile(path);
    ASSERT_TRUE(second);
    ASSERT_TRUE(second->getSegment("ONLY"));
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), second);

    // So is one whose import changed, even to an older time.
    dir.write("map.xml", memoryMapXml("<Import filename=\"chip.xml\"/>\n"));
    age(path, 4000);
    MemoryMap *third = MemoryMapOpenFiles::getMemoryMapFile(path);
    ASSERT_TRUE(third && third->getSegment("SRAM"));
    age(chip, 9000);
    MemoryMap *fourth = MemoryMapOpenFiles::getMemoryMapFile(path);
    ASSERT_TRUE(fourth && fourth->getSegment("SRAM"));
    EXPECT_TRUE(fourth->upToDate());

    // A file that goes away, or becomes unreadable as XML, gives no map.
    dir.write("map.xml", "garbage");
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), nullptr);
    QFile::remove(path);
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), nullptr);
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(QString()), nullptr);
}
