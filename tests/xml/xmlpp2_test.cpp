#include "support/testsupport.h"
#include "xml/describe.h"
#include "xml/xmlpp2.h"

#include <gtest/gtest.h>

namespace {

// A preprocessed document that keeps the messages it is given.
class RecordingDocument : public XMLPP2
{
public:
    void error(const QString &message) override { messages << message; }
    QStringList messages;
};

const QString prefix = "XmlPP::processConditionals(): ";

struct DirectiveCase
{
    const char *input;
    const char *macros;
    bool expand;
    const char *tree;
    const char *message; // the one message expected, or null for none
};

} // namespace

TEST(XMLPP2, EvaluatesDirectives)
{
    const DirectiveCase cases[] = {
        // if / ifnot: one name, a list of alternatives; defines are looked up before macros.
        {"<r><define name=\"x\" value=\"1\"/><a/><if x=\"1\"><b/><c/></if><d/></r>", "", false,
         "r(a,b,c,d)", nullptr},
        {"<r><if x=\"1\" y=\"2\"><b/></if></r>", "", false, "r(if{x=1,y=2}(b))",
         "one condition required for <if[not]>"},
        {"<r><if x=\"a,,b\"><y/></if><ifnot x=\"c\"><z/></ifnot></r>", "x=b", false, "r(y,z)",
         nullptr},
        {"<r><if nope=\"1\"><a/></if><ifnot nope=\"1\"><b/></ifnot></r>", "", false, "r(b)",
         nullptr},
        {"<r><define name=\"x\" value=\"2\"/><if x=\"2\"><a/></if></r>", "x=1", false, "r(a)",
         nullptr},
        // ifdef / ifndef, nested.
        {"<r><ifdef name=\"x\"/></r>", "x=1", false, "r", nullptr},
        {"<r><ifndef name=\"x\"><a/></ifndef><ifdef name=\"x\"><b/></ifdef></r>", "", false, "r(a)",
         nullptr},
        {"<r><ifdef name=\"x\"><ifdef name=\"y\"><a/></ifdef><b/></ifdef></r>", "x;y=1", false,
         "r(a,b)", nullptr},
        // switch: the first matching case, else the last default; defines in any branch count.
        {"<r><switch name=\"x\"><case value=\"1,2\"><a/></case><default><d/></default>"
         "<case value=\"2\"><define name=\"z\" value=\"1\"/></case></switch>"
         "<ifdef name=\"z\"><zz/></ifdef></r>",
         "x=2", false, "r(a,zz)", nullptr},
        {"<r><switch name=\"x\"><case value=\"1\"><a/></case><default><d1/></default>"
         "<default><d2/></default></switch></r>",
         "x=9", false, "r(d2)", nullptr},
        {"<r><switch name=\"x\"><case value=\"1\"><a/></case></switch><b/></r>", "", false, "r(b)",
         nullptr},
        // define
        {"<r><define name=\"x\"/><a/></r>", "", false, "r(a)",
         "missing name and/or value in <define>"},
        // for: five macros per pass, add and mul expanded first.
        {"<r><for index=\"i\" start=\"0\" end=\"3\" incr=\"1\"><a n=\"$(i)\"/></for></r>", "",
         false, "r(a{n=0},a{n=1},a{n=2})", nullptr},
        {"<r><for index=\"k\" start=\"1\" end=\"0x3\" incr=\"1\" mul=\"0x10\" add=\"$(base)\">"
         "<a v=\"$(k)\" al=\"$(k_alpha)\" h=\"$(k_hex)\" p=\"$(k_ap)\" ph=\"$(k_ap_hex)\" "
         "o=\"$(other)\"><b w=\"$(k)\"/>text</a><![CDATA[stop]]><not_copied/></for></r>",
         "base=0xf0", false,
         "r(a{v=1,al=B,h=0x1,p=256,ph=0x100,o=$(other)}(b{w=1}),"
         "a{v=2,al=C,h=0x2,p=272,ph=0x110,o=$(other)}(b{w=2}))",
         nullptr},
        {"<r><for index=\"i\" start=\"10\" end=\"16\" incr=\"4\"><a n=\"$(i_hex)\"/></for></r>", "",
         false, "r(a{n=0xA},a{n=0xE})", nullptr},
        {"<r><for index=\"i\" start=\"0\" end=\"0\" incr=\"1\"><a/></for></r>", "", false, "r",
         nullptr},
        {"<r><for index=\"i\" start=\"0\" end=\"2\" incr=\"1\"><if x=\"1\"><a n=\"$(i)\"/></if>"
         "</for></r>",
         "x=1", false, "r(a{n=0},a{n=1})", nullptr},
        {"<r><for index=\"i\" start=\"0\" end=\"2\"><a/></for><b/></r>", "", false, "r(b)",
         "<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">"},
        {"<r><for index=\"i\" start=\"0\" end=\"2\" incr=\"1\"/></r>", "", false, "r",
         "<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">"},
        {"<r><for index=\"i\" start=\"0\" end=\"2\" incr=\"0\"><a/></for></r>", "", false, "r",
         "<for index=\"i\"> with incr=\"0\" would never end"},
        // Nodes that aren't elements are passed over; directives work at the top too.
        {"<r><![CDATA[x]]><ifdef name=\"x\"><a/></ifdef></r>", "", false, "r([x])", nullptr},
        {"<ifdef name=\"x\"><a/></ifdef>", "x=1", false, "a", nullptr},
        {"<ifdef name=\"x\"><a/></ifdef>", "", false, "null", nullptr},
        // Expansion of attributes, before the directive reads them.
        {"<r v=\"$(x)\" e=\"$(empty)\"><if c=\"$(x)\"><a/></if></r>", "x=1;c=1;empty=", true,
         "r{v=1,e=}(a)", nullptr},
        {"<r v=\"$(x)\"/>", "x=1", false, "r{v=$(x)}", nullptr},
    };
    for (const DirectiveCase &c : cases) {
        SCOPED_TRACE(c.input);
        ScratchDir dir;
        const QByteArray file = dir.write("in.xml", c.input).toLocal8Bit();
        RecordingDocument document;
        ASSERT_TRUE(document.load(file.constData(), c.macros, c.expand));
        EXPECT_EQ(describe(document.root), c.tree);
        EXPECT_EQ(document.messages, c.message ? QStringList{prefix + c.message} : QStringList{});
        if (document.root)
            EXPECT_EQ(document.root->parent, nullptr);
    }
}

TEST(XMLPP2, IncludesRelativeToTheIncludingFile)
{
    ScratchDir dir;
    dir.write("main.xml",
              "<?xml version=\"1.0\"?><!DOCTYPE main><r>"
              "<include filename=\"sub/inc.xml\"/>"
              "<ifdef name=\"fromInc\"><seen/></ifdef>"
              "<include filename=\"sub/m.xml\" macros=\"a=1;&#xa;b=2\" expand_macros=\"1\"/>"
              "<include filename=\"sub/m.xml\" no_root=\"1\"/>"
              "</r>");
    dir.write("sub/inc.xml", "<?xml version=\"2.0\"?><!DOCTYPE inc>"
                             "<inc><define name=\"fromInc\" value=\"1\"/>"
                             "<include filename=\"deeper.xml\" no_root=\"1\"/></inc>");
    dir.write("sub/deeper.xml", "<d><x/><y/></d>");
    dir.write("sub/m.xml", "<m v=\"$(a)$(b)\"><if a=\"1\"><ok w=\"$(b)\"/></if><plain/></m>");

    RecordingDocument document;
    ASSERT_TRUE(document.load(dir.file("main.xml").toLocal8Bit().constData(), "", false));
    EXPECT_EQ(describe(document.root), "r(inc(x,y),seen,m{v=12}(ok{w=2},plain),plain)");
    EXPECT_EQ(document.messages, QStringList{});
    EXPECT_STREQ(document.docType, "main"); // the prolog stays that of the top file
    EXPECT_STREQ(document.version, "1.0");

    // An include as the root element is replaced by the included root.
    dir.write("top.xml", "<include filename=\"sub/deeper.xml\"/>");
    RecordingDocument top;
    ASSERT_TRUE(top.load(dir.file("top.xml").toLocal8Bit().constData(), nullptr, false));
    EXPECT_EQ(describe(top.root), "d(x,y)");
}

TEST(XMLPP2, ReportsIncludesThatFail)
{
    ScratchDir dir;
    dir.write("bad.xml", "<b>\n<c x='1'/></b>");
    dir.write("empty.xml", "");
    dir.write("main.xml", "<r><include/><include filename=\"missing.xml\"><kept/></include>"
                          "<include filename=\"bad.xml\" no_root=\"1\"><kept/></include>"
                          "<include filename=\"empty.xml\"/></r>");
    RecordingDocument document;
    ASSERT_TRUE(document.load(dir.file("main.xml").toLocal8Bit().constData(), "", false));
    EXPECT_EQ(describe(document.root), "r(include,include{filename=missing.xml}(kept),kept)");
    const QString missing = dir.path() + "/missing.xml";
    EXPECT_EQ(document.messages, (QStringList{prefix + "missing filename in <include>",
                                              prefix + "error \"couldn't read " + missing +
                                                  "\" in include file " + missing + " line:0",
                                              prefix + "error \"bad tagName\" in include file " +
                                                  dir.path() + "/bad.xml line:1",
                                              prefix + "no root element in include file " +
                                                  dir.path() + "/empty.xml"}));

    // A syntax error in the top file stops before any processing.
    dir.write("broken.xml", "<r><define name=\"x\" value=\"1\"/></q>");
    RecordingDocument broken;
    EXPECT_FALSE(broken.load(dir.file("broken.xml").toLocal8Bit().constData(), "", false));
    EXPECT_STREQ(broken.errorMessage(), "tagName mismatch");
    EXPECT_TRUE(broken.defines.empty());
}
