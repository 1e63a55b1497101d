#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QFile>

namespace {

/// A tool that makes the file after "-o" (the archiver its second argument) and fails if its
/// name is in $FAIL.
const QByteArray fakeTool = R"(#!/bin/sh
case " $FAIL " in *" ${0##*/} "*) exit 1 ;; esac
for arg in "$@"; do [ "$prev" = -o ] && : > "$arg"; prev=$arg; done
[ "${0##*/}" = ar ] && : > "$2"
exit 0
)";

} // namespace

// A library that builds, and an application with neither linker script nor memory map.
TEST(ExitStatus, TellsAFailedBuildOnlyWhenAsked)
{
    ScratchDir work;
    ScratchDir settings;
    for (const char *tool : {"cc1", "as", "ar"}) {
        const QString path = work.write(QStringLiteral("bench/gcc/bin/") + tool, fakeTool);
        QFile::setPermissions(path, QFile::permissions(path) | QFileDevice::ExeOwner);
    }
    work.write("s.hdp", solutionText("<configuration Name=\"Debug\"/><project Name=\"Lib\">"
                                     "<configuration Name=\"Common\" project_type=\"Library\"/>"
                                     "<file Name=\"lib.c\" file_name=\"lib.c\"/></project>"
                                     "<project Name=\"App\">"
                                     "<configuration Name=\"Common\" project_type=\"Executable\"/>"
                                     "<file Name=\"main.c\" file_name=\"main.c\"/></project>"));
    work.write("lib.c", "int f(void) { return 1; }\n");
    work.write("main.c", "int main(void) { return 0; }\n");
    // The statuses of a run without and with -exitstatus, as "without/with".
    const auto statuses = [&](const QStringList &options, const QString &failing = QString()) {
        QStringList results;
        for (const bool asked : {false, true}) {
            QStringList arguments = QStringList{"-rebuild", "-BenchDir", work.file("bench")};
            if (asked)
                arguments << "-exitstatus";
            results << QString::number(
                runTidemake(arguments + options, work.path(), settings.path(), {"FAIL=" + failing})
                    .exitCode);
        }
        return results.join('/');
    };

    EXPECT_EQ(statuses({"-config", "Debug", "-project", "Lib", "s.hdp"}), "0/0");
    EXPECT_EQ(statuses({"-config", "Debug", "-project", "Lib", "s.hdp"}, "cc1"), "0/2");
    // An error the build reports without a failed command counts too.
    EXPECT_EQ(statuses({"-config", "Debug", "-project", "App", "s.hdp"}), "0/2");
    EXPECT_EQ(statuses({"-config", "Debug", "missing.hdp"}), "0/2");
    // A refused request keeps its own status.
    EXPECT_EQ(statuses({"-config", "Release", "s.hdp"}), "1/1");
}
