#pragma once

#include "xml/xmlnode.h"

/// A CDATA section; its text is kept raw.
class XMLCDATASection : public XMLNode
{
public:
    explicit XMLCDATASection(const char *text = nullptr) : text(text) {}
    ~XMLCDATASection() override;

    /// Sets the text pointer; the text must outlive the node.
    virtual void setCDATASection(const char *text);
    /// The text.
    virtual const char *CDATASection() const;

private:
    const char *text;
};
