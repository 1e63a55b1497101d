#include "project/projecttesting.h"

#include "macros/macrosystem.h"
#include "project/projectfilenotfounderrorhandler.h"
#include "project/projectfilesaveerrorhandler.h"
#include "project/solutionsaveerror.h"

#include "xml/xmldocument.h"

#include <QFile>

namespace {

using E = ProjectElement;

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

const QByteArray deepBody = R"x(<solution Name="Deep">
  <project Name="App"/>
</solution>
)x";

/// The three files of a solution with a nested import, "Demo" importing "Sub" importing "Deep".
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
    ASSERT_EQ(root, system.solutionElement());
    EXPECT_EQ(system.projectNames(), (QStringList{"App", "App(Sub)", "App(Sub,Deep)", "Lib(Sub)"}));
    EXPECT_EQ(system.solutionNames(), (QStringList{"Deep", "Demo", "Sub", "Sub,Deep"}));
    EXPECT_FALSE(system.modified()) << "a fresh load differs from no file";
    EXPECT_EQ(system.solutionVersion(), "1");
    EXPECT_EQ(system.solutionDirectory(), scratch.path());

    E *sub = system.solutionSolutions().value("Sub");
    ASSERT_NE(sub, nullptr);
    EXPECT_TRUE(sub->imported());
    EXPECT_EQ(sub->attribute("file_name"), "$(SubDir)/sub.hdp");
    EXPECT_EQ(sub->storedPath(), Path(scratch.file("sub/sub.hdp")));
    EXPECT_EQ(ProjectSystem::solutionDirectoryOf(sub), scratch.file("sub"));
    E *deepApp = system.solutionProjects(nullptr).value("App(Sub,Deep)");
    EXPECT_EQ(system.solutionProjects(sub).value("App(Deep)"), deepApp);
    EXPECT_EQ(ProjectSystem::findProject(deepApp, "Lib"),
              system.solutionProjects(sub).value("Lib"));
    EXPECT_EQ(ProjectSystem::findProject(root, "App(Sub)"), sub->firstChild());
    EXPECT_EQ(ProjectSystem::findProject(root, "Lib"), nullptr);

    E *app = system.solutionProjects(nullptr).value("App");
    EXPECT_EQ(ProjectSystem::projectDirectoryPath(app), scratch.file("App"));
    EXPECT_EQ(ProjectSystem::projectDirectoryPath(deepApp), scratch.file("sub/deep"));
    EXPECT_EQ(system.directlyDependsOn(app, "Debug").value(0),
              system.solutionProjects(nullptr).value("Lib(Sub)"));
    E *main = ProjectSystem::findByName(root, "main.c");
    ASSERT_NE(main, nullptr);
    EXPECT_EQ(main->path(), Path(scratch.file("App/main.c")));
    EXPECT_EQ(ProjectSystem::findRelativeFile(root, "MAIN.C"), main);
    EXPECT_EQ(ProjectSystem::findAbsoluteFile(root, Path(scratch.file("sub/sub.hdp"))), sub);
    EXPECT_TRUE(ProjectSystem::containsFile(app, Path(scratch.file("App/main.c"))));
    EXPECT_EQ(ProjectSystem::sourceFiles(root), QList<E *>{main});
    EXPECT_EQ(main->getConfigurationElement("Debug")->attribute("c_preprocessor_definitions"),
              R"(A;B\;C & "q")");
    EXPECT_EQ(system.configurations(deepApp, 4), (QStringList{"Debug", "Release"}));
}

TEST_F(SolutionFiles, SaveWritesEachFileAsItWasRead)
{
    E *root = system.loadSolution(rootPath, nullptr);
    ASSERT_TRUE(system.saveProjectFile(root, scratch.file("copy.hdp")));
    EXPECT_EQ(scratch.read("copy.hdp"), "<!DOCTYPE Tarnbench_Project_File>\n" + rootBody);

    E *lib = system.solutionProjects(nullptr).value("Lib(Sub)");
    system.setProperty(lib, "c_user_include_directories", "Debug", "inc");
    EXPECT_TRUE(system.modified());
    system.save(nullptr);
    EXPECT_FALSE(system.modified());
    EXPECT_EQ(scratch.read("sub/sub.hdp"),
              "<!DOCTYPE Tarnbench_Project_File>\n" +
                  QByteArray(subBody).replace(
                      R"(    <configuration Name="Common" project_type="Library"/>)",
                      "    <configuration Name=\"Common\" project_type=\"Library\"/>\n"
                      "    <configuration Name=\"Debug\" c_user_include_directories=\"inc\"/>"));
    EXPECT_EQ(system.solutionSolutions().value("Sub")->attribute("file_name"), "$(SubDir)/sub.hdp");
    EXPECT_EQ(scratch.read("sub/deep/deep.hdp"), "<!DOCTYPE Tarnbench_Project_File>\n" + deepBody);

    QFile::remove(scratch.file("sub/deep/deep.hdp"));
    const auto error = loadError(rootPath);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->fileName, scratch.file("sub/deep/deep.hdp"));
    EXPECT_FALSE(system.haveSolution()) << "a failed load leaves nothing";
    EXPECT_TRUE(system.solutionSolutions().isEmpty());
}

