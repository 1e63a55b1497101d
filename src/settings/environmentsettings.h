#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <memory>
#include <vector>

class EnvironmentPropertyValue;
class PropertyClass;
class PropertyValueList;

/// The user-level configuration shared by the whole tool set: settings that belong to the user
/// rather than to a project, each kept in the settings store.
class EnvironmentSettings : public QObject
{
    Q_OBJECT

public:
    /// Settings without entries; `createEntries` makes them.
    EnvironmentSettings();
    ~EnvironmentSettings() override;
    Q_DISABLE_COPY(EnvironmentSettings)

    /// Makes the settings of this layer; overrides call the base first.
    virtual void createEntries();

    /// The prefix of every key in the store: "/", owner, "/", branding, "/".
    static QString rootKey();
    /// The value of `propertyClass` in the store, or its default if the store has none.
    QString readSetting(const PropertyClass *propertyClass) const;
    /// Writes `value` for `propertyClass` to the store and emits `settingChanged`.
    void writeSetting(const PropertyClass *propertyClass, const QString &value);
    /// Removes the value of `propertyClass` from the store.
    void removeSetting(const PropertyClass *propertyClass) const;

    /// Adds `value` to the list of the settings group `group`, made on demand.
    static void registerProperty(const QString &group, EnvironmentPropertyValue *value);
    /// The values registered under `group`, or null if there are none.
    static PropertyValueList *registeredProperties(const QString &group);
    /// Puts `entry` at the front of the list in `property`, without a duplicate, keeping at
    /// most ten entries. An empty entry is ignored unless `allowEmpty` is set.
    static void addToHistoryStringList(EnvironmentPropertyValue *property, const QString &entry,
                                       bool allowEmpty = false);

    /// The setting saved as `saveName`, or null if there is none.
    EnvironmentPropertyValue *setting(const QString &saveName) const;
    /// "Environment/Macros/Global Macros": the user's global macros, "name=value" each.
    EnvironmentPropertyValue *globalMacros() const { return m_globalMacros; }
    /// "Environment/Build/Tool Chain Root Directory": where the tools are found.
    EnvironmentPropertyValue *toolChainRootDirectory() const { return m_toolChainRootDirectory; }

signals:
    /// Emitted after a value has been written to the store.
    void settingChanged(const QString &saveName);

protected:
    /// Makes a setting of `propertyClass`, owned by this object, and registers it under `group`.
    EnvironmentPropertyValue *addEntry(const QString &group, PropertyClass *propertyClass);

private:
    std::vector<std::unique_ptr<PropertyClass>> m_classes;
    std::vector<EnvironmentPropertyValue *> m_values;
    EnvironmentPropertyValue *m_globalMacros = nullptr;
    EnvironmentPropertyValue *m_toolChainRootDirectory = nullptr;
};

/// The one settings object of the process; made by `main`, null before.
extern EnvironmentSettings *environment;
