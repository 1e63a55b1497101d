#pragma once

#include <QHash>
#include <QString>

class ProjectElement;

/// A hash key of an element, something asked of it (a setting, an action) and a
/// configuration: what answers kept during a build are found by.
template <typename What> struct ElementKey
{
    const ProjectElement *element;
    What what;
    QString configuration;
    bool operator==(const ElementKey &other) const
    {
        return element == other.element && what == other.what &&
               configuration == other.configuration;
    }
    // A build asks about one configuration, mostly: hashing its name each time would cost
    // more than the rare collision between configurations of one element.
    friend size_t qHash(const ElementKey &key, size_t seed = 0)
    {
        return qHashMulti(seed, key.element, key.what);
    }
};
