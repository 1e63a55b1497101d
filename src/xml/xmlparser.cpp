#include "xml/xmlparser.h"

#include "foundation/numberhelpers.h"

#include "xml/xmlcdatasection.h"
#include "xml/xmlchars.h"
#include "xml/xmlcomment.h"
#include "xml/xmldata.h"
#include "xml/xmldocument.h"
#include "xml/xmlelement.h"

#include <cstring>

namespace {

// Decodes the reference at `amp` (an "&") if it is one that ends before `end`.
// Returns the number of input bytes it covers, or 0 if it isn't a known reference.
unsigned int decodeReference(const char *amp, const char *end, char *out)
{
    static const struct
    {
        const char *text;
        char value;
    } named[] = {{"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&amp;", '&'}};
    for (const auto &entity : named) {
        size_t length = std::strlen(entity.text);
        if (size_t(end - amp) >= length && std::memcmp(amp, entity.text, length) == 0) {
            *out = entity.value;
            return static_cast<unsigned int>(length);
        }
    }
    if (end - amp < 2 || amp[1] != '#')
        return 0;
    const char *p = amp + 2;
    const bool hex = p < end && *p == 'x';
    if (hex)
        ++p;
    unsigned int number = 0;
    for (; p < end; ++p) {
        int digit = hex ? hexDigitValue(*p) : (isXMLDigit(*p) ? *p - '0' : -1);
        if (digit < 0)
            break;
        number = number * (hex ? 16 : 10) + static_cast<unsigned int>(digit);
    }
    if (p >= end || *p != ';')
        return 0;
    *out = static_cast<char>(number & 0xff);
    return static_cast<unsigned int>(p + 1 - amp);
}

} // namespace

void XMLParser::step()
{
    if (*cursor == '\n')
        ++line;
    ++cursor;
}

void XMLParser::skipWhitespace()
{
    while (isXMLSpace(*cursor))
        step();
}

void XMLParser::readName()
{
    tokenStart = cursor;
    while (isXMLNameChar(*cursor))
        ++cursor;
    tokenEnd = cursor;
}

bool XMLParser::tokenIsPrefixOf(const char *word) const
{
    size_t length = static_cast<size_t>(tokenEnd - tokenStart);
    return length <= std::strlen(word) && std::strncmp(tokenStart, word, length) == 0;
}

// Moves the cursor to the next `stop` or NUL, with the token covering what it passed.
bool XMLParser::scanTo(char stop)
{
    tokenStart = cursor;
    for (;;) {
        const char *hit = cursor;
        while (*hit && *hit != stop && *hit != '\n')
            ++hit;
        cursor = hit;
        if (*cursor != '\n')
            break;
        step();
    }
    tokenEnd = cursor;
    return *cursor == stop;
}

// Searches for `terminator` from the cursor. A partial match that fails is stepped
// over whole, the mismatching byte included. On success the token is the text
// before the terminator and the cursor stands on its last byte.
bool XMLParser::searchFor(const char *terminator)
{
    const size_t length = std::strlen(terminator);
    tokenStart = cursor;
    size_t matched = 0;
    while (*cursor) {
        if (*cursor == terminator[matched]) {
            if (++matched == length) {
                tokenEnd = cursor - (length - 1);
                return true;
            }
        } else {
            matched = 0;
        }
        step();
    }
    tokenEnd = cursor;
    return false;
}

const char *XMLParser::decodeToken(bool dropCarriageReturns) const
{
    const unsigned int length = static_cast<unsigned int>(tokenEnd - tokenStart);
    char *out = const_cast<char *>(XMLNode::mkString(tokenStart, length));
    if (!std::memchr(tokenStart, '&', length) &&
        !(dropCarriageReturns && std::memchr(tokenStart, '\r', length)))
        return out;
    char *write = out;
    for (const char *p = tokenStart; p < tokenEnd;) {
        if (*p == '&') {
            if (unsigned int used = decodeReference(p, tokenEnd, write)) {
                ++write;
                p += used;
                continue;
            }
        } else if (*p == '\r' && dropCarriageReturns) {
            ++p;
            continue;
        }
        *write++ = *p++;
    }
    *write = '\0';
    return out;
}

void XMLParser::appendToOpenElement(XMLNode *node)
{
    // Linked here rather than through appendChild, which walks the whole child list.
    OpenElement &open = openElements.back();
    node->parent = open.element;
    node->nextSibling = nullptr;
    if (open.lastChild)
        open.lastChild->nextSibling = node;
    else
        open.element->firstChild = node;
    open.lastChild = node;
}

XMLNode *XMLParser::parse(XMLDocument *doc, const char *text)
{
    document = doc;
    cursor = text;
    line = 0;
    errorCode = NoError;
    root = nullptr;
    openElements.clear();

    skipWhitespace();
    while (*cursor == '<') {
        step();
        switch (*cursor) {
        case '?':
            processingInstruction();
            break;
        case '!':
            declaration();
            break;
        case '/':
            closingTag();
            break;
        default:
            element();
            break;
        }
        if (errorCode != NoError) {
            openElements.clear();
            return nullptr;
        }
    }
    // Elements still open belong to no tree: a cut-off document has no root.
    openElements.clear();
    return root;
}

