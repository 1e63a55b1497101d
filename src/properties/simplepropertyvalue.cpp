#include "properties/simplepropertyvalue.h"

SimplePropertyValue::SimplePropertyValue(PropertyClass *propertyClass)
    : SimplePropertyValue(propertyClass, QString())
{
}

SimplePropertyValue::SimplePropertyValue(PropertyClass *propertyClass, const QString &value)
    : PropertyValue(propertyClass), m_value(value)
{
    setReadOnly(true);
    setTransient(true);
}

void SimplePropertyValue::setPropertyValue(const QString &value)
{
    m_value = value;
}

QString SimplePropertyValue::propertyValue() const
{
    return m_value;
}
