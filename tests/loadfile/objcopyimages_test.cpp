#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QStandardPaths>

namespace {

// Code in flash, and initialised data that runs in RAM but is loaded behind a gap in
// flash, past a 64 KB boundary: both text formats then need more than one address form.
const QByteArray program = ".global _start\n_start: ldr r0, =table\n b _start\n"
                           ".data\ntable: .word 0x12345678, 0xdeadbeef\n .fill 37, 1, 0x5a\n";
const QByteArray script = "ENTRY(_start)\nSECTIONS {\n .text 0x08000100 : { *(.text) }\n"
                          " .data 0x20000000 : AT(0x08012345) { *(.data) }\n}\n";

} // namespace

// An image built by Debian's ARM binutils, converted from their Intel Hex and S-Record forms,
// must give their binary form byte for byte.
TEST(ObjcopyImagesTest, TextImagesConvertToObjcopysBinary)
{
    for (const char *tool : {"as", "ld", "objcopy", "readelf"}) {
        if (QStandardPaths::findExecutable(QStringLiteral("arm-none-eabi-") + tool).isEmpty()) {
            // The CI machine installs everything first, so there a gap is a failure.
            if (!qEnvironmentVariableIsEmpty("CI"))
                FAIL() << "missing arm-none-eabi-" << tool;
            GTEST_SKIP() << "missing arm-none-eabi-" << tool << " (scripts/setup.sh)";
        }
    }
    ScratchDir dir;
    const auto tool = [&](const QString &name, const QStringList &arguments) {
        const RunResult run = runProgram("arm-none-eabi-" + name, arguments, dir.path());
        EXPECT_EQ(run.exitCode, 0) << name.toStdString() << ": " << run.err.toStdString();
        return run.out;
    };
    dir.write("prog.s", program);
    dir.write("prog.ld", script);
    tool("as", {"-o", "prog.o", "prog.s"});
    tool("ld", {"-T", "prog.ld", "-o", "prog.elf", "prog.o"});
    tool("objcopy", {"-O", "ihex", "prog.elf", "prog.hex"});
    tool("objcopy", {"-O", "srec", "prog.elf", "prog.srec"});
    tool("objcopy", {"--gap-fill", "0xff", "-O", "binary", "prog.elf", "prog.bin"});
    const QRegularExpression entryLine("Entry point address:\\s+0x([0-9a-f]+)");
    const QString entry = entryLine.match(tool("readelf", {"-h", "prog.elf"})).captured(1);
    ASSERT_FALSE(entry.isEmpty());
    const QByteArray binary = dir.read("prog.bin");
    ASSERT_GT(binary.size(), 0x12345 - 0x100) << "from the code to the end of the data";

    for (const QString image : {"prog.hex", "prog.srec"}) {
        RunResult run = runTidefile({"load", "-fill", "0xff", "-o", "out.bin", image}, dir.path());
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_TRUE(dir.read("out.bin") == binary) << image.toStdString();

        run = runTidefile({"load", image}, dir.path());
        EXPECT_TRUE(run.out.contains(QStringLiteral("\nentry\t0x%1\n").arg(entry, 8, '0')))
            << run.out.toStdString();
    }
}
