#include "support/faketoolchain.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <tuple>

// A library that builds, and an application with neither linker script nor memory map.
TEST(ExitStatus, TellsAFailedBuildOnlyWhenAsked)
{
    ScratchDir work;
    ScratchDir settings;
    FakeToolChain tools(work);
    work.write("s.hdp", solutionText("<configuration Name=\"Debug\"/><project Name=\"Lib\">"
                                     "<configuration Name=\"Common\" project_type=\"Library\"/>"
                                     "<file Name=\"lib.c\" file_name=\"lib.c\"/></project>"
                                     "<project Name=\"App\">"
                                     "<configuration Name=\"Common\" project_type=\"Executable\"/>"
                                     "<file Name=\"main.c\" file_name=\"main.c\"/></project>"));
    work.write("lib.c", "int f(void) { return 1; }\n");
    work.write("main.c", "int main(void) { return 0; }\n");
    // The statuses of a run without and with -exitstatus, as "without/with". An error the build
    // reports without a failed command counts; a refused request keeps its own status.
    const QList<std::tuple<QString, QStringList, QString, QString>> cases = {
        {"Debug", {"-project", "Lib", "s.hdp"}, "", "0/0"},
        {"Debug", {"-project", "Lib", "s.hdp"}, "cc1", "0/2"},
        {"Debug", {"-project", "App", "s.hdp"}, "", "0/2"},
        {"Debug", {"missing.hdp"}, "", "0/2"},
        {"Release", {"s.hdp"}, "", "1/1"}};
    for (const auto &[configuration, options, failing, expected] : cases) {
        QStringList statuses;
        for (const QStringList &asked : {QStringList(), QStringList{"-exitstatus"}})
            statuses << QString::number(
                runTidemake(QStringList{"-rebuild", "-config", configuration, "-BenchDir",
                                        tools.benchDir()} +
                                asked + options,
                            work.path(), settings.path(), tools.environment(failing))
                    .exitCode);
        EXPECT_EQ(statuses.join('/'), expected) << options.join(' ').toStdString();
    }
}
