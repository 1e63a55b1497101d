#include "memorymaptesting.h"

namespace {

const MemoryMapElement *named(const MemoryMap &map, const char *name)
{
    for (const MemoryMapElement *element : map.getAllElements())
        if (element->name() == QLatin1String(name))
            return element;
    return nullptr;
}

} // namespace

TEST(MemoryMapElementTest, TagsGiveTypes)
{
    const char *const tags[] = {"MemorySegment", "Register", "ProgramSection", "Root",
                                "RegisterGroup", "BitField", "Enum",           "Processor"};
    for (int type = 0; type < 8; ++type) {
        EXPECT_EQ(MemoryMapElement::elementTypeOf(tags[type]), type);
        EXPECT_STREQ(MemoryMapElement::elementTypeAsString(MemoryMapElement::ElementType(type)),
                     tags[type]);
    }
    EXPECT_EQ(MemoryMapElement::elementTypeOf("Import"), MemoryMapElement::Unsupported);
    EXPECT_EQ(MemoryMapElement::elementTypeOf("memorysegment"), MemoryMapElement::Unsupported);
    EXPECT_STREQ(MemoryMapElement::elementTypeAsString(MemoryMapElement::Unsupported),
                 "Unsupported");

    MemoryMapElement made(MemoryMapElement::ProgramSection);
    EXPECT_STREQ(made.tagName(), "ProgramSection");
    EXPECT_EQ(made.getElementType(), MemoryMapElement::ProgramSection);
}

TEST(MemoryMapElementTest, AddressForms)
{
    auto map =
        mapFrom(memoryMapXml("<MemorySegment name=\"SEG\" start=\"0x1000\" size=\"0x1000\">\n"
                             "  <ProgramSection name=\"offset\" start=\"+0x100\"/>\n"
                             "  <ProgramSection name=\"sum\" start=\"0x20+0x3\"/>\n"
                             "  <ProgramSection name=\"octal\" start=\"010\"/>\n"
                             "  <ProgramSection name=\"binary\" start=\"0b101\"/>\n"
                             "  <ProgramSection name=\"empty\" start=\"\"/>\n"
                             "  <ProgramSection name=\"nested\" start=\"+0x10\">\n"
                             "    <ProgramSection name=\"inner\" start=\"+1\"/>\n"
                             "  </ProgramSection>\n"
                             "  <RegisterGroup name=\"group\" start=\"+0x200\">\n"
                             "    <Register name=\"reg\" start=\"+4\">\n"
                             "      <BitField name=\"field\" start=\"+3\"/>\n"
                             "      <Register name=\"sub\" start=\"+8\"/>\n"
                             "    </Register>\n"
                             "  </RegisterGroup>\n"
                             "  <Processor name=\"unresolved\" start=\"0x55\"/>\n"
                             "  <MemorySegment name=\"nostart\">\n"
                             "    <ProgramSection name=\"inherits\" start=\"+2\"/>\n"
                             "  </MemorySegment>\n"
                             "</MemorySegment>\n"
                             "<MemorySegment name=\"top\" start=\"0xfffffff0+0x20\"/>\n"));
    ASSERT_TRUE(map);
    EXPECT_EQ(named(*map, "SEG")->address(), 0x1000u);
    EXPECT_EQ(named(*map, "offset")->address(), 0x1100u);
    EXPECT_EQ(named(*map, "sum")->address(), 0x23u); // the segment's address takes no part
    EXPECT_EQ(named(*map, "octal")->address(), 8u);
    EXPECT_EQ(named(*map, "binary")->address(), 5u);
    EXPECT_EQ(named(*map, "empty")->address(), 0u);
    EXPECT_EQ(named(*map, "inner")->address(), 0x1011u);
    EXPECT_EQ(named(*map, "reg")->address(), 0x1204u);
    // A register is no base for what it holds; fields count from 0.
    EXPECT_EQ(named(*map, "sub")->address(), 0x1208u);
    EXPECT_EQ(named(*map, "field")->address(), 3u);
    EXPECT_EQ(named(*map, "unresolved")->address(), 0u);
    EXPECT_EQ(named(*map, "inherits")->address(), 0x1002u);
    EXPECT_EQ(named(*map, "top")->address(), 0x10u); // kept in 32 bits
}

