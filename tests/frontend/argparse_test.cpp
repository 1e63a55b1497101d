#include "frontend/argparse.h"
#include "frontend/hreporter.h"
#include "frontend/tidemakeargparse.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <list>
#include <sstream>
#include <string>
#include <vector>

namespace {

// A parser with one option of each kind, recording what reaches it.
class RecordingParse : public ArgParse
{
public:
    RecordingParse() : ArgParse(&reporter)
    {
        addFlag("-f", &flag);
        addHandler("-o", 1, static_cast<OptionHandler>(&RecordingParse::onValue));
        addHandler("-I", 2, static_cast<OptionHandler>(&RecordingParse::onValue));
        addHandler("-Inc", 2, static_cast<OptionHandler>(&RecordingParse::onValue));
        Option stored;
        stored.kind = 1;
        stored.result = &storedValue;
        options["-r"] = stored;
    }

    void onArgument(const char *argument) override { arguments.push_back(argument); }
    void onValue(const char *option, const char *value)
    {
        values.push_back(std::string(option) + "=" + (value ? value : "(null)"));
    }

    // Splits `line` and returns the words as strings.
    std::vector<std::string> argify(const char *line, const char *fileName = nullptr)
    {
        char *argv[maxWords];
        const int count = argifyLine(fileName, 7, line, argv);
        return std::vector<std::string>(argv, argv + count);
    }

    // Parses `words` as a command line; they live as long as the parser, as argv would.
    void parseWords(const std::vector<std::string> &words)
    {
        std::vector<char *> argv;
        for (const std::string &word : words)
            argv.push_back(commandLine.emplace_back(word).data());
        parse(int(argv.size()), argv.data());
    }

    std::ostringstream messages;
    HReporter reporter{"prog", &messages};
    bool flag = false;
    const char *storedValue = nullptr;
    std::vector<std::string> arguments;
    std::vector<std::string> values;
    std::list<std::string> commandLine;
};

std::string repeated(const std::string &word, int times)
{
    std::string line;
    for (int i = 0; i < times; ++i)
        line += word + " ";
    return line;
}

} // namespace

TEST(ArgifyLine, SplitsOnSpacesAndQuotes)
{
    RecordingParse p;
    using Words = std::vector<std::string>;
    EXPECT_EQ(p.argify("  a\tb  c\n d"), (Words{"a\tb", "c"}));
    EXPECT_EQ(p.argify("\"x y\" \"\" \"a\"b c\"d"), (Words{"x y", "", "a", "b", "c\"d"}));
    EXPECT_EQ(p.argify(""), Words{});
    EXPECT_EQ(p.argify("# not a comment here"), (Words{"#", "not", "a", "comment", "here"}));
    EXPECT_EQ(p.reporter.errors, 0);

    EXPECT_EQ(p.argify("a \"open"), Words{});
    EXPECT_EQ(p.argify("a \"open\n\"", "file.txt"), Words{});
    EXPECT_EQ(p.messages.str(), "prog: unterminated string in command line\n"
                                "prog: unterminated string in indirect file file.txt(7)\n");
    EXPECT_EQ(p.reporter.errors, 2);
}

TEST(ArgifyLine, StopsAtTheWordLimit)
{
    RecordingParse p;
    EXPECT_EQ(p.argify(repeated("w", 256).c_str()).size(), 256u);
    EXPECT_EQ(p.reporter.errors, 0);
    EXPECT_TRUE(p.argify(repeated("w", 257).c_str(), "many").empty());
    EXPECT_EQ(p.messages.str(), "prog: too many words in indirect file many(7)\n");
}

TEST(ArgParse, AppliesEachKindOfOption)
{
    RecordingParse p;
    p.parseWords({"-f", "-o", "out", "-I", "-Incx", "-Iy", "-r", "kept", "file", "-z", "-o"});
    EXPECT_TRUE(p.flag);
    EXPECT_STREQ(p.storedValue, "kept");
    // "-Incx" matches the greater key "-Inc" first; an exact "-I" has an empty value.
    EXPECT_EQ(p.values, (std::vector<std::string>{"-o=out", "-I=", "-Inc=x", "-I=y"}));
    EXPECT_EQ(p.arguments, std::vector<std::string>{"file"});
    EXPECT_EQ(p.messages.str(),
              "prog: unrecognised option -z\nprog: expected argument for option -o\n");
    EXPECT_EQ(p.reporter.errors, 2);
}

