#pragma once

#include <QString>

// Files that a command makes beside its main output or input. The command lines and the
// up-to-date tests both name them through these, so the two never disagree.

/// The directory part of `file` as QFileInfo::path() gives it, without building a QFileInfo:
/// "." when it names none, "/" at the root.
QString fileDirectory(const QString &file);

/// `directory`, "/", the file name of `file` without its last extension, then `extension`
/// (which brings its own dot): a map, a script or a converted image beside an output.
QString sideFilePath(const QString &directory, const QString &file, const QString &extension);

/// `sideFilePath` in the directory of `file` as written ("." when it names none).
QString sideFilePath(const QString &file, const QString &extension);

/// The dependency file a compiler writes beside `objectPath`: the object's directory, its
/// base name up to the first dot, and ".d".
QString dependencyFilePath(const QString &objectPath);

/// The generated linker script of a link whose output is `output`: in the project's
/// `intermediateDirectory` (relative to `projectDirectory`), named after the output, ".ld".
QString linkerScriptPath(const QString &projectDirectory, const QString &intermediateDirectory,
                         const QString &output);
