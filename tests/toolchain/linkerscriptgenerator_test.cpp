#include "armtesting.h"

#include "memorymap/memorymapopenfiles.h"
#include "memorymap/memorymaptesting.h"
#include "toolchain/linkerscriptgenerator.h"

#include <QDir>
#include <QStandardPaths>

namespace {

const QByteArray workedExampleMap = memoryMapXml(
    "<MemorySegment name=\"FLASH\" start=\"0x00000000\" size=\"0x10000\" access=\"ReadOnly\"/>\n"
    "<MemorySegment name=\"RAM\" start=\"0x01000000\" size=\"0x2000\"/>\n");

const QByteArray workedExamplePlacement =
    placementXml("<MemorySegment name=\"FLASH\">\n"
                 "  <ProgramSection name=\".vectors\" load=\"Yes\"/>\n"
                 "  <ProgramSection name=\".text\" load=\"Yes\"/>\n"
                 "  <ProgramSection name=\".data\" load=\"Yes\" runin=\".data_run\"/>\n"
                 "</MemorySegment>\n"
                 "<MemorySegment name=\"RAM\">\n"
                 "  <ProgramSection name=\".data_run\"/>\n"
                 "  <ProgramSection name=\".bss\"/>\n"
                 "  <ProgramSection name=\".heap\" size=\"__HEAPSIZE__\"/>\n"
                 "</MemorySegment>\n");

/// The overflow assertion of a section that runs where it is placed.
QString fits(const char *name, const char *section, const char *segment, const char *size)
{
    return QStringLiteral("  . = ASSERT(__%1_end__ >= __%3_segment_start__ && __%1_end__ <= "
                          "(__%3_segment_start__ + 0x%4) , \"error: %2 is too large to fit in "
                          "%3 memory segment\");\n\n")
        .arg(QLatin1String(name), QLatin1String(section), QLatin1String(segment),
             QLatin1String(size));
}

const QString workedExampleScript =
    QStringLiteral("MEMORY\n"
                   "{\n"
                   "  UNPLACED_SECTIONS (wx) : ORIGIN = 0x100000000, LENGTH = 0\n"
                   "  RAM (wx) : ORIGIN = 0x01000000, LENGTH = 0x00002000\n"
                   "  FLASH (rx) : ORIGIN = 0x00000000, LENGTH = 0x00010000\n"
                   "}\n"
                   "\n"
                   "\n"
                   "SECTIONS\n"
                   "{\n"
                   "  __RAM_segment_start__ = 0x01000000;\n"
                   "  __RAM_segment_end__ = 0x01002000;\n"
                   "  __FLASH_segment_start__ = 0x00000000;\n"
                   "  __FLASH_segment_end__ = 0x00010000;\n"
                   "\n"
                   "  __STACKSIZE__ = 1024;\n"
                   "  __STACKSIZE_IRQ__ = 256;\n"
                   "  __STACKSIZE_FIQ__ = 256;\n"
                   "  __STACKSIZE_SVC__ = 0;\n"
                   "  __STACKSIZE_ABT__ = 0;\n"
                   "  __STACKSIZE_UND__ = 0;\n"
                   "  __HEAPSIZE__ = 1024;\n"
                   "\n"
                   "  __vectors_load_start__ = __FLASH_segment_start__;\n"
                   "  .vectors __FLASH_segment_start__ :\n"
                   "  {\n"
                   "    __vectors_start__ = .;\n"
                   "    *(.vectors)\n"
                   "  }\n"
                   "  __vectors_end__ = __vectors_start__ + SIZEOF(.vectors);\n"
                   "\n") +
    fits("vectors", ".vectors", "FLASH", "00010000") +
    QStringLiteral("  __text_load_start__ = __vectors_end__;\n"
                   "  .text __vectors_end__ :\n"
                   "  {\n"
                   "    __text_start__ = .;\n"
                   "    *(.text)\n"
                   "  }\n"
                   "  __text_end__ = __text_start__ + SIZEOF(.text);\n"
                   "\n") +
    fits("text", ".text", "FLASH", "00010000") +
    QStringLiteral("  __data_load_start__ = __text_end__;\n"
                   "  .data __RAM_segment_start__ : AT(__text_end__)\n"
                   "  {\n"
                   "    __data_start__ = .;\n"
                   "    *(.data)\n"
                   "  }\n"
                   "  __data_end__ = __data_start__ + SIZEOF(.data);\n"
                   "\n"
                   "  __data_load_end__ = __data_load_start__ + SIZEOF(.data);\n"
                   "\n"
                   "  __FLASH_segment_used_end__ = __text_end__ + SIZEOF(.data);\n"
                   "\n"
                   "  . = ASSERT((__data_load_start__ + SIZEOF(.data)) >= __FLASH_segment_start__ "
                   "&& (__data_load_start__ + SIZEOF(.data)) <= (__FLASH_segment_start__ + "
                   "0x00010000) , \"error: .data is too large to fit in FLASH memory "
                   "segment\");\n"
                   "\n"
                   "  .data_run __RAM_segment_start__ (NOLOAD) :\n"
                   "  {\n"
                   "    __data_run_start__ = .;\n"
                   "    . = MAX(__data_run_start__ + SIZEOF(.data), .);\n"
                   "  }\n"
                   "  __data_run_end__ = __data_run_start__ + SIZEOF(.data_run);\n"
                   "\n") +
    fits("data_run", ".data_run", "RAM", "00002000") +
    QStringLiteral("  __bss_load_start__ = __data_run_end__;\n"
                   "  .bss __data_run_end__ (NOLOAD) :\n"
                   "  {\n"
                   "    __bss_start__ = .;\n"
                   "    *(.bss)\n"
                   "  }\n"
                   "  __bss_end__ = __bss_start__ + SIZEOF(.bss);\n"
                   "\n") +
    fits("bss", ".bss", "RAM", "00002000") +
    QStringLiteral("  __heap_load_start__ = __bss_end__;\n"
                   "  .heap __bss_end__ (NOLOAD) :\n"
                   "  {\n"
                   "    __heap_start__ = .;\n"
                   "    *(.heap)\n"
                   "    . = MAX(__heap_start__ + __HEAPSIZE__ , .);\n"
                   "  }\n"
                   "  __heap_end__ = __heap_start__ + SIZEOF(.heap);\n"
                   "\n"
                   "  __RAM_segment_used_end__ = __bss_end__ + SIZEOF(.heap);\n"
                   "\n") +
    fits("heap", ".heap", "RAM", "00002000") + QStringLiteral("}\n\n");

} // namespace

