#include "xml/xmldata.h"

XMLData::~XMLData() = default;

void XMLData::setData(const char *newText)
{
    text = newText;
}

const char *XMLData::data() const
{
    return text;
}
