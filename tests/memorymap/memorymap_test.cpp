#include "memorymaptesting.h"

#include "xml/xmldocument.h"

#include <QFileInfo>

namespace {

/// The names of `elements`, joined by blanks.
QString names(const MemoryMap::ElementList &elements)
{
    QStringList list;
    for (const MemoryMapElement *element : elements)
        list << element->name();
    return list.join(QLatin1Char(' '));
}

} // namespace

TEST(MemoryMapTest, WalksAndTheirOrders)
{
    auto map = mapFrom(memoryMapXml(
        "<MemorySegment name=\"FLASH\">\n"
        "  <ProgramSection name=\"a\"><ProgramSection name=\"hidden\"/></ProgramSection>\n"
        "  <ProgramSection name=\"b\"/>\n"
        "  <MemorySegment name=\"inner\"/>\n"
        "</MemorySegment>\n"
        "<Processor name=\"p\"><MemorySegment name=\"RAM\"/></Processor>\n"
        "<MemorySegment name=\"cut\">\n"
        "  <ProgramSection name=\"before\"/>\n"
        "  <![CDATA[text]]>\n"
        "  <ProgramSection name=\"after\"/>\n"
        "</MemorySegment>\n"));
    ASSERT_TRUE(map);
    EXPECT_EQ(map->documentType, "Board_Memory_Definition_File");
    EXPECT_EQ(names(map->getSegments(false)), "FLASH RAM cut");
    EXPECT_EQ(names(map->getSegments(true)), "cut RAM FLASH");
    const MemoryMapElement *flash = map->getSegment("FLASH");
    ASSERT_TRUE(flash);
    // A found element's children aren't looked at; the flag of getSections is inverted.
    EXPECT_EQ(names(map->getSections(flash, true)), "a b");
    EXPECT_EQ(names(map->getSections(flash, false)), "b a");
    // A node that isn't an element ends the walk of its parent's remaining children.
    EXPECT_EQ(names(map->getSections(map->getSegment("cut"), true)), "before");
    EXPECT_EQ(names(map->getAllElements()), "Board FLASH a hidden b inner p RAM cut before");

    MemoryMap::ElementList list;
    list << map->getRoot();
    map->getElementsOfType(map->getRoot(), MemoryMapElement::ProgramSection, true, list);
    EXPECT_EQ(names(list), "before b a Board");

    // A lookup by name searches below elements of the same type with other names.
    EXPECT_EQ(map->getSegment("inner"),
              map->getNamedElementOfType(flash, "inner", MemoryMapElement::MemorySegment));
    EXPECT_EQ(map->getSegment("hidden"), nullptr);
    EXPECT_NE(
        map->getNamedElementOfType(map->getRoot(), "hidden", MemoryMapElement::ProgramSection),
        nullptr);
    EXPECT_EQ(map->getSegment(""), nullptr);
}

TEST(MemoryMapTest, CloneIsADeepCopyInOrder)
{
    auto map =
        mapFrom(memoryMapXml("<MemorySegment name=\"S\" start=\"0x10\">\n"
                             "  <ProgramSection name=\"a\" start=\"+1\"/>\n"
                             "  <ProgramSection name=\"b\"><Enum name=\"e\"/></ProgramSection>\n"
                             "  <ProgramSection name=\"c\"/>\n"
                             "</MemorySegment>\n"));
    ASSERT_TRUE(map);
    MemoryMapElement *segment = map->getSegment("S");
    MemoryMapElement *copy = map->clone(segment);
    ASSERT_NE(copy, segment);
    EXPECT_EQ(copy->parent, nullptr);
    EXPECT_EQ(copy->address(), 0x10u);
    MemoryMap::ElementList all;
    map->getElements(copy, all);
    EXPECT_EQ(names(all), "S a b e c");
    EXPECT_EQ(all[1]->address(), 0x11u);
    EXPECT_EQ(all[3]->parent, all[2]);
    EXPECT_NE(all[1], segment->firstChild);
}

TEST(MemoryMapTest, ImportsStandInTheTreeAndAreStoredAsImports)
{
    ScratchDir dir;
    dir.write("sub/chip.xml", memoryMapXml("<MemorySegment name=\"SRAM\" start=\"0x2000\"/>\n"
                                           "<Import filename=\"../board.xml\"/>\n"));
    const QString board =
        dir.write("board.xml", memoryMapXml("<Import filename=\"sub/chip.xml\"/>\n"
                                            "<Import filename=\"missing.xml\"/>\n"
                                            "<MemorySegment name=\"FLASH\" start=\"0\"/>\n"
                                            "<Import filename=\"" +
                                            dir.file("board.xml").toLatin1() + "\"/>\n"));
    MemoryMap map;
    ASSERT_TRUE(map.load(board, QString(), false));
    EXPECT_EQ(map.fileName, board);
    // The chip file is followed relative to the importing file; its own import of the board
    // file is not, so a cycle of imports ends after one step. The board file importing
    // itself is followed once in the same way.
    EXPECT_EQ(names(map.getSegments(false)), "SRAM FLASH FLASH");
    EXPECT_EQ(map.getSegment("SRAM")->address(), 0x2000u);
    const MemoryMapElement *imported = dynamic_cast<MemoryMapElement *>(map.getRoot()->firstChild);
    ASSERT_TRUE(imported && imported->importElement);
    EXPECT_STREQ(imported->importElement->tagName(), "Import");
    EXPECT_EQ(map.documentType, "Board_Memory_Definition_File");
    EXPECT_TRUE(map.upToDate());

    // Storing writes the imports, not what they imported, and keeps the imports in the tree.
    const QString stored = dir.file("stored.xml");
    ASSERT_TRUE(map.store(stored));
    const QByteArray text = dir.read("stored.xml");
    EXPECT_TRUE(text.startsWith("<!DOCTYPE Board_Memory_Definition_File>"));
    EXPECT_TRUE(text.contains("<Import filename=\"sub/chip.xml\""));
    EXPECT_FALSE(text.contains("SRAM"));
    EXPECT_EQ(names(map.getSegments(false)), "SRAM FLASH FLASH");
    EXPECT_EQ(map.fileName, stored);
    EXPECT_TRUE(map.upToDate());
    // Storing again swaps the same imports out and in.
    ASSERT_TRUE(map.store(stored));
    EXPECT_EQ(dir.read("stored.xml"), text);

    // A changed import outdates the map, whichever way its time moved.
    age(dir.file("sub/chip.xml"), 3600);
    EXPECT_FALSE(map.upToDate());
}

