#include "enginefixture.h"

#include "macros/macrosystem.h"

#include <QFileInfo>

#include <cstdio>

using BuildMacros = EngineTest;

TEST_F(BuildMacros, FileMacrosInTheirOrderAndTemporaryFiles)
{
    load(projectXml("App",
                    "project_directory=\"app\" project_type=\"Executable\" "
                    "macros=\"Configuration=Wrong;Mine=$(ProjectName)x;BuildMacrosGlobal=project\" "
                    "build_intermediate_directory=\"$(Configuration)/$(ProjectName)\"",
                    "    <configuration Name=\"Release\" build_output_directory=\"\"/>\n"
                    "    <file Name=\"main.c\" file_name=\"src/main.c\"/>\n"),
         QStringLiteral("demo.sln.hdp"));
    ProjectElement *file = element("main.c");
    macroSystem.setSystemMacro(QStringLiteral("BuildMacrosGlobal"), QStringLiteral("system"));
    const QMap<QString, QString> macros = system->macros(file, QStringLiteral("Debug"));
    const QString solutionDir = QFileInfo(scratch.path()).absoluteFilePath();

    // The computed macro beats the project's, which beats the global one. Project macros go
    // in unexpanded: a reference in them waits for the text's expansion. The directories
    // expand with what was computed before them. "~" is the solution directory.
    const QStringList expected =
        QStringLiteral("Configuration=Debug BuildMacrosGlobal=project Mine=$(ProjectName)x "
                       "ProjectNodeName=main.c ProjectDir=~/app SolutionDir=~ SolutionName=demo "
                       "SolutionExt=sln.hdp SolutionPath=~/demo.sln.hdp InputDir=~/app/src "
                       "InputName=main InputExt=c InputPath=~/app/src/main.c "
                       "RelInputPath=src/main.c IntDir=Debug/App OutDir=Debug")
            .split(' ');
    for (const QString &entry : expected) {
        const QString name = entry.section('=', 0, 0);
        EXPECT_EQ(name + '=' + macros.value(name).replace(solutionDir, "~"), entry);
    }

    // An empty output directory is the current one.
    EXPECT_EQ(system->macros(element("App"), "Release").value("OutDir"), ".");
    EXPECT_EQ(system->settingForExpanded(file, system->buildObjectFileNameProperty, "Debug"),
              "Debug/App/main.o");
    // A macro's value is not expanded again.
    EXPECT_EQ(system->replaceMacros(file, "$(Mine)-$(OutDir)", "Debug"), "$(ProjectName)x-Debug");
    // The project model expands through the registered build system.
    EXPECT_EQ(projectSystem->settingExpander(), system);

    // Temporary file names lie in the intermediate directory, and are not made.
    const QString prefix = solutionDir + "/app/Debug/App/" + P_tmpdir + "/file";
    const QString first = system->createTmpFile(file, "Debug");
    EXPECT_TRUE(first.startsWith(prefix) && first.size() == prefix.size() + 6)
        << first.toStdString();
    EXPECT_NE(first, system->createTmpFile(file, "Debug"));
    EXPECT_FALSE(QFileInfo::exists(first));
    // Below a plain file no directory can be made.
    scratch.write("plain", "text");
    EXPECT_FALSE(system->ensureDirExists(scratch.file("plain/sub/out.o")));
}
