#pragma once

#include "project/projectelement.h"

#include <QString>

/// `element` and its subtree, a line each, indented by depth: the tag, the name and the other
/// attributes in name order.
inline QString outline(ProjectElement *element, int depth = 0)
{
    QString text =
        QString(depth * 2, ' ') + element->getTagName() + ' ' + element->attributes().value("Name");
    for (auto [name, value] : element->attributes().asKeyValueRange())
        if (name != "Name")
            text += ' ' + name + '=' + value;
    text += '\n';
    for (ProjectElement *child = element->firstChild(); child; child = child->nextSibling())
        text += outline(child, depth + 1);
    return text;
}