TEST(MemoryMapElementTest, PresenceAndSetters)
{
    auto map = mapFrom(memoryMapXml(
        "<MemorySegment name=\"S\" start=\"0x100\" size=\"\" access=\"ReadOnly\">\n"
        "  <ProgramSection name=\"x\" start=\"\" runin=\"\" load=\"yes\" inputsections=\"\"/>\n"
        "</MemorySegment>\n"));
    ASSERT_TRUE(map);
    MemoryMapElement *segment = map->getSegment("S");
    auto *section =
        map->getNamedElementOfType(map->getRoot(), "x", MemoryMapElement::ProgramSection);
    ASSERT_TRUE(section);
    // Some attributes count only when they aren't empty, the others when they exist at all.
    EXPECT_FALSE(segment->hasSize());
    EXPECT_FALSE(section->hasAddress());
    EXPECT_FALSE(section->hasInputSections());
    EXPECT_TRUE(section->hasRunIn());
    EXPECT_TRUE(section->hasLoad());
    EXPECT_FALSE(section->load()); // only "Yes" loads
    EXPECT_TRUE(segment->isReadOnly());
    EXPECT_FALSE(segment->isWriteOnly());

    section->setAddress(0x1fu);
    EXPECT_EQ(section->addressAsString(), "0x1f");
    section->setAddress(QStringLiteral("+0x10"));
    EXPECT_EQ(section->address(), 0x110u); // against the parent
    section->setAddress(QString());
    EXPECT_FALSE(section->hasAttribute("start"));
    EXPECT_EQ(section->address(), 0u);

    // A size that begins with a digit is a number, anything else a symbol.
    section->setSize(QStringLiteral("32"));
    EXPECT_EQ(section->sizeAsString(), "0x20");
    section->setSize(QStringLiteral("__STACKSIZE__"));
    EXPECT_EQ(section->sizeAsString(), "__STACKSIZE__");
    section->setSize(QString());
    EXPECT_FALSE(section->hasAttribute("size"));
    section->setAlignment(QStringLiteral("0b1000"));
    EXPECT_EQ(section->alignmentAsString(), "0x8");
    EXPECT_EQ(section->alignment(), 8u);
    section->setRunIn(QString());
    EXPECT_FALSE(section->hasRunIn());
    section->setLoad(true);
    EXPECT_TRUE(section->load());
    EXPECT_LT(section->cmp(*segment), 0);
}

TEST(MemoryMapElementTest, RegisterSizesAndExpressions)
{
    auto map = mapFrom(
        memoryMapXml("<Register name=\"r\" start=\"0x40\" register_type=\"unsigned short\">\n"
                     "  <BitField name=\"lo\" start=\"0\" size=\"4\"/>\n"
                     "  <BitField name=\"hi\" start=\"4\" register_type=\"char\"/>\n"
                     "</Register>\n"
                     "<Register name=\"sym\" start=\"@pc\" size=\"4\"/>\n"
                     "<Register name=\"int\" register_type=\"int\"/>\n"
                     "<Register name=\"float\" register_type=\"float\"/>\n"
                     "<Register name=\"byte\" register_type=\"signed char\" size=\"2\"/>\n"
                     "<Register name=\"none\"/>\n"));
    ASSERT_TRUE(map);
    EXPECT_EQ(named(*map, "r")->size(), 2u);
    EXPECT_EQ(named(*map, "int")->size(), 0u);
    EXPECT_EQ(named(*map, "float")->size(), 4u);
    EXPECT_EQ(named(*map, "hi")->size(), 8u);   // a type of no known width
    EXPECT_EQ(named(*map, "byte")->size(), 2u); // "size" wins over the type
    EXPECT_EQ(named(*map, "none")->size(), 0u);
    EXPECT_EQ(named(*map, "r")->getRegisterExpression(), "*(register 2 lo 0 4 hi 4 8;*)0x40");
    EXPECT_EQ(named(*map, "sym")->getRegisterExpression(), "(register 4;)@pc");
}
