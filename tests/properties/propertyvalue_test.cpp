#include "properties/propertyclass.h"
#include "properties/propertyclasslist.h"
#include "properties/propertyvaluelist.h"
#include "properties/simplepropertyvalue.h"
#include "xml/xmlelement.h"

#include <QColor>
#include <QFont>
#include <QRect>
#include <gtest/gtest.h>

namespace {

/// Collects the warnings issued while it lives.
class WarningCatcher
{
public:
    WarningCatcher() : previous(qInstallMessageHandler(&WarningCatcher::handle))
    {
        caught().clear();
    }
    ~WarningCatcher() { qInstallMessageHandler(previous); }
    QStringList warnings() const { return caught(); }

private:
    static QStringList &caught()
    {
        static QStringList messages;
        return messages;
    }
    static void handle(QtMsgType, const QMessageLogContext &, const QString &message)
    {
        caught().append(message);
    }
    QtMessageHandler previous;
};

const QString nonInteger = "PropertyValue::setValue(int): Setting a non-integer property";
const QString outOfRange = "PropertyValue::setValue(int): Setting an enumeration to a value which "
                           "isn't in its enumerates";
const QString nonBoolean = "PropertyValue::setValue(int): Setting a non-Boolean property";

} // namespace

TEST(PropertyClass, ConstructorsSetTypeDefaultAndFlags)
{
    PropertyClass flag("c_flag", PropertyClass::Boolean, "Code", "Flag", "A flag");
    EXPECT_EQ(flag.defaultValue(), "No");
    EXPECT_EQ(flag.enumerates(), QStringList({"No", "Yes"}));
    EXPECT_FALSE(flag.readOnly());
    EXPECT_TRUE(flag.perConfiguration());
    EXPECT_EQ(flag.editor(), nullptr);

    PropertyClass text("c_text", PropertyClass::String, "Code", "Text", "A text");
    EXPECT_TRUE(text.defaultValue().isNull());
    EXPECT_TRUE(text.enumerates().isEmpty());

    PropertyClass number("c_size", PropertyClass::IntegerRange, -4, 64, "Code", "Size", "", -2);
    EXPECT_EQ(number.defaultValue(), "-2");
    EXPECT_EQ(number.minimum(), -4);
    EXPECT_EQ(number.maximum(), 64);

    PropertyClass onOff("c_on", "Code", "On", "", true, {"Off", "On"});
    EXPECT_EQ(onOff.type(), PropertyClass::Boolean);
    EXPECT_EQ(onOff.defaultValue(), "On");
    EXPECT_EQ(PropertyClass("c_on", "Code", "On", "", false, {"Off", "On"}).defaultValue(), "Off");

    PropertyClass choice("c_level", PropertyClass::Enumeration, {"Low", "High"}, "Code", "", "",
                         "High");
    EXPECT_EQ(choice.enumerates(), QStringList({"Low", "High"}));
    EXPECT_EQ(choice.defaultValue(), "High");

    PropertyClass colour("e_colour", "Editor", "Colour", "", QColor(255, 0, 16));
    EXPECT_EQ(colour.type(), PropertyClass::Color);
    EXPECT_EQ(colour.defaultValue(), "#ff0010");
}

TEST(PropertyClass, XmlFormReadsItsAttributes)
{
    XMLElement full("property");
    full.setAttribute("name", "linker_heap_size");
    full.setAttribute("type", "Enumeration");
    full.setAttribute("group", "Linker");
    full.setAttribute("short", "Heap");
    full.setAttribute("long", "Heap size");
    full.setAttribute("default", "128");
    full.setAttribute("minimum", "8");
    full.setAttribute("maximum", "1024");
    full.setAttribute("enumeration", ";a;;b;");
    PropertyClass fromXml(&full);
    EXPECT_EQ(fromXml.saveName(), "linker_heap_size");
    EXPECT_EQ(fromXml.type(), PropertyClass::Enumeration);
    EXPECT_EQ(fromXml.group(), "Linker");
    EXPECT_EQ(fromXml.shortDescription(), "Heap");
    EXPECT_EQ(fromXml.longDescription(), "Heap size");
    EXPECT_EQ(fromXml.defaultValue(), "128");
    EXPECT_EQ(fromXml.minimum(), 8);
    EXPECT_EQ(fromXml.maximum(), 1024);
    EXPECT_EQ(fromXml.enumerates(), QStringList({"a", "b"}));

    XMLElement sparse("property");
    sparse.setAttribute("name", "x");
    sparse.setAttribute("type", "boolean"); // keywords are case-sensitive
    PropertyClass plain(&sparse);
    EXPECT_EQ(plain.type(), PropertyClass::Boolean);
    EXPECT_TRUE(plain.defaultValue().isNull());
    EXPECT_EQ(plain.minimum(), 0);
    EXPECT_EQ(plain.enumerates(), QStringList({"No", "Yes"}));

    PropertyClass::Type type = PropertyClass::Boolean;
    EXPECT_TRUE(PropertyClass::typeFromName("FixedPitchFont", type));
    EXPECT_EQ(type, 15);
}

