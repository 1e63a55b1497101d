#pragma once

#include "properties/propertyvalue.h"

#include <QString>

class ProjectElement;

/// A value of a setting bound to one element and one configuration: reading it resolves the
/// setting as the build would, writing it stores it in that configuration of the element.
class ProjectPropertyValue : public PropertyValue
{
public:
    /// A transient value of `propertyClass` for `element` in `configuration`.
    ProjectPropertyValue(PropertyClass *propertyClass, const QString &configuration,
                         ProjectElement *element);

    /// Read-only if the class says so, or if the setting is kept in "Common" alone and another
    /// configuration is shown.
    bool readOnly() const override;
    /// True unless the element's own configuration holds the setting.
    bool inherited() const override;
    void setPropertyValue(const QString &value) override;
    /// A list setting shows the element's own value; others the resolved value.
    QString propertyValue() const override;

    ProjectElement *element() const { return m_element; }
    QString configuration() const { return m_configuration; }

private:
    ProjectElement *m_element;
    QString m_configuration;
};
