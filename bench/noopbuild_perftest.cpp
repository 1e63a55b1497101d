// A build with nothing to do over a generated solution of 100 projects of 100 files, each
// object depending on 30 headers through its dependency file: one real build with a tool
// layer that only touches its outputs, then the no-op builds are timed and their questions to
// the file system counted.

#include "engine/diskinterface.h"
#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "solutiongenerator.h"
#include "support/nullbuilder.h"
#include "support/testsupport.h"
#include "toolchain/armbuildsystem.h"

#include <QElapsedTimer>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

/// A tool layer that makes each output as an empty file, and the map file beside a program.
class TouchingBuildSystem : public ARMBuildSystem
{
public:
    TouchingBuildSystem() : ARMBuildSystem(QStringList()) {}

    void createCommandFor(ProjectElement *, const QString &, BuildAction action, const QString &,
                          const QString &absoluteOutput, const QStringList &, Builder *, bool,
                          bool) override
    {
        touch(absoluteOutput);
        if (action == ActionLink)
            touch(absoluteOutput.left(absoluteOutput.lastIndexOf(QLatin1Char('.'))) +
                  QStringLiteral(".map"));
        ++commands;
    }

    int commands = 0;

private:
    void touch(const QString &path)
    {
        ensureDirExists(path);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
    }
};

// The processor time of this process, in milliseconds: steadier than the clock on a shared
// machine.
double processMilliseconds()
{
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    // An optional argument sets the number of timed rounds, for profiling.
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    projectSystem = new ARMProjectSystem;
    auto *system = new TouchingBuildSystem;
    buildSystem = system;
    auto disk = std::make_unique<RealDiskInterface>();
    RealDiskInterface *counter = disk.get();
    system->setDisk(std::move(disk));

    ScratchDir scratch;
    SolutionShape shape;
    shape.projects = 100;
    shape.filesPerProject = 100;
    shape.headersPerProject = 30;
    shape.writeSources = true;
    shape.writeDependencyFiles = true;
    QString error;
    const QString path = generateSolution(scratch.path(), shape, &error);
    if (path.isNull()) {
        std::fprintf(stderr, "generator: %s\n", qPrintable(error));
        return 1;
    }
    QElapsedTimer loadTimer;
    loadTimer.start();
    ProjectElement *root = projectSystem->loadSolution(path, nullptr);
    const double load = loadTimer.nsecsElapsed() / 1e6;
    const QList<ProjectElement *> files = ProjectSystem::sourceFiles(root);
    const auto sources = std::count_if(files.cbegin(), files.cend(), [&](ProjectElement *file) {
        return system->mustCompile(file, QStringLiteral("Debug"));
    });

    NullBuilder builder;
    const QString debug = QStringLiteral("Debug");
    system->build(root, debug, &builder, BUILD_QUIET, true, false);
    const int madeCommands = system->commands;

    // Each round as a fresh process would see it: no dependency list known yet.
    double best = 1e300;
    double bestProcess = 1e300;
    qint64 stats = 0;
    int result = -1;
    for (int round = 0; round < rounds; ++round) {
        system->dependencyCache.clear();
        const qint64 before = counter->statCount();
        QElapsedTimer timer;
        timer.start();
        const double processStart = processMilliseconds();
        result = system->build(root, debug, &builder, BUILD_QUIET, true, false);
        bestProcess = std::min(bestProcess, processMilliseconds() - processStart);
        best = std::min(best, timer.nsecsElapsed() / 1e6);
        stats = counter->statCount() - before;
    }
    // And once more with the dependency lists kept, as a batch build's later visits have them.
    QElapsedTimer cached;
    cached.start();
    system->build(root, debug, &builder, BUILD_QUIET, true, false);
    const double withCache = cached.nsecsElapsed() / 1e6;

    std::printf("solution: %lld files, %lld compiled, each object depending on %d headers; "
                "load %.1f ms\n",
                qlonglong(files.size()), qlonglong(sources), shape.headersPerProject, load);
    std::printf("first build: %d commands\n", madeCommands);
    std::printf("no-op build: %8.2f ms best of %d (%.2f ms processor time), result %d, %d "
                "commands\n",
                best, rounds, bestProcess, result, system->commands - madeCommands);
    std::printf("no-op build with dependency lists known: %8.2f ms\n", withCache);
    std::printf("file system questions: %lld per no-op build, %.2f per compiled file\n",
                qlonglong(stats), double(stats) / double(std::max<qint64>(1, sources)));
    return 0;
}
