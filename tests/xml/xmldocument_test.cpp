#include "support/testsupport.h"
#include "xml/describe.h"
#include "xml/xmldocument.h"
#include "xml/xmlelement.h"

#include <gtest/gtest.h>

namespace {

struct ParseCase
{
    const char *input;
    bool keepText;
    const char *tree;  // describe() of the root on success, null when the parse must fail
    const char *error; // the error text on failure
    int errorLine;
};

} // namespace

TEST(XMLParser, AcceptsAndRefusesAsTheFormatsExpect)
{
    const ParseCase cases[] = {
        // Names are letters, digits and underscores; values stand in double quotes only.
        {"<a b='1'/>", false, nullptr, "bad tagName", 0},
        {"<a-b/>", false, nullptr, "bad tagName", 0},
        {"<a:b/>", false, nullptr, "bad tagName", 0},
        {"<a\n b:c=\"1\"/>", false, nullptr, "bad tagName", 1},
        {"<a x=1/>", false, nullptr, "bad tagName", 0},
        {"<a flag x = \"1\" _y=\"2\" />", false, "a{x=1,_y=2}", nullptr, 0},
        // Closing tags: a prefix of the open name passes, anything else is a mismatch.
        {"<a>\n<b>\n</a></b>", false, nullptr, "tagName mismatch", 2},
        {"<a/b>", false, nullptr, "tagName mismatch", 0},
        {"<abc></ab>", false, "abc", nullptr, 0},
        {"<a><b></></>", false, "a(b)", nullptr, 0},
        {"</x><a/>", false, "a", nullptr, 0},
        {"<a v=\"\n\n\"><b></c>", false, nullptr, "tagName mismatch", 2},
        // Empty and cut-off documents succeed without a root; the last top element wins.
        {"", false, "null", nullptr, 0},
        {" \n\t ", false, "null", nullptr, 0},
        {"<a>", false, "null", nullptr, 0},
        {"<a><b/></a", false, "null", nullptr, 0},
        {"<a x=\"1", false, "null", nullptr, 0},
        {"<a/><b/>", false, "b", nullptr, 0},
        {"<a/>junk<b/>", false, "b", nullptr, 0},
        {"junk<a/>", false, "null", nullptr, 0},
        // Attributes: first place, last value; references decoded, unknown ones kept.
        {"<a x=\"1\" y=\"2\" x=\"3\"/>", false, "a{x=3,y=2}", nullptr, 0},
        {"<a v=\"&apos;&amp\"/>", false, "a{v=&apos;&amp}", nullptr, 0},
        {"<a v=\"&lt;&gt;&quot;&amp;&#65;&#x42;&#321;\"/>", false, "a{v=<>\"&ABA}", nullptr, 0},
        {"<a v=\"x&#;y\" w=\"&#x;\"/>", false, "a{v=x,w=}", nullptr, 0},
        {"<a v=\"1\r\n2\"/>", false, "a{v=1\r\n2}", nullptr, 0},
        // Text, comments and CDATA.
        {"<a>text<!-- c --></a>", false, "a", nullptr, 0},
        {"<a>text<![CDATA[x<y]]></a>", false, "a([x<y])", nullptr, 0},
        {"<a>x&amp;\r\ny<!-- a - b -- c --></a>", true, "a(\"x&\ny\",! a - b -- c )", nullptr, 0},
        {"<a><!-- x ---> --></a>", true, "a(! x ---> )", nullptr, 0},
        {"<a><!-- never closed </a>", true, "null", nullptr, 0},
        {"<a> <b/></a>", true, "a(\" \",b)", nullptr, 0},
        // Prolog: declarations and instructions are read or skipped.
        {"<?pi stuff?><!-- c --><a/>", false, "a", nullptr, 0},
        {"<!DOCTYPE x SYSTEM \"y\"><a/>", false, "a", nullptr, 0},
    };
    for (const ParseCase &c : cases) {
        SCOPED_TRACE(c.input);
        XMLDocument document(c.keepText);
        const bool ok = document.loadFromString(c.input);
        if (!c.tree) {
            EXPECT_FALSE(ok);
            EXPECT_STREQ(document.error, c.error);
            EXPECT_EQ(document.errorLine, c.errorLine);
            EXPECT_EQ(document.root, nullptr);
        } else {
            EXPECT_TRUE(ok);
            EXPECT_EQ(describe(document.root), c.tree);
        }
    }
}

