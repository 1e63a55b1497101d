#include "project/projectpropertyvalue.h"

#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "properties/propertyclass.h"

ProjectPropertyValue::ProjectPropertyValue(PropertyClass *propertyClass,
                                           const QString &configuration, ProjectElement *element)
    : PropertyValue(propertyClass), m_element(element), m_configuration(configuration)
{
    setTransient(true);
}

bool ProjectPropertyValue::readOnly() const
{
    if (PropertyValue::readOnly())
        return true;
    if (propertyClass()->perConfiguration())
        return false;
    return m_configuration != ProjectElement::commonConfiguration();
}

bool ProjectPropertyValue::inherited() const
{
    const ProjectElement *child = m_element->getConfigurationElement(m_configuration);
    return !child || !child->hasAttribute(propertyClass()->saveName());
}

void ProjectPropertyValue::setPropertyValue(const QString &value)
{
    projectSystem->setProperty(m_element, propertyClass(), m_configuration, value, false);
}

QString ProjectPropertyValue::propertyValue() const
{
    if (propertyClass()->type() == PropertyClass::StringList) {
        const ProjectElement *child = m_element->getConfigurationElement(m_configuration);
        return child ? child->attribute(propertyClass()->saveName()) : QString();
    }
    return projectSystem->settingFor(m_element, propertyClass(), m_configuration, nullptr);
}
