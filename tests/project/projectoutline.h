#pragma once

#include "projecttesting.h"

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

/// Solutions loaded from the scratch directory, their projects compared as outlines.
class OutlineTest : public ProjectTest
{
protected:
    /// Loads a solution of `body` written to "s.hdp"; returns its root.
    E *load(const QByteArray &body)
    {
        return system.loadSolution(scratch.write("s.hdp", solutionText(body)), nullptr);
    }
    /// The outline of the root solution's project `name`.
    QString project(const QString &name)
    {
        return outline(system.solutionProjects(nullptr).value(name));
    }
};
