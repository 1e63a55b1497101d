#pragma once

#include <QStringList>

/// The forms of `tidefile package`.
extern const char packageUsage[];

/// `tidefile package`: lists the members of a package, or with "-x" writes them below a
/// directory.
int runPackage(const QStringList &arguments);
