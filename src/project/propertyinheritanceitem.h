#pragma once

#include <QList>
#include <QString>

class ProjectElement;

/// One value found while a setting was looked up: where it stood and in which configuration.
struct PropertyInheritanceItem
{
    QString value;
    QString configuration;             ///< empty for the class default
    ProjectElement *element = nullptr; ///< null for the class default
};

/// The values a lookup found, in the order it found them.
using PropertyInheritanceInformation = QList<PropertyInheritanceItem>;