TEST(ArgParse, MissingValueStopsOnlyItsOwnLine)
{
    ScratchDir dir;
    const QString file = dir.write("args", "a -o\n-f b\n");
    RecordingParse p;
    p.parse(("@" + file.toStdString() + " c").c_str());
    EXPECT_TRUE(p.flag);
    EXPECT_TRUE(p.values.empty());
    EXPECT_EQ(p.arguments, (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(p.messages.str(), "prog: expected argument for option -o\n");
}

TEST(ArgParse, IndirectFilesNestCommentAndQuote)
{
    ScratchDir dir;
    const std::string inner = dir.write("inner", "# -f\n \"two words\" in2\n").toStdString();
    const std::string outer =
        dir.write("outer", "out1 @" + QByteArray::fromStdString(inner) + "\n #x\nout2\n")
            .toStdString();
    RecordingParse p;
    p.parseWords({"first", "@" + outer, "last", "@" + dir.file("none").toStdString()});
    EXPECT_FALSE(p.flag);
    EXPECT_EQ(p.arguments, (std::vector<std::string>{"first", "out1", "two words", "in2", "#x",
                                                     "out2", "last"}));
    EXPECT_EQ(p.messages.str(), "prog: can't open indirect file " + dir.file("none").toStdString() +
                                    ": No such file or directory\n");
    EXPECT_EQ(p.indirectDepth, 0);
}

TEST(ArgParse, SelfIncludingFileStopsAtTheDepthLimit)
{
    ScratchDir dir;
    const QString file = dir.file("self");
    dir.write("self", "x @" + file.toLocal8Bit() + "\n");
    RecordingParse p;
    p.parseWords({"@" + file.toStdString()});
    EXPECT_EQ(p.arguments.size(), 100u);
    EXPECT_EQ(p.messages.str(), "prog: too many indirect files\n");
    EXPECT_EQ(p.indirectDepth, 0);
}

TEST(ArgParse, LongAndOddLinesOfIndirectFiles)
{
    ScratchDir dir;
    QByteArray contents(1030, 'a');
    contents += "\n";
    contents += QByteArray("n\0ul b\n", 7);
    contents += QByteArray::fromStdString(repeated("w", 300)) + "\n";
    contents += QByteArray::fromStdString(repeated("abcdefg", 12500)) + "\n";
    contents += "end\n";
    const std::string file = dir.write("odd", contents).toStdString();
    RecordingParse p;
    p.parseWords({"@" + file});

    // Read through 1024 bytes: the first line comes in two pieces, the long one in many.
    ASSERT_GE(p.arguments.size(), 3u);
    EXPECT_EQ(p.arguments[0], std::string(1023, 'a'));
    EXPECT_EQ(p.arguments[1], "aaaaaaa");
    EXPECT_EQ(p.arguments[2], "n");
    EXPECT_EQ(p.arguments.back(), "end");
    EXPECT_GE(p.arguments.size(), 3u + 12500u);
    // The 300-word line is dropped as a whole and reported with its line number.
    EXPECT_EQ(p.messages.str(), "prog: too many words in indirect file " + file + "(4)\n");
    EXPECT_EQ(p.reporter.errors, 1);
}

TEST(TidemakeArgParse, CollectsTheCommandLine)
{
    std::ostringstream messages;
    HReporter reporter("tidemake", &messages);
    TidemakeArgParse p(&reporter);
    p.parse("-batch -clean -echo -show -rebuild -verbose a.hdp -config Debug b.hdp -project "
            "\"\" -BenchDir /opt/bench -DNAME");
    EXPECT_TRUE(p.batch && p.clean && p.echo && p.show && p.rebuild && p.verbose);
    EXPECT_EQ(p.hdpFile, "b.hdp");
    EXPECT_EQ(p.config, "Debug");
    EXPECT_TRUE(p.project.isEmpty());
    EXPECT_FALSE(p.project.isNull());
    EXPECT_TRUE(p.solution.isNull());
    EXPECT_EQ(p.benchDir, "/opt/bench");
    EXPECT_EQ(messages.str(), "tidemake: unrecognised option -DNAME\n");
}
