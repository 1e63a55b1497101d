#include "toolchaintesting.h"

#include "memorymap/memorymapopenfiles.h"
#include "memorymap/memorymaptesting.h"
#include "toolchain/linkerscriptgenerator.h"

#include <QDir>
#include <QStandardPaths>

#include <functional>

namespace {

const QByteArray workedExampleMap = memoryMapXml(R"(
<MemorySegment name="FLASH" start="0x00000000" size="0x10000" access="ReadOnly"/>
<MemorySegment name="RAM" start="0x01000000" size="0x2000"/>
)");

const QByteArray workedExamplePlacement = placementXml(R"(<MemorySegment name="FLASH">
  <ProgramSection name=".vectors" load="Yes"/>
  <ProgramSection name=".text" load="Yes"/>
  <ProgramSection name=".data" load="Yes" runin=".data_run"/>
</MemorySegment>
<MemorySegment name="RAM">
  <ProgramSection name=".data_run"/>
  <ProgramSection name=".bss"/>
  <ProgramSection name=".heap" size="__HEAPSIZE__"/>
</MemorySegment>
)");

/// The overflow assertion of a section that runs where it is placed, in the example's
/// `segment`.
QString fits(const QString &name, const QString &segment)
{
    return QStringLiteral("  . = ASSERT(__%1_end__ >= __%2_segment_start__ && __%1_end__ <= "
                          "(__%2_segment_start__ + 0x%3) , \"error: .%1 is too large to fit in "
                          "%2 memory segment\");\n\n")
        .arg(name, segment, segment == "RAM" ? "00002000" : "00010000");
}

/// A section that runs where it is placed from `start`, with `inside` after its input and
/// `after` before the assertion that it fits. The example loads only what lies in FLASH.
QString placed(const QString &name, const QString &start, const QString &segment,
               const QString &inside = QString(), const QString &after = QString())
{
    return QStringLiteral("  __%1_load_start__ = %2;\n  .%1 %2%3 :\n  {\n    __%1_start__ = .;\n"
                          "    *(.%1)\n%4  }\n  __%1_end__ = __%1_start__ + SIZEOF(.%1);\n\n%5")
               .arg(name, start, segment == "RAM" ? " (NOLOAD)" : "", inside, after) +
           fits(name, segment);
}

const QString workedExampleScript =
    QStringLiteral("MEMORY\n{\n"
                   "  UNPLACED_SECTIONS (wx) : ORIGIN = 0x100000000, LENGTH = 0\n"
                   "  RAM (wx) : ORIGIN = 0x01000000, LENGTH = 0x00002000\n"
                   "  FLASH (rx) : ORIGIN = 0x00000000, LENGTH = 0x00010000\n"
                   "}\n\n\nSECTIONS\n{\n"
                   "  __RAM_segment_start__ = 0x01000000;\n"
                   "  __RAM_segment_end__ = 0x01002000;\n"
                   "  __FLASH_segment_start__ = 0x00000000;\n"
                   "  __FLASH_segment_end__ = 0x00010000;\n\n"
                   "  __STACKSIZE__ = 1024;\n  __STACKSIZE_IRQ__ = 256;\n"
                   "  __STACKSIZE_FIQ__ = 256;\n  __STACKSIZE_SVC__ = 0;\n"
                   "  __STACKSIZE_ABT__ = 0;\n  __STACKSIZE_UND__ = 0;\n"
                   "  __HEAPSIZE__ = 1024;\n\n") +
    placed("vectors", "__FLASH_segment_start__", "FLASH") +
    placed("text", "__vectors_end__", "FLASH") +
    QStringLiteral("  __data_load_start__ = __text_end__;\n"
                   "  .data __RAM_segment_start__ : AT(__text_end__)\n"
                   "  {\n    __data_start__ = .;\n    *(.data)\n  }\n"
                   "  __data_end__ = __data_start__ + SIZEOF(.data);\n\n"
                   "  __data_load_end__ = __data_load_start__ + SIZEOF(.data);\n\n"
                   "  __FLASH_segment_used_end__ = __text_end__ + SIZEOF(.data);\n\n"
                   "  . = ASSERT((__data_load_start__ + SIZEOF(.data)) >= __FLASH_segment_start__ "
                   "&& (__data_load_start__ + SIZEOF(.data)) <= (__FLASH_segment_start__ + "
                   "0x00010000) , \"error: .data is too large to fit in FLASH memory "
                   "segment\");\n\n"
                   "  .data_run __RAM_segment_start__ (NOLOAD) :\n"
                   "  {\n    __data_run_start__ = .;\n"
                   "    . = MAX(__data_run_start__ + SIZEOF(.data), .);\n  }\n"
                   "  __data_run_end__ = __data_run_start__ + SIZEOF(.data_run);\n\n") +
    fits("data_run", "RAM") + placed("bss", "__data_run_end__", "RAM") +
    placed("heap", "__bss_end__", "RAM", "    . = MAX(__heap_start__ + __HEAPSIZE__ , .);\n",
           "  __RAM_segment_used_end__ = __bss_end__ + SIZEOF(.heap);\n\n") +
    QStringLiteral("}\n\n");

} // namespace

/// The ARM systems over "App", whose memory map and section placement files lie in its
/// directory, its intermediate directory being "obj".
class LinkerScriptGeneratorTest : public ARMTest
{
protected:
    LinkerScriptGeneratorTest()
    {
        set(app, {"build_intermediate_directory=obj"});
        mapPath = scratch.write("app/map.xml", workedExampleMap);
        placementPath = scratch.write("app/placement.xml", workedExamplePlacement);
        scriptPath = scratch.file("app/obj/App.ld");
    }
    ~LinkerScriptGeneratorTest() override { MemoryMapOpenFiles::clear(); }

