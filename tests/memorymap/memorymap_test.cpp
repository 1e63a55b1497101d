#include "memorymaptesting.h"

TEST(MemoryMapTest, WalksAndTheirOrders)
{
    auto map = mapFrom(memoryMapXml(R"(<MemorySegment name="FLASH">
  <ProgramSection name="a"><ProgramSection name="hidden"/></ProgramSection>
  <ProgramSection name="b"/><MemorySegment name="inner"/></MemorySegment>
<Processor name="p"><MemorySegment name="RAM"/></Processor>
<MemorySegment name="cut"><ProgramSection name="before"/><![CDATA[text]]><ProgramSection name="after"/>
</MemorySegment>
)"));
    ASSERT_TRUE(map);
    EXPECT_EQ(names(map->getSegments(true)), "cut RAM FLASH");
    const MemoryMapElement *flash = map->getSegment("FLASH");
    ASSERT_TRUE(flash);
    // A found element's children aren't looked at; the flag of getSections is inverted.
    EXPECT_EQ(names(map->getSections(flash, true)), "a b");
    EXPECT_EQ(names(map->getSections(flash, false)), "b a");
    // A node that isn't an element ends the walk of its parent's remaining children.
    EXPECT_EQ(names(map->getSections(map->getSegment("cut"), true)), "before");
    EXPECT_EQ(names(map->getAllElements()), "Board FLASH a hidden b inner p RAM cut before");

    // A lookup by name searches below elements of the same type with other names.
    EXPECT_NE(map->getSegment("inner"), nullptr);
    EXPECT_EQ(map->getSegment("hidden"), nullptr);

    // A copy is deep and in order.
    MemoryMap::ElementList copied;
    map->getElements(map->clone(flash), copied);
    EXPECT_EQ(names(copied), "FLASH a hidden b inner");
    EXPECT_NE(copied[1], flash->firstChild);
}

TEST(MemoryMapTest, ImportsStandInTheTreeAndAreStoredAsImports)
{
    // The chip file is followed relative to the importing file; its own import of the board
    // file is not, so a cycle of imports ends after one step, and so does the board file's
    // import of itself. A missing import is left out.
    ScratchDir dir;
    dir.write("sub/chip.xml", memoryMapXml("<MemorySegment name=\"SRAM\" start=\"0x2000\"/>\n"
                                           "<Import filename=\"../board.xml\"/>\n"));
    const QString board =
        dir.write("board.xml", memoryMapXml("<Import filename=\"sub/chip.xml\"/>\n"
                                            "<Import filename=\"missing.xml\"/>\n"
                                            "<MemorySegment name=\"FLASH\"/>\n"
                                            "<Import filename=\"" +
                                            dir.file("board.xml").toLatin1() + "\"/>\n"));
    MemoryMap map;
    ASSERT_TRUE(map.load(board, QString(), false));
    EXPECT_EQ(names(map.getSegments(false)), "SRAM FLASH FLASH");
    EXPECT_EQ(map.getSegment("SRAM")->address(), 0x2000u);
    EXPECT_TRUE(map.upToDate());

    // Storing writes the imports, not what they imported, and keeps the imports in the tree.
    const QString stored = dir.file("stored.xml");
    ASSERT_TRUE(map.store(stored));
    const QByteArray text = dir.read("stored.xml");
    EXPECT_TRUE(text.startsWith("<!DOCTYPE Board_Memory_Definition_File>"));
    EXPECT_TRUE(text.contains("<Import filename=\"sub/chip.xml\""));
    EXPECT_FALSE(text.contains("SRAM"));
    EXPECT_EQ(names(map.getSegments(false)), "SRAM FLASH FLASH");
    EXPECT_TRUE(map.upToDate());

    // A changed import outdates the map, whichever way its time moved.
    age(dir.file("sub/chip.xml"), 3600);
    EXPECT_FALSE(map.upToDate());
}

TEST(MemoryMapTest, LoadingWithThePreprocessorOrNotAndTheFilesRights)
{
    ScratchDir dir;
    const QString path = dir.write(
        "map.xml", memoryMapXml("<if board=\"big\"><MemorySegment name=\"BIG\"/></if>\n"
                                "<ifnot board=\"big\"><MemorySegment name=\"SMALL\"/></ifnot>\n"));
    MemoryMap map;
    ASSERT_TRUE(map.load(path, QStringLiteral("board=big"), true));
    EXPECT_EQ(names(map.getSegments(false)), "BIG");
    // Unprocessed, the directives stay in the tree for walks to pass through. A writable file
    // gives writable elements whatever the flag said; a parsed text gets the flag, not a copy.
    MemoryMap plain;
    plain.readOnly = true;
    ASSERT_TRUE(plain.load(path, QString(), false));
    EXPECT_EQ(names(plain.getSegments(false)), "BIG SMALL");
    EXPECT_FALSE(plain.isReadOnly(plain.getSegment("BIG")));
    MemoryMap parsed;
    parsed.readOnly = true;
    ASSERT_TRUE(parsed.loadFromString(memoryMapXml("<MemorySegment name=\"S\"/>\n")));
    EXPECT_TRUE(parsed.isReadOnly(parsed.getSegment("S")));
    EXPECT_FALSE(parsed.clone(parsed.getSegment("S"))->readOnly);
}
