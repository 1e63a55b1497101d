#pragma once

#include "frontend/argparse.h"

#include <QString>

/// The option table of tidemake and the values it collects.
class TidemakeArgParse : public ArgParse
{
public:
    /// Makes the parser and fills its option table.
    explicit TidemakeArgParse(HReporter *reporter);

    /// Takes a word that is not an option as the solution file; the last one counts.
    void onArgument(const char *argument) override;

    /// Writes the banner and the usage text to stderr and ends the program with status 0.
    [[noreturn]] void onHelp(const char *option, const char *value);
    /// `-config`: the configuration to build.
    void onConfig(const char *option, const char *value);
    /// `-D name[=value]`: sets or, without a value, removes a global macro of the user's settings.
    void onDefineMacro(const char *option, const char *value);
    /// `-project`: the project to build.
    void onProject(const char *option, const char *value);
    /// `-solution`: the solution to build.
    void onSolution(const char *option, const char *value);
    /// `-BenchDir`: the installation directory.
    void onBenchDir(const char *option, const char *value);
    /// `-j N` or `-jN`: the number of commands that may run at once, a whole number from 1.
    void onJobs(const char *option, const char *value);

    QString config;
    QString hdpFile;
    QString project;
    QString solution;
    QString benchDir;
    bool batch = false;
    bool clean = false;
    bool echo = false;
    bool show = false;
    bool rebuild = false;
    bool verbose = false;
    /// `-exitstatus`: a failed build, a solution that can't be loaded or an error that ends
    /// the program exits with status 2 instead of 0.
    bool exitStatus = false;
    /// `-j`: how many commands may run at once, as asked for.
    int jobs = 1;
    /// `-compdb`: write compile_commands.json beside the solution file instead of building.
    bool compdb = false;
};