/// The ARM systems over "App", whose memory map and section placement files lie in its
/// directory, its intermediate directory being "obj".
class LinkerScriptGeneratorTest : public ARMTest
{
protected:
    LinkerScriptGeneratorTest()
    {
        set(app, {{"build_intermediate_directory", "obj"}});
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
            EXPECT_EQ(generateLinkerScript(app, debug, "Debug/App.elf", projectDir, mapPath,
                                           placement == "-" ? placementPath : placement, &builder,
                                           clean),
                      scriptPath);
        } catch (const QString &error) {
            return error;
        }
        return QString();
    }
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
    /// The files in the script's directory.
    QStringList scriptDirectory() const
    {
        return QDir(scratch.file("app/obj")).entryList(QDir::Files);
    }

    QString mapPath;
    QString placementPath;
    QString scriptPath;
};

TEST_F(LinkerScriptGeneratorTest, WorkedExampleLineForLine)
{
    ASSERT_EQ(generate(), QString());
    EXPECT_TRUE(regenerated());
    EXPECT_EQ(QString::fromLatin1(scratch.read("app/obj/App.ld")), workedExampleScript);
    EXPECT_EQ(scriptDirectory(), QStringList{"App.ld"});
}

TEST_F(LinkerScriptGeneratorTest, TheCrossLinkerTakesTheScript)
{
    const QString as = QStandardPaths::findExecutable(QStringLiteral("arm-none-eabi-as"));
    const QString ld = QStandardPaths::findExecutable(QStringLiteral("arm-none-eabi-ld"));
    if (as.isEmpty() || ld.isEmpty())
        GTEST_SKIP() << "no ARM cross assembler and linker";
    ASSERT_EQ(generate(), QString());
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
    ASSERT_EQ(generate(), QString());
    settle();
    ASSERT_EQ(generate(), QString());
    EXPECT_TRUE(builder.messages.isEmpty());

    ASSERT_EQ(generate(true), QString()); // clean rewrites a current script
    EXPECT_TRUE(regenerated());

    settle();
    age(mapPath, 60);
    ASSERT_EQ(generate(), QString());
    EXPECT_TRUE(regenerated());

    settle();
    age(placementPath, 60);
    ASSERT_EQ(generate(), QString());
    EXPECT_TRUE(regenerated());

    // Without a placement file its time doesn't count.
    settle();
    age(placementPath, 60);
    ASSERT_EQ(generate(false, QString()), QString());
    EXPECT_TRUE(builder.messages.isEmpty());

    settle();
    projects.setProperty(app, "arm_linker_stack_size", "Debug", "2048");
    ASSERT_EQ(generate(), QString());
    EXPECT_TRUE(regenerated());
    EXPECT_TRUE(scratch.read("app/obj/App.ld").contains("  __STACKSIZE__ = 2048;\n"));

    settle();
    projects.setProperty(app, "arm_library_check_memory_segment_overflow", "Debug", "No");
    ASSERT_EQ(generate(), QString());
    EXPECT_TRUE(regenerated());
    EXPECT_FALSE(scratch.read("app/obj/App.ld").contains("ASSERT"));

    QFile::remove(scriptPath);
    ASSERT_EQ(generate(), QString());
    EXPECT_TRUE(regenerated());
}

