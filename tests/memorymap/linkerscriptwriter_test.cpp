#include "memorymaptesting.h"

namespace {

/// The two segments most tests place sections in.
const QByteArray flashAndRam =
    R"(<MemorySegment name="FLASH" start="0" size="0x10000" access="ReadOnly"/>
<MemorySegment name="RAM" start="0x20000000" size="0x1000"/>
)";

/// The names of the output sections in the order the script writes them.
QStringList sectionOrder(const QString &script)
{
    QStringList order;
    for (const QString &line : script.split(QLatin1Char('\n')))
        if (line.startsWith(QLatin1String("  ")) && !line.startsWith(QLatin1String("   ")) &&
            (line.endsWith(QLatin1String(" :")) || line.contains(QLatin1String(" : AT("))))
            order << line.trimmed().section(QLatin1Char(' '), 0, 0);
    return order;
}

} // namespace

TEST(LinkerScriptWriterTest, RegionsSymbolsAndPlacementAfterTheMapsOwnSections)
{
    const QString script = scriptFrom(R"(<MemorySegment name="FLASH" start="0" size="0x10000"
  access="ReadOnly" size_symbol="__flash_size__"><ProgramSection name=".own" load="Yes"/>
</MemorySegment>
<MemorySegment name="RAM" start="0x20000000" size="0x1000" address_symbol="__ram__"
  size_symbol="__ram_size__"/>
<MemorySegment name="Top RAM" start="0xffff0000" size="0x10000"/>
<Register name="r" start="0x40" address_symbol="REG" size_symbol="nosize"/>
<Register name="s" address_symbol="NOSTART"/>
)",
                                      R"x(<MemorySegment name="ROM;FLASH;RAM">
  <ProgramSection name="CODE" load="Yes" alignment="8" inputsections="*(.text .text.*)"/>
</MemorySegment>
<MemorySegment name="RAM"><ProgramSection name=".aligned" alignment="0x100"/>
  <ProgramSection name=".one" alignment="1" size="64"/></MemorySegment>
)x",
                                      false, {"2048", "", "256", "0", "", "0", ""});
    EXPECT_TRUE(script.startsWith("MEMORY\n{\n"
                                  "  Top_RAM (wx) : ORIGIN = 0xffff0000, LENGTH = 0x00010000\n"
                                  "  RAM (wx) : ORIGIN = 0x20000000, LENGTH = 0x00001000\n"
                                  "  FLASH (rx) : ORIGIN = 0x00000000, LENGTH = 0x00010000\n"
                                  "}\n\n"
                                  "__flash_size__ = 0x10000;\n"
                                  "__ram__ = 0x20000000;\n"
                                  "__ram_size__ = 0x1000;\n"
                                  "REG = 0x40;\n\nSECTIONS\n"))
        << script.toStdString();
    // The end of the last segment goes past 32 bits; an empty size is 0; a segment without
    // sections has no used end; without checks there are no assertions.
    EXPECT_TRUE(script.contains("  __Top_RAM_segment_end__ = 0x100000000;\n"));
    EXPECT_TRUE(script.contains("  __STACKSIZE__ = 2048;\n  __STACKSIZE_IRQ__ = 0;\n"));
    EXPECT_FALSE(script.contains("Top_RAM_segment_used_end"));
    EXPECT_FALSE(script.contains("ASSERT") || script.contains("UNPLACED_SECTIONS"));

    EXPECT_EQ(sectionOrder(script), QStringList({".own", ".aligned", ".one", "CODE"}));
    EXPECT_TRUE(script.contains("  .one __aligned_end__ (NOLOAD) :\n  {\n    __one_start__ = .;\n"
                                "    *(.one)\n    . = MAX(__one_start__ + 64 , .);\n"));
    EXPECT_TRUE(script.contains("  __RAM_segment_used_end__ = __aligned_end__ + SIZEOF(.one);\n"));
    // The first alternative the memory map has decides; the section placed there follows
    // the memory map's own, whose name without a leading "." serves in the symbols.
    EXPECT_TRUE(script.contains("  CODE ALIGN(__own_end__ , 8) :\n  {\n    __CODE_start__ = .;\n"
                                "    *(.text .text.*)\n"));
    EXPECT_TRUE(script.contains(
        "  __FLASH_segment_used_end__ = ALIGN(__own_end__ , 8) + SIZEOF(CODE);\n\n}\n"));
}

