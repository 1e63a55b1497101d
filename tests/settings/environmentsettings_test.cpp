#include "settings/armtarnbenchenvironmentsettings.h"
#include "settings/environmentpropertyvalue.h"
#include "settings/isolatedsettingsstore.h"

#include "properties/propertyclass.h"
#include "properties/propertyvaluelist.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace {
const char globalMacrosKey[] = "Environment/Macros/Global Macros";
const char toolRootKey[] = "Environment/Build/Tool Chain Root Directory";

QString key(const char *saveName)
{
    return EnvironmentSettings::rootKey() + QString::fromLatin1(saveName);
}

/// Counts the signals of one value and of its settings object.
struct SignalCounts
{
    SignalCounts(EnvironmentSettings &settings, EnvironmentPropertyValue *value)
    {
        QObject::connect(value, &EnvironmentPropertyValue::changed,
                         [this, value](EnvironmentPropertyValue *sender) {
                             EXPECT_EQ(sender, value);
                             ++changed;
                         });
        QObject::connect(&settings, &EnvironmentSettings::settingChanged,
                         [this](const QString &saveName) { written.append(saveName); });
    }
    int changed = 0;
    QStringList written;
};
} // namespace

TEST(EnvironmentSettings, EntriesOfEachLayer)
{
    IsolatedSettingsStore store;
    ARMTarnbenchEnvironmentSettings settings;
    settings.createEntries();

    EXPECT_EQ(EnvironmentSettings::rootKey(),
              QString("/%1/%2/").arg(Get_OWNER(), Get_BENCH_BRANDING()));
    ASSERT_NE(settings.toolChainRootDirectory(), nullptr);
    EXPECT_EQ(settings.toolChainRootDirectory()->toString(), "$(BenchDir)");
    EXPECT_EQ(settings.setting(toolRootKey), settings.toolChainRootDirectory());
    EXPECT_EQ(settings.globalMacros()->propertyClass()->type(), PropertyClass::StringList);
    EXPECT_TRUE(settings.globalMacros()->toStringList().isEmpty());
    EXPECT_NE(settings.setting("Environment/Build/Show Command Lines"), nullptr);
    EXPECT_EQ(settings.setting("No/Such/Setting"), nullptr);

    EXPECT_FALSE(settings.generate15CommandLine()->toBool());
    EXPECT_TRUE(settings.generateFPUOption()->toBool());
    EXPECT_EQ(settings.generateFPUOption()->toString(), "Yes");
    EXPECT_EQ(settings.installDirectory15()->propertyClass()->type(), PropertyClass::DirPath);
    EXPECT_EQ(settings.generateFPUOption()->propertyClass()->group(), "Compatibility Options");

    PropertyValueList *building = EnvironmentSettings::registeredProperties("Building");
    ASSERT_NE(building, nullptr);
    EXPECT_EQ(building->size(), 3);
    EXPECT_NE(building->find(settings.generateFPUOption()->propertyClass()), nullptr);
    EXPECT_NE(EnvironmentSettings::registeredProperties("Environment")
                  ->find(settings.globalMacros()->propertyClass()),
              nullptr);
    EXPECT_FALSE(QFileInfo::exists(store.storeFile())); // reading writes nothing
}

TEST(EnvironmentSettings, StoreRoundTripAcrossObjects)
{
    IsolatedSettingsStore store;
    {
        EnvironmentSettings first;
        first.createEntries();
        first.toolChainRootDirectory()->setValue("/opt/tools/bin");
        first.globalMacros()->setValue(QStringList({"A=1", "B=x;y"}));
    }
    // The file lies where XDG_CONFIG_HOME puts it, and a list is kept as a list.
    ASSERT_TRUE(QFileInfo::exists(store.storeFile()));
    auto direct = IsolatedSettingsStore::open();
    EXPECT_EQ(direct->value(key(toolRootKey)).toString(), "/opt/tools/bin");
    EXPECT_EQ(direct->value(key(globalMacrosKey)).toStringList(), QStringList({"A=1", "B=x;y"}));

    EnvironmentSettings second;
    second.createEntries();
    EXPECT_EQ(second.toolChainRootDirectory()->toString(), "/opt/tools/bin");
    EXPECT_EQ(second.globalMacros()->toStringList(), QStringList({"A=1", "B=x;y"}));

    // An emptied list stays empty rather than falling back to the default.
    second.globalMacros()->setValue(QStringList());
    EnvironmentSettings third;
    third.createEntries();
    EXPECT_TRUE(third.globalMacros()->toString().isEmpty());

    third.toolChainRootDirectory()->removePropertyValue();
    EXPECT_EQ(third.toolChainRootDirectory()->toString(), "$(BenchDir)");
    EXPECT_FALSE(IsolatedSettingsStore::open()->contains(key(toolRootKey)));
}