TEST_F(LinkerScriptGeneratorTest, FailuresLeaveNoScript)
{
    const struct
    {
        const char *file;
        QByteArray contents;
        QString error;
    } cases[] = {
        {"app/map.xml", "not XML", "cannot load memory map file: " + mapPath},
        {"app/placement.xml", "<Root>", "cannot load section placement file: " + placementPath},
        {"app/placement.xml",
         placementXml("<MemorySegment name=\"ROM\"><ProgramSection name=\".x\"/>"
                      "</MemorySegment>"),
         "section placement file referenced segment ROM not in memory map file"},
        {"app/placement.xml",
         placementXml("<MemorySegment name=\"RAM\"><ProgramSection name=\".a\" runin=\".b\"/>"
                      "<ProgramSection name=\".b\"/></MemorySegment>"),
         "cyclic memory section dependency with section .a"},
    };
    for (const auto &each : cases) {
        // Times told apart from the bad file's, which may be written in the same millisecond.
        age(scratch.write("app/map.xml", workedExampleMap), 10800);
        age(scratch.write("app/placement.xml", workedExamplePlacement), 10800);
        ASSERT_EQ(generate(), QString());
        settle();
        scratch.write(each.file, each.contents); // newer than the script
        EXPECT_EQ(generate(), each.error);
        EXPECT_TRUE(scriptDirectory().isEmpty()) << scriptDirectory().join(' ').toStdString();
    }

    // A placement file that went away: the error, and the old script goes too.
    age(scratch.write("app/placement.xml", workedExamplePlacement), 10800);
    ASSERT_EQ(generate(), QString());
    settle();
    const QString gone = scratch.file("app/gone.xml");
    EXPECT_EQ(generate(false, gone), "section placement file does not exist: " + gone);
    EXPECT_TRUE(builder.messages.isEmpty());
    EXPECT_TRUE(scriptDirectory().isEmpty());

    // One file may serve as both memory map and placement.
    scratch.write("app/map.xml",
                  memoryMapXml("<MemorySegment name=\"RAM\" start=\"0\" size=\"0x100\">"
                               "<ProgramSection name=\".data\"/></MemorySegment>"));
    EXPECT_EQ(generate(false, mapPath), QString());
    EXPECT_EQ(scratch.read("app/obj/App.ld").count("  .data "), 2);
}
