#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QStandardPaths>

// An image built by Debian's ARM binutils, converted from their Intel Hex and S-Record forms,
// must give their binary form byte for byte. Its code is in flash, and its initialised data
// runs in RAM but is loaded behind a gap in flash, past a 64 KB boundary: both text formats
// then need more than one address form.
TEST(ObjcopyImagesTest, TextImagesConvertToObjcopysBinary)
{
    if (QStandardPaths::findExecutable("arm-none-eabi-objcopy").isEmpty()) {
        // The CI machine installs everything first, so there a gap is a failure.
        if (!qEnvironmentVariableIsEmpty("CI"))
            FAIL() << "missing arm-none-eabi-objcopy";
        GTEST_SKIP() << "missing arm-none-eabi-objcopy (scripts/setup.sh)";
    }
    ScratchDir dir;
    dir.write("prog.s", ".global _start\n_start: ldr r0, =table\n b _start\n.data\n"
                        "table: .word 0x12345678, 0xdeadbeef\n .fill 37, 1, 0x5a\n");
    dir.write("prog.ld", "ENTRY(_start)\nSECTIONS {\n .text 0x08000100 : { *(.text) }\n"
                         " .data 0x20000000 : AT(0x08012345) { *(.data) }\n}\n");
    const auto tool = [&](const QString &name, const QStringList &arguments) {
        const RunResult run = runProgram("arm-none-eabi-" + name, arguments, dir.path());
        EXPECT_EQ(run.exitCode, 0) << name.toStdString() << ": " << run.err.toStdString();
        return run.out;
    };
    tool("as", {"-o", "prog.o", "prog.s"});
    tool("ld", {"-T", "prog.ld", "-o", "prog.elf", "prog.o"});
    tool("objcopy", {"-O", "ihex", "prog.elf", "prog.hex"});
    tool("objcopy", {"-O", "srec", "prog.elf", "prog.srec"});
    tool("objcopy", {"--gap-fill", "0xff", "-O", "binary", "prog.elf", "prog.bin"});
    const QString entry = QRegularExpression("Entry point address:\\s+0x([0-9a-f]+)")
                              .match(tool("readelf", {"-h", "prog.elf"}))
                              .captured(1);
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
