#pragma once

#include "engine/buildsystem.h"
#include "macros/macrosystem.h"

#include <QFileInfo>
#include <QMap>
#include <QString>

#include <array>
#include <optional>

/// The macros of one element laid over its project's: its name, a file's Input macros, IntDir,
/// OutDir and those `addMacros` adds. Each is worked out the first time a text names it, so a
/// file whose object name uses two of them costs two.
class BuildSystem::FileMacros : public MacroSource
{
public:
    FileMacros(BuildSystem &system, ProjectElement *element, const QString &configuration,
               const QMap<QString, QString> &base);

    const QString *macro(const QString &name) override;

    /// All of them as one set; `addMacros` sees the computed ones and may change them.
    QMap<QString, QString> all();

    ProjectElement *element() const { return m_element; }
    const QString &configuration() const { return m_configuration; }
    const QMap<QString, QString> &base() const { return m_base; }

private:
    enum Name { ProjectNodeName, InputDir, InputName, InputFileName, InputExt, InputPath,
                RelInputPath, IntDir, OutDir, NameCount };
    // IntDir is worked out from the name and Input macros, OutDir from those and IntDir, as if
    // each were added to the set in that order.
    enum Visible { UpToInput, UpToIntDir, Everything };

    const QString *fixed(Name which);
    QString compute(Name which);
    const QFileInfo &input();

    BuildSystem &m_system;
    ProjectElement *m_element;
    QString m_configuration;
    QMap<QString, QString> m_base;
    bool m_isFile;
    Visible m_visible = Everything;
    std::array<QString, NameCount> m_values;
    unsigned m_known = 0;
    std::optional<QFileInfo> m_input;
    std::optional<QMap<QString, QString>> m_added;
};
