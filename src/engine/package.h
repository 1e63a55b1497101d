#pragma once

#include <QString>

class Builder;

/// Keeps the package `archive` current with one member: adds `input` as `member`, replacing
/// a member of that name, which moves to the end; an empty `input` removes `member`. Unless
/// `force`, a member stored no earlier than `input`'s time is left as it is. A package that
/// can't be read counts as empty. The "adding" and "removing" lines are told even when
/// `quiet`. Works through "ARCHIVE.decompressed" beside the package and "tmp" in the working
/// directory; a `dryRun` tells what it would do and changes nothing on disk.
void addToRemoveFromArchive(const QString &archive, const QString &member, const QString &input,
                            Builder *builder, bool quiet, bool force, bool dryRun = false);
