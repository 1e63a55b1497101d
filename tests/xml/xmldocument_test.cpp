#include "support/testsupport.h"
#include "xml/pool.h"
#include "xml/xmltesting.h"

#include <gtest/gtest.h>

TEST(XMLParser, AcceptsAndRefusesAsTheFormatsExpect)
{
    // The tree described on success; on failure "!", the error text and its line, and no tree.
    const std::tuple<const char *, bool, const char *> cases[] = {
        // Names are letters, digits and underscores; values stand in double quotes only.
        {"<a b='1'/>", false, "!bad tagName line 0"},
        {"<a\n b:c=\"1\"/>", false, "!bad tagName line 1"},
        // Closing tags: a prefix of the open name passes, anything else is a mismatch.
        {"</x><abc><b></></ab>", false, "abc(b)"},
        {"<a v=\"\n\n\"><b></c>", false, "!tagName mismatch line 2"},
        // Empty and cut-off documents succeed without a root; the last top element wins.
        {" \n\t ", false, "null"},
        {"<a><b/></a", false, "null"},
        {"<a/>junk<b/>", false, "b"},
        {"junk<a/>", false, "null"},
        // Attributes: first place, last value, none without a value; references decoded,
        // unknown ones kept.
        {"<a flag x = \"1\" _y=\"2\" x=\"3\" v=\"&apos;&amp\" u=\"x&#;y\" t=\"&#x;\" s=\"1\r\n2\" "
         "w=\"&lt;&gt;&quot;&amp;&#65;&#x42;&#321;\"/>",
         false, "a{x=3,_y=2,v=&apos;&amp,u=x,t=,s=1\r\n2,w=<>\"&ABA}"},
        // Text, comments and CDATA; text and comments only when asked for.
        {"<a>text<!-- c --><![CDATA[x<y]]></a>", false, "a([x<y])"},
        {"<a>x&amp;\r\ny<!-- a - b -- c --><!-- x ---> --> <b/></a>", true,
         "a(\"x&\ny\",! a - b -- c ,! x ---> ,\" \",b)"},
        {"<a><!-- never closed </a>", true, "null"},
        {"<?pi stuff?><!-- c --><!DOCTYPE x SYSTEM \"y\"><a/>", false, "a"},
    };
    for (const auto &[input, keepText, expected] : cases) {
        XMLDocument document(keepText);
        const std::string result = document.loadFromString(input)
                                       ? describe(document.root)
                                       : "!" + std::string(document.error) + " line " +
                                             std::to_string(document.errorLine) +
                                             (document.root ? " and a tree" : "");
        EXPECT_EQ(result, expected) << input;
    }
}

TEST(XMLDocument, ReadsThePrologAndWritesTheTreeBack)
{
    ScratchDir dir;
    XMLDocument document;
    ASSERT_TRUE(document.loadFromString("<?xml version=\"1.0\" encoding=\"UTF-8\"?><!DOCTYPE x>"
                                        "<a v=\"1&#xa;\xe9&amp;&lt;&gt;&quot;\">"
                                        "<b/><c><d e=\"\"/></c></a>"));
    ASSERT_TRUE(document.save(dir.file("indented.xml").toLocal8Bit(), 2));
    EXPECT_EQ(dir.read("indented.xml"),
              QByteArray("<?xml  version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE x>\n"
                         "<a v=\"1&#xa;&#xffffffe9;&amp;&lt;&gt;&quot;\">\n"
                         "  <b/>\n  <c>\n    <d e=\"\"/>\n  </c>\n</a>\n"));
    XMLDocument reread;
    ASSERT_TRUE(reread.load(dir.file("indented.xml").toLocal8Bit()));
    EXPECT_EQ(describe(reread.root), "a{v=1\n\xe9&<>\"}(b,c(d{e=}))");

    // Without indentation there are no newlines; text nodes are written as well, and a null
    // value as an empty one.
    XMLDocument text(true);
    ASSERT_TRUE(text.loadFromString("<a>x<!--c--><![CDATA[<d>]]><b n=\"1\"/></a>"));
    static_cast<XMLElement *>(text.root)->setAttribute("z", nullptr);
    ASSERT_TRUE(text.save(dir.file("flat.xml").toLocal8Bit(), 0));
    EXPECT_EQ(dir.read("flat.xml"), "<a z=\"\">x<!--c--><![CDATA[<d>]]><b n=\"1\"/></a>");
}

