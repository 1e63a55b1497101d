#include "settings/armtarnbenchenvironmentsettings.h"
#include "settings/environmentpropertyvalue.h"
#include "settings/isolatedsettingsstore.h"

#include "properties/propertyvaluelist.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace {
const char toolRootKey[] = "Environment/Build/Tool Chain Root Directory";
const char macrosKey[] = "Environment/Macros/Global Macros";

/// The value of `saveName` as another program reading the store would see it.
QVariant stored(const char *saveName)
{
    return IsolatedSettingsStore::open()->value(EnvironmentSettings::rootKey() + saveName);
}
} // namespace

TEST(EnvironmentSettings, EachLayerRegistersItsEntriesAndReadingWritesNothing)
{
    IsolatedSettingsStore store;
    const auto count = [](const char *group) {
        PropertyValueList *list = EnvironmentSettings::registeredProperties(group);
        return list ? list->size() : 0;
    };
    const qsizetype before = count("Environment");
    {
        ARMTarnbenchEnvironmentSettings settings;
        settings.createEntries();
        EXPECT_EQ(settings.setting(toolRootKey), settings.toolChainRootDirectory());
        EXPECT_EQ(settings.toolChainRootDirectory()->toString(), "$(BenchDir)");
        EXPECT_NE(EnvironmentSettings::registeredProperties("Building")
                      ->find(settings.generateFPUOption()->propertyClass()),
                  nullptr);
        EXPECT_GT(count("Environment"), before);
    }
    EXPECT_EQ(count("Environment"), before) << "destroyed settings leave the registry";
    EXPECT_FALSE(QFileInfo::exists(store.storeFile()));
}

TEST(EnvironmentSettings, StoreIsReadOnceAndWrittenOnRealChanges)
{
    IsolatedSettingsStore store;
    {
        EnvironmentSettings first;
        first.createEntries();
        first.toolChainRootDirectory()->setValue("/opt/tools/bin");
        first.globalMacros()->setValue(QStringList({"A=1", "B=x;y"}));
    }
    // A list is kept as a list, readable by other programs.
    EXPECT_EQ(stored(toolRootKey).toString(), "/opt/tools/bin");
    EXPECT_EQ(stored(macrosKey).toStringList(), QStringList({"A=1", "B=x;y"}));

    EnvironmentSettings second;
    second.createEntries();
    QStringList written;
    QObject::connect(&second, &EnvironmentSettings::settingChanged,
                     [&](const QString &saveName) { written << saveName; });
    EnvironmentPropertyValue *root = second.toolChainRootDirectory();
    EXPECT_EQ(root->toString(), "/opt/tools/bin");
    EXPECT_EQ(second.globalMacros()->toStringList(), QStringList({"A=1", "B=x;y"}));
    store.open()->setValue(EnvironmentSettings::rootKey() + toolRootKey, "/else");
    EXPECT_EQ(root->toString(), "/opt/tools/bin") << "cached after the first read";
    root->setValue("/opt/tools/bin"); // equal to the present value: not written
    root->setValue("/new");
    root->setValue("/new");
    second.globalMacros()->setValue(QStringList());
    EXPECT_EQ(written, QStringList({toolRootKey, macrosKey}));

    EnvironmentSettings third;
    third.createEntries();
    EXPECT_EQ(third.toolChainRootDirectory()->toString(), "/new");
    EXPECT_TRUE(third.globalMacros()->toString().isEmpty()) << "not the default again";
    root->removePropertyValue();
    EXPECT_FALSE(stored(toolRootKey).isValid());
    store.open()->setValue(EnvironmentSettings::rootKey() + toolRootKey, "/later");
    EXPECT_EQ(root->toString(), "/later") << "read again after a removal";
}

TEST(EnvironmentSettings, HistoryKeepsTheTenLatestOnceEach)
{
    IsolatedSettingsStore store;
    EnvironmentSettings settings;
    settings.createEntries();
    EnvironmentPropertyValue *history = settings.globalMacros(); // any list setting will do
    for (int i = 1; i <= 11; ++i)
        EnvironmentSettings::addToHistoryStringList(history, QString::number(i));
    EnvironmentSettings::addToHistoryStringList(history, "5");
    EnvironmentSettings::addToHistoryStringList(history, "");
    EXPECT_EQ(history->toStringList(),
              QStringList({"5", "11", "10", "9", "8", "7", "6", "4", "3", "2"}));

    EnvironmentSettings::addToHistoryStringList(history, "", true);
    EnvironmentSettings::addToHistoryStringList(history, "with;semicolon");
    EnvironmentSettings reread;
    reread.createEntries();
    EXPECT_EQ(reread.globalMacros()->toStringList(true),
              QStringList({"with;semicolon", "", "5", "11", "10", "9", "8", "7", "6", "4"}));
}
