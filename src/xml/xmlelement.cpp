#include "xml/xmlelement.h"

#include <cstring>

XMLElement::XMLElement(const char *tagName)
    : m_tagName(tagName), m_attributes(PoolAllocator<Attribute>(ownerPool()))
{
}

XMLElement::~XMLElement() = default;

void XMLElement::setTagName(const char *tagName)
{
    m_tagName = tagName;
}

const char *XMLElement::tagName() const
{
    return m_tagName;
}

void XMLElement::setAttribute(const char *name, const char *value)
{
    for (Attribute &attribute : m_attributes) {
        if (std::strcmp(attribute.first, name) == 0) {
            attribute.second = value;
            return;
        }
    }
    m_attributes.emplace_back(name, value);
}

void XMLElement::removeAttribute(const char *name)
{
    for (auto it = m_attributes.begin(); it != m_attributes.end(); ++it) {
        if (std::strcmp(it->first, name) == 0) {
            m_attributes.erase(it);
            return;
        }
    }
}

bool XMLElement::hasAttribute(const char *name) const
{
    for (const Attribute &attribute : m_attributes)
        if (std::strcmp(attribute.first, name) == 0)
            return true;
    return false;
}

const char *XMLElement::attribute(const char *name) const
{
    for (const Attribute &attribute : m_attributes)
        if (std::strcmp(attribute.first, name) == 0)
            return attribute.second;
    return nullptr;
}

XMLElement::AttributeList &XMLElement::getAttributeList()
{
    return m_attributes;
}
