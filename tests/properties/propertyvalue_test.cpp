#include "properties/propertyclass.h"
#include "properties/propertyvaluelist.h"
#include "properties/simplepropertyvalue.h"
#include "xml/xmlelement.h"

#include <QColor>
#include <QRect>
#include <gtest/gtest.h>

namespace {
QStringList warnings;

/// Collects warnings in `warnings` while installed.
void catchWarning(QtMsgType, const QMessageLogContext &, const QString &message)
{
    warnings << message;
}

/// A value that counts its destructions, to see who deletes it.
struct TrackedValue : SimplePropertyValue
{
    TrackedValue(PropertyClass *propertyClass, bool transient, int &deletions)
        : SimplePropertyValue(propertyClass), deletions(deletions)
    {
        setTransient(transient);
    }
    ~TrackedValue() override { ++deletions; }
    int &deletions;
};
} // namespace

TEST(PropertyClass, DefaultsAndLimitsBecomeText)
{
    EXPECT_EQ(PropertyClass("b", PropertyClass::Boolean, "", "", "").defaultValue(), "No");
    EXPECT_EQ(PropertyClass("n", PropertyClass::Integer, -4, 64, "", "", "", -2).defaultValue(),
              "-2");
    EXPECT_EQ(PropertyClass("o", "", "", "", true, {"Off", "On"}).defaultValue(), "On");
    EXPECT_EQ(PropertyClass("c", "", "", "", QColor(255, 0, 16)).defaultValue(), "#ff0010");

    XMLElement full("property");
    full.setAttribute("type", "Enumeration");
    full.setAttribute("maximum", "1024");
    full.setAttribute("enumeration", ";a;;b;");
    PropertyClass fromXml(&full);
    EXPECT_EQ(fromXml.type(), PropertyClass::Enumeration);
    EXPECT_EQ(fromXml.maximum(), 1024);
    EXPECT_EQ(fromXml.enumerates(), QStringList({"a", "b"}));

    XMLElement sparse("property");
    sparse.setAttribute("type", "string"); // keywords are case-sensitive
    PropertyClass plain(&sparse);
    EXPECT_EQ(plain.type(), PropertyClass::Boolean);
    EXPECT_TRUE(plain.defaultValue().isNull()) << "the XML form has no implicit default";
}

TEST(PropertyValue, BindingToAClassTakesItsDefaultAndAccess)
{
    PropertyClass locked("c_locked", PropertyClass::String, "", "", "", "fallback");
    locked.setReadOnly(true);
    SimplePropertyValue value(nullptr, "given");
    value.setVisible(false);
    value.setPropertyClass(&locked);
    EXPECT_EQ(value.toString(), "fallback");
    EXPECT_TRUE(value.visible());
    EXPECT_TRUE(value.readOnly());
    value.setPropertyClass(nullptr); // ignored
    EXPECT_EQ(value.propertyClass(), &locked);
}

TEST(PropertyValue, BooleansAndIntegersGoByTheEnumerates)
{
    PropertyClass yesNo("b", PropertyClass::Boolean, "", "", "");
    PropertyClass offOn("o", "", "", "", false, {"Off", "On"});
    PropertyClass level("e", PropertyClass::Enumeration, {"Low", "Mid", "High"}, "", "", "", "Mid");
    PropertyClass number("n", PropertyClass::Integer, 0, 100, "", "", "", 42);
    // An empty text reads the default; a text that isn't one of the class's own states is read
    // as text ("Yes" for an Off/On class); numbers are decimal only.
    const std::tuple<PropertyClass *, const char *, bool, int> cases[] = {
        {&yesNo, "", false, 0},        {&yesNo, "Yes", true, 1}, {&yesNo, "TRUE", true, 0},
        {&yesNo, "yes", true, 0},      {&yesNo, "on", false, 0}, {&offOn, "On", true, 1},
        {&offOn, "Off", false, 0},     {&offOn, "Yes", true, 0}, {&level, "", true, 1},
        {&level, "Extreme", false, 0}, {&number, "", false, 42}, {&number, "0x10", false, 0},
        {&number, "-17", false, -17}};
    for (const auto &[propertyClass, text, asBool, asInt] : cases) {
        const SimplePropertyValue value(propertyClass, text);
        EXPECT_EQ(value.toBool(), asBool) << text;
        EXPECT_EQ(value.toInt(), asInt) << text;
    }
}

