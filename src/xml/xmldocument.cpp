#include "xml/xmldocument.h"

#include "xml/xmlelement.h"
#include "xml/xmlparser.h"

XMLDocument::XMLDocument(bool keepText) : keepText(keepText)
{
    error[0] = '\0';
}

XMLDocument::~XMLDocument() = default;

XMLElement *XMLDocument::mkXMLElement(const char *tagName)
{
    return new XMLElement(tagName);
}

bool XMLDocument::load(const char *)
{
    return false;
}

bool XMLDocument::loadFromString(const char *)
{
    return false;
}

bool XMLDocument::save(const char *, unsigned int)
{
    return false;
}

const char *XMLDocument::xmlDocumentType(const char *)
{
    return nullptr;
}