TEST(PropertyValue, ConstructionAndBinding)
{
    PropertyClass locked("c_locked", PropertyClass::String, "", "", "", "fallback");
    locked.setReadOnly(true);
    PropertyClass open("c_open", PropertyClass::String, "", "", "", "start");

    SimplePropertyValue unbound(nullptr);
    EXPECT_TRUE(unbound.readOnly());
    EXPECT_TRUE(unbound.transient());
    EXPECT_TRUE(unbound.visible());
    EXPECT_TRUE(unbound.inherited());
    EXPECT_TRUE(unbound.toString().isNull());

    SimplePropertyValue value(&open, "given");
    EXPECT_EQ(value.toString(), "given");
    value.setVisible(false);
    value.setPropertyClass(&locked);
    EXPECT_EQ(value.propertyClass(), &locked);
    EXPECT_EQ(value.toString(), "fallback");
    EXPECT_TRUE(value.visible());
    value.setPropertyClass(nullptr); // ignored
    EXPECT_EQ(value.propertyClass(), &locked);
}

TEST(PropertyValue, BooleanAndIntegerConversions)
{
    PropertyClass yesNo("b", PropertyClass::Boolean, "", "", "");
    SimplePropertyValue flag(&yesNo);
    EXPECT_FALSE(flag.toBool()); // empty value, default "No"
    EXPECT_EQ(flag.toInt(), 0);
    for (const char *text : {"Yes", "TRUE", "1", "yes"}) {
        flag.setValue(text);
        EXPECT_TRUE(flag.toBool()) << text;
    }
    for (const char *text : {"No", "on", "2", "0"}) {
        flag.setValue(text);
        EXPECT_FALSE(flag.toBool()) << text;
    }

    PropertyClass offOn("o", "", "", "", false, {"Off", "On"});
    SimplePropertyValue state(&offOn, "On");
    EXPECT_TRUE(state.toBool());
    EXPECT_EQ(state.toInt(), 1);
    state.setValue("Off");
    EXPECT_FALSE(state.toBool());
    state.setValue("Yes"); // not a state name: read as text
    EXPECT_TRUE(state.toBool());
    EXPECT_EQ(state.toInt(), 0);

    PropertyClass level("e", PropertyClass::Enumeration, {"Low", "Mid", "High"}, "", "", "", "Mid");
    SimplePropertyValue choice(&level);
    EXPECT_EQ(choice.toInt(), 1);
    choice.setValue("Extreme");
    EXPECT_EQ(choice.toInt(), 0);

    PropertyClass number("n", PropertyClass::Integer, 0, 100, "", "", "", 42);
    SimplePropertyValue count(&number);
    EXPECT_EQ(count.toInt(), 42);
    count.setValue("0x10"); // decimal only
    EXPECT_EQ(count.toInt(), 0);
    count.setValue("-17");
    EXPECT_EQ(count.toInt(), -17);
}

TEST(PropertyValue, ListColourFontAndRectangle)
{
    PropertyClass listClass("l", PropertyClass::StringList, "", "", "", "d1;d2");
    SimplePropertyValue list(&listClass);
    EXPECT_EQ(list.toStringList(), QStringList({"d1", "d2"}));
    list.setValue(QStringList({"a;b", "c\\", ""}));
    EXPECT_EQ(list.toString(), "a\\;b;c\\\\;");
    EXPECT_EQ(list.toStringList(), QStringList({"a;b", "c\\"}));
    EXPECT_EQ(list.toStringList(true), QStringList({"a;b", "c\\", ""}));

    PropertyClass colourClass("c", "", "", "", QColor(0, 0, 255));
    SimplePropertyValue colour(&colourClass);
    EXPECT_EQ(colour.toColor(), QColor(0, 0, 255));
    colour.setValue(QColor());
    EXPECT_EQ(colour.toString(), "Automatic");
    EXPECT_FALSE(colour.toColor().isValid());
    colour.setValue(QColor(Qt::red));
    EXPECT_EQ(colour.toString(), "#ff0000");

    PropertyClass fontClass("f", PropertyClass::Font, "", "", "");
    SimplePropertyValue font(&fontClass);
    QFont fallback("Fallback Sans", 13);
    EXPECT_EQ(font.toFont(fallback), fallback);
    QFont mono("Mono", 9);
    mono.setBold(true);
    font.setValue(mono);
    EXPECT_EQ(font.toString(), mono.toString());
    EXPECT_EQ(font.toFont(fallback).toString(), mono.toString());

    PropertyClass rectClass("r", PropertyClass::Custom, "", "", "", "1,2,3,4");
    SimplePropertyValue rect(&rectClass);
    EXPECT_EQ(rect.toRect(), QRect()); // the default isn't consulted
    rect.setValue(QRect(-5, 6, 70, 80));
    EXPECT_EQ(rect.toString(), "-5,6,70,80");
    EXPECT_EQ(rect.toRect(), QRect(-5, 6, 70, 80));
    for (const char *bad : {"1,2,3", "1,2,x,4", "1,2,3,4,5", ""}) {
        rect.setValue(bad);
        EXPECT_EQ(rect.toRect(), QRect()) << bad;
    }
    EXPECT_EQ(QRect().right(), -1);
}

