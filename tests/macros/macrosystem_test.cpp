#include "macros/macrosystem.h"
#include "settings/environmentpropertyvalue.h"
#include "settings/environmentsettings.h"
#include "settings/isolatedsettingsstore.h"

#include <QDate>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {
using MacroMap = MacroSystem::MacroMap;

/// Makes a settings object the process's `environment` while it lives.
class GlobalMacroStore
{
public:
    GlobalMacroStore()
    {
        settings.createEntries();
        environment = &settings;
    }
    ~GlobalMacroStore() { environment = nullptr; }
    QStringList storedList() const { return settings.globalMacros()->toStringList(); }

    IsolatedSettingsStore store;
    EnvironmentSettings settings;
};
} // namespace

TEST(MacroSystem, ReferenceSyntax)
{
    const MacroMap macros = {{"A", "1"}, {"X", "1"}, {"Empty", ""}, {"Path", "/p"}};
    const struct
    {
        const char *text;
        const char *expanded;
    } cases[] = {
        {"$(Missing)", "$(Missing)"}, // unknown, no default: left as it stands
        {"$(Missing:abc)", "abc"},    // default
        {"$(Missing:)", ""},          // empty default
        {"$(Missing:a:b)", "a:b"},    // the name ends at the first ":"
        {"$(A:ignored)", "1"},        // a defined macro wins over the default
        {"$$(X)", "$1"},              // "$" not followed by "(" is plain
        {"$(A)b", "1b"},              //
        {"$(A", "(A"},                // unclosed: the "$" goes, the rest stays
        {"a$", "a$"},                 //
        {"$", "$"},                   //
        {"$(Missing:(b))", "(b)"},    // parentheses balance
        {"$(a)", "$(a)"},             // names are case-sensitive
        {"$(Empty)x", "x"},           //
        {"$(Path)/$(A).o", "/p/1.o"}, //
        {"no references", "no references"},
        {"x$(A $(A)", "x(A 1"}, // the unclosed scan saw a "$": a second pass, which changes nothing
    };
    for (const auto &c : cases)
        EXPECT_EQ(macroSystem.replaceMacros(macros, c.text), QString(c.expanded)) << c.text;

    EXPECT_TRUE(macroSystem.replaceMacros(macros, QString()).isNull());
    EXPECT_FALSE(macroSystem.replaceMacros(macros, "$(Empty)").isNull());
}

TEST(MacroSystem, SecondPassOnlyForReferencesWithinReferences)
{
    const MacroMap macros = {{"A", "$(B)"}, {"B", "2"}, {"C", "$(Missing:$(B))"}};
    EXPECT_EQ(macroSystem.replaceMacros(macros, "$(A)"), "$(B)");
    EXPECT_EQ(macroSystem.replaceMacros(macros, "$(Missing:$(B))"), "2");
    EXPECT_EQ(macroSystem.replaceMacros(macros, "$(A) $(Missing:$(B))"), "2 2");
    EXPECT_EQ(macroSystem.replaceMacros(macros, "$(C)"), "$(Missing:$(B))");
    // The name is looked up as it stands, and an unmatched one gives the same text again.
    EXPECT_EQ(macroSystem.replaceMacros(macros, "$(A$(B))"), "$(A$(B))");
    EXPECT_EQ(macroSystem.replaceMacros({{"A$(B)", "whole"}}, "$(A$(B))"), "whole");
}

TEST(MacroSystem, SelfReferenceEndsWithinBounds)
{
    QElapsedTimer timer;
    timer.start();
    // Changes back and forth on every pass.
    const MacroMap swinging = {{"A", "$(Z:$(A))"}};
    const QString swung = macroSystem.replaceMacros(swinging, "$(A)$(Z:$(A))");
    EXPECT_TRUE(swung == "$(A)$(Z:$(A))" || swung == "$(Z:$(A))$(A)") << swung.toStdString();

    // Grows by one character on every pass.
    const QString growing = macroSystem.replaceMacros({{"A", "x$(Z:$(A))"}}, "$(A)$(Z:$(A))");
    EXPECT_GT(growing.size(), 100);
    EXPECT_LT(growing.size(), 1000);

    // Grows by a factor on every pass; stopped by length long before memory runs out.
    const QString exploding = macroSystem.replaceMacros({{"A", "$(A)$(Z:$(A))"}}, "$(A)$(Z:$(A))");
    EXPECT_GT(exploding.size(), 1000);
    EXPECT_LT(exploding.size(), 64 << 20);

    // One huge value referenced many times in a single pass.
    const QString huge(1 << 20, QLatin1Char('h'));
    const QString many = QString("$(H)").repeated(1 << 10);
    EXPECT_EQ(macroSystem.replaceMacros({{"H", huge}}, many), many);

    // The bound is on growth: a large text of its own still expands.
    const QString large(2 << 20, QLatin1Char('x'));
    EXPECT_EQ(macroSystem.replaceMacros({{"A", "1"}}, large + "$(A)"), large + "1");

    // Many unclosed references don't make the scan quadratic.
    const QString unclosed = QString("$(").repeated(200000);
    EXPECT_EQ(macroSystem.replaceMacros({}, unclosed), QString("(").repeated(200000));
    EXPECT_LT(timer.elapsed(), 20000);
}