TEST(LinkerScriptWriterTest, RunInAreasAbsolutePlacementAndAssertions)
{
    const QString script = scriptFrom(
        flashAndRam, R"(<MemorySegment name="FLASH"><ProgramSection name=".text" load="Yes"/>
  <ProgramSection name=".fast" load="Yes" runin=".area"/>
  <ProgramSection name=".init" load="Yes" runin=".area"/>
  <ProgramSection name=".abs" load="Yes" start="0x8000" alignment="4"/></MemorySegment>
<MemorySegment name="RAM"><ProgramSection name=".first"/>
  <ProgramSection name=".area" start="0x20000100"/><ProgramSection name=".after"/></MemorySegment>
)",
        true);
    EXPECT_EQ(sectionOrder(script),
              QStringList({".first", ".text", ".fast", ".init", ".area", ".after", ".abs"}));
    EXPECT_TRUE(script.contains("MEMORY\n{\n  UNPLACED_SECTIONS (wx) : ORIGIN = 0x100000000, "
                                "LENGTH = 0\n  RAM (wx)"));
    // Sections that run in an absolutely placed area all run at its address, loaded one after
    // the other; the area makes room for the largest and must not overlap its predecessor.
    EXPECT_TRUE(script.contains("  .fast 0x20000100 : AT(__text_end__)\n"));
    EXPECT_TRUE(script.contains("  .init 0x20000100 : AT(__fast_load_start__ + SIZEOF(.fast))\n"));
    EXPECT_TRUE(script.contains("    . = MAX(__area_start__ + SIZEOF(.fast), .);\n"
                                "    . = MAX(__area_start__ + SIZEOF(.init), .);\n  }\n"));
    EXPECT_TRUE(script.contains("  . = ASSERT(__first_end__ <= __area_start__ , \"error: section "
                                ".first overlaps absolute placed section .area\");\n"));
    // An absolute address ignores the alignment; the overlap check uses the load end of a
    // predecessor that runs elsewhere.
    EXPECT_TRUE(script.contains("  __abs_load_start__ = 0x00008000;\n  .abs 0x00008000 :\n"));
    EXPECT_TRUE(script.contains("  __FLASH_segment_used_end__ = 0x00008000 + SIZEOF(.abs);\n"));
    EXPECT_TRUE(script.contains("  . = ASSERT(__init_load_end__ <= __abs_start__ , \"error: "
                                "section .init overlaps absolute placed section .abs\");\n"));
}

TEST(LinkerScriptWriterTest, RunAddressFollowsTheRunAreasPredecessorAndBlanksGo)
{
    // The placement's segments are taken last first, so the section that runs in RAM comes
    // first; what the run area's address depends on is written before it, the area after it.
    const QString script =
        scriptFrom(flashAndRam, R"(<MemorySegment name="RAM"><ProgramSection name=".first"/>
  <ProgramSection name=".area"/></MemorySegment>
<MemorySegment name="FLASH"><ProgramSection name=".fast" load="Yes" runin=".area"/>
  <ProgramSection name="my next" load="Yes"/></MemorySegment>
)");
    EXPECT_EQ(sectionOrder(script), QStringList({".first", ".fast", "my_next", ".area"}));
    EXPECT_TRUE(script.contains("  .fast __first_end__ : AT(__FLASH_segment_start__)\n"));
    // Blanks in names become underscores.
    EXPECT_TRUE(script.contains("  my_next __fast_load_start__ + SIZEOF(.fast) :\n  {\n"
                                "    __my_next_start__ = .;\n    *(my_next)\n"));
}

TEST(LinkerScriptWriterTest, ErrorTexts)
{
    const char *const cases[][2] = {
        {R"(<MemorySegment name="RAM"><ProgramSection name=".data" runin=".area"/>
             <ProgramSection name=".area"/></MemorySegment>)",
         "cyclic memory section dependency with section .data"},
        // The first address past a segment is outside it.
        {R"(<MemorySegment name="FLASH"><ProgramSection name=".a" start="0x10000"/></MemorySegment>)",
         "The .a section has been placed at an absolute address outside of its segment range."},
        {R"(<MemorySegment name="FLASH"><ProgramSection name=".a" runin=".b"/>
             <ProgramSection name=".c" runin=".a"/></MemorySegment>
             <MemorySegment name="RAM"><ProgramSection name=".b"/></MemorySegment>)",
         "run section .a cannot have run in sections"},
        {R"(<MemorySegment name="FLASH"><ProgramSection name=".data" runin=".nowhere"/></MemorySegment>)",
         "cannot find run section .nowhere referenced in data"},
        {R"(<MemorySegment name="ROM;EEPROM"><ProgramSection name=".x"/></MemorySegment>)",
         "section placement file referenced segment ROM;EEPROM not in memory map file"},
    };
    for (const auto &each : cases)
        EXPECT_EQ(scriptFrom(flashAndRam, each[0]), QStringLiteral("error: ") + each[1]);
    // A segment's first address is in it.
    EXPECT_FALSE(
        scriptFrom(flashAndRam, R"(<MemorySegment name="FLASH"><ProgramSection name=".a" start="0"/>
</MemorySegment>)")
            .startsWith("error"));
}
