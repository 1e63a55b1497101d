#pragma once

#include <QMap>
#include <QString>

class ProjectElement;
class PropertyClassList;

/// A tool that contributes settings of its own to the elements it applies to.
class Tool
{
public:
    virtual ~Tool() = default;
    /// Adds the settings the tool offers for `element` in `configuration` to `list`.
    virtual void appendApplicableSettings(ProjectElement *element, const QString &configuration,
                                          PropertyClassList *list) = 0;
};

/// The tools registered by name. The command-line program registers none; the database is
/// the hook through which a tool would add settings.
class ToolDatabase
{
public:
    /// Registers `tool` under `name`, replacing a tool of that name; the tool isn't owned.
    void registerTool(const QString &name, Tool *tool) { m_tools.insert(name, tool); }
    /// The registered tools, in name order.
    const QMap<QString, Tool *> &tools() const { return m_tools; }

private:
    QMap<QString, Tool *> m_tools;
};

/// The process-wide tool database.
extern ToolDatabase toolDatabase;
