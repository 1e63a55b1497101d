#include "frontend/argparse.h"
#include "frontend/hreporter.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

// A parser with the flag "-f" and "-o" taking the next word, that writes down what reaches it.
struct Parse : ArgParse
{
    Parse() : ArgParse(&reporter)
    {
        options["-f"].flag = &flag;
        options["-o"] = Option{1, false, nullptr, &next};
    }
    void onArgument(const char *argument) override { arguments.push_back(argument); }
    // The words of `line` as argifyLine splits them, on line 7 of `fileName`.
    Words argify(const char *line, const char *fileName = nullptr)
    {
        char *argv[maxWords];
        return Words(argv, argv + argifyLine(fileName, 7, line, argv));
    }

    std::ostringstream messages;
    HReporter reporter{"prog", &messages};
    Words arguments;
    bool flag = false;
    const char *next = nullptr;
};

} // namespace

TEST(ArgifyLine, SplitsOnSpacesAndQuotes)
{
    Parse p;
    EXPECT_EQ(p.argify("  a\tb  c\n d"), (Words{"a\tb", "c"}));
    EXPECT_EQ(p.argify("\"x y\" \"\" \"a\"b c\"d"), (Words{"x y", "", "a", "b", "c\"d"}));
    EXPECT_EQ(p.argify("# not a comment here"), (Words{"#", "not", "a", "comment", "here"}));

    EXPECT_EQ(p.argify("a \"open"), Words{});
    EXPECT_EQ(p.argify("a \"open\n\"", "file.txt"), Words{});
    EXPECT_EQ(p.messages.str(), "prog: unterminated string in command line\n"
                                "prog: unterminated string in indirect file file.txt(7)\n");
    EXPECT_EQ(p.reporter.errors, 2);
}

TEST(ArgParse, AppliesEachKindOfOption)
{
    Parse p;
    const char *joined = nullptr, *longer = nullptr;
    p.options["-I"] = Option{2, false, nullptr, &joined};
    p.options["-Inc"] = Option{2, false, nullptr, &longer};
    // "-Incx" matches the greater key "-Inc" first.
    p.parse("-f -o out -Incx -Iy file -z -o");
    EXPECT_TRUE(p.flag);
    EXPECT_STREQ(p.next, "out");
    EXPECT_STREQ(longer, "x");
    EXPECT_STREQ(joined, "y");
    EXPECT_EQ(p.arguments, Words{"file"});
    EXPECT_EQ(p.messages.str(),
              "prog: unrecognised option -z\nprog: expected argument for option -o\n");
    // An exact joined option has an empty value.
    p.parse("-I");
    EXPECT_STREQ(joined, "");
}

TEST(ArgParse, IndirectFilesNestCommentAndQuote)
{
    ScratchDir dir;
    const QString inner = dir.write("inner", "# -o x\n \"two words\" in2\n");
    dir.write("outer", "out1 @" + inner.toLocal8Bit() + "\n #x\nout2 -o\n-f\n");
    Parse p;
    p.parse(
        ("first @" + dir.file("outer") + " last @" + dir.file("none")).toLocal8Bit().constData());
    // A comment line is skipped; a missing value ends only its own line.
    EXPECT_EQ(p.next, nullptr);
    EXPECT_TRUE(p.flag);
    EXPECT_EQ(p.arguments, (Words{"first", "out1", "two words", "in2", "#x", "out2", "last"}));
    EXPECT_EQ(p.messages.str(), "prog: expected argument for option -o\n"
                                "prog: can't open indirect file " +
                                    dir.file("none").toStdString() +
                                    ": No such file or directory\n");
    EXPECT_EQ(p.indirectDepth, 0);
}
