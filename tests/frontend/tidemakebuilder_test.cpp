#include "foundation/qtx.h"
#include "frontend/tidemakebuilder.h"
#include "support/testsupport.h"
#include "toolchain/armbuildsystem.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <cstdlib>

namespace {

// What the builder prints, kept in memory.
struct Printed
{
    ~Printed()
    {
        std::fclose(file);
        std::free(buffer);
    }
    QString text()
    {
        std::fflush(file);
        return QString::fromLatin1(buffer, qsizetype(size));
    }

    char *buffer = nullptr;
    size_t size = 0;
    FILE *file = open_memstream(&buffer, &size);
};

void run(TidemakeBuilder &builder, const QStringList &command)
{
    builder.setCommand(command);
    builder.doit();
}

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
}

TEST(TidemakeBuilder, RunsProgramsAndBuiltInsAndRecordsFailures)
{
    ScratchDir dir;
    ARMBuildSystem host{QStringList()};
    buildSystem = &host;
    Printed out;
    TidemakeBuilder builder(true, false, out.file);
    builder.setOutputFiles({dir.file("a/x.o")});
    builder.setTemporaryFiles({dir.file("c/t.s")});
    EXPECT_TRUE(QFileInfo(dir.file("a")).isDir() && QFileInfo(dir.file("c")).isDir());
    dir.write("in.txt", "x");
    builder.setDirectory(dir.path());
    run(builder, {"cp", "in.txt", "out.txt"});
    run(builder, {"touch", "made"});
    EXPECT_EQ(dir.read("out.txt"), "x");
    EXPECT_TRUE(QFile::exists(dir.file("made")));
    EXPECT_FALSE(builder.failed() || host.errorOccurred);
    // A tool that fails has said why; a built-in's failure and a program that can't be started
    // are told. The command as a built-in rewrote it is the one that runs.
    run(builder, {"false"});
    EXPECT_TRUE(builder.failed() && host.errorOccurred);
    run(builder, {"rm", "none.txt"});
    run(builder, {"xmlcp", "a"});
    EXPECT_EQ(out.text(), "cp in.txt out.txt\ntouch made\nfalse\nrm none.txt\n"
                          "rm failed: can't remove \"" +
                              dir.file("none.txt") +
                              "\" writable\nxmlcp a\ncan't execute command \"" +
                              QTx::rootDirectory() + "/bin/xmlcp\"\n");

    // Shown, nothing runs, not even a built-in.
    Printed shown;
    TidemakeBuilder show(true, true, shown.file);
    run(show, {"rm", dir.file("in.txt")});
    run(show, {"touch", dir.file("shown")});
    EXPECT_EQ(shown.text(), "rm " + dir.file("in.txt") + "\ntouch " + dir.file("shown") + "\n");
    EXPECT_TRUE(QFile::exists(dir.file("in.txt")));
    EXPECT_FALSE(QFile::exists(dir.file("shown")) || show.failed());
}
