#include "frontend/builderhost.h"
#include "frontend/tidemakebuilder.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QFile>

#include <cstdio>

namespace {

// Collects what the builder prints through a temporary file.
class Printed
{
public:
    Printed() : file(std::tmpfile()) {}
    ~Printed() { std::fclose(file); }

    QString text()
    {
        std::fflush(file);
        std::rewind(file);
        QByteArray bytes;
        char buffer[256];
        size_t count;
        while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0)
            bytes.append(buffer, qsizetype(count));
        return QString::fromLatin1(bytes);
    }

    FILE *file;
};

// A build system stand-in with one built-in command, "builtin", that fails when given "bad",
// and one alias, "alias", that stands for "touch".
class FakeHost : public BuilderHost
{
public:
    FakeHost() { setBuilderHost(this); }
    ~FakeHost() override { setBuilderHost(nullptr); }

    bool builtinCommand(const QString &directory, QStringList &command, QString &message) override
    {
        if (command.value(0) == "alias")
            command[0] = "touch";
        if (command.value(0) != "builtin")
            return false;
        builtins << directory + ":" + command.join(' ');
        if (command.contains("bad"))
            message = "builtin failed";
        return true;
    }
    void setErrorOccurred() override { ++errors; }
    void ensureDirExists(const QString &fileName) override { ensured << fileName; }

    QStringList builtins;
    QStringList ensured;
    int errors = 0;
};

} // namespace

TEST(TidemakeBuilder, PrintsLinesAtTheDepthOfGroups)
{
    Printed out;
    TidemakeBuilder builder(false, false, out.file);
    builder.message("top");
    builder.beginGroup(nullptr, "outer", false);
    builder.beginGroup(nullptr, "inner", true);
    builder.note(QString("a\tb\nc") + QChar(0x263A) + QChar(0x7F) + "d");
    builder.endGroup(nullptr);
    builder.success("done");
    builder.endGroup(nullptr);
    builder.endGroup(nullptr);
    builder.error("below zero");
    EXPECT_EQ(out.text(), "top\n  outer\n    inner\n    abcd\n  done\nbelow zero\n");
    EXPECT_EQ(builder.indent, -2);
}

TEST(TidemakeBuilder, ShowPrintsAndRunsNothing)
{
    ScratchDir dir;
    FakeHost host;
    Printed out;
    TidemakeBuilder builder(true, true, out.file);
    builder.setCommand({"touch", dir.file("made")});
    builder.doit();
    builder.setCommand({"builtin", "two words"});
    builder.doit();
    EXPECT_EQ(out.text(), "touch " + dir.file("made") + "\nbuiltin two words\n");
    EXPECT_FALSE(QFile::exists(dir.file("made")));
    EXPECT_TRUE(host.builtins.isEmpty());
    EXPECT_FALSE(builder.failed());
    EXPECT_EQ(host.errors, 0);
}

TEST(TidemakeBuilder, RunsCommandsAndRecordsFailures)
{
    ScratchDir dir;
    Printed out;
    TidemakeBuilder builder(false, false, out.file);
    builder.setDirectory(dir.path());
    builder.setCommand({"touch", "made"});
    builder.doit();
    EXPECT_TRUE(QFile::exists(dir.file("made")));
    EXPECT_FALSE(builder.failed());

    builder.init();
    EXPECT_TRUE(builder.directory.isNull());
    EXPECT_TRUE(builder.command.isEmpty());
    builder.setCommand({"sh", "-c", "exit 1"});
    builder.doit();
    EXPECT_EQ(out.text(), "");
    EXPECT_TRUE(builder.failed());

    TidemakeBuilder other(false, false, out.file);
    other.setCommand({"no-such-program-here"});
    other.doit();
    EXPECT_EQ(out.text(), "can't execute command \"no-such-program-here\"\n");
    EXPECT_TRUE(other.failed());
}

TEST(TidemakeBuilder, OffersCommandsToTheHostFirst)
{
    FakeHost host;
    Printed out;
    TidemakeBuilder builder(true, false, out.file);
    builder.setOutputFiles({"a/x.o", "b/y.o"});
    builder.setTemporaryFiles({"c/t.s"});
    EXPECT_EQ(host.ensured, QStringList({"a/x.o", "b/y.o", "c/t.s"}));

    builder.setDirectory("/d");
    builder.setCommand({"builtin", "ok"});
    builder.doit();
    EXPECT_EQ(host.errors, 0);
    builder.setCommand({"builtin", "bad"});
    builder.doit();
    EXPECT_EQ(host.builtins, QStringList({"/d:builtin ok", "/d:builtin bad"}));
    EXPECT_EQ(out.text(), "builtin ok\nbuiltin bad\nbuiltin failed\n");
    EXPECT_EQ(host.errors, 1);
    EXPECT_TRUE(builder.failed());

    // A rewritten command is the one that runs.
    ScratchDir dir;
    builder.setDirectory(dir.path());
    builder.setCommand({"alias", "made"});
    builder.doit();
    EXPECT_TRUE(QFile::exists(dir.file("made")));
    EXPECT_EQ(host.errors, 1);
}

TEST(Builder, CommandLineQuotesWordsWithSpaces)
{
    EXPECT_EQ(Builder::commandLine({"/bin/my tool", "-o", "a b.o", "x\"y"}),
              "\"/bin/my tool\" -o \"a b.o\" x\"y");
    EXPECT_EQ(Builder::commandLine({"cc"}), "cc");
}