TEST(PropertyValue, ListsColoursAndRectanglesRoundTrip)
{
    PropertyClass listClass("l", PropertyClass::StringList, "", "", "", "d1;d2");
    SimplePropertyValue list(&listClass);
    EXPECT_EQ(list.toStringList(), QStringList({"d1", "d2"}));
    list.setValue(QStringList({"a;b", "c\\", ""}));
    EXPECT_EQ(list.toString(), "a\\;b;c\\\\;");
    EXPECT_EQ(list.toStringList(true), QStringList({"a;b", "c\\", ""}));

    SimplePropertyValue colour(nullptr);
    colour.setValue(QColor());
    EXPECT_EQ(colour.toString(), "Automatic");
    EXPECT_FALSE(colour.toColor().isValid());

    PropertyClass rectClass("r", PropertyClass::Custom, "", "", "", "1,2,3,4");
    SimplePropertyValue rect(&rectClass);
    EXPECT_EQ(rect.toRect(), QRect()) << "the default isn't consulted";
    rect.setValue(QRect(-5, 6, 70, 80));
    EXPECT_EQ(rect.toString(), "-5,6,70,80");
    EXPECT_EQ(rect.toRect(), QRect(-5, 6, 70, 80));
    for (const char *bad : {"1,2,3", "1,2,x,4", "1,2,3,4,5"}) {
        rect.setValue(bad);
        EXPECT_EQ(rect.toRect(), QRect()) << bad;
    }
}

TEST(PropertyValue, NumbersSetOnTheWrongTypeWarnAndChangeNothing)
{
    PropertyClass level("e", PropertyClass::Enumeration, {"Low", "High"}, "", "", "", "Low");
    PropertyClass text("s", PropertyClass::String, "", "", "");
    PropertyClass offOn("o", "", "", "", false, {"Off", "On"});
    SimplePropertyValue choice(&level, "High");
    SimplePropertyValue words(&text, "keep");
    SimplePropertyValue state(&offOn);
    warnings.clear();
    qInstallMessageHandler(catchWarning);
    choice.setValue(0);
    EXPECT_EQ(choice.toString(), "Low");
    state.setValue(true);
    EXPECT_EQ(state.toString(), "On");
    words.setValue(7);
    words.setValue(false);
    EXPECT_EQ(words.toString(), "keep");
    choice.setValue(2);
    EXPECT_TRUE(choice.toString().isNull());
    choice.setValue(true); // warns, then goes on as setValue(1)
    EXPECT_EQ(choice.toString(), "High");
    qInstallMessageHandler(nullptr);
    const QString nonInteger = "PropertyValue::setValue(int): Setting a non-integer property";
    const QString nonBoolean = "PropertyValue::setValue(int): Setting a non-Boolean property";
    EXPECT_EQ(warnings, QStringList({nonInteger, nonBoolean, nonInteger,
                                     "PropertyValue::setValue(int): Setting an enumeration to a "
                                     "value which isn't in its enumerates",
                                     nonBoolean}));
}

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
        list.appendUnique(&kept);
        list.appendUnique(&duplicate); // same class: ignored, stays ours
        list.appendUnique(new TrackedValue(&second, true, deletions));
        EXPECT_EQ(list.size(), 2);
        EXPECT_EQ(list.find(&first), &kept);
        warnings.clear();
        qInstallMessageHandler(catchWarning);
        list.appendUnique(nullptr);
        list.appendUnique(&classless);
        qInstallMessageHandler(nullptr);
        EXPECT_EQ(warnings,
                  QStringList(2, "Bad property value in PropertyValueList::appendUnique"));
    }
    EXPECT_EQ(deletions, 1) << "only the transient value the list held";
}
