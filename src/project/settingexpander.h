#pragma once

#include <QString>

class ProjectElement;
class PropertyClass;

/// The build system's service of resolving a setting and expanding its macros, which the
/// project model needs but may not include; the build system registers itself with
/// `ProjectSystem::setSettingExpander`.
class SettingExpander
{
public:
    virtual ~SettingExpander() = default;
    /// The setting of `element` in `configuration`, with the element's macros replaced.
    virtual QString settingForExpanded(ProjectElement *element, const PropertyClass *propertyClass,
                                       const QString &configuration) = 0;
};
