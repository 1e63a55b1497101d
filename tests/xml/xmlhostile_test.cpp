// Inputs meant to break the reader, the writer and the preprocessor: each must give a defined
// result or a message, within bounded time, memory and stack.

#include "support/testsupport.h"
#include "xml/xmltesting.h"

#include <gtest/gtest.h>

TEST(XMLHostile, DeepNesting)
{
    // Read, walked by the directives, copied by a loop, written and read again.
    const int levels = 100000;
    const auto depthOf = [](XMLNode *node) {
        int depth = 0;
        for (; node; node = node->firstChild)
            ++depth;
        return depth;
    };
    const QByteArray deep = QByteArray("<a>").repeated(levels) + "<b x=\"$(i)\"/>" +
                            QByteArray("</a>").repeated(levels);
    ScratchDir dir;
    RecordingDocument document;
    document.forCopyLimit = 2 * (levels + 1);
    ASSERT_TRUE(document.load(
        dir.write("deep.xml", "<r>" + QByteArray("<ifdef name=\"x\">").repeated(levels) +
                                  "<for index=\"i\" start=\"0\" end=\"2\" incr=\"1\">" + deep +
                                  "</for>" + QByteArray("</ifdef>").repeated(levels) + "</r>"),
        "x=1"));
    ASSERT_TRUE(document.save(dir.file("saved.xml").toLocal8Bit(), 0));
    XMLDocument reread;
    ASSERT_TRUE(reread.load(dir.file("saved.xml").toLocal8Bit()));
    EXPECT_EQ(depthOf(reread.root->firstChild), levels + 1);
    EXPECT_EQ(depthOf(reread.root->firstChild->nextSibling), levels + 1);
}

TEST(XMLHostile, HugeNamesValuesAndAttributeLists)
{
    // So many attributes must not make the reader quadratic.
    QByteArray huge = "<a";
    for (int i = 0; i < 200000; ++i)
        huge += " a" + QByteArray::number(i) + "=\"" + QByteArray::number(i) + "\"";
    const QByteArray name(10000, 'n');
    XMLDocument document;
    const QByteArray text =
        huge + " a5=\"again\" " + name + "=\"" + QByteArray(50 << 20, 'v') + "\"/>";
    ASSERT_TRUE(document.loadFromString(text));
    auto *root = static_cast<XMLElement *>(document.root);
    EXPECT_EQ(strlen(root->attribute(name)), size_t(50 << 20));
    EXPECT_EQ(root->getAttributeList().size(), 200001u);
    EXPECT_STREQ(root->attribute("a5"), "again");
}

TEST(XMLHostile, IncludeCyclesAndExplosions)
{
    ScratchDir dir;
    dir.write("b.xml", "<b><include filename=\"a.xml\"/></b>");
    RecordingDocument cycle;
    ASSERT_TRUE(cycle.load(dir.write("a.xml", "<a><include filename=\"./b.xml\"/><c/></a>")));
    EXPECT_EQ(cycle.messages, QStringList{"recursive include of " + dir.path() + "/./a.xml"})
        << "the same file, spelt differently";
    EXPECT_EQ(describe(cycle.root), "a(b(include{filename=a.xml}),c)");

    // Files that each include the next one twice: the number of includes grows as 2^n.
    for (int n = 0; n < 16; ++n) {
        const QByteArray next = "<include filename=\"g" + QByteArray::number(n + 1) + ".xml\"/>";
        dir.write(QString("g%1.xml").arg(n), "<g>" + next + next + "</g>");
    }
    dir.write("g16.xml", "<leaf/>");
    RecordingDocument doubling;
    doubling.includeLimit = 100;
    ASSERT_TRUE(doubling.load(dir.file("g0.xml")));
    ASSERT_FALSE(doubling.messages.isEmpty());
    EXPECT_TRUE(doubling.messages.first().startsWith("more than 100 includes"));
}

TEST(XMLHostile, LoopsTooLargeForMemory)
{
    // Refused whole, nested ones by their total (against a low limit, to keep the test fast).
    ScratchDir dir;
    RecordingDocument loops;
    loops.forCopyLimit = 100000;
    ASSERT_TRUE(loops.load(
        dir.write("for.xml", "<r><for index=\"i\" start=\"0\" end=\"4000000000\" incr=\"1\">"
                             "<a n=\"$(i)\"/></for>"
                             "<for index=\"i\" start=\"0\" end=\"200\" incr=\"1\">"
                             "<for index=\"j\" start=\"0\" end=\"1000\" incr=\"1\"><b/>"
                             "</for></for><c v=\"$(unclosed\"/></r>"),
        "", true));
    ASSERT_EQ(loops.messages.size(), 1 + (200 - 99)); // 99 inner loops fit beside the outer copies
    EXPECT_EQ(loops.messages.first(), "<for index=\"i\"> would copy "
                                      "4000000000 elements, more than the 100000 allowed");
    int copies = 0;
    for (XMLNode *child = loops.root->firstChild; child; child = child->nextSibling)
        ++copies;
    EXPECT_EQ(copies, 99 * 1000 + 1);
}
