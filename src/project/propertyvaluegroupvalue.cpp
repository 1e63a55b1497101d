#include "project/propertyvaluegroupvalue.h"

#include "project/projectsystem.h"
#include "project/propertyvaluegroupclass.h"

namespace {

const QString &propertyTag()
{
    static const QString tag = QStringLiteral("property");
    return tag;
}

} // namespace

PropertyValueGroupValue::PropertyValueGroupValue(PropertyValueGroupClass *groupClass,
                                                 ProjectElement *element,
                                                 const QString &configuration)
    : ProjectPropertyValue(groupClass, configuration, element), m_groupClass(groupClass)
{
}

void PropertyValueGroupValue::setPropertyValue(const QString &value)
{
    setPropertyValue(value, false);
}

void PropertyValueGroupValue::setPropertyValue(const QString &value, bool fromTemplate)
{
    QString choice = value;
    PropertyValueGroupEntry entry = m_groupClass->getGroupEntry(choice);
    if (entry.isNull()) {
        choice = m_groupClass->defaultValue();
        entry = m_groupClass->getGroupEntry(choice);
    }
    projectSystem->setProperty(element(), m_groupClass, configuration(), choice, fromTemplate);
    for (const auto &item : entry.getTaggedItems(propertyTag()))
        projectSystem->setProperty(element(), item.name, configurationFor(item.configuration),
                                   item.value, fromTemplate);
}

void PropertyValueGroupValue::removeProperty()
{
    projectSystem->removeProperty(element(), m_groupClass, configuration());
    const PropertyValueGroupEntry entry = m_groupClass->getGroupEntry(m_groupClass->defaultValue());
    for (const auto &item : entry.getTaggedItems(propertyTag()))
        projectSystem->removeProperty(element(), item.name, configurationFor(item.configuration));
}

QString PropertyValueGroupValue::configurationFor(const QString &itemConfiguration) const
{
    return itemConfiguration.isNull() ? configuration() : itemConfiguration;
}