    /// Generates the script of "App" in "Debug"; the error text, or an empty string.
    QString generate(bool clean = false, const QString &placement = QString("-"))
    {
        builder.messages.clear();
        system->disk().invalidateAll();
        try {
            generateLinkerScript(app, debug, "Debug/App.elf", projectDir, mapPath,
                                 placement == "-" ? placementPath : placement, &builder, clean);
        } catch (const QString &error) {
            return error;
        }
        return QString();
    }
    /// Whether the last `generate` made the script afresh.
    bool regenerated() const
    {
        return builder.messages == QStringList{QStringLiteral("Generating linker script")};
    }
    /// Makes the script look written an hour ago, after its inputs.
    void settle()
    {
        age(mapPath, 7200);
        age(placementPath, 7200);
        age(scriptPath, 3600);
    }

    QString mapPath;
    QString placementPath;
    QString scriptPath;
};

TEST_F(LinkerScriptGeneratorTest, WorkedExampleLineForLineAndThroughTheCrossLinker)
{
    ASSERT_EQ(generate(), QString());
    EXPECT_EQ(QString::fromLatin1(scratch.read("app/obj/App.ld")), workedExampleScript);
    EXPECT_EQ(QDir(scratch.file("app/obj")).entryList(QDir::Files), QStringList{"App.ld"});

    const QString as = QStandardPaths::findExecutable(QStringLiteral("arm-none-eabi-as"));
    const QString ld = QStandardPaths::findExecutable(QStringLiteral("arm-none-eabi-ld"));
    if (as.isEmpty() || ld.isEmpty())
        GTEST_SKIP() << "no ARM cross assembler and linker";
    auto link = [&](const QByteArray &source) {
        scratch.write("app/start.s", source);
        const RunResult assembled =
            runProgram(as, {"-o", "start.o", "start.s"}, scratch.file("app"));
        EXPECT_EQ(assembled.exitCode, 0) << assembled.err.toStdString();
        return runProgram(ld, {"-T", scriptPath, "-o", "app.elf", "start.o"}, scratch.file("app"));
    };
    const RunResult fitting = link(".section .vectors,\"ax\"\n.word 0\n"
                                   ".text\nnop\n.data\n.word 1\n.bss\n.space 16\n");
    EXPECT_EQ(fitting.exitCode, 0) << fitting.err.toStdString();
    const RunResult tooLarge = link(".text\n.space 0x20000\n");
    EXPECT_NE(tooLarge.exitCode, 0);
    EXPECT_TRUE(tooLarge.err.contains("error: .text is too large to fit in FLASH memory segment"))
        << tooLarge.err.toStdString();
}

TEST_F(LinkerScriptGeneratorTest, WrittenOnlyWhenSomethingChanged)
{
    // After a newer map or placement, or a changed setting the script is written from, the
    // script is made afresh; without a placement file its time doesn't count.
    auto rewrittenAfter = [&](const std::function<void()> &change, const QString &placement) {
        settle();
        change();
        EXPECT_EQ(generate(false, placement), QString());
        return regenerated();
    };
    ASSERT_EQ(generate(), QString());
    EXPECT_FALSE(rewrittenAfter([] {}, "-"));
    EXPECT_TRUE(rewrittenAfter([&] { age(mapPath, 60); }, "-"));
    EXPECT_TRUE(rewrittenAfter([&] { age(placementPath, 60); }, "-"));
    EXPECT_FALSE(rewrittenAfter([&] { age(placementPath, 60); }, QString()));
    EXPECT_TRUE(rewrittenAfter([&] { set(app, {"arm_linker_stack_size=2048"}); }, "-"));
    EXPECT_TRUE(
        rewrittenAfter([&] { set(app, {"arm_library_check_memory_segment_overflow=No"}); }, "-"));
    EXPECT_TRUE(rewrittenAfter([&] { QFile::remove(scriptPath); }, "-"));
    settle();
    ASSERT_EQ(generate(true), QString()); // clean makes a current script afresh
    EXPECT_TRUE(regenerated());
    const QByteArray script = scratch.read("app/obj/App.ld");
    EXPECT_TRUE(script.contains("  __STACKSIZE__ = 2048;\n"));
    EXPECT_FALSE(script.contains("ASSERT"));
}

TEST_F(LinkerScriptGeneratorTest, FailuresLeaveNoScript)
{
    // The file made bad, what it then holds (nothing: it went away), and the error.
    const std::tuple<const char *, QByteArray, QString> cases[] = {
        {"app/map.xml", "not XML", "cannot load memory map file: " + mapPath},
        {"app/placement.xml", "<Root>", "cannot load section placement file: " + placementPath},
        {"app/placement.xml", QByteArray(),
         "section placement file does not exist: " + placementPath},
    };
    for (const auto &[file, contents, error] : cases) {
        // Times told apart from the bad file's, which may be written in the same millisecond.
        age(scratch.write("app/map.xml", workedExampleMap), 10800);
        age(scratch.write("app/placement.xml", workedExamplePlacement), 10800);
        ASSERT_EQ(generate(), QString());
        settle();
        if (contents.isNull())
            QFile::remove(scratch.file(file));
        else
            scratch.write(file, contents); // newer than the script
        EXPECT_EQ(generate(), error);
        EXPECT_EQ(QDir(scratch.file("app/obj")).entryList(QDir::Files), QStringList());
    }

    // A script that can't be made where it belongs.
    scratch.write("app/placement.xml", workedExamplePlacement);
    QDir(scratch.file("app/obj")).removeRecursively();
    scratch.write("app/obj", "a file where the directory should be");
    EXPECT_EQ(generate(), "cannot create linker script file: " + scriptPath);
}