TEST(PropertyValue, SetValueNumbersAndWarnings)
{
    PropertyClass level("e", PropertyClass::Enumeration, {"Low", "High"}, "", "", "", "Low");
    PropertyClass number("n", PropertyClass::Integer, "", "", "");
    PropertyClass text("s", PropertyClass::String, "", "", "");
    PropertyClass offOn("o", "", "", "", false, {"Off", "On"});
    SimplePropertyValue choice(&level, "High");
    SimplePropertyValue count(&number);
    SimplePropertyValue words(&text, "keep");
    SimplePropertyValue state(&offOn);

    WarningCatcher catcher;
    choice.setValue(0);
    EXPECT_EQ(choice.toString(), "Low");
    count.setValue(-3);
    EXPECT_EQ(count.toString(), "-3");
    state.setValue(true);
    EXPECT_EQ(state.toString(), "On");
    EXPECT_TRUE(catcher.warnings().isEmpty());

    words.setValue(7);
    EXPECT_EQ(words.toString(), "keep");
    choice.setValue(2);
    EXPECT_TRUE(choice.toString().isNull());
    EXPECT_EQ(catcher.warnings(), QStringList({nonInteger, outOfRange}));

    SimplePropertyValue enumAsBool(&level);
    enumAsBool.setValue(true); // warns, then goes on as setValue(1)
    EXPECT_EQ(enumAsBool.toString(), "High");
    words.setValue(false);
    EXPECT_EQ(words.toString(), "keep");
    EXPECT_EQ(catcher.warnings().mid(2), QStringList({nonBoolean, nonBoolean, nonInteger}));
}

namespace {
/// A value that records its destruction, to see who deletes it.
class TrackedValue : public SimplePropertyValue
{
public:
    TrackedValue(PropertyClass *propertyClass, bool transient, int &deletions)
        : SimplePropertyValue(propertyClass), deletions(deletions)
    {
        setTransient(transient);
    }
    ~TrackedValue() override { ++deletions; }
    int &deletions;
};
} // namespace

TEST(PropertyValueList, AppendUniqueFindAndOwnership)
{
    PropertyClass first("a", PropertyClass::String, "", "", "");
    PropertyClass second("b", PropertyClass::String, "", "", "");
    int deletions = 0;
    TrackedValue kept(&first, false, deletions);
    TrackedValue duplicate(&first, true, deletions);
    SimplePropertyValue classless(nullptr);
    {
        PropertyValueList list(true);
        EXPECT_TRUE(list.transient());
        list.appendUnique(&kept);
        list.appendUnique(&duplicate); // same class: ignored, stays ours
        list.appendUnique(new TrackedValue(&second, true, deletions));
        EXPECT_EQ(list.size(), 2);
        EXPECT_EQ(list.find(&first), &kept);
        EXPECT_EQ(list.find(&second)->propertyClass(), &second);

        WarningCatcher catcher;
        list.appendUnique(nullptr);
        list.appendUnique(&classless);
        EXPECT_EQ(list.size(), 2);
        EXPECT_EQ(catcher.warnings(),
                  QStringList(2, "Bad property value in PropertyValueList::appendUnique"));
    }
    EXPECT_EQ(deletions, 1); // only the transient value the list held

    PropertyClassList classes;
    classes.appendUnique(&first);
    classes.appendUnique(&second);
    classes.appendUnique(&first);
    EXPECT_EQ(classes, PropertyClassList() << &first << &second);
}
