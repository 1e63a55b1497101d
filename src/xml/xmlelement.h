#pragma once

#include "xml/xmlnode.h"

#include <list>
#include <utility>

/// An element: a tag name and attributes in the order they were first set.
/// Names and values are held by pointer and must outlive the element.
class XMLElement : public XMLNode
{
public:
    using Attribute = std::pair<const char *, const char *>;
    using AttributeList = std::list<Attribute, PoolAllocator<Attribute>>;

    explicit XMLElement(const char *tagName = nullptr);
    ~XMLElement() override;

    /// Sets the tag name pointer.
    virtual void setTagName(const char *tagName);
    /// The tag name.
    virtual const char *tagName() const;
    /// Replaces the value of attribute `name`, or appends a new one.
    virtual void setAttribute(const char *name, const char *value);
    /// Removes attribute `name` if there is one.
    virtual void removeAttribute(const char *name);
    /// Whether attribute `name` exists.
    virtual bool hasAttribute(const char *name) const;
    /// The value of attribute `name`, or null.
    virtual const char *attribute(const char *name) const;
    /// The attributes, in order.
    virtual AttributeList &getAttributeList();

private:
    const char *m_tagName;
    AttributeList m_attributes;
};
