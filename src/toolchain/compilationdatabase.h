#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class ARMBuildSystem;
class ProjectElement;

/// One C or C++ file as a build compiles it, told in the terms of a driver-style clang
/// command, so that editors' tools read the source as the compiler does.
struct CompilationEntry
{
    QString directory;     ///< the project directory, where the compile runs
    QString file;          ///< the absolute source
    QString output;        ///< the absolute object file
    QStringList arguments; ///< the whole command, program first
};

/// The compilation database of a build: the files it would compile and how.
namespace CompilationDatabase {

/// The entries of every C and C++ file that building `element` (a solution or a project) in
/// `configuration` compiles, its dependencies' files included, in build order.
QList<CompilationEntry> entries(ARMBuildSystem *system, ProjectElement *element,
                                const QString &configuration);
/// The command of `file` in `configuration`: clang for the ARM target with the target,
/// include and definition options of the compiler's own line (for C++ after the C++ library's
/// headers, which the installation's C++ compiler adds itself), the language and the file.
QStringList arguments(ARMBuildSystem *system, ProjectElement *file, const QString &configuration,
                      bool cpp, const QString &source, const QString &output);
/// The entries as the text of a "compile_commands.json" file.
QByteArray toJson(const QList<CompilationEntry> &entries);
/// Writes `entries` to `path`; false with `error` set if the file can't be written.
bool write(const QString &path, const QList<CompilationEntry> &entries, QString &error);

} // namespace CompilationDatabase
