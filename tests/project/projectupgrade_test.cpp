#include "projectoutline.h"
#include "projecttesting.h"

#include "macros/macrosystem.h"

namespace {

using E = ProjectElement;

const QByteArray definitionsType = "<!DOCTYPE Tarnbench_Target_Definition_File>\n";

const QByteArray targets = definitionsType + R"x(<objects>
  <target name="Sim RAM" targetScriptFilePath="sim.js"/>
  <target name="Board RAM" resetScript="ram reset" targetScriptFilePath="board.js"/>
  <target name="Board ram" resetScript="not this"/>
  <target name="Board FLASH" loaderPath="loader.elf" loaderType=""/>
  <other/>
</objects>
)x";

/// A project of `type` whose "Startup Code" folder holds a start-up file and `files`.
QByteArray startupProject(const QByteArray &name, const QByteArray &type, const QByteArray &files)
{
    return "<project Name=\"" + name + "\"><configuration Name=\"Common\" project_type=\"" + type +
           "\"/>\n  <folder Name=\"Startup Code\"><file Name=\"crt0.s\" file_name=\"crt0.s\"/>" +
           files + "</folder>\n</project>\n";
}

const QByteArray targetsFile = R"x(<file Name="targets.xml" file_name="targets.xml"/>)x";

/// Solutions loaded from a scratch directory beside their target definitions files.
class UpgradeTest : public ProjectTest
{
protected:
    E *load(const QByteArray &body)
    {
        return system.loadSolution(scratch.write("s.hdp", solutionText(body)), nullptr);
    }
    QString project(const QString &name)
    {
        return outline(system.solutionProjects(nullptr).value(name));
    }
};

TEST_F(UpgradeTest, AnExecutablesFirstDefinitionsFileBecomesSettingsAndGoes)
{
    // Only the first definitions file is read and only its first script becomes a file; a
    // FLASH target without a script sets an empty one, a RAM target nothing. A file that can't
    // be read goes all the same.
    scratch.write("targets.xml", targets);
    scratch.write("second.xml", definitionsType + "<objects><t name=\"X RAM\" resetScript=\"2\"/>"
                                                  "</objects>");
    scratch.write("broken.xml", definitionsType + "<objects><target name=\"B FLASH\"");
    scratch.write("other.xml", definitionsType + "<targets><t name=\"B FLASH\"/></targets>");
    QByteArray body =
        startupProject("App", "Executable",
                       targetsFile + R"x(<file Name="second.xml" file_name="second.xml"/>)x") +
        startupProject("Lib", "Library", targetsFile) + startupProject("None", "", targetsFile);
    const QByteArray unreadable[] = {"missing.xml", "broken.xml", "other.xml"};
    for (const QByteArray &name : unreadable)
        body += startupProject(name, "Executable",
                               "<file Name=\"d\" file_name=\"" + name +
                                   "\"><configuration Name=\"Common\" "
                                   "file_type=\"Target Definitions\"/></file>");
    load(body);
    EXPECT_EQ(project("App"), "project App\n"
                              "  configuration Common project_type=Executable\n"
                              "  folder Startup Code\n"
                              "    file crt0.s file_name=crt0.s\n"
                              "    file second.xml file_name=second.xml\n"
                              "    file sim.js file_name=sim.js\n"
                              "      configuration Common file_type=Reset Script\n"
                              "  configuration RAM target_reset_script=ram reset\n"
                              "  configuration Flash arm_target_flash_loader_file_path=loader.elf "
                              "arm_target_flash_loader_type=RAM Loader target_reset_script=\n");
    EXPECT_TRUE(project("Lib").contains("targets.xml"));
    EXPECT_TRUE(project("None").contains("targets.xml"));
    for (const QByteArray &name : unreadable)
        EXPECT_EQ(project(name), "project " + name +
                                     "\n"
                                     "  configuration Common project_type=Executable\n"
                                     "  folder Startup Code\n"
                                     "    file crt0.s file_name=crt0.s\n");
    EXPECT_TRUE(system.modified()) << "the upgraded form is there to be saved";
}

TEST_F(UpgradeTest, ImportsAreUpgradedAsTheyLoadAndTemplatesClearTheMarks)
{
    macroSystem.setSystemMacro("BenchDir", scratch.path());
    scratch.write("targets/project_templates.xml", "<kit><project template_name=\"T\"/></kit>");
    scratch.write("sub/targets.xml", targets);
    scratch.write("sub/sub.hdp", solutionText(startupProject("App", "Executable", targetsFile)));
    scratch.write("targets.xml", targets);
    // "First" has no folder of its own: the search from it reaches the next project's. What
    // goes with the definitions file may name a template; it goes before templates expand.
    load(R"x(<project Name="First" template_name="T">
  <configuration Name="Common" project_type="Executable"/></project>
<project Name="Lib"><folder Name="Startup Code"><file Name="targets.xml" file_name="targets.xml">
  <configuration Name="Common" template_name="T"/></file></folder></project>
<import file_name="sub/sub.hdp"/>
)x");
    macroSystem.setSystemMacro("BenchDir", QString());
    EXPECT_TRUE(project("App(S)").contains("configuration RAM"));
    EXPECT_TRUE(project("First").contains("configuration RAM"));
    EXPECT_FALSE(project("Lib").contains("targets.xml"));
    EXPECT_FALSE(system.modified());
}

} // namespace
