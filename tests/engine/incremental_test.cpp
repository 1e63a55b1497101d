#include "support/faketoolchain.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>

#include <utility>

namespace {

const QByteArray memoryMap = R"(<!DOCTYPE Board_Memory_Definition_File>
<Root name="B"><MemorySegment name="RAM" start="0x0" size="0x10000"/></Root>
)";
QByteArray placement(const QByteArray &section)
{
    return R"(<!DOCTYPE Linker_Placement_File>
<Root name="B"><MemorySegment name="RAM">
  <ProgramSection name=")" +
           section + R"(" load="Yes"/><ProgramSection name=".stack" size="__STACKSIZE__"/>
</MemorySegment></Root>
)";
}

/// An application on a library, built by the program with a fake tool chain, its linker script
/// written from a memory map and a section placement; `appSettings` go on the application,
/// `utilSettings` on its file util.c.
QByteArray solution(const QByteArray &appSettings = "", const QByteArray &libFiles = "",
                    const QByteArray &utilSettings = "")
{
    const QByteArray util = utilSettings.isEmpty()
                                ? QByteArray("<file file_name=\"util.c\"/>")
                                : "<file file_name=\"util.c\"><configuration Name=\"Common\" " +
                                      utilSettings + "/></file>";
    return solutionText(R"(<configuration Name="Debug"/>
<project Name="app">
  <configuration Name="Common" project_directory="app" project_type="Executable"
    project_dependencies="lib" linker_memory_map_file="map.xml"
    linker_section_placement_file="placement.xml" )" +
                        appSettings + R"(/>
  <file file_name="main.c"/>)" +
                        util + R"(
</project>
<project Name="lib">
  <configuration Name="Common" project_directory="lib" project_type="Library"/>
  <file file_name="a.c"/>)" +
                        libFiles + "</project>\n");
}

class Incremental : public ::testing::Test
{
protected:
    Incremental()
    {
        work.write("s.hdp", solution());
        for (const char *source : {"app/main.c", "app/util.c", "lib/a.c", "lib/b.c"})
            work.write(source, "int x;\n");
        work.write("app/map.xml", memoryMap);
        work.write("app/placement.xml", placement(".text"));
    }

    /// Builds in "Debug" with `options`; the tools that ran, one "tool output" each for the
    /// assembler, archiver and linker ("as main.o", "ar lib.a", "ld app.elf").
    QStringList build(const QStringList &options = {}, const QString &benchDir = QString(),
                      const QString &failing = QString())
    {
        last = runTidemake(QStringList{"-config", "Debug", "-BenchDir",
                                       benchDir.isEmpty() ? tools.benchDir() : benchDir} +
                               options + QStringList{"s.hdp"},
                           work.path(), settings.path(), tools.environment(failing));
        QStringList ran;
        static const QRegularExpression output(QStringLiteral("(?:-o |ar \\S+ )(\\S+)"));
        for (const QString &line : tools.take()) {
            const QString tool = line.section(' ', 0, 0);
            if (tool == "as" || tool == "ar" || tool == "ld")
                ran << tool + " " + QFileInfo(output.match(line).captured(1)).fileName();
        }
        return ran;
    }
    /// Every file below the work directory with its size and time to the millisecond.
    QStringList listing()
    {
        QStringList files;
        QDirIterator it(work.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo info(it.next());
            files << info.filePath() + " " + QString::number(info.size()) + " " +
                         QString::number(info.lastModified().toMSecsSinceEpoch());
        }
        files.sort();
        return files;
    }
    QString script() { return QString::fromLatin1(work.read("app/Debug/app.ld")); }

    ScratchDir work;
    ScratchDir settings;
    FakeToolChain tools{work};
    RunResult last;
};

TEST_F(Incremental, EachKindOfChangeRebuildsWhatItReaches)
{
    const QStringList all = build();
    EXPECT_EQ(all.size(), 5) << all.join(", ").toStdString();
    EXPECT_EQ(build(), QStringList{});

    const QStringList compiled = {"as main.o", "as util.o", "ld app.elf"};
    const std::pair<QByteArray, QStringList> cases[] = {
        {"c_preprocessor_definitions=\"DEBUG\"", compiled},
        {"c_user_include_directories=\"inc\"", compiled},
        {"gcc_optimization_level=\"Level 2\"", compiled},
        {"arm_linker_stack_size=\"2048\"", {"ld app.elf"}},
    };
    // Each change comes on top of the ones before.
    QByteArray settings;
    for (const auto &[setting, rebuilt] : cases) {
        settings += " " + setting;
        work.write("s.hdp", solution(settings));
        QStringList ran = build();
        ran.sort();
        EXPECT_EQ(ran, rebuilt) << setting.data();
        EXPECT_EQ(build(), QStringList{}) << setting.data();
    }
    EXPECT_TRUE(script().contains("__STACKSIZE__ = 2048;")) << script().toStdString();

    // What is outside the solution: the tools and the global macros.
    const FakeToolChain otherTools(work, "other");
    EXPECT_EQ(build({}, otherTools.benchDir()).size(), 5);
    EXPECT_EQ(build({"-D", "V=1"}, otherTools.benchDir()).size(), 5);
    EXPECT_EQ(build({}, otherTools.benchDir()), QStringList{});
}

