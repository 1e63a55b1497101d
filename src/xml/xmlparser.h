#pragma once

class XMLDocument;
class XMLNode;

/// The parser of the XML subset that the system's files use. It works on one
/// NUL-terminated buffer and never recurses, however deep the nesting.
class XMLParser
{
public:
    enum ErrorCode { NoError = 0, BadTagName = 1, TagMismatch = 2 };

    /// Parses `text`, making elements through `document`, and returns the root or
    /// null. Strings are copied into the current pool.
    XMLNode *parse(XMLDocument *document, const char *text);

    const char *tokenStart = nullptr;
    const char *tokenEnd = nullptr;
    const char *cursor = nullptr;
    int line = 0;
    int errorCode = NoError;
};
