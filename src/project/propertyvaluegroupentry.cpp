#include "project/propertyvaluegroupentry.h"

#include "project/xmlchildren.h"
#include "xml/xmlelement.h"

QList<PropertyValueGroupEntry::TaggedItem>
PropertyValueGroupEntry::getTaggedItems(const QString &tag) const
{
    QList<TaggedItem> items;
    for (const XMLElement *item : childElements(m_element, tag))
        items.append({attributeText(item, "name"), attributeText(item, "value"),
                      attributeText(item, "configuration")});
    return items;
}

QStringList PropertyValueGroupEntry::getTaggedNames(const QString &tag) const
{
    QStringList names;
    for (const TaggedItem &item : getTaggedItems(tag))
        names.append(item.name);
    return names;
}

QString PropertyValueGroupEntry::getTaggedValue(const QString &tag, const QString &name,
                                                QString &configuration) const
{
    for (const TaggedItem &item : getTaggedItems(tag)) {
        if (item.name != name)
            continue;
        if (!item.configuration.isNull())
            configuration = item.configuration;
        return item.value;
    }
    return QString();
}
