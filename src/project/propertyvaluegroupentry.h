#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class XMLElement;

/// One entry of a property group: the `groupEntry` element whose tagged items say what
/// choosing the entry sets. A null entry stands for "no such entry" and has no items.
class PropertyValueGroupEntry
{
public:
    /// One tagged item of an entry; `configuration` is null unless the item names one.
    struct TaggedItem
    {
        QString name;
        QString value;
        QString configuration;
    };

    /// The entry of the `groupEntry` element `element`; null for a null element.
    explicit PropertyValueGroupEntry(XMLElement *element = nullptr) : m_element(element) {}

    /// True for the entry that stands for none.
    bool isNull() const { return m_element == nullptr; }
    /// The `groupEntry` element, or null.
    XMLElement *element() const { return m_element; }

    /// The items tagged `tag`, in document order.
    QList<TaggedItem> getTaggedItems(const QString &tag) const;
    /// The names of the items tagged `tag`, in document order.
    QStringList getTaggedNames(const QString &tag) const;
    /// The value of the first item tagged `tag` with that name, or a null string. If the item
    /// names a configuration it is copied to `configuration`, which otherwise stays.
    QString getTaggedValue(const QString &tag, const QString &name, QString &configuration) const;

private:
    XMLElement *m_element;
};
