#include "project/xmlchildren.h"

#include "xml/xmlelement.h"

QList<XMLElement *> childElements(const XMLElement *parent, const QString &tag)
{
    QList<XMLElement *> children;
    if (!parent)
        return children;
    for (XMLNode *node = parent->firstChild; node; node = node->nextSibling) {
        auto *element = dynamic_cast<XMLElement *>(node);
        if (element && element->tagName() && QLatin1String(element->tagName()) == tag)
            children.append(element);
    }
    return children;
}

QString attributeText(const XMLElement *element, const char *name)
{
    return QString::fromLatin1(element->attribute(name));
}
