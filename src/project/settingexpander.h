#pragma once

#include "macros/macrosystem.h"

#include <QMap>
#include <QString>

class ProjectElement;
class PropertyClass;

/// The build system's services that the project model needs but may not include: resolving a
/// setting with its macros expanded, the macro set of an element and finding the classes of
/// the build catalogue. The build system registers itself with
/// `ProjectSystem::setSettingExpander`.
class SettingExpander
{
public:
    virtual ~SettingExpander() = default;
    /// The setting of `element` in `configuration`, with the element's macros replaced.
    virtual QString settingForExpanded(ProjectElement *element, const PropertyClass *propertyClass,
                                       const QString &configuration) = 0;
    /// The macro set of `element` in `configuration`; a side without build macros of its own
    /// offers the global and system macros.
    virtual QMap<QString, QString> macros(ProjectElement *, const QString &)
    {
        return macroSystem.globalMacros(true);
    }
    /// The build catalogue's class saved as `saveName`, or null.
    virtual PropertyClass *findPropertyClass(const QString &saveName) const = 0;
    /// The form of "build_output_file_name" that executables use. The catalogue holds one class
    /// per save name, so a build system with two forms of that name answers this itself.
    virtual PropertyClass *linkerOutputFileNameClass() const
    {
        return findPropertyClass(QStringLiteral("build_output_file_name"));
    }
};
