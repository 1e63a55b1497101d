#include "project/propertyvaluegroups.h"
#include "project/solutionwarningstesting.h"

namespace {

TEST_F(SolutionWarningsTest, OneWarningPerKindNamingTheElement)
{
    // A solution body and the one warning it gives.
    const std::pair<const char *, const char *> cases[] = {
        {R"(<project Name="app"><folder Name="src"><file Name="main.c" file_name="main.c">
              <configuration Name="Release" gcc_optimisation_level="Level 1"/></file></folder>
            </project>)",
         R"(warning: FILE: project "app", folder "src", file "main.c", configuration "Release": "gcc_optimisation_level" is not a setting)"},
        {R"(<project Name="app"><configuration Name="Common" project_type="Libary"/></project>)",
         R"(warning: FILE: project "app", configuration "Common": "Libary" is not a value of project_type; it takes "Executable", "Library", "Object file", "Staging", "Combining", "Externally Built Executable")"},
        {R"(<project Name="app"><configuration Name="Common" project_dependencies="lib;utl"/></project>
            <project Name="lib"/>)",
         R"(warning: FILE: project "app", configuration "Common": project_dependencies names "utl", which is no project)"},
        // A property group of the project's group file is a setting too.
        {R"_(<project Name="app"><configuration Name="Common" project_type="Executable"
              property_groups_file_path="$(SolutionDir)/groups.xml" cpu_type="fast"
              cpu_typo="fast"/></project>)_",
         R"(warning: FILE: project "app", configuration "Common": "cpu_typo" is not a setting)"},
        {R"(<project Name="app"><fille Name="x.c" file_name="x.c"/></project>)",
         R"(warning: FILE: project "app": element <fille> is not understood and is skipped)"},
        {R"_(<configuration Name="Debug" arm_core_type="$(Core)" hidden="Yes"
              inherited_configurations="Common"/><configuration Name="Release" junk=""/>)_",
         R"(warning: FILE: configuration "Release": "junk" is not a setting)"},
    };
    scratch.write("groups.xml", "<!DOCTYPE Property_Groups>\n<propertyGroups><group "
                                "name=\"cpu_type\"><groupEntry name=\"fast\"/></group>"
                                "</propertyGroups>\n");
    const PropertyValueGroupFile *groupFileInUse = propertyValueGroups.currentFile();
    for (const auto &[body, warning] : cases)
        EXPECT_EQ(warningsOf(scratch.write("s.hdp", solutionText(body))),
                  QStringList{QString::fromUtf8(warning)})
            << body;
    // Reading a group file for the check leaves the build the one it would have used.
    EXPECT_EQ(propertyValueGroups.currentFile(), groupFileInUse);
}

TEST_F(SolutionWarningsTest, ThousandsOfUnknownAttributesStayWithinTheCap)
{
    QByteArray attributes;
    for (int n = 0; n < 3000; ++n)
        attributes += " unknown_" + QByteArray::number(n) + "=\"x\"";
    const QString path =
        scratch.write("s.hdp", solutionText("<configuration Name=\"Debug\"" + attributes + "/>"));
    int omitted = 0;
    EXPECT_EQ(warningsOf(path, &omitted).size(), SolutionWarnings::maximumLines);
    EXPECT_EQ(omitted, 3000 - SolutionWarnings::maximumLines);
}

TEST_F(SolutionWarningsTest, TheExamplesAndTheKitsTemplatesGiveNone)
{
    const QDir examples(QStringLiteral(TIDEMAKE_TEST_SOURCE_DIR "/../examples"));
    const QStringList solutions = examples.entryList({QStringLiteral("*.hdp")}, QDir::Files);
    ASSERT_FALSE(solutions.isEmpty());
    for (const QString &solution : solutions)
        EXPECT_EQ(warningsOf(examples.absoluteFilePath(solution)), QStringList())
            << solution.toStdString();
}

TEST(SolutionWarningsRun, WarningsGoToStandardErrorAndChangeNothingElse)
{
    ScratchDir work;
    ScratchDir settings;
    work.write("s.hdp", solutionText(R"(<configuration Name="Debug"/>
        <project Name="app"><configuration Name="Common" project_type="Staging"
          stage_set_readnoly="Yes"/></project>)"));
    const RunResult run =
        runTidemake({"-exitstatus", "-config", "Debug", "s.hdp"}, work.path(), settings.path());
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_FALSE(run.out.contains("warning")) << run.out.toStdString();
    EXPECT_EQ(run.err, "warning: s.hdp: project \"app\", configuration \"Common\": "
                       "\"stage_set_readnoly\" is not a setting\n");
}

} // namespace
