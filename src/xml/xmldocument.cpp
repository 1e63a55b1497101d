#include "xml/xmldocument.h"

#include "xml/xmlchars.h"
#include "xml/xmlelement.h"
#include "xml/xmlparser.h"
#include "xml/xmlwriter.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Reads a whole file into a new NUL-terminated buffer; null if it can't be read.
char *readWholeFile(const char *fileName)
{
    FILE *file = std::fopen(fileName, "rb");
    if (!file)
        return nullptr;
    char *buffer = nullptr;
    long size = -1;
    if (std::fseek(file, 0, SEEK_END) == 0)
        size = std::ftell(file);
    if (size >= 0 && std::fseek(file, 0, SEEK_SET) == 0)
        buffer = static_cast<char *>(std::malloc(static_cast<size_t>(size) + 1));
    if (buffer) {
        size_t got = std::fread(buffer, 1, static_cast<size_t>(size), file);
        if (std::ferror(file)) {
            std::free(buffer);
            buffer = nullptr;
        } else {
            buffer[got] = '\0';
        }
    }
    std::fclose(file);
    return buffer;
}

} // namespace

XMLDocument::XMLDocument(bool keepText) : keepText(keepText)
{
    error[0] = '\0';
}

XMLDocument::~XMLDocument() = default;

XMLElement *XMLDocument::mkXMLElement(const char *tagName)
{
    return new XMLElement(tagName);
}

bool XMLDocument::load(const char *fileName)
{
    char *text = readWholeFile(fileName);
    if (!text) {
        std::snprintf(error, sizeof error, "couldn't read %s", fileName);
        errorLine = 0;
        return false;
    }
    const bool ok = loadFromString(text);
    std::free(text);
    return ok;
}

bool XMLDocument::loadFromString(const char *text)
{
    XMLParser parser;
    {
        CurrentPoolScope current(&pool);
        root = parser.parse(this, text);
    }
    switch (parser.errorCode) {
    case XMLParser::BadTagName:
        std::snprintf(error, sizeof error, "bad tagName");
        break;
    case XMLParser::TagMismatch:
        std::snprintf(error, sizeof error, "tagName mismatch");
        break;
    default:
        return true;
    }
    errorLine = parser.line;
    return false;
}

bool XMLDocument::save(const char *fileName, unsigned int width)
{
    FILE *file = std::fopen(fileName, "wb");
    if (!file) {
        std::snprintf(error, sizeof error, "couldn't write %s", fileName);
        return false;
    }
    XMLWriter writer(file, width);
    if (version || encoding) {
        writer.write("<?xml ");
        if (version) {
            writer.write(" version=\"");
            writer.write(version);
            writer.write("\"");
        }
        if (encoding) {
            writer.write(" encoding=\"");
            writer.write(encoding);
            writer.write("\"");
        }
        writer.write(" ?>\n");
    }
    if (docType) {
        writer.write("<!DOCTYPE ");
        writer.write(docType);
        writer.write(">\n");
    }
    indentWidth = width;
    writer.writeNode(root, 0);
    const bool written = writer.flush();
    if (std::fclose(file) != 0 || !written) {
        std::snprintf(error, sizeof error, "couldn't write %s", fileName);
        return false;
    }
    return true;
}

const char *XMLDocument::xmlDocumentType(const char *fileName)
{
    static char buffer[1025];
    FILE *file = std::fopen(fileName, "rb");
    if (!file)
        return nullptr;
    const size_t got = std::fread(buffer, 1, 1024, file);
    std::fclose(file);

    size_t at = 0;
    while (at < got && !(buffer[at] == '<' && (at + 1 >= got || buffer[at + 1] != '?')))
        ++at;
    static const char doctype[] = "!DOCTYPE ";
    const size_t doctypeLength = sizeof doctype - 1;
    if (at >= got || got - at - 1 < doctypeLength ||
        std::memcmp(buffer + at + 1, doctype, doctypeLength) != 0)
        return nullptr;
    size_t name = at + 1 + doctypeLength;
    while (name < got && isXMLSpace(buffer[name]))
        ++name;
    size_t end = name;
    while (end < got && isXMLNameChar(buffer[end]))
        ++end;
    if (end >= got)
        return nullptr;
    buffer[end] = '\0';
    return buffer + name;
}
