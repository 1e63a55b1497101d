#include "settings/environmentsettings.h"

#include "foundation/product.h"
#include "properties/propertyclass.h"
#include "properties/propertyvaluelist.h"
#include "properties/stringlistcodec.h"
#include "settings/environmentpropertyvalue.h"

#include <QSettings>
#include <QStringList>

EnvironmentSettings *environment = nullptr;

namespace {
const int historyLength = 10;

/// The store shared with the interactive environment. Each use opens its own and syncs, so
/// that a value written is on disk before the next reader, in this process or another.
class SettingsStore : public QSettings
{
public:
    SettingsStore()
        : QSettings(QSettings::IniFormat, QSettings::UserScope, QString::fromLatin1(Get_OWNER()),
                    QString::fromLatin1(Get_BENCH_BRANDING()))
    {
    }
};

/// The settings groups, name to the values registered in it; the lists live until exit.
struct Registry
{
    QMap<QString, PropertyValueList *> lists;
    ~Registry() { qDeleteAll(lists); }
};

Registry &g_globalPropertySettings()
{
    static Registry registry;
    return registry;
}

bool isListType(const PropertyClass *propertyClass)
{
    return propertyClass->type() == PropertyClass::StringList ||
           propertyClass->type() == PropertyClass::DirPathList;
}

QString storeKey(const PropertyClass *propertyClass)
{
    return EnvironmentSettings::rootKey() + propertyClass->saveName();
}
} // namespace

EnvironmentSettings::EnvironmentSettings() = default;

EnvironmentSettings::~EnvironmentSettings()
{
    for (PropertyValueList *list : std::as_const(g_globalPropertySettings().lists)) {
        for (EnvironmentPropertyValue *value : m_values)
            list->removeAll(value);
    }
    qDeleteAll(m_values);
}

void EnvironmentSettings::createEntries()
{
    const QString group = QStringLiteral("Build Options");
    m_globalMacros = addEntry(
        QStringLiteral("Environment"),
        new PropertyClass(QStringLiteral("Environment/Macros/Global Macros"),
                          PropertyClass::StringList, group, QStringLiteral("Build Macros"),
                          QStringLiteral("Build macros that are shared across all solutions and "
                                         "projects e.g. paths to library files.")));
    m_toolChainRootDirectory = addEntry(
        QStringLiteral("Environment"),
        new PropertyClass(QStringLiteral("Environment/Build/Tool Chain Root Directory"),
                          PropertyClass::String, group, QStringLiteral("Toolchain Root Directory"),
                          QStringLiteral("Specifies where to find the toolchain (compilers etc)."),
                          QStringLiteral("$(BenchDir)")));
}

EnvironmentPropertyValue *EnvironmentSettings::addEntry(const QString &group,
                                                        PropertyClass *propertyClass)
{
    m_classes.emplace_back(propertyClass);
    auto *value = new EnvironmentPropertyValue(this, propertyClass);
    m_values.push_back(value);
    registerProperty(group, value);
    return value;
}

QString EnvironmentSettings::rootKey()
{
    return QLatin1Char('/') + QString::fromLatin1(Get_OWNER()) + QLatin1Char('/') +
           QString::fromLatin1(Get_BENCH_BRANDING()) + QLatin1Char('/');
}

QString EnvironmentSettings::readSetting(const PropertyClass *propertyClass) const
{
    SettingsStore store;
    const QString key = storeKey(propertyClass);
    if (!store.contains(key))
        return propertyClass->defaultValue();
    const QVariant value = store.value(key);
    if (isListType(propertyClass))
        return joinStringList(value.toStringList());
    return value.toString();
}

void EnvironmentSettings::writeSetting(const PropertyClass *propertyClass, const QString &value)
{
    {
        SettingsStore store;
        const QString key = storeKey(propertyClass);
        if (!isListType(propertyClass))
            store.setValue(key, value);
        else if (value.isEmpty())
            store.setValue(key, QStringList());
        else
            store.setValue(key, splitStringList(value, true));
        store.sync();
    }
    emit settingChanged(propertyClass->saveName());
}

void EnvironmentSettings::removeSetting(const PropertyClass *propertyClass) const
{
    SettingsStore store;
    store.remove(storeKey(propertyClass));
    store.sync();
}

void EnvironmentSettings::registerProperty(const QString &group, EnvironmentPropertyValue *value)
{
    PropertyValueList *&list = g_globalPropertySettings().lists[group];
    if (!list)
        list = new PropertyValueList;
    list->appendUnique(value);
}

PropertyValueList *EnvironmentSettings::registeredProperties(const QString &group)
{
    return g_globalPropertySettings().lists.value(group);
}

void EnvironmentSettings::addToHistoryStringList(EnvironmentPropertyValue *property,
                                                 const QString &entry, bool allowEmpty)
{
    if (entry.isEmpty() && !allowEmpty)
        return;
    const QString text = property->propertyValue();
    QStringList history = text.isEmpty() ? QStringList() : splitStringList(text, true);
    history.removeAll(entry);
    history.prepend(entry);
    while (history.size() > historyLength)
        history.removeLast();
    property->setValue(history);
}

EnvironmentPropertyValue *EnvironmentSettings::setting(const QString &saveName) const
{
    for (EnvironmentPropertyValue *value : m_values) {
        if (value->propertyClass()->saveName() == saveName)
            return value;
    }
    return nullptr;
}