TEST(EnvironmentPropertyValue, ReadsOnceAndWritesOnlyRealChanges)
{
    IsolatedSettingsStore store;
    EnvironmentSettings settings;
    settings.createEntries();
    EnvironmentPropertyValue *root = settings.toolChainRootDirectory();
    SignalCounts counts(settings, root);

    EXPECT_EQ(root->toString(), "$(BenchDir)");
    IsolatedSettingsStore::open()->setValue(key(toolRootKey), "/elsewhere");
    EXPECT_EQ(root->toString(), "$(BenchDir)"); // cached after the first read

    root->setValue("$(BenchDir)"); // equal to the present value
    EXPECT_EQ(counts.changed, 0);
    EXPECT_TRUE(counts.written.isEmpty());
    EXPECT_EQ(IsolatedSettingsStore::open()->value(key(toolRootKey)).toString(), "/elsewhere");

    root->setValue("/new");
    root->setValue("/new");
    EXPECT_EQ(counts.changed, 1);
    EXPECT_EQ(counts.written, QStringList({toolRootKey}));
    EXPECT_EQ(IsolatedSettingsStore::open()->value(key(toolRootKey)).toString(), "/new");

    // After a removal the store is read again.
    root->removePropertyValue();
    IsolatedSettingsStore::open()->setValue(key(toolRootKey), "/later");
    EXPECT_EQ(root->toString(), "/later");
}

TEST(EnvironmentSettings, HistoryListRules)
{
    IsolatedSettingsStore store;
    EnvironmentSettings settings;
    settings.createEntries();
    EnvironmentPropertyValue *history = settings.globalMacros(); // any list setting will do

    for (int i = 1; i <= 10; ++i)
        EnvironmentSettings::addToHistoryStringList(history, QString::number(i));
    QStringList expected;
    for (int i = 10; i >= 1; --i)
        expected << QString::number(i);
    EXPECT_EQ(history->toStringList(), expected);

    EnvironmentSettings::addToHistoryStringList(history, "11");
    expected.prepend("11");
    expected.removeLast();
    EXPECT_EQ(history->toStringList(), expected); // the oldest, "1", went

    EnvironmentSettings::addToHistoryStringList(history, "5");
    expected.removeAll("5");
    expected.prepend("5");
    EXPECT_EQ(history->toStringList(), expected);

    EnvironmentSettings::addToHistoryStringList(history, "");
    EXPECT_EQ(history->toStringList(), expected);
    EnvironmentSettings::addToHistoryStringList(history, "", true);
    EXPECT_EQ(history->toStringList(true).first(), "");
    EXPECT_EQ(history->toStringList(true).size(), 10);

    EnvironmentSettings::addToHistoryStringList(history, "with;semicolon");
    EnvironmentSettings reread;
    reread.createEntries();
    EXPECT_EQ(reread.globalMacros()->toStringList(true).first(), "with;semicolon");
    EXPECT_EQ(reread.globalMacros()->toStringList(true).at(1), "");
}

TEST(EnvironmentSettings, DestroyedSettingsLeaveTheRegistry)
{
    IsolatedSettingsStore store;
    const auto count = [] {
        PropertyValueList *list = EnvironmentSettings::registeredProperties("Environment");
        return list ? list->size() : 0;
    };
    const qsizetype before = count();
    {
        TarnbenchEnvironmentSettings settings;
        settings.createEntries();
        EXPECT_EQ(count(), before + 9);
    }
    EXPECT_EQ(count(), before);
}