TEST(MacroSystem, DynamicAndSystemMacros)
{
    EXPECT_EQ(macroSystem.systemMacro("Date"), "");
    EXPECT_TRUE(macroSystem.systemMacro("NoSuchMacro").isNull());
    const QString before = QDate::currentDate().toString("d MMMM yyyy");
    const QString date = macroSystem.replaceMacros(macroSystem.systemMacros(), "$(Date)");
    EXPECT_TRUE(date == before || date == QDate::currentDate().toString("d MMMM yyyy"));
    EXPECT_EQ(macroSystem.replaceMacros({}, "$(Date)"), "$(Date)");
    EXPECT_TRUE(QRegularExpression("^\\d\\d:\\d\\d:\\d\\d$")
                    .match(macroSystem.replaceMacros(macroSystem.systemMacros(), "$(Time)"))
                    .hasMatch());
    QString value;
    EXPECT_FALSE(MacroSystem::dynamicMacro("date", value));

    MacroSystem local;
    local.setSystemMacro("Platform", "arm");
    local.setSystemMacro("Platform", "ARM");
    EXPECT_EQ(local.systemMacro("Platform"), "ARM");
    EXPECT_EQ(local.systemMacros().keys(), QStringList({"Date", "Platform", "Time"}));
    EXPECT_EQ(local.overwriteMacros({{"A", "1"}, {"B", "2"}}, {{"B", "3"}, {"C", "4"}}),
              MacroMap({{"A", "1"}, {"B", "3"}, {"C", "4"}}));
}

TEST(MacroSystem, ListEncodings)
{
    EXPECT_EQ(MacroSystem::escape("a;b\\c"), "a\\;b\\\\c");
    EXPECT_EQ(MacroSystem::stringFromStringList({"a;b", "c\\"}), "a\\;b;c\\\\");
    EXPECT_EQ(MacroSystem::stringListFromString("a\\;b;c\\\\", false), QStringList({"a;b", "c\\"}));
    EXPECT_TRUE(MacroSystem::stringFromStringList({}).isNull());
    EXPECT_TRUE(MacroSystem::stringListFromString("", false).isEmpty());
    EXPECT_EQ(MacroSystem::stringListFromString("", true), QStringList({""}));
    EXPECT_EQ(MacroSystem::stringListFromString(";a;;b;", false), QStringList({"a", "b"}));
    EXPECT_EQ(MacroSystem::stringListFromString(";a;;b;", true),
              QStringList({"", "a", "", "b", ""}));
    EXPECT_EQ(MacroSystem::stringListFromString("\\x\\", false), QStringList({"x\\"}));

    const QStringList awkward = {"", "\\", ";", "\\;", "a b", "", "end\\"};
    EXPECT_EQ(MacroSystem::stringListFromString(MacroSystem::stringFromStringList(awkward), true),
              awkward);

    const MacroMap fromList =
        macroSystem.macrosFromStringList({"A=b=c", "Flag", "A2=1", "A2=2", "=v"});
    EXPECT_EQ(fromList, MacroMap({{"A", "b=c"}, {"Flag", ""}, {"A2", "2"}, {"", "v"}}));
    EXPECT_EQ(macroSystem.stringListFromMacros({{" B ", "x = y"}, {"A", ""}}),
              QStringList({"B=x = y", "A="})); // " B " sorts first
}

TEST(MacroSystem, GlobalMacrosLiveInTheSettings)
{
    EXPECT_TRUE(macroSystem.globalMacros(false).isEmpty()); // no settings object yet
    macroSystem.setGlobalMacro("Ignored", "1");

    GlobalMacroStore store;
    macroSystem.setGlobalMacro("X", "1");
    macroSystem.setGlobalMacro("A", "b=c");
    macroSystem.setGlobalMacro("Path", "a;b\\c");
    EXPECT_EQ(store.storedList(), QStringList({"A=b=c", "Path=a;b\\c", "X=1"}));
    EXPECT_EQ(macroSystem.globalMacro("A"), "b=c");
    EXPECT_EQ(macroSystem.globalMacro("Path"), "a;b\\c");

    macroSystem.setGlobalMacro("X", "");
    macroSystem.setGlobalMacro("Path", QString());
    macroSystem.setGlobalMacro("NeverSet", "");
    EXPECT_EQ(store.storedList(), QStringList({"A=b=c"}));
    EXPECT_TRUE(macroSystem.globalMacro("X").isEmpty());

    // A later settings object sees the same list in the store.
    EnvironmentSettings later;
    later.createEntries();
    EXPECT_EQ(later.globalMacros()->toStringList(), QStringList({"A=b=c"}));

    const QString systemPlatform = macroSystem.systemMacro("Platform");
    macroSystem.setSystemMacro("Platform", "arm");
    macroSystem.setGlobalMacro("Platform", "mine");
    EXPECT_EQ(macroSystem.globalMacros(true).value("Platform"), "mine");
    EXPECT_EQ(macroSystem.globalMacros(false), MacroMap({{"A", "b=c"}, {"Platform", "mine"}}));
    EXPECT_TRUE(macroSystem.globalMacros(true).contains("Date"));
    macroSystem.setSystemMacro("Platform", systemPlatform);
}
