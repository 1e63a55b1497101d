#pragma once

#include "project/propertyvaluegroupentry.h"
#include "properties/propertyclass.h"

class XMLElement;

/// A property group as a setting: an enumeration, saved under the group's "name", whose
/// choices are the group's entries.
class PropertyValueGroupClass : public PropertyClass
{
public:
    /// The group described by the `group` element `element`, which must outlive the class.
    explicit PropertyValueGroupClass(XMLElement *element);

    /// The `group` element.
    XMLElement *element() const { return m_element; }
    /// The first entry named `name`, or a null entry.
    PropertyValueGroupEntry getGroupEntry(const QString &name) const;

private:
    XMLElement *m_element;
};
