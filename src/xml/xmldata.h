#pragma once

#include "xml/xmlnode.h"

/// Character data between tags.
class XMLData : public XMLNode
{
public:
    explicit XMLData(const char *text = nullptr) : text(text) {}
    ~XMLData() override;

    /// Sets the text pointer; the text must outlive the node.
    virtual void setData(const char *text);
    /// The text.
    virtual const char *data() const;

private:
    const char *text;
};
