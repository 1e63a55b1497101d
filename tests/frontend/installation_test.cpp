#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

// The installation is found from the name the program was started by: through PATH for a
// bare word, through a link without resolving it. $(BenchDir) and the installation's own
// programs ("xmlcp") must come from the same place.
TEST(Installation, FoundThroughPathAndLinks)
{
    ScratchDir scratch;
    const QString installation = QDir(scratch.path()).canonicalPath() + "/inst";
    ASSERT_TRUE(QDir().mkpath(installation + "/bin"));
    ASSERT_TRUE(QFile::link(tidemakeExecutable(), installation + "/bin/tidemake"));
    // The link runs the installation's ld, here a program that succeeds, so that the
    // post-build command runs the installation's xmlcp, which isn't there.
    ASSERT_TRUE(QDir().mkpath(installation + "/gcc/bin"));
    ASSERT_TRUE(QFile::link("/bin/true", installation + "/gcc/bin/ld"));
    scratch.write("work/s.hdp", solutionText("  <configuration Name=\"Debug\"/>\n"
                                             "  <project Name=\"app\">\n"
                                             "    <configuration Name=\"Common\""
                                             " project_type=\"Executable\""
                                             " linker_post_build_command=\"xmlcp a b\"/>\n"
                                             "    <file file_name=\"app.ld\">\n"
                                             "      <configuration Name=\"Common\""
                                             " file_type=\"Linker Script\"/>\n"
                                             "    </file>\n"
                                             "  </project>\n"));
    const RunResult run =
        runProgram("sh", {"-c", "exec tidemake -echo -config Debug s.hdp"}, scratch.file("work"),
                   {"PATH=" + installation + "/bin:/usr/bin:/bin", "HOME=" + scratch.path(),
                    "XDG_CONFIG_HOME=" + scratch.file("config")});
    EXPECT_TRUE(run.out.contains("\n    " + installation + "/gcc/bin/ld "))
        << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("can't execute command \"" + installation + "/bin/xmlcp\""))
        << run.out.toStdString();
}
