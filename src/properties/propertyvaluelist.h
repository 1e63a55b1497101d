#pragma once

#include <QList>

class PropertyClass;
class PropertyValue;

/// A list of values. It owns, and deletes with itself, the values that are transient.
class PropertyValueList : public QList<PropertyValue *>
{
public:
    /// An empty list, transient or not.
    explicit PropertyValueList(bool transient = false);
    ~PropertyValueList();
    PropertyValueList(const PropertyValueList &) = delete;
    PropertyValueList &operator=(const PropertyValueList &) = delete;

    /// The flag given to the constructor.
    bool transient() const { return m_transient; }
    /// The first value of `propertyClass`, or null.
    PropertyValue *find(const PropertyClass *propertyClass) const;
    /// Appends `value` unless a value of its class is already listed; a value that isn't
    /// appended stays its creator's to free. A null value or one without a class is refused
    /// with a warning.
    void appendUnique(PropertyValue *value);

private:
    bool m_transient;
};
