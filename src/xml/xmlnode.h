#pragma once

#include "xml/poolobject.h"

/// A node of an XML tree: children form a singly linked list through nextSibling.
class XMLNode : public PoolObject
{
public:
    XMLNode() = default;
    ~XMLNode() override;

    /// Links `child` behind the last child and makes this node its parent.
    virtual void appendChild(XMLNode *child);
    /// Puts `child` in front of the children, without looking at its old links.
    virtual void prependChild(XMLNode *child);
    /// Unlinks `child` from the children; its own links stay as they were.
    virtual void removeChild(XMLNode *child);
    /// Puts `newChild` where `oldChild` stands, taking over its parent and nextSibling.
    virtual void replaceChild(XMLNode *oldChild, XMLNode *newChild);
    /// Inserts the sibling chain from `firstNew` behind the child `after`, or at the
    /// end if `after` is null or no child of this node.
    virtual void reparentChildrenAfter(XMLNode *after, XMLNode *firstNew);

    /// A copy of `length` bytes of `text`, terminated, in the current pool.
    static const char *mkString(const char *text, unsigned int length);

    XMLNode *parent = nullptr;
    XMLNode *nextSibling = nullptr;
    XMLNode *firstChild = nullptr;
};
