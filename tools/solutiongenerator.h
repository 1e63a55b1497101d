#pragma once

#include <QString>

/// The shape of a generated solution, for benchmarks and scale tests.
struct SolutionShape
{
    QString name = QStringLiteral("bench"); ///< the root solution, `name`.hdp
    int projects = 10;                      ///< projects in all, named P000, P001, ...
    int filesPerProject = 10;               ///< C files per project
    int headersPerProject = 0;              ///< header files per project
    /// Headers each C file includes: a run of consecutive ones whose start moves from file to
    /// file, so that headers differ in how many files include them; -1 includes them all.
    int headersPerSource = -1;
    int dependenciesPerProject = 2;    ///< each project depends on up to this many earlier ones
    int importedSolutions = 0;         ///< solution files the projects are shared out to
    int filesPerFolder = 25;           ///< C files per nested folder
    bool writeSources = false;         ///< write the C and header files themselves
    bool writeDependencyFiles = false; ///< write a ".d" file for each C file's object
    bool librariesOnly = false;        ///< every project a library; otherwise every tenth a program
};

/// Writes a solution of `shape` into `directory`: the root solution file, any imported solution
/// files, and on request the sources and ".d" files. Every project lies in its own directory.
/// Returns the path of the root solution file, or a null string with `error` set.
QString generateSolution(const QString &directory, const SolutionShape &shape, QString *error);

/// Writes `directory`/build.ninja for the solution of `shape` written there: in each project's
/// "Ninja" directory, the objects and library that tidemake makes in its "Debug" one, by the
/// same cc1, as and ar commands with the tool chain under `benchDirectory`. Library projects
/// only. Returns the file's path, or a null string with `error` set.
QString generateNinjaFile(const QString &directory, const SolutionShape &shape,
                          const QString &benchDirectory, QString *error);
