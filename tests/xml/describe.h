#pragma once

#include "xml/xmlcdatasection.h"
#include "xml/xmlcomment.h"
#include "xml/xmldata.h"
#include "xml/xmlelement.h"

#include <string>

/// A compact picture of a small tree for comparisons in tests:
/// a{x=1,y=2}(b,"text",!comment,[cdata]); a null node is "null".
inline std::string describe(XMLNode *node)
{
    if (!node)
        return "null";
    std::string out;
    if (auto *element = dynamic_cast<XMLElement *>(node)) {
        out = element->tagName();
        if (!element->getAttributeList().empty()) {
            out += "{";
            bool first = true;
            for (const auto &attribute : element->getAttributeList()) {
                out += (first ? "" : ",") + std::string(attribute.first) + "=" +
                       (attribute.second ? attribute.second : "(null)");
                first = false;
            }
            out += "}";
        }
        if (element->firstChild) {
            out += "(";
            for (XMLNode *child = element->firstChild; child; child = child->nextSibling)
                out += describe(child) + (child->nextSibling ? "," : "");
            out += ")";
        }
    } else if (auto *data = dynamic_cast<XMLData *>(node)) {
        out = "\"" + std::string(data->data()) + "\"";
    } else if (auto *comment = dynamic_cast<XMLComment *>(node)) {
        out = "!" + std::string(comment->comment());
    } else if (auto *section = dynamic_cast<XMLCDATASection *>(node)) {
        out = "[" + std::string(section->CDATASection()) + "]";
    }
    return out;
}
