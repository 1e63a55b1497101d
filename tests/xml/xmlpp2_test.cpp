#include "support/testsupport.h"
#include "xml/xmltesting.h"

#include <gtest/gtest.h>

TEST(XMLPP2, EvaluatesDirectives)
{
    // Input, macros, whether attributes are expanded, the tree, and the messages expected.
    const std::tuple<const char *, const char *, bool, const char *, const char *> cases[] = {
        // if / ifnot: one name, a list of alternatives; defines are looked up before macros.
        {"<r><define name=\"x\" value=\"2\"/><a/><if x=\"2\"><b/><c/></if><d/>"
         "<if y=\"a,,b\"><e/></if><ifnot y=\"c\"><f/></ifnot><ifnot nope=\"1\"><g/></ifnot></r>",
         "x=1;y=b", false, "r(a,b,c,d,e,f,g)", ""},
        // ifdef / ifndef, nested; a name without a value is defined; other nodes pass.
        {"<r><![CDATA[x]]><ifdef name=\"x\"/><ifndef name=\"z\"><a/></ifndef><ifdef name=\"z\">"
         "<n/></ifdef><ifdef name=\"x\"><ifdef name=\"y\"><b/></ifdef><c/></ifdef></r>",
         "x;y=1", false, "r([x],a,b,c)", ""},
        // switch: the first matching case, else the last default; defines in any branch count.
        {"<r><switch name=\"x\"><case value=\"1,2\"><a/></case><default><d/></default>"
         "<case value=\"2\"><define name=\"z\" value=\"1\"/></case></switch>"
         "<ifdef name=\"z\"><zz/></ifdef><switch name=\"y\"><case value=\"1\"><b/></case>"
         "<default><d1/></default><default><d2/></default></switch>"
         "<switch name=\"w\"><case value=\"1\"><c/></case></switch></r>",
         "x=2;y=9", false, "r(a,zz,d2)", ""},
        // for: five macros per pass, add and mul expanded first; copying stops at the first
        // node that isn't an element.
        {"<r><for index=\"k\" start=\"1\" end=\"0x3\" incr=\"1\" mul=\"0x10\" add=\"$(base)\">"
         "<a v=\"$(k)\" al=\"$(k_alpha)\" h=\"$(k_hex)\" p=\"$(k_ap)\" ph=\"$(k_ap_hex)\" "
         "o=\"$(other)\"><b w=\"$(k)\"/>text</a><![CDATA[stop]]><not_copied/></for></r>",
         "base=0xf0", false,
         "r(a{v=1,al=B,h=0x1,p=256,ph=0x100,o=$(other)}(b{w=1}),"
         "a{v=2,al=C,h=0x2,p=272,ph=0x110,o=$(other)}(b{w=2}))",
         ""},
        {"<r><for index=\"i\" start=\"10\" end=\"16\" incr=\"4\"><a n=\"$(i_hex)\"/></for>"
         "<for index=\"i\" start=\"0\" end=\"0\" incr=\"1\"><b/></for><for index=\"i\" "
         "start=\"0\" end=\"2\" incr=\"1\"><if x=\"1\"><c n=\"$(i)\"/></if></for></r>",
         "x=1", false, "r(a{n=0xA},a{n=0xE},c{n=0},c{n=1})", ""},
        // Malformed directives are reported and dropped, except an if, which stays as it is.
        {"<r><if x=\"1\" y=\"2\"><b/></if><define name=\"x\"/><a/><for index=\"i\" start=\"0\" "
         "end=\"2\"><a/></for><for index=\"i\" start=\"0\" end=\"2\" incr=\"1\"/>"
         "<for index=\"i\" start=\"0\" end=\"2\" incr=\"0\"><a/></for></r>",
         "", false, "r(if{x=1,y=2}(b),a)",
         "one condition required for <if[not]>\nmissing name and/or value in <define>\n"
         "<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">\n"
         "<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">\n"
         "<for index=\"i\"> with incr=\"0\" would never end"},
        // Directives work at the top too; an include there is replaced by the included root.
        {"<ifdef name=\"x\"><a/></ifdef>", "x=1", false, "a", ""},
        {"<ifdef name=\"x\"><a/></ifdef>", "", false, "null", ""},
        {"<include filename=\"sub/d.xml\"/>", nullptr, false, "d(x,y)", ""},
        // Attributes are expanded only when asked, and before a directive reads them.
        {"<r v=\"$(x)\" e=\"$(empty)\"><if c=\"$(x)\"><a/></if></r>", "x=1;c=1;empty=", true,
         "r{v=1,e=}(a)", ""},
    };
    ScratchDir dir;
    dir.write("sub/d.xml", "<d><x/><y/></d>");
    for (const auto &[input, macros, expand, tree, messages] : cases) {
        SCOPED_TRACE(input);
        RecordingDocument document;
        ASSERT_TRUE(document.load(dir.write("in.xml", input), macros, expand));
        EXPECT_EQ(describe(document.root), tree);
        EXPECT_EQ(document.messages.join('\n'), messages);
        EXPECT_TRUE(!document.root || !document.root->parent);
    }
}

TEST(XMLPP2, IncludesRelativeToTheIncludingFileOrReportsWhyNot)
{
    ScratchDir dir;
    dir.write("sub/inc.xml", "<?xml version=\"2.0\"?><!DOCTYPE inc>"
                             "<inc><define name=\"fromInc\" value=\"1\"/>"
                             "<include filename=\"deeper.xml\" no_root=\"1\"/></inc>");
    dir.write("sub/deeper.xml", "<d><x/><y/></d>");
    dir.write("sub/m.xml", "<m v=\"$(a)$(b)\"><if a=\"1\"><ok w=\"$(b)\"/></if><plain/></m>");
    dir.write("bad.xml", "<b>\n<c x='1'/></b>");
    dir.write("empty.xml", "");
    RecordingDocument document;
    ASSERT_TRUE(document.load(dir.write(
        "main.xml", "<?xml version=\"1.0\"?><!DOCTYPE main><r>"
                    "<include filename=\"sub/inc.xml\"/><ifdef name=\"fromInc\"><seen/></ifdef>"
                    "<include filename=\"sub/m.xml\" macros=\"a=1;&#xa;b=2\" expand_macros=\"1\"/>"
                    "<include filename=\"sub/m.xml\" no_root=\"1\"/>"
                    "<include/><include filename=\"missing.xml\"><kept/></include>"
                    "<include filename=\"bad.xml\" no_root=\"1\"><kept/></include>"
                    "<include filename=\"empty.xml\"/></r>")));
    EXPECT_EQ(describe(document.root), "r(inc(x,y),seen,m{v=12}(ok{w=2},plain),plain,"
                                       "include,include{filename=missing.xml}(kept),kept)");
    EXPECT_STREQ(document.docType, "main"); // the prolog stays that of the top file
    const QString missing = dir.path() + "/missing.xml";
    EXPECT_EQ(document.messages,
              (QStringList{
                  "missing filename in <include>",
                  "error \"couldn't read " + missing + "\" in include file " + missing + " line:0",
                  "error \"bad tagName\" in include file " + dir.path() + "/bad.xml line:1",
                  "no root element in include file " + dir.path() + "/empty.xml"}));

    // A syntax error in the top file stops before any processing.
    RecordingDocument broken;
    EXPECT_FALSE(broken.load(dir.write("broken.xml", "<r><define name=\"x\" value=\"1\"/></q>")));
    EXPECT_TRUE(broken.defines.empty());
}
