#include "project/propertyvaluegroupclass.h"

#include "project/xmlchildren.h"
#include "xml/xmlelement.h"

namespace {

const QString &groupEntryTag()
{
    static const QString tag = QStringLiteral("groupEntry");
    return tag;
}

QStringList entryNames(const XMLElement *group)
{
    QStringList names;
    for (const XMLElement *entry : childElements(group, groupEntryTag()))
        names.append(attributeText(entry, "name"));
    return names;
}

} // namespace

PropertyValueGroupClass::PropertyValueGroupClass(XMLElement *element)
    : PropertyClass(attributeText(element, "name"), Enumeration, entryNames(element),
                    attributeText(element, "group"), attributeText(element, "short"),
                    attributeText(element, "long"), attributeText(element, "default")),
      m_element(element)
{
}

PropertyValueGroupEntry PropertyValueGroupClass::getGroupEntry(const QString &name) const
{
    for (XMLElement *entry : childElements(m_element, groupEntryTag())) {
        if (attributeText(entry, "name") == name)
            return PropertyValueGroupEntry(entry);
    }
    return PropertyValueGroupEntry();
}
