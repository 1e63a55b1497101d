#include "memorymaptesting.h"

namespace {

/// Each element below the root as "name=value", `value` in hexadecimal, joined by blanks.
template <typename Value>
QString listed(const MemoryMap &map, Value (MemoryMapElement::*value)() const)
{
    QStringList list;
    for (const MemoryMapElement *element : map.getAllElements().mid(1))
        list << element->name() + QLatin1Char('=') + QString::number((element->*value)(), 16);
    return list.join(QLatin1Char(' '));
}

} // namespace

TEST(MemoryMapElementTest, AddressFormsPresenceAndSettersThatConvert)
{
    auto map = mapFrom(memoryMapXml(R"(<MemorySegment name="SEG" start="0x1000" size="0x1000">
  <ProgramSection name="offset" start="+0x100"/><ProgramSection name="sum" start="0x20+0x3"/>
  <ProgramSection name="empty" start="" runin="" load="yes" inputsections=""/>
  <ProgramSection name="nested" start="+0x10"><ProgramSection name="inner" start="+1"/>
  </ProgramSection><RegisterGroup name="group" start="+0x200"><Register name="reg" start="+4">
    <BitField name="field" start="+3"/><Register name="sub" start="+8"/></Register></RegisterGroup>
  <Processor name="unresolved" start="0x55"/><MemorySegment name="nostart" size="">
    <ProgramSection name="inherits" start="+2"/></MemorySegment>
</MemorySegment>
<MemorySegment name="top" start="0xfffffff0+0x20"/>
)"));
    ASSERT_TRUE(map);
    // A sum takes no part of the enclosing address; a register is no base for what it holds
    // and its fields count from 0; a processor's address is not resolved; an element without
    // a start has none but passes the enclosing one on; sums keep 32 bits.
    EXPECT_EQ(listed(*map, &MemoryMapElement::address),
              "SEG=1000 offset=1100 sum=23 empty=0 nested=1010 inner=1011 group=1200 reg=1204 "
              "field=3 sub=1208 unresolved=0 nostart=0 inherits=1002 top=10");

    // Some attributes count only when they aren't empty, the others when they exist at all.
    const MemoryMapElement *empty = map->getAllElements().value(4);
    MemoryMapElement *segment = map->getSegment("nostart");
    EXPECT_FALSE(empty->hasAddress() || empty->hasInputSections() || segment->hasSize());
    EXPECT_TRUE(empty->hasRunIn() && empty->hasLoad());
    EXPECT_FALSE(empty->load()); // only "Yes" loads
    // A relative address is resolved against the parent; a size that begins with a digit is
    // a number, anything else a symbol.
    segment->setAddress(QStringLiteral("+0x10"));
    EXPECT_EQ(segment->address(), 0x1010u);
    segment->setSize(QStringLiteral("32"));
    EXPECT_EQ(segment->sizeAsString(), "0x20");
    segment->setSize(QStringLiteral("__STACKSIZE__"));
    EXPECT_EQ(segment->sizeAsString(), "__STACKSIZE__");
}

TEST(MemoryMapElementTest, RegisterSizesAndExpressions)
{
    // "hi" has a type of no known width; "byte" has a size, which wins over the type.
    auto map =
        mapFrom(memoryMapXml(R"(<Register name="r" start="0x40" register_type="unsigned short">
  <BitField name="lo" start="0" size="4"/><BitField name="hi" start="4" register_type="char"/>
</Register><Register name="sym" start="@pc" size="4"/><Register name="int" register_type="int"/>
<Register name="byte" register_type="signed char" size="2"/>
)"));
    ASSERT_TRUE(map);
    EXPECT_EQ(listed(*map, &MemoryMapElement::size), "r=2 lo=4 hi=8 sym=4 int=0 byte=2");
    const MemoryMap::ElementList all = map->getAllElements();
    EXPECT_EQ(all[1]->getRegisterExpression(), "*(register 2 lo 0 4 hi 4 8;*)0x40");
    EXPECT_EQ(all[4]->getRegisterExpression(), "(register 4;)@pc");
}
