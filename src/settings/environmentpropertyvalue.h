#pragma once

#include "properties/propertyvalue.h"

#include <QObject>

class EnvironmentSettings;

/// A user-level setting whose value lives in the settings store: read on first use, written
/// on every change.
class EnvironmentPropertyValue : public QObject, public PropertyValue
{
    Q_OBJECT

public:
    /// A value of `propertyClass` kept in the store of `settings`, which owns it.
    EnvironmentPropertyValue(EnvironmentSettings *settings, PropertyClass *propertyClass);

    /// The value, read from the store on the first call.
    QString propertyValue() const override;
    /// Stores `text`; if it differs from the present value, writes it to the store at once and
    /// emits `changed`.
    void setPropertyValue(const QString &text) override;
    /// Forgets the value and removes it from the store, so that the default applies again.
    void removePropertyValue();

signals:
    /// Emitted when a different value has been written.
    void changed(EnvironmentPropertyValue *value);

private:
    EnvironmentSettings *m_settings;
    mutable bool m_cached = false;
    mutable QString m_value;
};
