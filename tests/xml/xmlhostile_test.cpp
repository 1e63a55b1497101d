// Inputs meant to break the reader, the writer and the preprocessor: each must give
// a defined result or a message, within bounded time, memory and stack.

#include "support/testsupport.h"
#include "xml/describe.h"
#include "xml/xmldocument.h"
#include "xml/xmlpp2.h"

#include <gtest/gtest.h>

#include <random>

namespace {

class RecordingDocument : public XMLPP2
{
public:
    void error(const QString &message) override { messages << message; }
    QStringList messages;
};

int depthOf(XMLNode *node)
{
    int depth = 0;
    for (; node; node = node->firstChild)
        ++depth;
    return depth;
}

QByteArray nested(const QByteArray &open, const QByteArray &close, int levels,
                  const QByteArray &inner = "")
{
    return open.repeated(levels) + inner + close.repeated(levels);
}

} // namespace

TEST(XMLHostile, ReaderSurvivesGarbage)
{
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        QByteArray bytes(4096, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random() % 8 ? "<>/!?-=\"&#x[]a_ \n"[random() % 17]
                                                  : random() % 256);
        bytes.replace('\0', ' ');
        XMLDocument document(true);
        document.loadFromString(bytes.constData());
    }

    // A NUL byte ends the text the reader sees.
    ScratchDir dir;
    const QString file = dir.write("nul.xml", QByteArray("<a x=\"1\"/>\0<b/>", 15));
    XMLDocument document;
    ASSERT_TRUE(document.load(file.toLocal8Bit().constData()));
    EXPECT_EQ(describe(document.root), "a{x=1}");
}

TEST(XMLHostile, DeepNestingNeedsNoStack)
{
    const int levels = 100000;
    ScratchDir dir;
    XMLDocument document;
    ASSERT_TRUE(document.loadFromString(nested("<a>", "</a>", levels, "<b x=\"$(i)\"/>")));
    EXPECT_EQ(depthOf(document.root), levels + 1);

    const QByteArray saved = dir.file("deep.xml").toLocal8Bit();
    ASSERT_TRUE(document.save(saved.constData(), 0));
    XMLDocument reread;
    ASSERT_TRUE(reread.load(saved.constData()));
    EXPECT_EQ(depthOf(reread.root), levels + 1);

    // Directives nested as deep, and a loop copying a deep subtree.
    dir.write("deep.pp", nested("<ifdef name=\"x\">", "</ifdef>", levels, "<r/>"));
    RecordingDocument flattened;
    ASSERT_TRUE(flattened.load(dir.file("deep.pp").toLocal8Bit().constData(), "x=1", false));
    EXPECT_EQ(describe(flattened.root), "r");

    dir.write("copy.pp", "<r><for index=\"i\" start=\"0\" end=\"2\" incr=\"1\">" +
                             nested("<a>", "</a>", levels, "<b x=\"$(i)\"/>") + "</for></r>");
    RecordingDocument copied;
    ASSERT_TRUE(copied.load(dir.file("copy.pp").toLocal8Bit().constData(), "", false));
    ASSERT_NE(copied.root->firstChild, nullptr);
    EXPECT_EQ(depthOf(copied.root->firstChild->nextSibling), levels + 1);
    EXPECT_TRUE(copied.messages.isEmpty());
}

TEST(XMLHostile, HugeNamesAndValues)
{
    const QByteArray value(50 << 20, 'v');
    const QByteArray name(10000, 'n');
    XMLDocument document;
    ASSERT_TRUE(document.loadFromString("<a " + name + "=\"" + value + "\" x=\"1\"/>"));
    auto *root = static_cast<XMLElement *>(document.root);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(strlen(root->attribute(name.constData())), size_t(value.size()));

    // Many attributes in one element must not make the reader quadratic.
    QByteArray many = "<a";
    for (int i = 0; i < 200000; ++i)
        many += " a" + QByteArray::number(i) + "=\"" + QByteArray::number(i) + "\"";
    many += " a5=\"again\"/>";
    ASSERT_TRUE(document.loadFromString(many.constData()));
    root = static_cast<XMLElement *>(document.root);
    EXPECT_EQ(root->getAttributeList().size(), 200000u);
    EXPECT_STREQ(root->attribute("a5"), "again");
    EXPECT_STREQ(root->getAttributeList().back().second, "199999");
}

TEST(XMLHostile, PreprocessorStaysBounded)
{
    ScratchDir dir;
    // An include of itself, directly and through another file.
    dir.write("self.xml", "<r><include filename=\"self.xml\"/><after/></r>");
    RecordingDocument self;
    ASSERT_TRUE(self.load(dir.file("self.xml").toLocal8Bit().constData(), "", false));
    EXPECT_EQ(self.messages, QStringList{"XmlPP::processConditionals(): recursive include of " +
                                         dir.path() + "/self.xml"});
    EXPECT_EQ(describe(self.root), "r(include{filename=self.xml},after)");

    dir.write("a.xml", "<a><include filename=\"./b.xml\"/></a>");
    dir.write("b.xml", "<b><include filename=\"a.xml\"/></b>");
    RecordingDocument cycle;
    ASSERT_TRUE(cycle.load(dir.file("a.xml").toLocal8Bit().constData(), "", false));
    EXPECT_EQ(cycle.messages.size(), 1);
    EXPECT_EQ(describe(cycle.root), "a(b(include{filename=a.xml}))");

    // Files that each include the next one twice: the number of includes grows as 2^n.
    for (int level = 0; level < 16; ++level)
        dir.write(QString("g%1.xml").arg(level),
                  QString("<g><include filename=\"g%1.xml\"/><include filename=\"g%1.xml\"/></g>")
                      .arg(level + 1)
                      .toLatin1());
    dir.write("g16.xml", "<leaf/>");
    RecordingDocument doubling;
    doubling.includeLimit = 100;
    ASSERT_TRUE(doubling.load(dir.file("g0.xml").toLocal8Bit().constData(), "", false));
    EXPECT_FALSE(doubling.messages.isEmpty());
    EXPECT_TRUE(doubling.messages.first().startsWith(
        "XmlPP::processConditionals(): more than 100 includes"));

    // Loops too large for memory are refused whole, nested ones by their total (here
    // against a lower limit, to keep the test fast).
    dir.write("for.xml", "<r><for index=\"i\" start=\"0\" end=\"4000000000\" incr=\"1\">"
                         "<a n=\"$(i)\"/></for>"
                         "<for index=\"i\" start=\"0\" end=\"200\" incr=\"1\">"
                         "<for index=\"j\" start=\"0\" end=\"1000\" incr=\"1\"><b/></for></for>"
                         "<c v=\"$(unclosed\"/></r>");
    RecordingDocument loops;
    loops.forCopyLimit = 100000;
    ASSERT_TRUE(loops.load(dir.file("for.xml").toLocal8Bit().constData(), "", true));
    ASSERT_GE(loops.messages.size(), 2);
    EXPECT_EQ(loops.messages.first(), "XmlPP::processConditionals(): <for index=\"i\"> would copy "
                                      "4000000000 elements, more than the 100000 allowed");
    int copies = 0;
    for (XMLNode *child = loops.root->firstChild; child; child = child->nextSibling)
        ++copies;
    EXPECT_EQ(copies, 99 * 1000 + 1);
    EXPECT_EQ(loops.messages.size(),
              1 + (200 - 99)); // 99 inner loops fit beside the outer copies
}
