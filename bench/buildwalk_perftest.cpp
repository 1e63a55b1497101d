// Loads a generated solution of 100 projects of 100 files and walks every project with a
// silent builder; also expands an object file name for every file, at two solution sizes, to
// show that looking a setting up costs the element's depth and not the tree's size.

#include "engine/buildsystem.h"
#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "solutiongenerator.h"
#include "support/nullbuilder.h"
#include "support/testsupport.h"
#include "toolchain/armbuildsystem.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

// The best of `rounds` runs of `work`, in milliseconds.
double bestOf(int rounds, const std::function<void()> &work)
{
    double best = 1e300;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        work();
        best = std::min(best, timer.nsecsElapsed() / 1e6);
    }
    return best;
}

QString generate(const ScratchDir &scratch, int projects, int files)
{
    SolutionShape shape;
    shape.projects = projects;
    shape.filesPerProject = files;
    shape.headersPerProject = 5;
    shape.dependenciesPerProject = 3;
    shape.importedSolutions = 2;
    QString error;
    const QString path = generateSolution(scratch.path(), shape, &error);
    if (path.isNull())
        std::fprintf(stderr, "generator: %s\n", qPrintable(error));
    return path;
}

// Microseconds per file to expand "build_object_file_name" in "Debug".
double expandPerFile(int rounds)
{
    const QList<ProjectElement *> files =
        ProjectSystem::sourceFiles(projectSystem->solutionElement());
    const double ms = bestOf(rounds, [&] {
        for (ProjectElement *file : files)
            buildSystem->settingForExpanded(file, buildSystem->buildObjectFileNameProperty,
                                            QStringLiteral("Debug"));
    });
    return ms * 1000.0 / std::max<qsizetype>(1, files.size());
}

} // namespace

int main()
{
    projectSystem = new ARMProjectSystem;
    buildSystem = new ARMBuildSystem(QStringList());
    const int rounds = 5;

    ScratchDir small;
    const QString smallPath = generate(small, 10, 10);
    ScratchDir large;
    const QString largePath = generate(large, 100, 100);
    if (smallPath.isNull() || largePath.isNull())
        return 1;

    projectSystem->loadSolution(smallPath, nullptr);
    const double smallExpand = expandPerFile(rounds);

    const double load = bestOf(rounds, [&] { projectSystem->loadSolution(largePath, nullptr); });
    ProjectElement *root = projectSystem->solutionElement();
    NullBuilder builder;
    const double walk = bestOf(rounds, [&] {
        buildSystem->build(root, QStringLiteral("Debug"), &builder, BUILD_QUIET, true, false);
    });
    const qsizetype projects = buildSystem->builtList().size();
    const double batchWalk = bestOf(rounds, [&] {
        buildSystem->build(root, QStringLiteral("Debug"), &builder, BUILD_QUIET, true, true);
    });
    const qsizetype batchBuilds = buildSystem->builtList().size();
    const double largeExpand = expandPerFile(rounds);
    const qsizetype fileCount = ProjectSystem::sourceFiles(root).size();

    std::printf("solution: %lld projects, %lld files\n", qlonglong(projects), qlonglong(fileCount));
    std::printf("load:              %8.2f ms\n", load);
    std::printf("walk:              %8.2f ms (%lld project builds)\n", walk, qlonglong(projects));
    std::printf("batch walk:        %8.2f ms (%lld project builds)\n", batchWalk,
                qlonglong(batchBuilds));
    std::printf("load + walk:       %8.2f ms\n", load + walk);
    std::printf("expand object name: %7.2f us/file at 10x10, %.2f us/file at 100x100\n",
                smallExpand, largeExpand);
    return 0;
}
