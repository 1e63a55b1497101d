#include "project/projecttesting.h"

#include "macros/macrosystem.h"
#include "project/projectfilesaveerrorhandler.h"
#include "project/solutionsaveerror.h"

#include <QFile>

namespace {

const QByteArray rootBody = R"x(<solution Name="Demo" version="1">
  <project Name="App">
    <configuration Name="Common" project_dependencies="Lib(Sub)" project_directory="App" project_type="Executable"/>
    <folder Name="Source" filter="c;h">
      <file Name="main.c" file_name="main.c">
        <configuration Name="Debug" c_preprocessor_definitions="A;B\;C &amp; &quot;q&quot;"/>
      </file>
    </folder>
  </project>
  <configuration Name="Debug" inherited_configurations="Base"/>
  <configuration Name="Release"/>
  <import file_name="$(SubDir)/sub.hdp"/>
  <import file_name="sub/deep/deep.hdp"/>
</solution>
)x";

const QByteArray subBody = R"x(<solution Name="Sub">
  <project Name="App"/>
  <project Name="Lib">
    <configuration Name="Common" project_type="Library"/>
  </project>
  <import file_name="deep/deep.hdp"/>
</solution>
)x";

const QByteArray deepBody = "<solution Name=\"Deep\">\n  <project Name=\"App\"/>\n</solution>\n";

/// The three files of a solution with nested imports: "Demo" imports "Sub" and "Deep", and "Sub"
/// imports "Deep" as well.
class SolutionFiles : public ProjectTest
{
protected:
    SolutionFiles()
    {
        macroSystem.setSystemMacro("SubDir", scratch.file("sub"));
        rootPath = writeSolution("demo.hdp", rootBody);
        writeSolution("sub/sub.hdp", subBody);
        writeSolution("sub/deep/deep.hdp", deepBody);
    }
    ~SolutionFiles() override { macroSystem.setSystemMacro("SubDir", QString()); }

    QString rootPath;
};

TEST_F(SolutionFiles, LoadIndexesProjectsAndSolutionsByGlobalNames)
{
    E *root = system.loadSolution(rootPath, nullptr);
    EXPECT_EQ(system.projectNames(),
              (QStringList{"App", "App(Deep)", "App(Sub)", "App(Sub,Deep)", "Lib(Sub)"}))
        << "a file imported along two branches is loaded twice";
    EXPECT_FALSE(system.modified()) << "a fresh load differs from no file";
    E *sub = system.solutionSolutions().value("Sub");
    E *deepApp = system.solutionProjects(nullptr).value("App(Sub,Deep)");
    EXPECT_EQ(system.solutionProjects(sub).value("App(Deep)"), deepApp);
    EXPECT_EQ(ProjectSystem::findProject(deepApp, "Lib"), system.solutionProjects(sub).value("Lib"))
        << "a name is looked up from the inside out";
    EXPECT_EQ(ProjectSystem::projectDirectoryPath(deepApp), scratch.file("sub/deep"));
    E *app = system.solutionProjects(nullptr).value("App");
    EXPECT_EQ(system.directlyDependsOn(app, "Debug").value(0),
              system.solutionProjects(nullptr).value("Lib(Sub)"));
    E *main = ProjectSystem::findRelativeFile(root, "MAIN.C");
    ASSERT_NE(main, nullptr);
    EXPECT_EQ(main->path(), Path(scratch.file("App/main.c")));
    EXPECT_EQ(main->getConfigurationElement("Debug")->attribute("c_preprocessor_definitions"),
              R"(A;B\;C & "q")");
}

TEST_F(SolutionFiles, SaveWritesEachFileAsItWasRead)
{
    E *root = system.loadSolution(rootPath, nullptr);
    ASSERT_TRUE(system.saveProjectFile(root, scratch.file("copy.hdp")));
    EXPECT_EQ(scratch.read("copy.hdp"), "<!DOCTYPE Tarnbench_Project_File>\n" + rootBody);
    system.setProperty(system.solutionProjects(nullptr).value("Lib(Sub)"),
                       "c_user_include_directories", "Debug", "inc");
    EXPECT_TRUE(system.modified());
    system.save(nullptr);
    EXPECT_FALSE(system.modified());
    EXPECT_EQ(scratch.read("sub/sub.hdp"),
              "<!DOCTYPE Tarnbench_Project_File>\n" +
                  QByteArray(subBody).replace(
                      "project_type=\"Library\"/>",
                      "project_type=\"Library\"/>\n"
                      "    <configuration Name=\"Debug\" c_user_include_directories=\"inc\"/>"));
    EXPECT_EQ(system.solutionSolutions().value("Sub")->attribute("file_name"), "$(SubDir)/sub.hdp");
    EXPECT_EQ(scratch.read("sub/deep/deep.hdp"), "<!DOCTYPE Tarnbench_Project_File>\n" + deepBody);
}

TEST_F(SolutionFiles, ImportsAreMungedInnermostFirst)
{
    struct Recording : ARMProjectSystem
    {
        void munge(E *element) override { munged.append(element->attribute("Name")); }
        QStringList munged;
    } recording;
    projectSystem = &recording;
    recording.loadSolution(rootPath, nullptr);
    EXPECT_EQ(recording.munged, (QStringList{"Deep", "Sub", "Deep", "Demo"}));
    projectSystem = &system;
}

TEST_F(ProjectTest, LoadErrorsCarryTheirExactTexts)
{
    const auto importing = [this](const char *name, const QByteArray &imported) {
        return writeSolution(name, "<solution Name=\"I\"><import file_name=\"" + imported +
                                       "\"/></solution>");
    };
    importing("b.hdp", "a.hdp");
    // The file to load, the file the error names (the same if empty), the message, and for
    // bad XML the line.
    const std::tuple<QString, QString, const char *, int> cases[] = {
        {scratch.file("none.hdp"), "", " does not exist", 0},
        {scratch.path(), "", " cannot access", 0},
        {scratch.write("other.hdp", "<!DOCTYPE Other>\n<solution/>\n"), "", " not a solution file",
         0},
        {scratch.write("bare.hdp", "<solution/>\n"), "", " not a solution file", 0},
        {scratch.write("empty.hdp", ""), "", " not a solution file", 0},
        {writeSolution("p.hdp", "<project Name=\"P\"/>\n"), "", " not a solution file", 0},
        {importing("a.hdp", "b.hdp"), "", " solution already loaded", 0},
        {importing("self.hdp", "self.hdp"), "", " solution already loaded", 0},
        {importing("m.hdp", "gone.hdp"), scratch.file("gone.hdp"), " does not exist", 0},
        {writeSolution("n.hdp", QByteArray("<solution Name=\"S\">").repeated(40) +
                                    QByteArray("</solution>").repeated(40)),
         "", " solutions nested too deeply", 0},
        {writeSolution("x.hdp", "<solution>\n  <project>\n</solution>\n"), "", "tagName mismatch",
         3},
    };
    for (const auto &[path, file, message, line] : cases) {
        const auto error = loadError(path);
        ASSERT_TRUE(error) << path.toStdString();
        EXPECT_EQ(error->kind, line ? SolutionLoadError::BadXML : SolutionLoadError::Plain);
        EXPECT_EQ(error->fileName, file.isEmpty() ? path : file);
        EXPECT_EQ(error->message, message);
        EXPECT_EQ(error->line, line);
        EXPECT_FALSE(system.haveSolution()) << "a failed load leaves nothing";
    }
}

} // namespace
