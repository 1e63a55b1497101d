#include "settings/environmentpropertyvalue.h"

#include "settings/environmentsettings.h"

EnvironmentPropertyValue::EnvironmentPropertyValue(EnvironmentSettings *settings,
                                                   PropertyClass *propertyClass)
    : QObject(settings), PropertyValue(propertyClass), m_settings(settings)
{
}

QString EnvironmentPropertyValue::propertyValue() const
{
    if (!m_cached) {
        m_value = m_settings->readSetting(propertyClass());
        m_cached = true;
    }
    return m_value;
}

void EnvironmentPropertyValue::setPropertyValue(const QString &text)
{
    if (text == propertyValue()) {
        m_value = text;
        return;
    }
    m_value = text;
    m_settings->writeSetting(propertyClass(), text);
    emit changed(this);
}

void EnvironmentPropertyValue::removePropertyValue()
{
    m_cached = false;
    m_settings->removeSetting(propertyClass());
}
