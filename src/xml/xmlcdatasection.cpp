#include "xml/xmlcdatasection.h"

XMLCDATASection::~XMLCDATASection() = default;

void XMLCDATASection::setCDATASection(const char *newText)
{
    text = newText;
}

const char *XMLCDATASection::CDATASection() const
{
    return text;
}
