#include "properties/propertyvaluelist.h"

#include "properties/propertyvalue.h"

PropertyValueList::PropertyValueList(bool transient) : m_transient(transient) {}

PropertyValueList::~PropertyValueList()
{
    for (PropertyValue *value : std::as_const(*this)) {
        if (value->transient())
            delete value;
    }
}

PropertyValue *PropertyValueList::find(const PropertyClass *propertyClass) const
{
    for (PropertyValue *value : *this) {
        if (value->propertyClass() == propertyClass)
            return value;
    }
    return nullptr;
}

void PropertyValueList::appendUnique(PropertyValue *value)
{
    if (!value || !value->propertyClass()) {
        qWarning("Bad property value in PropertyValueList::appendUnique");
        return;
    }
    if (!find(value->propertyClass()))
        append(value);
}