TEST(XMLParser, ReadsTheProlog)
{
    XMLDocument document;
    ASSERT_TRUE(document.loadFromString(
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<!DOCTYPE hdp>\n<a/>"));
    EXPECT_STREQ(document.version, "1.0");
    EXPECT_STREQ(document.encoding, "UTF-8");
    EXPECT_STREQ(document.docType, "hdp");

    XMLDocument other;
    ASSERT_TRUE(other.loadFromString("<?xml version=\"1\"><!DOCTYPE x SYSTEM \"y\"><a/>"));
    EXPECT_STREQ(other.version, "1");
    EXPECT_EQ(other.docType, nullptr);
    EXPECT_EQ(describe(other.root), "a");
}

TEST(XMLWriter, WritesAndReadsBack)
{
    ScratchDir dir;
    XMLDocument document;
    ASSERT_TRUE(document.loadFromString("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
                                        "<!DOCTYPE x><a v=\"1&#xa;\xe9&amp;&lt;&gt;&quot;\">"
                                        "<b/><c><d e=\"\"/></c></a>"));
    const QString indented = dir.file("indented.xml");
    ASSERT_TRUE(document.save(indented.toLocal8Bit().constData(), 2));
    EXPECT_EQ(document.indentWidth, 2u);
    EXPECT_EQ(dir.read("indented.xml"),
              QByteArray("<?xml  version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE x>\n"
                         "<a v=\"1&#xa;&#xffffffe9;&amp;&lt;&gt;&quot;\">\n"
                         "  <b/>\n  <c>\n    <d e=\"\"/>\n  </c>\n</a>\n"));

    XMLDocument reread;
    ASSERT_TRUE(reread.load(indented.toLocal8Bit().constData()));
    EXPECT_EQ(describe(reread.root), "a{v=1\n\xe9&<>\"}(b,c(d{e=}))");

    // Without indentation there are no newlines; text nodes are written as well.
    XMLDocument text(true);
    ASSERT_TRUE(text.loadFromString("<a>x<!--c--><![CDATA[<d>]]><b n=\"1\"/></a>"));
    const QString flat = dir.file("flat.xml");
    ASSERT_TRUE(text.save(flat.toLocal8Bit().constData(), 0));
    EXPECT_EQ(dir.read("flat.xml"), QByteArray("<a>x<!--c--><![CDATA[<d>]]><b n=\"1\"/></a>"));

    // A null value is written as an empty one.
    static_cast<XMLElement *>(text.root)->setAttribute("z", nullptr);
    ASSERT_TRUE(text.save(flat.toLocal8Bit().constData(), 0));
    EXPECT_TRUE(dir.read("flat.xml").startsWith("<a z=\"\">"));
}

TEST(XMLDocument, ReportsFileErrors)
{
    ScratchDir dir;
    XMLDocument document;
    const QByteArray missing = dir.file("missing.xml").toLocal8Bit();
    EXPECT_FALSE(document.load(missing.constData()));
    EXPECT_EQ(QByteArray(document.error), "couldn't read " + missing);
    EXPECT_EQ(document.errorLine, 0);

    const QByteArray unwritable = dir.file("no/such/dir/x.xml").toLocal8Bit();
    EXPECT_FALSE(document.save(unwritable.constData(), 0));
    EXPECT_EQ(QByteArray(document.error), "couldn't write " + unwritable);

    // A name longer than the message buffer is cut to fit.
    const QByteArray longName = dir.file(QString(3000, 'n')).toLocal8Bit();
    EXPECT_FALSE(document.load(longName.constData()));
    EXPECT_EQ(strlen(document.error), sizeof document.error - 1);
}

TEST(XMLDocument, TellsTheDocumentTypeOfAFile)
{
    ScratchDir dir;
    auto typeOf = [&](const QByteArray &contents) -> std::string {
        const QString file = dir.write("t.xml", contents);
        const char *type = XMLDocument::xmlDocumentType(file.toLocal8Bit().constData());
        return type ? type : "(null)";
    };
    EXPECT_EQ(typeOf("<?xml version=\"1.0\"?>\n<!DOCTYPE  Board_Memory_Definition_File>\n"),
              "Board_Memory_Definition_File");
    EXPECT_EQ(typeOf("<!DOCTYPE x SYSTEM \"y\">"), "x");
    EXPECT_EQ(typeOf("<!-- c --><!DOCTYPE x>"), "(null)");
    EXPECT_EQ(typeOf("<!DOCTYPEx>"), "(null)");
    EXPECT_EQ(typeOf("<!DOCTYPE abc"), "(null)");
    EXPECT_EQ(typeOf("no markup"), "(null)");
    EXPECT_EQ(typeOf(""), "(null)");
    EXPECT_EQ(typeOf(QByteArray(1020, ' ') + "<!DOCTYPE x>"), "(null)");
    EXPECT_EQ(XMLDocument::xmlDocumentType(dir.file("missing").toLocal8Bit().constData()), nullptr);
}
