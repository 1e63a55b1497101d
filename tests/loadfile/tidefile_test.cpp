#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

const QByteArray usage =
    "usage: tidefile load [-type TYPE] [-address ADDRESS] FILE\n"
    "       tidefile load [-type TYPE] [-address ADDRESS] [-fill BYTE] -o OUT FILE\n"
    "       tidefile package FILE\n"
    "       tidefile package -x DIR FILE\n";

class TidefileTest : public ::testing::Test
{
protected:
    TidefileTest()
    {
        // Bytes 01 02 at 0x100, 03 at 0x104, start at 0x100.
        dir.write("app.srec", "S10501000102F6\nS104010403F3\nS9030100FB\n");
        dir.write("raw", "abcd");
    }
    RunResult load(const QStringList &arguments) { return runTidefile(arguments, dir.path()); }

    ScratchDir dir;
};

} // namespace

TEST_F(TidefileTest, SummarisesSectionsOrWritesTheContiguousImage)
{
    RunResult run = load({"load", "app.srec"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out + run.err, "type\tsrec\nentry\t0x00000100\nsection\t0x00000100\t0x00000002\n"
                                 "section\t0x00000104\t0x00000001\ntotal\t0x00000003\n");
    for (const char *address : {"16", "0x10", "0b10000", "020"})
        EXPECT_EQ(load({"load", "-type", "bin", "-address", address, "raw"}).out,
                  "type\tbin\nsection\t0x00000010\t0x00000004\ntotal\t0x00000004\n")
            << address;

    run = load({"load", "-o", "app.bin", "app.srec"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out + run.err, "");
    EXPECT_EQ(dir.read("app.bin"), QByteArray("\x01\x02\xFF\xFF\x03", 5));
    load({"load", "-fill", "0", "-o", "app.bin", "app.srec"});
    EXPECT_EQ(dir.read("app.bin"), QByteArray("\x01\x02\x00\x00\x03", 5));
}

TEST_F(TidefileTest, ReaderErrorsLeaveTheOutputAlone)
{
    dir.write("out.bin", "old");
    dir.write("app.hex", ":0100000001FE\n:0100010002FF\n");
    QDir(dir.path()).mkdir("dir.hex");
    // Records at the bottom and the top of the address space.
    dir.write("far.hex", ":0100000001FE\n:02000004FFFFFC\n:01FFFF0002FF\n:00000001FF\n");
    const std::pair<QString, QString> failures[] = {
        {"app.hex", "tidefile: app.hex: invalid checksum : line 2\n"},
        {"missing.hex", "tidefile: missing.hex: cannot open missing.hex\n"},
        {"dir.hex", "tidefile: dir.hex: cannot open dir.hex\n"},
        {"far.hex", "tidefile: far.hex: contiguous image of 4294967296 bytes is larger than "
                    "the limit of 67108864 bytes\n"},
        {"app.elf", "tidefile: cannot tell the type of app.elf; give -type\n"},
    };
    for (const auto &[file, message] : failures) {
        const RunResult run = load({"load", "-o", "out.bin", file});
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, message);
        EXPECT_EQ(dir.read("out.bin"), "old");
    }
}

TEST_F(TidefileTest, UsageErrors)
{
    EXPECT_EQ(load({"load", "-address", "4", "app.srec"}).err,
              "tidefile: -address is for binary files only\n" + usage);
    const QStringList wrong[] = {
        {},
        {"load", "-address", "4", "app.srec"},
        {"unload", "app.srec"},
        {"load", "app.srec", "raw"},
        {"load", "-fill", "0", "app.srec"},
        {"load", "-fill", "256", "-o", "x", "app.srec"},
        {"load", "-type", "bin", "-address", "0x1g", "raw"},
        {"load", "-type", "elf", "app.srec"},
        {"load", "-o"},
    };
    for (const QStringList &arguments : wrong) {
        const RunResult run = load(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(run.out.isEmpty() && run.err.endsWith(usage)) << run.err.toStdString();
    }
}
