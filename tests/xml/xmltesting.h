#pragma once

#include "xml/xmlcdatasection.h"
#include "xml/xmlcomment.h"
#include "xml/xmldata.h"
#include "xml/xmlelement.h"
#include "xml/xmlpp2.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <string>
#include <utility>

/// A compact picture of a small tree for comparisons in tests:
/// a{x=1,y=2}(b,"text",!comment,[cdata]); a null node is "null".
inline std::string describe(XMLNode *node)
{
    if (auto *data = dynamic_cast<XMLData *>(node))
        return "\"" + std::string(data->data()) + "\"";
    if (auto *comment = dynamic_cast<XMLComment *>(node))
        return "!" + std::string(comment->comment());
    if (auto *section = dynamic_cast<XMLCDATASection *>(node))
        return "[" + std::string(section->CDATASection()) + "]";
    auto *element = dynamic_cast<XMLElement *>(node);
    if (!element)
        return "null";
    std::string out = element->tagName(), separator = "{";
    for (const auto &[name, value] : element->getAttributeList())
        out += std::exchange(separator, ",") + name + "=" + (value ? value : "(null)");
    out += separator == "," ? "}" : "";
    separator = "(";
    for (XMLNode *child = element->firstChild; child; child = child->nextSibling)
        out += std::exchange(separator, ",") + describe(child);
    return out + (separator == "," ? ")" : "");
}

/// A preprocessed document that keeps the messages it is given, without the prefix every
/// one of them must carry.
struct RecordingDocument : XMLPP2
{
    void error(const QString &message) override
    {
        const QString prefix = "XmlPP::processConditionals(): ";
        EXPECT_TRUE(message.startsWith(prefix)) << message.toStdString();
        messages << message.mid(prefix.size());
    }
    /// Loads the file `path` with `macros`; false only if it can't be read or parsed.
    bool load(const QString &path, const char *macros = "", bool expand = false)
    {
        return XMLPP2::load(path.toLocal8Bit().constData(), macros, expand);
    }
    QStringList messages;
};
