#include "macros/macrosystem.h"
#include "settings/environmentpropertyvalue.h"
#include "settings/environmentsettings.h"
#include "settings/isolatedsettingsstore.h"

#include <QDate>
#include <gtest/gtest.h>

using MacroMap = MacroSystem::MacroMap;

TEST(MacroSystem, ExpandsReferences)
{
    const MacroMap macros = {{"A", "1"}, {"Empty", ""}, {"R", "$(A)"}, {"C", "$(Missing:$(A))"}};
    const std::pair<const char *, const char *> cases[] = {
        {"$(Missing)", "$(Missing)"}, // unknown, no default: left as it stands
        {"$(Missing:abc)", "abc"},
        {"$(Missing:)", ""},
        {"$(Missing:a:b)", "a:b"}, // the name ends at the first ":"
        {"$(A:ignored)", "1"},
        {"$(Missing:(b))", "(b)"},   // parentheses balance
        {"$(a)", "$(a)"},            // names are case-sensitive
        {"$$(A)x$(Empty)$", "$1x$"}, // "$" not followed by "(" is plain
        {"$(A", "(A"},               // unclosed: the "$" goes, the rest stays
        {"x$(A $(A)", "x(A 1"},
        // A value's own references are expanded only when the text had a reference within a
        // reference, which asks for a second pass.
        {"$(R)", "$(A)"},
        {"$(R) $(Missing:$(A))", "1 1"},
        {"$(C)", "$(Missing:$(A))"},
        {"$(R$(A))", "$(R$(A))"}, // the name is looked up as it stands
    };
    for (const auto &[text, expanded] : cases)
        EXPECT_EQ(macroSystem.replaceMacros(macros, text), QString(expanded)) << text;

    EXPECT_TRUE(macroSystem.replaceMacros(macros, QString()).isNull());
    EXPECT_FALSE(macroSystem.replaceMacros(macros, "$(Empty)").isNull());
}

TEST(MacroSystem, SystemMacrosAreComputedWhenUsed)
{
    EXPECT_EQ(macroSystem.systemMacro("Date"), "");
    const QString before = QDate::currentDate().toString("d MMMM yyyy");
    const QString date = macroSystem.replaceMacros(macroSystem.systemMacros(), "$(Date)");
    EXPECT_TRUE(date == before || date == QDate::currentDate().toString("d MMMM yyyy"));
    EXPECT_EQ(macroSystem.replaceMacros(macroSystem.systemMacros(), "$(Time)").count(':'), 2);
}

TEST(MacroSystem, ListEncodings)
{
    EXPECT_EQ(MacroSystem::stringFromStringList({"a;b", "c\\"}), "a\\;b;c\\\\");
    EXPECT_TRUE(MacroSystem::stringFromStringList({}).isNull());
    EXPECT_EQ(MacroSystem::stringListFromString("", true), QStringList({""}));
    EXPECT_EQ(MacroSystem::stringListFromString(";a;;b;", false), QStringList({"a", "b"}));
    EXPECT_EQ(MacroSystem::stringListFromString("\\x\\", false), QStringList({"x\\"}));
    const QStringList awkward = {"", "\\", ";", "\\;", "a b", "", "end\\"};
    EXPECT_EQ(MacroSystem::stringListFromString(MacroSystem::stringFromStringList(awkward), true),
              awkward);

    EXPECT_EQ(macroSystem.macrosFromStringList({"A=b=c", "Flag", "A2=1", "A2=2", "=v"}),
              MacroMap({{"A", "b=c"}, {"Flag", ""}, {"A2", "2"}, {"", "v"}}));
    EXPECT_EQ(macroSystem.stringListFromMacros({{" B ", "x = y"}, {"A", ""}}),
              QStringList({"B=x = y", "A="})); // " B " sorts first
}

TEST(MacroSystem, GlobalMacrosLiveInTheSettings)
{
    EXPECT_TRUE(macroSystem.globalMacros(false).isEmpty()); // no settings object yet
    macroSystem.setGlobalMacro("Ignored", "1");

    IsolatedSettingsStore store;
    EnvironmentSettings settings;
    settings.createEntries();
    environment = &settings;
    macroSystem.setGlobalMacro("X", "1");
    macroSystem.setGlobalMacro("A", "b=c");
    macroSystem.setGlobalMacro("P", "a;b\\c");
    EXPECT_EQ(settings.globalMacros()->toStringList(), QStringList({"A=b=c", "P=a;b\\c", "X=1"}));

    macroSystem.setGlobalMacro("X", "");
    macroSystem.setGlobalMacro("P", QString());
    EnvironmentSettings later;
    later.createEntries();
    EXPECT_EQ(later.globalMacros()->toStringList(), QStringList({"A=b=c"}));

    const QString systemPlatform = macroSystem.systemMacro("Platform");
    macroSystem.setSystemMacro("Platform", "arm");
    macroSystem.setGlobalMacro("Platform", "mine");
    EXPECT_EQ(macroSystem.globalMacros(true).value("Platform"), "mine");
    EXPECT_TRUE(macroSystem.globalMacros(true).contains("Date"));
    EXPECT_EQ(macroSystem.globalMacros(false), MacroMap({{"A", "b=c"}, {"Platform", "mine"}}));
    macroSystem.setSystemMacro("Platform", systemPlatform);
    environment = nullptr;
}

// Macro sets and texts meant to make expansion run away: each must end with a bounded result.

TEST(MacroHostile, SelfReferencesEndWithinBounds)
{
    // Changes back and forth on every pass.
    const QString swung = macroSystem.replaceMacros({{"A", "$(Z:$(A))"}}, "$(A)$(Z:$(A))");
    EXPECT_TRUE(swung == "$(A)$(Z:$(A))" || swung == "$(Z:$(A))$(A)") << swung.toStdString();

    // Grows by one character on every pass: stopped by the number of passes.
    const QString growing = macroSystem.replaceMacros({{"A", "x$(Z:$(A))"}}, "$(A)$(Z:$(A))");
    EXPECT_GT(growing.size(), 100);
    EXPECT_LT(growing.size(), 1000);

    // Grows by a factor on every pass: stopped by length long before memory runs out.
    const QString exploding = macroSystem.replaceMacros({{"A", "$(A)$(Z:$(A))"}}, "$(A)$(Z:$(A))");
    EXPECT_GT(exploding.size(), 1000);
    EXPECT_LT(exploding.size(), 64 << 20);
}

TEST(MacroHostile, HugeTexts)
{
    // One huge value referenced many times in a single pass is refused whole...
    const QString many = QString("$(H)").repeated(1 << 10);
    EXPECT_EQ(macroSystem.replaceMacros({{"H", QString(1 << 20, 'h')}}, many), many);
    // ...but the bound is on growth: a large text of its own still expands.
    const QString large(2 << 20, QLatin1Char('x'));
    EXPECT_EQ(macroSystem.replaceMacros({{"A", "1"}}, large + "$(A)"), large + "1");

    // Many unclosed references must not make the scan quadratic.
    const QString unclosed = QString("$(").repeated(200000);
    EXPECT_EQ(macroSystem.replaceMacros({}, unclosed), QString("(").repeated(200000));
}
