#include "projectoutline.h"

namespace {

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

using UpgradeTest = OutlineTest;

TEST_F(UpgradeTest, AnExecutablesFirstDefinitionsFileBecomesSettingsAndGoes)
{
    // Only the first definitions file is read and only its first script becomes a file; a
    // FLASH target without a script sets an empty one, a RAM target nothing. A file that can't
    // be read goes all the same.
    scratch.write("targets.xml", targets);
    scratch.write("sub/targets.xml", targets);
    scratch.write("sub/sub.hdp",
                  solutionText(startupProject("Imported", "Executable", targetsFile)));
    scratch.write("second.xml", definitionsType + "<objects><t name=\"X RAM\" resetScript=\"2\"/>"
                                                  "</objects>");
    scratch.write("broken.xml", definitionsType + "<objects><target name=\"B FLASH\"");
    scratch.write("other.xml", definitionsType + "<targets><t name=\"B FLASH\"/></targets>");
    QByteArray body =
        startupProject("App", "Executable",
                       targetsFile + R"x(<file Name="second.xml" file_name="second.xml"/>)x") +
        startupProject("Lib", "Library", targetsFile) + startupProject("None", "", targetsFile);
    body += "<import file_name=\"sub/sub.hdp\"/>";
    const QByteArray unreadable[] = {"missing.xml", "broken.xml", "other.xml"};
    for (const QByteArray &name : unreadable)
        body += startupProject(
            name, "Executable",
            "<file Name=\"d\" file_name=\"" + name +
                R"x("><configuration Name="Common" file_type="Target Definitions"/></file>)x");
    load(body);
    const QString startup = "  configuration Common project_type=Executable\n"
                            "  folder Startup Code\n"
                            "    file crt0.s file_name=crt0.s\n";
    EXPECT_EQ(project("App"),
              "project App\n" + startup +
                  "    file second.xml file_name=second.xml\n"
                  "    file sim.js file_name=sim.js\n"
                  "      configuration Common file_type=Reset Script\n"
                  "  configuration RAM target_reset_script=ram reset\n"
                  "  configuration Flash arm_target_flash_loader_file_path=loader.elf "
                  "arm_target_flash_loader_type=RAM Loader target_reset_script=\n");
    EXPECT_TRUE(project("Imported(S)").contains("configuration RAM")) << "imports as they load";
    EXPECT_TRUE(project("Lib").contains("targets.xml") && project("None").contains("targets.xml"));
    for (const QByteArray &name : unreadable)
        EXPECT_EQ(project(name), "project " + name + "\n" + startup);
    EXPECT_TRUE(system.modified()) << "the upgraded form is there to be saved";
}

} // namespace