TEST_F(SolutionFiles, ImportsAreMungedInnermostFirstAndCanBeAddedLater)
{
    struct Recording : ARMProjectSystem
    {
        void munge(E *element) override { munged.append(element->attribute("Name")); }
        QStringList munged;
    } recording;
    projectSystem = &recording;
    recording.loadSolution(rootPath, nullptr);
    EXPECT_EQ(recording.munged, (QStringList{"Deep", "Sub", "Demo"}));
    projectSystem = &system;

    E *root = system.createSolution("Top", scratch.path());
    system.setProperty(root, system.inheritedConfigurationsClass, "Debug", "Base");
    EXPECT_EQ(ProjectSystem::getInheritedConfigurations(root, "Debug"), QStringList{"Base"});
    E *deep = system.importSolution(root, scratch.file("sub/deep/deep.hdp"), nullptr);
    EXPECT_EQ(deep->attribute("file_name"), "sub/deep/deep.hdp");
    EXPECT_EQ(system.projectNames(), QStringList{"App(Deep)"});
    ASSERT_TRUE(system.saveProjectFile(root, scratch.file("top.hdp")));
    EXPECT_EQ(scratch.read("top.hdp"), R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Top" version="1">
  <configuration Name="Debug" inherited_configurations="Base"/>
  <import file_name="sub/deep/deep.hdp"/>
</solution>
)");
    try {
        system.importSolution(deep, scratch.file("top.hdp"), nullptr);
        ADD_FAILURE() << "a solution can't import the file that imports it";
    } catch (const SolutionLoadError &error) {
        EXPECT_EQ(error.message, " solution already loaded");
    }
}

TEST_F(SolutionFiles, SaveFailureThrowsAfterOneRetry)
{
    struct Retry : ProjectFileSaveErrorHandler
    {
        bool saveFailed(E *) override
        {
            ++calls;
            return true;
        }
        int calls = 0;
    } retry;
    E *root = system.createSolution("New", scratch.file("made/here"));
    EXPECT_TRUE(QFileInfo(scratch.file("made/here")).isDir());
    system.createProject(root, "P", scratch.file("made/here/p"), "Library");
    root->setPath(scratch.file("missing/dir/New.hdp"));
    try {
        system.save(&retry);
        ADD_FAILURE() << "save should fail";
    } catch (const SolutionSaveError &error) {
        EXPECT_EQ(error.solution, root);
    }
    EXPECT_EQ(retry.calls, 1);
    ASSERT_TRUE(system.saveProjectFile(root, scratch.file("made/here/New.hdp")));
    EXPECT_EQ(scratch.read("made/here/New.hdp"), R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="New" version="1">
  <project Name="P">
    <configuration Name="Common" project_directory="p" project_type="Library"/>
  </project>
</solution>
)");
}