void XMLParser::processingInstruction()
{
    step(); // "?"
    readName();
    skipWhitespace();
    if (!tokenIsPrefixOf("xml")) {
        textMode();
        return;
    }
    skipWhitespace();
    for (;;) {
        const char *iterationStart = cursor;
        readName();
        skipWhitespace();
        if (*cursor == '?' || *cursor == '\0')
            break;
        const char *name = tokenStart;
        const size_t nameLength = static_cast<size_t>(tokenEnd - tokenStart);
        skipWhitespace();
        if (*cursor == '=') {
            step();
            skipWhitespace();
            if (*cursor == '"') {
                step();
                const bool closed = scanTo('"');
                const char *value =
                    XMLNode::mkString(tokenStart, static_cast<unsigned int>(tokenEnd - tokenStart));
                if (closed)
                    step();
                if (nameLength == 7 && std::strncmp(name, "version", 7) == 0)
                    document->version = value;
                else if (nameLength == 8 && std::strncmp(name, "encoding", 8) == 0)
                    document->encoding = value;
            }
        }
        // Any other byte, such as a ">" without "?", would never be consumed.
        if (cursor == iterationStart)
            break;
    }
    if (*cursor == '?')
        step();
    if (*cursor == '>')
        step();
    textMode();
}

void XMLParser::declaration()
{
    step(); // "!"
    if (*cursor == '-') {
        step();
        if (*cursor != '-') {
            textMode();
            return;
        }
        step();
        if (searchFor("-->")) {
            if (document->keepText && !openElements.empty()) {
                const char *text =
                    XMLNode::mkString(tokenStart, static_cast<unsigned int>(tokenEnd - tokenStart));
                appendToOpenElement(new XMLComment(text));
            }
            step(); // ">"
        }
        textMode();
        return;
    }

    readName();
    skipWhitespace();
    const size_t nameLength = static_cast<size_t>(tokenEnd - tokenStart);
    if (nameLength == 0 ||
        std::strncmp(tokenStart, "[CDATA[", nameLength < 8 ? nameLength : 8) == 0) {
        if (*cursor)
            step(); // "["
        readName(); // "CDATA"
        skipWhitespace();
        if (*cursor)
            step(); // "["
        if (searchFor("]]>")) {
            const char *text =
                XMLNode::mkString(tokenStart, static_cast<unsigned int>(tokenEnd - tokenStart));
            if (!openElements.empty())
                appendToOpenElement(new XMLCDATASection(text));
            step(); // ">"
        }
    } else if (tokenIsPrefixOf("DOCTYPE")) {
        readName();
        skipWhitespace();
        if (*cursor == '>') {
            document->docType =
                XMLNode::mkString(tokenStart, static_cast<unsigned int>(tokenEnd - tokenStart));
            step();
        }
    }
    textMode();
}

void XMLParser::element()
{
    readName();
    const char *tagName =
        XMLNode::mkString(tokenStart, static_cast<unsigned int>(tokenEnd - tokenStart));
    skipWhitespace();
    XMLElement *element = document->mkXMLElement(tagName);
    openElements.push_back({element, nullptr});
    attributeIndex.clear();

    for (;;) {
        const char c = *cursor;
        if (c == '\0') {
            textMode();
            return;
        }
        if (c == '>') {
            step();
            textMode();
            return;
        }
        if (c == '/') {
            closingTag();
            return;
        }
        if (!isXMLLetter(c) && c != '_') {
            errorCode = BadTagName;
            return;
        }
        readName();
        const char *nameStart = tokenStart;
        const unsigned int nameLength = static_cast<unsigned int>(tokenEnd - tokenStart);
        skipWhitespace();
        if (*cursor != '=')
            continue; // an attribute without a value doesn't exist
        step();
        skipWhitespace();
        if (*cursor != '"')
            continue;
        step();
        const bool closed = scanTo('"');
        if (closed)
            step();
        skipWhitespace();
        const char *value = decodeToken(false);
        setAttribute(element, nameStart, nameLength, value);
    }
}

void XMLParser::setAttribute(XMLElement *element, const char *name, unsigned int nameLength,
                             const char *value)
{
    // The usual few attributes go through setAttribute, which compares each name.
    // An element with very many would make that quadratic, so an index takes over.
    const std::string_view key(name, nameLength);
    if (attributeIndex.empty()) {
        XMLElement::AttributeList &attributes = element->getAttributeList();
        if (attributes.size() < indexThreshold) {
            element->setAttribute(XMLNode::mkString(name, nameLength), value);
            return;
        }
        for (XMLElement::Attribute &attribute : attributes)
            attributeIndex.emplace(attribute.first, &attribute);
    }
    auto found = attributeIndex.find(key);
    if (found != attributeIndex.end()) {
        found->second->second = value;
        return;
    }
    const char *copy = XMLNode::mkString(name, nameLength);
    XMLElement::AttributeList &attributes = element->getAttributeList();
    attributes.emplace_back(copy, value);
    attributeIndex.emplace(std::string_view(copy, nameLength), &attributes.back());
}

void XMLParser::closingTag()
{
    step(); // "/"
    if (*cursor != '>') {
        readName();
        skipWhitespace();
        if (!openElements.empty()) {
            const char *openName = openElements.back().element->tagName();
            if (std::strncmp(openName, tokenStart, static_cast<size_t>(tokenEnd - tokenStart)) !=
                0) {
                errorCode = TagMismatch;
                return;
            }
        }
    }
    if (*cursor == '>') {
        if (!openElements.empty()) {
            XMLElement *closed = openElements.back().element;
            openElements.pop_back();
            if (openElements.empty())
                root = closed;
            else
                appendToOpenElement(closed);
        }
        step();
    }
    textMode();
}

void XMLParser::textMode()
{
    scanTo('<');
    if (openElements.empty() || !document->keepText || tokenEnd == tokenStart)
        return;
    appendToOpenElement(new XMLData(decodeToken(true)));
}
