#include "xml/xmlwriter.h"

#include "xml/xmlcdatasection.h"
#include "xml/xmlcomment.h"
#include "xml/xmldata.h"
#include "xml/xmlelement.h"

#include <vector>

namespace {
const size_t flushThreshold = 1 << 16;
}

void XMLWriter::write(const char *text)
{
    if (!text)
        return;
    buffer.append(text);
    if (buffer.size() >= flushThreshold)
        flush();
}

bool XMLWriter::flush()
{
    if (!buffer.empty())
        std::fwrite(buffer.data(), 1, buffer.size(), file);
    buffer.clear();
    return !std::ferror(file);
}

void XMLWriter::saveString(const char *text)
{
    if (!text)
        return;
    for (const char *p = text; *p; ++p) {
        const char c = *p;
        switch (c) {
        case '&':
            buffer.append("&amp;");
            break;
        case '<':
            buffer.append("&lt;");
            break;
        case '>':
            buffer.append("&gt;");
            break;
        case '"':
            buffer.append("&quot;");
            break;
        default:
            if (c >= 0x20 && c < 0x7f) {
                buffer.push_back(c);
            } else {
                // The byte goes through a signed char, so 0xE9 comes out as ffffffe9;
                // the reader keeps only the low 8 bits.
                char reference[16];
                std::snprintf(reference, sizeof reference, "&#x%x;", static_cast<int>(c));
                buffer.append(reference);
            }
        }
        if (buffer.size() >= flushThreshold)
            flush();
    }
}

void XMLWriter::indent(unsigned int level)
{
    unsigned long long spaces = static_cast<unsigned long long>(indentWidth) * level;
    while (spaces > 0) {
        const size_t chunk = spaces < flushThreshold ? static_cast<size_t>(spaces) : flushThreshold;
        buffer.append(chunk, ' ');
        spaces -= chunk;
        if (buffer.size() >= flushThreshold)
            flush();
    }
}

void XMLWriter::newline()
{
    if (indentWidth != 0)
        buffer.push_back('\n');
}

// Writes the start tag and attributes; an element without children is closed at once.
void XMLWriter::openElement(const XMLNode *node, bool &hasChildren)
{
    auto *element = const_cast<XMLElement *>(static_cast<const XMLElement *>(node));
    write("<");
    write(element->tagName());
    for (const XMLElement::Attribute &attribute : element->getAttributeList()) {
        write(" ");
        write(attribute.first);
        write("=\"");
        if (attribute.second)
            saveString(attribute.second);
        write("\"");
    }
    hasChildren = element->firstChild != nullptr;
    if (hasChildren) {
        write(">");
        newline();
    } else {
        write("/>");
        newline();
    }
}

void XMLWriter::writeNode(const XMLNode *top, unsigned int topLevel)
{
    struct Open
    {
        const XMLElement *element;
        const XMLNode *nextChild;
        unsigned int level;
    };
    std::vector<Open> open;

    const XMLNode *node = top;
    unsigned int level = topLevel;
    for (;;) {
        indent(level);
        if (node) {
            if (auto *element = dynamic_cast<const XMLElement *>(node)) {
                bool hasChildren = false;
                openElement(element, hasChildren);
                if (hasChildren)
                    open.push_back({element, element->firstChild, level});
            } else if (auto *data = dynamic_cast<const XMLData *>(node)) {
                saveString(data->data());
            } else if (auto *comment = dynamic_cast<const XMLComment *>(node)) {
                write("<!--");
                write(comment->comment());
                write("-->");
            } else if (auto *section = dynamic_cast<const XMLCDATASection *>(node)) {
                write("<![CDATA[");
                write(section->CDATASection());
                write("]]>");
            }
        }
        // Close every element whose children are all written, then go on with the next child.
        node = nullptr;
        while (!open.empty() && !open.back().nextChild) {
            indent(open.back().level);
            write("</");
            write(open.back().element->tagName());
            write(">");
            newline();
            open.pop_back();
        }
        if (open.empty())
            break;
        node = open.back().nextChild;
        open.back().nextChild = node->nextSibling;
        level = open.back().level + 1;
    }
}
