#include "foundation/sizetext.h"
#include "foundation/texthelpers.h"

#include <gtest/gtest.h>

TEST(SizeTextTest, SizesInEachUnitFormat)
{
    EXPECT_EQ(coarseKBSize(1024, SizeUnitBinary), "2 kB") << "rounded up";
    EXPECT_EQ(kbSize(1023, SizeUnitBinary), "1023 bytes");
    EXPECT_EQ(kbSize(1234567, SizeUnitDecimal), "1,234.5 kB");
    EXPECT_EQ(bSize(999999, SizeUnitDecimal), "999.9 kB") << "cut, not rounded";
    EXPECT_EQ(bSize(0x180000, SizeUnitBinaryIEC), "1.5 MiB");
}

TEST(TextHelpersTest, EscapesAndUnescapesXmlEntities)
{
    const QString text = QString("a&b<c>\"d'") + QChar(0xB7);
    const QString escaped = xmlEscapeEntities(text);
    EXPECT_EQ(escaped, "a&amp;b&lt;c&gt;&quot;d&apos;&middot;");
    EXPECT_EQ(xmlUnescapeEntities(escaped), text);
    EXPECT_EQ(xmlUnescapeEntities("x&nbsp;y"), "x y");
    // "&amp;" goes first, so an escaped entity is read through twice.
    EXPECT_EQ(xmlUnescapeEntities("&amp;lt;"), "<");
}

TEST(TextHelpersTest, SplitItemsAndAbbreviations)
{
    QStringList list{"first"};
    appendSplitItems(list, "-I", "a;;b;");
    appendSplitItems(list, "-I", "");
    EXPECT_EQ(list, (QStringList{"first", "-Ia", "-Ib"}));
    EXPECT_EQ(abbreviateFileName("/home/someone/project/src/main.c", 4), "main.c");
    EXPECT_EQ(abbreviateFileName("/home/someone/project/src/main.c", 18), ".../src/main.c");
}
