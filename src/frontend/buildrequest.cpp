#include "frontend/buildrequest.h"

#include "engine/buildsystem.h"
#include "frontend/interrupts.h"
#include "frontend/jobqueue.h"
#include "frontend/tidemakeargparse.h"
#include "frontend/tidemakebuilder.h"
#include "macros/macrosystem.h"
#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "project/solutionwarnings.h"
#include "toolchain/armbuildsystem.h"
#include "toolchain/compilationdatabase.h"

#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

// Says that `name` is not among `offered`, lists them one a line and ends the program.
[[noreturn]] void refuseChoice(const char *format, const QString &name, const QStringList &offered)
{
    std::printf(format, name.toLocal8Bit().constData());
    for (const QString &entry : offered)
        std::puts(entry.toLocal8Bit().constData());
    std::exit(1);
}

// Writes compile_commands.json beside the root solution file for `element`; a file that
// can't be written ends the program with status 1.
void writeCompilationDatabase(ProjectElement *element, const QString &configuration)
{
    const QString path = QFileInfo(projectSystem->solutionFilePath()).absolutePath() +
                         QStringLiteral("/compile_commands.json");
    auto *system = static_cast<ARMBuildSystem *>(buildSystem);
    QString error;
    if (!CompilationDatabase::write(
            path, CompilationDatabase::entries(system, element, configuration), error)) {
        std::fprintf(stderr, "error: can't write %s: %s\n", path.toLocal8Bit().constData(),
                     error.toLocal8Bit().constData());
        std::exit(1);
    }
}

int buildType(const TidemakeArgParse &options)
{
    int type = options.clean ? BUILD_CLEAN | BUILD_FORCE | BUILD_CLEAN_ONLY : 0;
    if (options.rebuild)
        type |= BUILD_FORCE;
    if (!options.verbose)
        type |= BUILD_QUIET;
    return type;
}

} // namespace

bool runBuildRequest(TidemakeArgParse &options)
{
    projectSystem = new ARMProjectSystem;
    buildSystem = new ARMBuildSystem(QStringList());
    buildSystem->dryRun = options.show;
    macroSystem.setSystemMacro(QStringLiteral("Platform"), QStringLiteral("arm"));
    macroSystem.setSystemMacro(QStringLiteral("BenchDir"), options.benchDir);
    projectSystem->loadSolution(options.hdpFile, nullptr);
    SolutionWarnings warnings(projectSystem);
    warnings.checkLoadedSolution();
    warnings.write(stderr);

    const int type = buildType(options);
    if (options.show)
        options.echo = true;

    ProjectElement *element = projectSystem->solutionElement();
    if (!options.project.isEmpty()) {
        element = ProjectSystem::findProject(element, options.project);
        if (!element)
            refuseChoice("can't find project '%s' supported projects:\n", options.project,
                         projectSystem->solutionProjects(nullptr).keys());
    }
    if (!options.solution.isEmpty()) {
        const QMap<QString, ProjectElement *> solutions = projectSystem->solutionSolutions();
        element = solutions.value(options.solution, nullptr);
        if (!element)
            refuseChoice("can't find solution '%s' supported solutions:\n", options.solution,
                         solutions.keys());
    }
    const QStringList configurations = projectSystem->configurations(element, 4);
    if (!configurations.contains(options.config))
        refuseChoice("can't find configuration '%s' supported configurations:\n", options.config,
                     configurations);

    if (options.compdb) {
        writeCompilationDatabase(element, options.config);
        return true;
    }

    // The build clears the engine's stop flag when it starts: an interrupt that came while
    // the solution loaded must not be forgotten there.
    if (Interrupts::received())
        return true;
    const int jobs = std::min(options.jobs, JobQueue::maxSlots());
    TidemakeBuilder builder(options.echo, options.show, stdout, jobs);
    if (jobs < options.jobs && options.verbose)
        builder.message(QStringLiteral("-j %1 is more than this machine can use: up to %2 "
                                       "commands run at once")
                            .arg(options.jobs)
                            .arg(jobs));
    buildSystem->build(element, options.config, &builder, type, true, options.batch);
    return !buildSystem->errorOccurred && !builder.failed();
}
