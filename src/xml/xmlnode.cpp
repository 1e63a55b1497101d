#include "xml/xmlnode.h"

#include <cstring>

XMLNode::~XMLNode() = default;

void XMLNode::appendChild(XMLNode *child)
{
    child->parent = this;
    child->nextSibling = nullptr;
    if (!firstChild) {
        firstChild = child;
        return;
    }
    XMLNode *last = firstChild;
    while (last->nextSibling)
        last = last->nextSibling;
    last->nextSibling = child;
}

void XMLNode::prependChild(XMLNode *child)
{
    child->parent = this;
    child->nextSibling = firstChild;
    firstChild = child;
}

void XMLNode::removeChild(XMLNode *child)
{
    for (XMLNode **link = &firstChild; *link; link = &(*link)->nextSibling) {
        if (*link == child) {
            *link = child->nextSibling;
            return;
        }
    }
}

void XMLNode::replaceChild(XMLNode *oldChild, XMLNode *newChild)
{
    for (XMLNode **link = &firstChild; *link; link = &(*link)->nextSibling) {
        if (*link == oldChild) {
            newChild->parent = this;
            newChild->nextSibling = oldChild->nextSibling;
            *link = newChild;
            return;
        }
    }
}

void XMLNode::reparentChildrenAfter(XMLNode *after, XMLNode *firstNew)
{
    if (!firstNew)
        return;
    XMLNode *lastNew = firstNew;
    for (;;) {
        lastNew->parent = this;
        if (!lastNew->nextSibling)
            break;
        lastNew = lastNew->nextSibling;
    }
    XMLNode **link = &firstChild;
    while (*link && *link != after)
        link = &(*link)->nextSibling;
    if (*link) // `after` is a child: insert behind it
        link = &after->nextSibling;
    lastNew->nextSibling = *link;
    *link = firstNew;
}

const char *XMLNode::mkString(const char *text, unsigned int length)
{
    if (!Pool::currentPool)
        Pool::currentPool = new Pool;
    char *copy = static_cast<char *>(Pool::currentPool->allocate(length + 1));
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}