TEST_F(ProjectTest, LoadErrorsCarryTheirExactTexts)
{
    auto expectPlain = [this](const QString &path, const QString &file, const QString &message) {
        const auto error = loadError(path);
        ASSERT_TRUE(error) << path.toStdString();
        EXPECT_EQ(error->kind, SolutionLoadError::Plain);
        EXPECT_EQ(error->fileName, file);
        EXPECT_EQ(error->message, message);
        EXPECT_FALSE(system.haveSolution());
    };
    expectPlain(scratch.file("none.hdp"), scratch.file("none.hdp"), " does not exist");
    expectPlain(scratch.path(), scratch.path(), " cannot access");
    const QString other = scratch.write("other.hdp", "<!DOCTYPE Other>\n<solution/>\n");
    expectPlain(other, other, " not a solution file");
    const QString bare = scratch.write("bare.hdp", "<solution/>\n");
    expectPlain(bare, bare, " not a solution file");
    expectPlain(scratch.write("empty.hdp", ""), scratch.file("empty.hdp"), " not a solution file");
    const QString project = writeSolution("project.hdp", "<project Name=\"P\"/>\n");
    expectPlain(project, project, " not a solution file");

    const QString a =
        writeSolution("a.hdp", R"(<solution Name="A"><import file_name="b.hdp"/></solution>)");
    writeSolution("b.hdp", R"(<solution Name="B"><import file_name="a.hdp"/></solution>)");
    expectPlain(a, a, " solution already loaded");
    writeSolution("self.hdp", R"(<solution Name="S"><import file_name="self.hdp"/></solution>)");
    expectPlain(scratch.file("self.hdp"), scratch.file("self.hdp"), " solution already loaded");
    const QString missingImport = writeSolution(
        "mi.hdp",
        R"(<solution Name="M"><project Name="P"/><import file_name="gone.hdp"/></solution>)");
    expectPlain(missingImport, scratch.file("gone.hdp"), " does not exist");
    const QString templated = writeSolution(
        "t.hdp", R"(<solution Name="T"><project Name="P" template_name="Board"/></solution>)");
    expectPlain(templated, "Board", " project template not found");

    const QString bad = writeSolution("bad.hdp", "<solution>\n  <project>\n</solution>\n");
    const auto error = loadError(bad);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, SolutionLoadError::BadXML);
    EXPECT_EQ(error->fileName, bad);
    EXPECT_EQ(error->message, "tagName mismatch");
    EXPECT_EQ(error->line, 3);

    struct GoOn : ProjectFileNotFoundErrorHandler
    {
        bool fileNotFound(const QString &) override { return true; }
    } goOn;
    try {
        system.loadSolution(scratch.file("none.hdp"), &goOn);
        ADD_FAILURE() << "load should fail";
    } catch (const SolutionLoadError &e) {
        EXPECT_EQ(e.message, " cannot access");
    }

    const QString diamond = writeSolution("d.hdp", R"(<solution Name="D">
  <import file_name="x.hdp"/>
  <import file_name="y.hdp"/>
</solution>)");
    writeSolution("x.hdp", R"(<solution Name="X"><import file_name="shared.hdp"/></solution>)");
    writeSolution("y.hdp", R"(<solution Name="Y"><import file_name="shared.hdp"/></solution>)");
    writeSolution("shared.hdp", R"(<solution Name="Shared"><project Name="P"/></solution>)");
    ASSERT_FALSE(loadError(diamond));
    EXPECT_EQ(system.projectNames(), (QStringList{"P(X,Shared)", "P(Y,Shared)"}))
        << "a file imported along two branches loads twice";
}

TEST_F(ProjectTest, HostileNestingLoadsOrFailsWithoutExhaustingTheStack)
{
    QByteArray deep = "<solution Name=\"S\"><project Name=\"P\">";
    const int levels = 100000;
    for (int i = 0; i < levels; ++i)
        deep += "<folder Name=\"F\">";
    deep += "<file Name=\"f.c\" file_name=\"f.c\"/>";
    for (int i = 0; i < levels; ++i)
        deep += "</folder>";
    deep += "</project></solution>\n";
    ASSERT_FALSE(loadError(writeSolution("deep.hdp", deep)));
    E *file = ProjectSystem::sourceFiles(system.solutionElement()).value(0);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(system.settingFor(file, system.projectTypeClass, "Debug"), "Executable");
    // Saved with its indentation such a file would grow with the square of its depth, so
    // only the document is made.
    XMLDocument document;
    EXPECT_NE(system.elementToDom(&document, system.solutionElement()), nullptr);
    system.closeSolution();

    QByteArray nested;
    for (int i = 0; i < 40; ++i)
        nested += "<solution Name=\"S\">";
    for (int i = 0; i < 40; ++i)
        nested += "</solution>";
    const auto error = loadError(writeSolution("nested.hdp", nested));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message, " solutions nested too deeply");

    const QString inline_ = writeSolution("inline.hdp", R"(<solution Name="A">
  <solution Name="In">
    <project Name="P"/>
  </solution>
</solution>
)");
    ASSERT_FALSE(loadError(inline_));
    EXPECT_EQ(system.projectNames(), QStringList{"P(In)"});
    system.setProperty(system.solutionProjects(nullptr).value("P(In)"), "v", "Debug", "1");
    system.save(nullptr);
    EXPECT_TRUE(scratch.read("inline.hdp").contains(R"(<configuration Name="Debug" v="1"/>)"))
        << "a solution written inline is saved with the file that holds it";
}

} // namespace
