#include "frontend/tidemakebuilder.h"
#include "toolchain/armbuildsystem.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

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

// The build system with one built-in command, "builtin", that fails when given "bad", and one
// alias, "alias", that stands for "touch"; it is the process's build system while it lives.
class FakeBuildSystem : public ARMBuildSystem
{
public:
    FakeBuildSystem() : ARMBuildSystem(QStringList()) { buildSystem = this; }

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

    QStringList builtins;
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
    FakeBuildSystem host;
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
    EXPECT_FALSE(host.errorOccurred);
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

TEST(TidemakeBuilder, OffersCommandsToTheBuildSystemFirst)
{
    FakeBuildSystem host;
    Printed out;
    TidemakeBuilder builder(true, false, out.file);
    ScratchDir dir;
    builder.setOutputFiles({dir.file("a/x.o"), dir.file("b/y.o")});
    builder.setTemporaryFiles({dir.file("c/t.s")});
    for (const char *made : {"a", "b", "c"})
        EXPECT_TRUE(QFileInfo(dir.file(made)).isDir()) << made;

    builder.setDirectory("/d");
    builder.setCommand({"builtin", "ok"});
    builder.doit();
    EXPECT_FALSE(host.errorOccurred);
    builder.setCommand({"builtin", "bad"});
    builder.doit();
    EXPECT_EQ(host.builtins, QStringList({"/d:builtin ok", "/d:builtin bad"}));
    EXPECT_EQ(out.text(), "builtin ok\nbuiltin bad\nbuiltin failed\n");
    EXPECT_TRUE(host.errorOccurred);
    EXPECT_TRUE(builder.failed());

    // A rewritten command is the one that runs.
    builder.setDirectory(dir.path());
    builder.setCommand({"alias", "made"});
    builder.doit();
    EXPECT_TRUE(QFile::exists(dir.file("made")));
    EXPECT_TRUE(host.errorOccurred);
}

TEST(Builder, CommandLineQuotesWordsWithSpaces)
{
    EXPECT_EQ(Builder::commandLine({"/bin/my tool", "-o", "a b.o", "x\"y"}),
              "\"/bin/my tool\" -o \"a b.o\" x\"y");
    EXPECT_EQ(Builder::commandLine({"cc"}), "cc");
}
