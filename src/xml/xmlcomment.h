#pragma once

#include "xml/xmlnode.h"

/// A comment.
class XMLComment : public XMLNode
{
public:
    explicit XMLComment(const char *text = nullptr) : text(text) {}
    ~XMLComment() override;

    /// Sets the text pointer; the text must outlive the node.
    virtual void setComment(const char *text);
    /// The text.
    virtual const char *comment() const;

private:
    const char *text;
};
