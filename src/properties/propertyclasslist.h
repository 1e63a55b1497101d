#pragma once

#include <QList>

class PropertyClass;

/// A list of settings; it doesn't own them, they live as long as their catalogues.
class PropertyClassList : public QList<PropertyClass *>
{
public:
    /// Appends `propertyClass` unless that very pointer is already listed.
    void appendUnique(PropertyClass *propertyClass);
};
