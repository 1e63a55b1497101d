#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class DiskInterface;

/// The names that the make rule in `contents` lists behind its first colon, in order; names
/// that are relative get `projectDirectory` and "/" in front. No colon gives an empty list.
QStringList parseDependencyFile(const QByteArray &contents, const QString &projectDirectory);

/// `parseDependencyFile` over the file at `path`, read through `disk`, or when that is null
/// through the build system's disk (the real file system without a build system). A missing,
/// unreadable or oversized file gives an empty list.
QStringList readDependencyFile(const QString &path, const QString &projectDirectory,
                               DiskInterface *disk = nullptr);
