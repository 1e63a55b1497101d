#pragma once

#include "properties/propertyvalue.h"

/// A value that holds its text itself; transient, so the list that holds it owns it.
class SimplePropertyValue : public PropertyValue
{
public:
    /// A null value of `propertyClass`.
    explicit SimplePropertyValue(PropertyClass *propertyClass);
    /// The value `value` of `propertyClass`.
    SimplePropertyValue(PropertyClass *propertyClass, const QString &value);

    void setPropertyValue(const QString &value) override;
    QString propertyValue() const override;

private:
    QString m_value;
};
