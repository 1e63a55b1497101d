#pragma once

#include "macros/macrosystem.h"
#include "project/armprojectsystem.h"
#include "project/solutionwarnings.h"
#include "support/testsupport.h"
#include "toolchain/armbuildsystem.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

/// The installation tree the built program uses: the build directory.
inline QString installationDir()
{
    return QFileInfo(QStringLiteral(TIDEMAKE_EXE)).absoluteDir().absoluteFilePath("..");
}

/// A project system and the ARM build catalogue installed as the process-wide ones.
class SolutionWarningsTest : public ::testing::Test
{
protected:
    SolutionWarningsTest()
    {
        projectSystem = &projects;
        buildSystem = &build;
        // The build system met no project system when it was made, before this body ran.
        projects.setSettingExpander(&build);
        macroSystem.setSystemMacro(QStringLiteral("BenchDir"), QDir::cleanPath(installationDir()));
    }
    ~SolutionWarningsTest() override
    {
        projects.closeSolution();
        buildSystem = nullptr;
        projectSystem = nullptr;
    }

    /// The warnings of loading `path`, with the file shown as "FILE".
    QStringList warningsOf(const QString &path, int *omitted = nullptr)
    {
        projects.loadSolution(path, nullptr);
        SolutionWarnings warnings(&projects);
        warnings.checkLoadedSolution();
        if (omitted)
            *omitted = warnings.omitted();
        QStringList lines = warnings.lines();
        return lines.replaceInStrings(path, QStringLiteral("FILE"));
    }

    ARMProjectSystem projects;
    ARMBuildSystem build{QStringList()};
    ScratchDir scratch;
};
