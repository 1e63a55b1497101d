#include "memorymaptesting.h"

#include "memorymap/memorymapopenfiles.h"
#include "targets/fuzzentries.h"

TEST(MemoryMapHostileTest, FilesThatDoNotLoad)
{
    ScratchDir dir;
    for (const QString &path :
         {dir.file("missing.xml"), dir.write("notxml.xml", "not XML at all"),
          dir.write("empty.xml", ""), dir.write("broken.xml", "<Root><MemorySegment></Root>"),
          dir.path()}) {
        MemoryMap map;
        EXPECT_FALSE(map.load(path, QString(), false)) << path.toStdString();
        EXPECT_EQ(MemoryMapOpenFiles::getMemoryMapFile(path), nullptr);
    }
    // Another kind of XML file loads and has no segments.
    MemoryMap map;
    ASSERT_TRUE(map.load(dir.write("s.hdp", solutionText("")), QString(), false));
    EXPECT_TRUE(map.getSegments(true).isEmpty());
}

TEST(MemoryMapHostileTest, DeepNestingNeedsNoDeepStack)
{
    const int depth = 200000;
    const QByteArray xml = "<Root>" + QByteArray("<ProgramSection start=\"+1\">").repeated(depth) +
                           "<MemorySegment name=\"deep\"/>" +
                           QByteArray("</ProgramSection>").repeated(depth) + "</Root>";
    auto map = mapFrom(xml);
    ASSERT_TRUE(map);
    const MemoryMapElement *deep = map->getSegment("deep");
    ASSERT_TRUE(deep);
    MemoryMap::ElementList copied;
    map->getElements(map->clone(map->getRoot()), copied);
    EXPECT_EQ(copied.size(), depth + 2);
    EXPECT_EQ(dynamic_cast<const MemoryMapElement *>(deep->parent)->address(), unsigned(depth));
}

TEST(MemoryMapHostileTest, LongChainsAndLargeRunAreas)
{
    // The last of many sections runs in an area laid out first, which pulls the whole chain
    // before it; then an area that many sections run in.
    const int count = 20000;
    const QByteArray map = "<MemorySegment name=\"FLASH\" start=\"0\" size=\"0x10000\"/>\n"
                           "<MemorySegment name=\"RAM\" start=\"0x20000000\" size=\"0x1000\"/>\n";
    const QByteArray area = "</MemorySegment>\n<MemorySegment name=\"RAM\">"
                            "<ProgramSection name=\".area\"/></MemorySegment>\n";
    QByteArray chain = "<MemorySegment name=\"FLASH\">\n";
    QByteArray many = chain;
    for (int i = 0; i < count; ++i) {
        chain += "<ProgramSection name=\".s" + QByteArray::number(i) + "\" load=\"Yes\"" +
                 (i == count - 1 ? " runin=\".area\"" : "") + "/>\n";
        many += "<ProgramSection name=\".m" + QByteArray::number(i) + "\" runin=\".area\"/>\n";
    }
    const QString script = scriptFrom(map, chain + area, true);
    EXPECT_EQ(script.count("\n  .s"), count);
    EXPECT_GT(script.indexOf("\n  .area "), script.lastIndexOf("\n  .s"));
    EXPECT_EQ(scriptFrom(map, many + area).count("    . = MAX(__area_start__ + SIZEOF(.m"), count);
}

TEST(MemoryMapHostileTest, InputsTheFuzzerFoundAreReadSafely)
{
    EXPECT_GT(runFuzzRegressions("linkerscript"), 0);
}
