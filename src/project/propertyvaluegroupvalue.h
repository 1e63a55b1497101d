#pragma once

#include "project/projectpropertyvalue.h"

class PropertyValueGroupClass;
class PropertyValueGroupEntry;

/// The choice of a property group for one element and configuration. Storing a choice also
/// stores the properties its entry lists; reading it reads the choice alone.
class PropertyValueGroupValue : public ProjectPropertyValue
{
public:
    /// The value of `groupClass` for `element` in `configuration`; transient.
    PropertyValueGroupValue(PropertyValueGroupClass *groupClass, ProjectElement *element,
                            const QString &configuration);

    /// Stores the entry `value` (the group's default if there is no such entry) and the
    /// properties of that entry.
    void setPropertyValue(const QString &value) override;
    /// As `setPropertyValue`; `fromTemplate` marks the stored attributes as a template's.
    void setPropertyValue(const QString &value, bool fromTemplate);
    /// Removes the choice and the properties of the default entry.
    void removeProperty();

    PropertyValueGroupClass *groupClass() const { return m_groupClass; }

private:
    /// The configuration an entry's item applies to: its own if it names one, else this
    /// value's.
    QString configurationFor(const QString &itemConfiguration) const;

    PropertyValueGroupClass *m_groupClass;
};
