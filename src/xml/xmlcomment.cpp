#include "xml/xmlcomment.h"

XMLComment::~XMLComment() = default;

void XMLComment::setComment(const char *newText)
{
    text = newText;
}

const char *XMLComment::comment() const
{
    return text;
}