TEST_F(Incremental, AFileWithSettingsOfItsOwnFollowsThemAndItsProjects)
{
    work.write("s.hdp", solution("", "", "c_preprocessor_definitions=\"U=1\""));
    build();
    work.write("s.hdp", solution("", "", "c_preprocessor_definitions=\"U=2\""));
    EXPECT_EQ(build(), (QStringList{"as util.o", "ld app.elf"}));
    work.write("s.hdp", solution("gcc_optimization_level=\"Level 2\"", "",
                                 "c_preprocessor_definitions=\"U=2\""));
    QStringList ran = build();
    ran.sort();
    EXPECT_EQ(ran, (QStringList{"as main.o", "as util.o", "ld app.elf"}));
}

TEST_F(Incremental, TheLinkerScriptFollowsItsInputs)
{
    build();
    const QDateTime written = QFileInfo(work.file("app/Debug/app.ld")).lastModified();

    // A file edited to say the same thing relinks, but the script keeps its time.
    work.write("app/placement.xml", placement(".text"));
    EXPECT_EQ(build(), QStringList{"ld app.elf"});
    EXPECT_EQ(QFileInfo(work.file("app/Debug/app.ld")).lastModified(), written);

    work.write("app/other.xml", placement(".data"));
    work.write("s.hdp", solution("", "").replace("placement.xml", "other.xml"));
    EXPECT_EQ(build(), QStringList{"ld app.elf"});
    EXPECT_TRUE(script().contains(".data")) << script().toStdString();

    QFile::remove(work.file("app/Debug/app.ld"));
    EXPECT_EQ(build(), QStringList{"ld app.elf"});
    EXPECT_TRUE(QFileInfo::exists(work.file("app/Debug/app.ld")));

    // Edited by hand and nothing else changed: kept as it stands.
    work.write("app/Debug/app.ld", "hand made\n");
    build();
    EXPECT_EQ(script(), "hand made\n");
}

TEST_F(Incremental, AddingOrRemovingAFileRebuildsTheLibrary)
{
    build();
    work.write("s.hdp", solution("", "<file file_name=\"b.c\"/>"));
    EXPECT_EQ(build(), (QStringList{"as b.o", "ar lib.a", "ld app.elf"}));
    work.write("s.hdp", solution());
    EXPECT_EQ(build(), (QStringList{"ar lib.a", "ld app.elf"}));
    EXPECT_EQ(build(), QStringList{});
}

TEST_F(Incremental, ARecordThatCantBeTrustedRebuilds)
{
    // The very first build fails after the assembler has written its object: that object
    // must not pass for current by its time alone.
    EXPECT_EQ(build({}, {}, "as"), QStringList{"as a.o"});
    EXPECT_EQ(build().first(), "as a.o");
    const QDir intermediate(work.file("lib/Debug"));
    const QStringList records =
        intermediate.entryList({".tidemake-*.record"}, QDir::Hidden | QDir::Files);
    ASSERT_EQ(records.size(), 1);
    const QString record = intermediate.filePath(records.first());
    const QDateTime written = QFileInfo(record).lastModified();
    EXPECT_EQ(build(), QStringList{});
    EXPECT_EQ(QFileInfo(record).lastModified(), written) << "a no-op build writes nothing";

    const QByteArray damaged[] = {"", "tidemake build record 1\tlib\tDebug", "garbage\n",
                                  QByteArray("tidemake build record 1\tlib\tRelease\n"),
                                  QByteArray(100000, '\0')};
    for (const QByteArray &text : damaged) {
        QFile file(record);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        EXPECT_EQ(build(), (QStringList{"as a.o", "ar lib.a", "ld app.elf"}))
            << text.left(40).data();
    }
    // The configurations of one directory keep records of their own.
    EXPECT_EQ(intermediate.entryList({".tidemake-*.record"}, QDir::Hidden | QDir::Files).size(), 1);
}

TEST_F(Incremental, ADryRunTouchesNothing)
{
    build();
    work.write("s.hdp", solution("c_preprocessor_definitions=\"X\" arm_linker_stack_size=\"64\""));
    const QStringList before = listing();
    for (const QStringList &options : {QStringList{"-show"}, QStringList{"-show", "-rebuild"},
                                       QStringList{"-show", "-clean", "-verbose"}}) {
        build(options);
        EXPECT_EQ(listing(), before) << options.join(' ').toStdString();
        EXPECT_TRUE(last.out.contains("Generating linker script") || options.contains("-clean"))
            << last.out.toStdString();
    }
    QDir(work.path()).removeRecursively();
    QDir().mkpath(work.path());
    work.write("s.hdp", solution());
    build({"-show"});
    EXPECT_EQ(listing().size(), 1) << listing().join(QLatin1Char(10)).toStdString();
}

} // namespace