TEST(XMLDocument, ReportsFileErrorsAndTellsTheDocumentType)
{
    ScratchDir dir;
    XMLDocument document;
    const QByteArray missing = dir.file("missing.xml").toLocal8Bit();
    EXPECT_FALSE(document.load(missing));
    EXPECT_EQ(QByteArray(document.error), "couldn't read " + missing);
    const QByteArray unwritable = dir.file("no/such/dir/x.xml").toLocal8Bit();
    EXPECT_FALSE(document.save(unwritable, 0));
    EXPECT_EQ(QByteArray(document.error), "couldn't write " + unwritable);
    // A name longer than the message buffer is cut to fit.
    EXPECT_FALSE(document.load(dir.file(QString(3000, 'n')).toLocal8Bit()));
    EXPECT_EQ(strlen(document.error), sizeof document.error - 1);
    // A NUL byte ends the text the reader sees.
    ASSERT_TRUE(document.load(dir.write("nul.xml", QByteArray("<a/>\0<b/>", 9)).toLocal8Bit()));
    EXPECT_EQ(describe(document.root), "a");

    // The document type comes first, within the first 1024 bytes.
    const std::pair<QByteArray, const char *> cases[] = {
        {"<?xml version=\"1.0\"?>\n<!DOCTYPE  Memory_Map>\n", "Memory_Map"},
        {"<!DOCTYPE x SYSTEM \"y\">", "x"},
        {"<!-- c --><!DOCTYPE x>", nullptr},
        {"<!DOCTYPE abc", nullptr},
        {QByteArray(1020, ' ') + "<!DOCTYPE x>", nullptr},
    };
    for (const auto &[contents, type] : cases)
        EXPECT_STREQ(XMLDocument::xmlDocumentType(dir.write("t.xml", contents).toLocal8Bit()),
                     type);
    EXPECT_EQ(XMLDocument::xmlDocumentType(dir.file("missing").toLocal8Bit()), nullptr);
}

TEST(XMLNode, EditsChildrenAndAttributesInItsPool)
{
    // An element that counts its destructions, to see that the pool runs them.
    struct CountingElement : XMLElement
    {
        explicit CountingElement(int *count) : count(count) {}
        ~CountingElement() override { ++*count; }
        int *count;
    };
    Pool pool;
    CurrentPoolScope scope(&pool);
    char *first = static_cast<char *>(pool.allocate(3));
    EXPECT_EQ(static_cast<char *>(pool.allocate(1)) - first, 8) << "aligned to 8";
    XMLElement *parent = new XMLElement("p");
    XMLElement *a = new XMLElement("a"), *b = new XMLElement("b"), *c = new XMLElement("c");
    parent->appendChild(a);
    parent->appendChild(b);
    parent->removeChild(c); // not a child: nothing happens
    parent->removeChild(a);
    EXPECT_EQ(a->nextSibling, b) << "the removed child keeps its links";
    parent->replaceChild(b, c);
    parent->appendChild(a);
    parent->setAttribute("k", "1");
    parent->setAttribute("gone", "2");
    parent->setAttribute("k", "3");
    parent->removeAttribute("gone");
    EXPECT_EQ(describe(parent), "p{k=3}(c,a)");
    EXPECT_EQ(c->parent, parent);

    int destroyed = 0;
    new CountingElement(&destroyed);
    delete new CountingElement(&destroyed); // runs the destructor; the memory stays in the pool
    EXPECT_EQ(destroyed, 1);
    pool.clear();
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(pool.blocks, nullptr);
}
