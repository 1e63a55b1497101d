#pragma once

#include "xml/pool.h"

class XMLElement;
class XMLNode;

/// An XML document: a tree of nodes in the document's own arena, read by the
/// parser and written by save().
class XMLDocument
{
public:
    /// With `keepText` false the parser drops text and comments.
    explicit XMLDocument(bool keepText = false);
    virtual ~XMLDocument();
    XMLDocument(const XMLDocument &) = delete;
    XMLDocument &operator=(const XMLDocument &) = delete;

    /// Makes the element for a tag; subclasses return elements of their own type.
    virtual XMLElement *mkXMLElement(const char *tagName);

    /// Reads and parses `fileName`; on failure `error` and `errorLine` tell why.
    bool load(const char *fileName);
    /// Parses `text`, a NUL-terminated buffer.
    bool loadFromString(const char *text);
    /// Writes the document, `indentWidth` spaces per level (0: all on one line).
    bool save(const char *fileName, unsigned int indentWidth);
    /// The last error text; the same as `error`, reachable where a subclass hides it.
    const char *errorMessage() const { return error; }

    /// The DOCTYPE name of a file, from its first 1024 bytes, or null. The result
    /// points into a static buffer.
    static const char *xmlDocumentType(const char *fileName);

    Pool pool;
    unsigned int indentWidth = 0;
    bool keepText;
    const char *docType = nullptr;
    const char *version = nullptr;
    const char *encoding = nullptr;
    XMLNode *root = nullptr;
    char error[1024];
    int errorLine = 0;
};