TEST(MemoryMapTest, ReadOnlyFilesGiveReadOnlyElements)
{
    // The flag in force while a file is parsed goes to each element made from it.
    MemoryMap parsed;
    parsed.readOnly = true;
    ASSERT_TRUE(parsed.loadFromString(memoryMapXml("<MemorySegment name=\"S\"/>\n")));
    EXPECT_TRUE(parsed.isReadOnly());
    EXPECT_TRUE(parsed.isReadOnly(parsed.getSegment("S")));
    EXPECT_FALSE(parsed.isReadOnly(nullptr));
    EXPECT_FALSE(parsed.clone(parsed.getSegment("S"))->readOnly);

    ScratchDir dir;
    const QString path = dir.write("map.xml", memoryMapXml("<MemorySegment name=\"S\"/>\n"));
    MemoryMap writable;
    ASSERT_TRUE(writable.load(path, QString(), false));
    EXPECT_FALSE(writable.isReadOnly(writable.getSegment("S")));
    QFile::setPermissions(path, QFileDevice::ReadOwner);
    if (QFileInfo(path).isWritable())
        return; // rights that write anything, as a superuser has
    MemoryMap map;
    ASSERT_TRUE(map.load(path, QString(), false));
    EXPECT_TRUE(map.isReadOnly(map.getSegment("S")));
}

TEST(MemoryMapTest, PreprocessedLoad)
{
    ScratchDir dir;
    const QString path = dir.write(
        "map.xml", memoryMapXml("<if board=\"big\"><MemorySegment name=\"BIG\"/></if>\n"
                                "<ifnot board=\"big\"><MemorySegment name=\"SMALL\"/></ifnot>\n"
                                "<MemorySegment name=\"$(board)\"/>\n"));
    MemoryMap map;
    ASSERT_TRUE(map.load(path, QStringLiteral("board=big"), true));
    EXPECT_EQ(names(map.getSegments(false)), "BIG big");
    MemoryMap plain;
    ASSERT_TRUE(plain.load(path, QString(), false));
    // Unprocessed, the directives stay in the tree as elements that walks pass through.
    EXPECT_EQ(names(plain.getSegments(false)), "BIG SMALL $(board)");
}

TEST(MemoryMapTest, FilesThatDoNotLoad)
{
    ScratchDir dir;
    const QString notXml = dir.write("notxml.xml", "this is not XML at all");
    const QString empty = dir.write("empty.xml", "");
    const QString broken = dir.write("broken.xml", "<Root><MemorySegment></Root>");
    const QString wrongType = dir.write("solution.hdp", "<!DOCTYPE Tarnbench_Project_File>\n"
                                                        "<solution Name=\"S\"/>\n");
    for (const QString &path : {dir.file("missing.xml"), notXml, empty, broken, dir.path()}) {
        MemoryMap map;
        EXPECT_FALSE(map.load(path, QString(), false)) << path.toStdString();
        EXPECT_EQ(map.getRoot(), nullptr);
    }
    // Another kind of XML file loads and has no segments.
    MemoryMap map;
    ASSERT_TRUE(map.load(wrongType, QString(), false));
    EXPECT_TRUE(map.getSegments(true).isEmpty());
    EXPECT_EQ(map.documentType, "Tarnbench_Project_File");
}

TEST(MemoryMapTest, DeepNestingNeedsNoDeepStack)
{
    const int depth = 200000;
    QByteArray xml = "<Root>";
    for (int i = 0; i < depth; ++i)
        xml += "<ProgramSection start=\"+1\">";
    xml += "<MemorySegment name=\"deep\"/>";
    for (int i = 0; i < depth; ++i)
        xml += "</ProgramSection>";
    xml += "</Root>";
    auto map = mapFrom(xml);
    ASSERT_TRUE(map);
    const MemoryMapElement *deep = map->getSegment("deep");
    ASSERT_TRUE(deep);
    EXPECT_EQ(map->getAllElements().size(), depth + 2);
    EXPECT_EQ(map->getSegments(true).size(), 1);
    const MemoryMapElement *copy = map->clone(map->getRoot());
    MemoryMap::ElementList copied;
    map->getElements(copy, copied);
    EXPECT_EQ(copied.size(), depth + 2);
    EXPECT_EQ(dynamic_cast<const MemoryMapElement *>(deep->parent)->address(), unsigned(depth));
}
