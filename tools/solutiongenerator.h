#pragma once

#include <QString>

/// The shape of a generated solution, for benchmarks and scale tests.
struct SolutionShape
{
    QString name = QStringLiteral("bench"); ///< the root solution, `name`.hdp
    int projects = 10;                      ///< projects in all, named P000, P001, ...
    int filesPerProject = 10;               ///< C files per project
    int headersPerProject = 0;              ///< header files per project
    int dependenciesPerProject = 2;    ///< each project depends on up to this many earlier ones
    int importedSolutions = 0;         ///< solution files the projects are shared out to
    int filesPerFolder = 25;           ///< C files per nested folder
    bool writeSources = false;         ///< write the C and header files themselves
    bool writeDependencyFiles = false; ///< write a ".d" file for each C file's object
};

/// Writes a solution of `shape` into `directory`: the root solution file, any imported solution
/// files, and on request the sources and ".d" files. Every project lies in its own directory.
/// Returns the path of the root solution file, or a null string with `error` set.
QString generateSolution(const QString &directory, const SolutionShape &shape, QString *error);
