#include "memorymaptesting.h"

#include "memorymap/memorymapopenfiles.h"

TEST(MemoryMapOpenFilesTest, LoadsOnceUntilAFileChanges)
{
    ScratchDir dir;
    const QString chip = dir.write("chip.xml", memoryMapXml("<MemorySegment name=\"SRAM\"/>\n"));
    const QString path = dir.write("map.xml", memoryMapXml("<Import filename=\"chip.xml\"/>\n"
                                                           "<MemorySegment name=\"FLASH\"/>\n"));
    age(chip, 7200);
    age(path, 7200);
    MemoryMap *first = MemoryMapOpenFiles::getMemoryMapFile(path);
    ASSERT_TRUE(first && first->getSegment("SRAM"));
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), first);

    // A rewritten file is read afresh; so is one whose import changed, even to an older time.
    dir.write("map.xml", memoryMapXml("<Import filename=\"chip.xml\"/>\n"));
    age(path, 5000);
    MemoryMap *second = MemoryMapOpenFiles::getMemoryMapFile(path);
    ASSERT_TRUE(second && !second->getSegment("FLASH"));
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), second);
    dir.write("chip.xml", memoryMapXml("<MemorySegment name=\"DRAM\"/>\n"));
    age(chip, 9000);
    MemoryMap *third = MemoryMapOpenFiles::getMemoryMapFile(path);
    ASSERT_TRUE(third && third->getSegment("DRAM"));

    // A cached file that goes away, or becomes unreadable as XML, gives no map and leaves the
    // cache.
    dir.write("map.xml", "garbage");
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), nullptr);
    QFile::remove(path);
    EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), nullptr);
}
