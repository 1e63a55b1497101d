#pragma once

#include <QStringList>

/// The forms of `tidefile load`.
extern const char loadUsage[];

/// `tidefile load`: prints what a load file holds and where, or with "-o" writes it out as
/// one raw image.
int runLoad(const QStringList &arguments);
