#include "buildfixture.h"

#include "macros/macrosystem.h"

#include <QDir>
#include <QFileInfo>

#include <cstdio>

namespace {

class BuildMacros : public BuildFixture
{
protected:
    BuildMacros()
    {
        load("  <configuration Name=\"Debug\"/>\n"
             "  <project Name=\"App\">\n"
             "    <configuration Name=\"Common\" project_directory=\"app\" "
             "project_type=\"Executable\""
             " macros=\"Configuration=Wrong;Mine=$(ProjectName)x;BuildMacrosGlobal=project\""
             " build_intermediate_directory=\"$(Configuration)/$(ProjectName)\"/>\n"
             "    <configuration Name=\"Release\" build_output_directory=\"\"/>\n"
             "    <folder Name=\"Source\">\n"
             "      <file Name=\"main.c\" file_name=\"src/main.c\"/>\n"
             "    </folder>\n"
             "  </project>\n",
             QStringLiteral("demo.sln.hdp"));
        app = project(QStringLiteral("App"));
        file = ProjectSystem::sourceFiles(app).value(0);
    }

    ProjectElement *app = nullptr;
    ProjectElement *file = nullptr;
};

} // namespace

TEST_F(BuildMacros, FileMacrosInTheirOrder)
{
    ASSERT_NE(file, nullptr);
    macroSystem.setSystemMacro(QStringLiteral("BuildMacrosGlobal"), QStringLiteral("system"));
    const QMap<QString, QString> macros = system->macros(file, QStringLiteral("Debug"));
    const QString solutionDir = QFileInfo(scratch.path()).absoluteFilePath();
    const QString projectDir = solutionDir + QStringLiteral("/app");

    // The computed macro beats the project's, which beats the global one.
    EXPECT_EQ(macros.value("Configuration"), "Debug");
    EXPECT_EQ(macros.value("BuildMacrosGlobal"), "project");
    // Project macros go in unexpanded; a reference in them waits for the text's expansion.
    EXPECT_EQ(macros.value("Mine"), "$(ProjectName)x");

    EXPECT_EQ(macros.value("ProjectNodeName"), "main.c");
    EXPECT_EQ(macros.value("ProjectName"), "App");
    EXPECT_EQ(macros.value("ProjectDir"), projectDir);
    EXPECT_EQ(macros.value("Platform"), "arm");
    EXPECT_EQ(macros.value("SolutionDir"), solutionDir);
    EXPECT_EQ(macros.value("SolutionName"), "demo");
    EXPECT_EQ(macros.value("SolutionFileName"), "demo.sln.hdp");
    EXPECT_EQ(macros.value("SolutionExt"), "sln.hdp");
    EXPECT_EQ(macros.value("SolutionPath"), solutionDir + "/demo.sln.hdp");
    EXPECT_EQ(macros.value("InputDir"), projectDir + "/src");
    EXPECT_EQ(macros.value("InputName"), "main");
    EXPECT_EQ(macros.value("InputFileName"), "main.c");
    EXPECT_EQ(macros.value("InputExt"), "c");
    EXPECT_EQ(macros.value("InputPath"), projectDir + "/src/main.c");
    EXPECT_EQ(macros.value("RelInputPath"), "src/main.c");
    EXPECT_EQ(macros.value("OBJ"), ".o");
    EXPECT_EQ(macros.value("EXE"), ".elf");
    EXPECT_EQ(macros.value("LIB"), ".a");
    EXPECT_EQ(macros.value("PackageExt"), "hdq");
    // The directories expand with what was computed before them.
    EXPECT_EQ(macros.value("IntDir"), "Debug/App");
    EXPECT_EQ(macros.value("OutDir"), "Debug");

    EXPECT_EQ(system->settingForExpanded(file, system->buildObjectFileNameProperty, "Debug"),
              "Debug/App/main.o");
    // A macro's value is not expanded again.
    EXPECT_EQ(system->replaceMacros(file, "$(Mine)-$(OutDir)", "Debug"), "$(ProjectName)x-Debug");
    // The project model expands through the registered build system.
    ASSERT_EQ(projectSystem->settingExpander(), system);
    EXPECT_EQ(projectSystem->settingExpander()->settingForExpanded(
                  app, system->linkerOutputFileNameProperty, "Debug"),
              "Debug/App.elf");
}

TEST_F(BuildMacros, ElementsOutsideFilesAndProjects)
{
    // An empty output directory is the current one.
    EXPECT_EQ(system->macros(app, "Release").value("OutDir"), ".");
    EXPECT_EQ(system->macros(app, "Release").value("IntDir"), "Release/App");
    EXPECT_FALSE(system->macros(app, "Debug").contains("InputName"));

    const QMap<QString, QString> solution =
        system->macros(projectSystem->solutionElement(), "Debug");
    EXPECT_EQ(solution.value("ProjectNodeName"), "S");
    EXPECT_FALSE(solution.contains("ProjectName"));
    EXPECT_FALSE(solution.contains("ProjectDir"));
    EXPECT_EQ(solution.value("IntDir"), "Debug");

    const QMap<QString, QString> none = system->macros(nullptr, "Debug");
    EXPECT_EQ(none.value("Configuration"), "Debug");
    EXPECT_EQ(none.value("SolutionDir"), "");
    EXPECT_EQ(system->dotify(QString()), ".");
    EXPECT_EQ(system->dotify("x"), "x");
}

TEST_F(BuildMacros, TemporaryFileNamesLieInTheIntermediateDirectory)
{
    const QString prefix =
        QFileInfo(scratch.path()).absoluteFilePath() + "/app/Debug/App/" + P_tmpdir + "/file";
    const QString first = system->createTmpFile(file, "Debug");
    const QString second = system->createTmpFile(file, "Debug");
    EXPECT_TRUE(first.startsWith(prefix)) << first.toStdString();
    EXPECT_EQ(first.size(), prefix.size() + 6);
    EXPECT_NE(first, second);
    EXPECT_FALSE(QFileInfo::exists(first));
}

TEST_F(BuildMacros, DirectoriesAreMadeWithTheirParents)
{
    const QString deep = scratch.file("a/b/c");
    EXPECT_TRUE(system->recursiveMkdir(QDir(deep)));
    EXPECT_TRUE(QFileInfo(deep).isDir());
    EXPECT_TRUE(system->recursiveMkdir(QDir(deep)));
    EXPECT_TRUE(system->recursiveMkdir(QDir("/")));

    EXPECT_TRUE(system->ensureDirExists(scratch.file("x/y/out.o")));
    EXPECT_TRUE(QFileInfo(scratch.file("x/y")).isDir());
    EXPECT_FALSE(QFileInfo::exists(scratch.file("x/y/out.o")));

    // Below a plain file nothing can be made.
    scratch.write("plain", "text");
    EXPECT_FALSE(system->ensureDirExists(scratch.file("plain/sub/out.o")));
}
