#pragma once

#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

class XMLDocument;
class XMLElement;
class XMLNode;

/// The parser of the XML subset that the system's files use. It works on one
/// NUL-terminated buffer and never recurses, however deep the nesting.
class XMLParser
{
public:
    enum ErrorCode { NoError = 0, BadTagName = 1, TagMismatch = 2 };

    /// Parses `text`, making elements through `document`, and returns the root or
    /// null. Names and values are copied into the current pool.
    XMLNode *parse(XMLDocument *document, const char *text);

    const char *tokenStart = nullptr;
    const char *tokenEnd = nullptr;
    const char *cursor = nullptr;
    int line = 0;
    int errorCode = NoError;

private:
    /// An element whose closing tag hasn't been seen, with its last child so far.
    struct OpenElement
    {
        XMLElement *element;
        XMLNode *lastChild;
    };

    void step();
    void skipWhitespace();
    void readName();
    bool tokenIsPrefixOf(const char *word) const;
    bool scanTo(char stop);
    bool searchFor(const char *terminator);
    const char *decodeToken(bool dropCarriageReturns) const;
    void appendToOpenElement(XMLNode *node);
    void setAttribute(XMLElement *element, const char *name, unsigned int nameLength,
                      const char *value);

    void processingInstruction();
    void declaration();
    void element();
    void closingTag();
    void textMode();

    XMLDocument *document = nullptr;
    XMLNode *root = nullptr;
    std::vector<OpenElement> openElements;
    /// Attributes of the element being read, by name, once it has indexThreshold of them.
    std::unordered_map<std::string_view, std::pair<const char *, const char *> *> attributeIndex;
    static constexpr size_t indexThreshold = 32;
};
