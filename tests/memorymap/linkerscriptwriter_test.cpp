#include "memorymaptesting.h"

namespace {

/// The two segments most tests place sections in.
const QByteArray flashAndRam =
    "<MemorySegment name=\"FLASH\" start=\"0\" size=\"0x10000\" access=\"ReadOnly\"/>\n"
    "<MemorySegment name=\"RAM\" start=\"0x20000000\" size=\"0x1000\"/>\n";

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

TEST(LinkerScriptWriterTest, RegionsAndSymbolsOfTheMemoryMap)
{
    const LinkerScriptSizes sizes{"2048", "", "256", "0", "", "0", ""};
    const QString script = scriptFrom(
        "<MemorySegment name=\"FLASH\" start=\"0\" size=\"0x1000\" access=\"ReadOnly\""
        " size_symbol=\"__flash_size__\"/>\n"
        "<MemorySegment name=\"Top RAM\" start=\"0xffff0000\" size=\"0x10000\""
        " address_symbol=\"__ram__\" size_symbol=\"__ram_size__\"/>\n"
        "<Register name=\"r\" start=\"0x40\" address_symbol=\"REG\" size_symbol=\"nosize\"/>\n"
        "<Register name=\"s\" address_symbol=\"NOSTART\"/>\n",
        QByteArray(), false, sizes);
    EXPECT_EQ(script, "MEMORY\n"
                      "{\n"
                      "  Top_RAM (wx) : ORIGIN = 0xffff0000, LENGTH = 0x00010000\n"
                      "  FLASH (rx) : ORIGIN = 0x00000000, LENGTH = 0x00001000\n"
                      "}\n"
                      "\n"
                      "__flash_size__ = 0x1000;\n"
                      "__ram__ = 0xffff0000;\n"
                      "__ram_size__ = 0x10000;\n"
                      "REG = 0x40;\n"
                      "\n"
                      "SECTIONS\n"
                      "{\n"
                      "  __Top_RAM_segment_start__ = 0xffff0000;\n"
                      "  __Top_RAM_segment_end__ = 0x100000000;\n"
                      "  __FLASH_segment_start__ = 0x00000000;\n"
                      "  __FLASH_segment_end__ = 0x00001000;\n"
                      "\n"
                      "  __STACKSIZE__ = 2048;\n"
                      "  __STACKSIZE_IRQ__ = 0;\n"
                      "  __STACKSIZE_FIQ__ = 256;\n"
                      "  __STACKSIZE_SVC__ = 0;\n"
                      "  __STACKSIZE_ABT__ = 0;\n"
                      "  __STACKSIZE_UND__ = 0;\n"
                      "  __HEAPSIZE__ = 0;\n"
                      "\n"
                      "}\n"
                      "\n");
}

TEST(LinkerScriptWriterTest, PlacementFollowsTheMapsOwnSectionsPerSegment)
{
    const QString script = scriptFrom(
        "<MemorySegment name=\"FLASH\" start=\"0\" size=\"0x10000\" access=\"ReadOnly\">\n"
        "  <ProgramSection name=\".own\" load=\"Yes\"/>\n"
        "</MemorySegment>\n"
        "<MemorySegment name=\"RAM\" start=\"0x20000000\" size=\"0x1000\"/>\n"
        "<MemorySegment name=\"EMPTY\" start=\"0x30000000\" size=\"0x10\"/>\n",
        "<MemorySegment name=\"ROM;FLASH;RAM\">\n"
        "  <ProgramSection name=\"CODE\" load=\"Yes\" alignment=\"8\""
        " inputsections=\"*(.text .text.*)\"/>\n"
        "</MemorySegment>\n"
        "<MemorySegment name=\"RAM\">\n"
        "  <ProgramSection name=\".aligned\" alignment=\"0x100\"/>\n"
        "  <ProgramSection name=\".one\" alignment=\"1\" size=\"64\"/>\n"
        "</MemorySegment>\n");
    EXPECT_EQ(sectionOrder(script), QStringList({".own", ".aligned", ".one", "CODE"}));
    EXPECT_EQ(excerpt(script, "__aligned_load_start__", ".one"),
              "  __aligned_load_start__ = ALIGN(__RAM_segment_start__ , 256);\n"
              "  .aligned ALIGN(__RAM_segment_start__ , 256) (NOLOAD) :\n"
              "  {\n"
              "    __aligned_start__ = .;\n"
              "    *(.aligned)\n"
              "  }\n"
              "  __aligned_end__ = __aligned_start__ + SIZEOF(.aligned);\n"
              "\n"
              "  __one_load_start__ = __aligned_end__;");
    EXPECT_EQ(excerpt(script, "  .one", "__CODE_load_start__"),
              "  .one __aligned_end__ (NOLOAD) :\n"
              "  {\n"
              "    __one_start__ = .;\n"
              "    *(.one)\n"
              "    . = MAX(__one_start__ + 64 , .);\n"
              "  }\n"
              "  __one_end__ = __one_start__ + SIZEOF(.one);\n"
              "\n"
              "  __RAM_segment_used_end__ = __aligned_end__ + SIZEOF(.one);\n"
              "");
    // The first alternative the memory map has decides; the section placed there follows
    // the memory map's own, whose name without a leading "." serves in the symbols.
    EXPECT_EQ(excerpt(script, "__CODE_load_start__"),
              "  __CODE_load_start__ = ALIGN(__own_end__ , 8);\n"
              "  CODE ALIGN(__own_end__ , 8) :\n"
              "  {\n"
              "    __CODE_start__ = .;\n"
              "    *(.text .text.*)\n"
              "  }\n"
              "  __CODE_end__ = __CODE_start__ + SIZEOF(CODE);\n"
              "\n"
              "  __FLASH_segment_used_end__ = ALIGN(__own_end__ , 8) + SIZEOF(CODE);\n"
              "\n"
              "}\n"
              "\n");
    EXPECT_FALSE(script.contains("__own_end__ + SIZEOF(.own)"));
    EXPECT_TRUE(script.contains("  __EMPTY_segment_end__ = 0x30000010;\n"));
    EXPECT_FALSE(script.contains("EMPTY_segment_used_end"));
    EXPECT_FALSE(script.contains("ASSERT"));
    EXPECT_FALSE(script.contains("UNPLACED_SECTIONS"));
}

TEST(LinkerScriptWriterTest, RunInAreasAbsolutePlacementAndAssertions)
{
    const QString script =
        scriptFrom(flashAndRam,
                   "<MemorySegment name=\"FLASH\">\n"
                   "  <ProgramSection name=\".text\" load=\"Yes\"/>\n"
                   "  <ProgramSection name=\".fast\" load=\"Yes\" runin=\".area\"/>\n"
                   "  <ProgramSection name=\".init\" load=\"Yes\" runin=\".area\"/>\n"
                   "  <ProgramSection name=\".abs\" load=\"Yes\" start=\"0x8000\""
                   " alignment=\"4\"/>\n"
                   "</MemorySegment>\n"
                   "<MemorySegment name=\"RAM\">\n"
                   "  <ProgramSection name=\".first\"/>\n"
                   "  <ProgramSection name=\".area\" start=\"0x20000100\"/>\n"
                   "  <ProgramSection name=\".after\"/>\n"
                   "</MemorySegment>\n",
                   true);
    EXPECT_TRUE(script.contains("MEMORY\n{\n  UNPLACED_SECTIONS (wx) : ORIGIN = 0x100000000, "
                                "LENGTH = 0\n  RAM (wx)"));
    EXPECT_EQ(sectionOrder(script),
              QStringList({".first", ".text", ".fast", ".init", ".area", ".after", ".abs"}));
    EXPECT_EQ(excerpt(script, "__fast_load_start__ =", "__init_load_start__"),
              "  __fast_load_start__ = __text_end__;\n"
              "  .fast 0x20000100 : AT(__text_end__)\n"
              "  {\n"
              "    __fast_start__ = .;\n"
              "    *(.fast)\n"
              "  }\n"
              "  __fast_end__ = __fast_start__ + SIZEOF(.fast);\n"
              "\n"
              "  __fast_load_end__ = __fast_load_start__ + SIZEOF(.fast);\n"
              "\n"
              "  . = ASSERT((__fast_load_start__ + SIZEOF(.fast)) >= __FLASH_segment_start__ && "
              "(__fast_load_start__ + SIZEOF(.fast)) <= (__FLASH_segment_start__ + 0x00010000) , "
              "\"error: .fast is too large to fit in FLASH memory segment\");\n"
              "");
    EXPECT_TRUE(script.contains("  __init_load_start__ = __fast_load_start__ + SIZEOF(.fast);\n"
                                "  .init 0x20000100 : AT(__fast_load_start__ + SIZEOF(.fast))\n"));
    EXPECT_EQ(excerpt(script, "  .area", "__after_load_start__"),
              "  .area 0x20000100 (NOLOAD) :\n"
              "  {\n"
              "    __area_start__ = .;\n"
              "    . = MAX(__area_start__ + SIZEOF(.fast), .);\n"
              "    . = MAX(__area_start__ + SIZEOF(.init), .);\n"
              "  }\n"
              "  __area_end__ = __area_start__ + SIZEOF(.area);\n"
              "\n"
              "  . = ASSERT(__area_end__ >= __RAM_segment_start__ && __area_end__ <= "
              "(__RAM_segment_start__ + 0x00001000) , \"error: .area is too large to fit in RAM "
              "memory segment\");\n"
              "\n"
              "  . = ASSERT(__first_end__ <= __area_start__ , \"error: section .first overlaps "
              "absolute placed section .area\");\n"
              "");
    EXPECT_FALSE(script.contains("__area_load_start__"));
    // An absolute address ignores the alignment; the overlap check uses the load end of a
    // predecessor that runs elsewhere.
    EXPECT_EQ(excerpt(script, "__abs_load_start__"),
              "  __abs_load_start__ = 0x00008000;\n"
              "  .abs 0x00008000 :\n"
              "  {\n"
              "    __abs_start__ = .;\n"
              "    *(.abs)\n"
              "  }\n"
              "  __abs_end__ = __abs_start__ + SIZEOF(.abs);\n"
              "\n"
              "  __FLASH_segment_used_end__ = 0x00008000 + SIZEOF(.abs);\n"
              "\n"
              "  . = ASSERT(__abs_end__ >= __FLASH_segment_start__ && __abs_end__ <= "
              "(__FLASH_segment_start__ + 0x00010000) , \"error: .abs is too large to fit in "
              "FLASH memory segment\");\n"
              "\n"
              "  . = ASSERT(__init_load_end__ <= __abs_start__ , \"error: section .init overlaps "
              "absolute placed section .abs\");\n"
              "\n"
              "}\n"
              "\n");
    EXPECT_EQ(script.count("overlaps"), 2);
}

TEST(LinkerScriptWriterTest, RunAddressFollowsTheRunAreasPredecessor)
{
    // The placement's segments are taken last first, so the section that runs in RAM comes
    // first in the list; what the run area's address depends on is written before it, the
    // run area itself after it.
    const QString script =
        scriptFrom(flashAndRam, "<MemorySegment name=\"RAM\">\n"
                                "  <ProgramSection name=\".first\"/>\n"
                                "  <ProgramSection name=\".area\"/>\n"
                                "</MemorySegment>\n"
                                "<MemorySegment name=\"FLASH\">\n"
                                "  <ProgramSection name=\".fast\" load=\"Yes\" runin=\".area\"/>\n"
                                "  <ProgramSection name=\".next\" load=\"Yes\"/>\n"
                                "</MemorySegment>\n");
    EXPECT_EQ(sectionOrder(script), QStringList({".first", ".fast", ".next", ".area"}));
    EXPECT_TRUE(script.contains("  .fast __first_end__ : AT(__FLASH_segment_start__)\n"));
    EXPECT_TRUE(script.contains("  __next_load_start__ = __fast_load_start__ + SIZEOF(.fast);\n"));
}

TEST(LinkerScriptWriterTest, BlanksInNamesBecomeUnderscores)
{
    const QString script = scriptFrom("<MemorySegment name=\"Int RAM\" start=\"0x100\""
                                      " size=\"0x100\"/>\n",
                                      "<MemorySegment name=\"Int RAM\">\n"
                                      "  <ProgramSection name=\"my data\" load=\"Yes\"/>\n"
                                      "</MemorySegment>\n");
    EXPECT_TRUE(script.contains("  Int_RAM (wx) : ORIGIN = 0x00000100, LENGTH = 0x00000100\n"));
    EXPECT_TRUE(script.contains("  my_data __Int_RAM_segment_start__ :\n"));
    EXPECT_TRUE(script.contains("    *(my_data)\n"));
    EXPECT_TRUE(script.contains("  __Int_RAM_segment_used_end__ = __Int_RAM_segment_start__ + "
                                "SIZEOF(my_data);\n"));
}

TEST(LinkerScriptWriterTest, ErrorTexts)
{
    const struct
    {
        const char *placement;
        const char *error;
    } cases[] = {
        {"<MemorySegment name=\"RAM\"><ProgramSection name=\".data\" runin=\".area\"/>"
         "<ProgramSection name=\".area\"/></MemorySegment>",
         "cyclic memory section dependency with section .data"},
        {"<MemorySegment name=\"FLASH\"><ProgramSection name=\".a\" start=\"0x10000\"/>"
         "</MemorySegment>",
         "The .a section has been placed at an absolute address outside of its segment range."},
        {"<MemorySegment name=\"RAM\"><ProgramSection name=\".b\" start=\"0x1fffffff\"/>"
         "</MemorySegment>",
         "The .b section has been placed at an absolute address outside of its segment range."},
        {"<MemorySegment name=\"FLASH\"><ProgramSection name=\".a\" runin=\".b\"/>"
         "<ProgramSection name=\".c\" runin=\".a\"/></MemorySegment>"
         "<MemorySegment name=\"RAM\"><ProgramSection name=\".b\"/></MemorySegment>",
         "run section .a cannot have run in sections"},
        {"<MemorySegment name=\"FLASH\"><ProgramSection name=\".data\" runin=\".nowhere\"/>"
         "</MemorySegment>",
         "cannot find run section .nowhere referenced in data"},
        {"<MemorySegment name=\"ROM;EEPROM\"><ProgramSection name=\".x\"/></MemorySegment>",
         "section placement file referenced segment ROM;EEPROM not in memory map file"},
        {"<MemorySegment><ProgramSection name=\".x\"/></MemorySegment>",
         "section placement file referenced segment  not in memory map file"},
    };
    for (const auto &each : cases)
        EXPECT_EQ(scriptFrom(flashAndRam, each.placement), QStringLiteral("error: ") + each.error)
            << each.placement;
    // The edges of a segment: its first address is in it.
    EXPECT_FALSE(scriptFrom(flashAndRam, "<MemorySegment name=\"FLASH\"><ProgramSection "
                                         "name=\".a\" start=\"0\"/></MemorySegment>")
                     .startsWith("error"));
}

TEST(LinkerScriptWriterTest, LongChainsAndLargeRunAreas)
{
    // The last of many sections runs in an area laid out first, which pulls the whole chain
    // before it; then an area that many sections run in.
    const int count = 20000;
    QByteArray chain = "<MemorySegment name=\"FLASH\">\n";
    for (int i = 0; i < count; ++i)
        chain += "<ProgramSection name=\".s" + QByteArray::number(i) + "\" load=\"Yes\"" +
                 (i == count - 1 ? " runin=\".area\"" : "") + "/>\n";
    chain += "</MemorySegment>\n<MemorySegment name=\"RAM\">"
             "<ProgramSection name=\".area\"/></MemorySegment>\n";
    const QString script = scriptFrom(flashAndRam, chain, true);
    const QStringList order = sectionOrder(script);
    ASSERT_EQ(order.size(), count + 1);
    EXPECT_EQ(order.first(), ".s0");
    EXPECT_EQ(order.last(), ".area");

    QByteArray many = "<MemorySegment name=\"FLASH\">\n";
    for (int i = 0; i < count; ++i)
        many += "<ProgramSection name=\".m" + QByteArray::number(i) + "\" runin=\".area\"/>\n";
    many += "</MemorySegment>\n<MemorySegment name=\"RAM\">"
            "<ProgramSection name=\".area\"/></MemorySegment>\n";
    const QString wide = scriptFrom(flashAndRam, many);
    EXPECT_EQ(wide.count("    . = MAX(__area_start__ + SIZEOF(.m"), count);
}
