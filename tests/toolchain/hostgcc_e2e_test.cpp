#include "toolchaintesting.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

/// An application of two C files and a header over a library project with its own header,
/// built with the host's compiler from /usr/bin. The driver writes no map file of its own, so
/// the link asks for the one that the up-to-date test looks for.
class HostGcc : public GCCTest
{
protected:
    HostGcc() : GCCTest(nullptr, "/usr/bin", true)
    {
        builder.run = true;
        scratch.write("mathlib/square.h", "int square(int n);\n");
        scratch.write("mathlib/square.c", "#include \"square.h\"\n"
                                          "int square(int n) { return n * n; }\n");
        scratch.write("app/greet.h", "#define GREETING \"hello\"\n");
        scratch.write("app/greet.c", "#include <stdio.h>\n#include \"greet.h\"\n"
                                     "void greet(int n) { printf(\"%s %d\\n\", GREETING, n); }\n");
        scratch.write("app/main.c", "#include \"square.h\"\nvoid greet(int n);\n"
                                    "int main(void) { greet(square(7)); return 0; }\n");
        root = load(R"(<configuration Name="Debug"/>
<project Name="App">
  <configuration Name="Common" project_directory="app" project_type="Executable"
    project_dependencies="mathlib" c_user_include_directories=".;../mathlib"
    linker_output_format="bin" linker_additional_options="-Wl,-Map=$(OutDir)/$(ProjectName).map"/>
  <file Name="main.c" file_name="main.c"/>
  <file Name="greet.c" file_name="greet.c"/>
</project>
<project Name="mathlib">
  <configuration Name="Common" project_directory="mathlib" project_type="Library"/>
  <file Name="square.c" file_name="square.c"/>
</project>
)");
    }

    /// Builds the solution in "Debug"; the group lines of the tool commands that ran.
    QStringList build()
    {
        builder.clear();
        system->build(root, QStringLiteral("Debug"), &builder, 0, true, false);
        EXPECT_FALSE(system->errorOccurred) << builder.errors.join('\n').toStdString();
        return builder.events.filter(QRegularExpression("^group (Compiling|Linking|Archiving)"))
            .replaceInStrings("group ", "");
    }

    /// Sets the modification time of the scratch file `relative` to `time`.
    bool setTime(const QString &relative, const QDateTime &time)
    {
        QFile file(scratch.file(relative));
        return file.open(QIODevice::ReadWrite) &&
               file.setFileTime(time, QFileDevice::FileModificationTime);
    }

    ProjectElement *root = nullptr;
};

} // namespace

TEST_F(HostGcc, BuildsRunsAndRebuildsOnlyWhatAHeaderChangeReaches)
{
    for (const char *tool : {"gcc", "g++", "ar", "ranlib", "objcopy"})
        if (!QFileInfo(QStringLiteral("/usr/bin/") + tool).isExecutable())
            GTEST_SKIP() << "no host tool /usr/bin/" << tool;

    EXPECT_EQ(build(), QStringList({"Compiling square.c", "Archiving mathlib.a", "Compiling main.c",
                                    "Compiling greet.c", "Linking App.elf"}));
    EXPECT_EQ(builder.commands.size(), 7); // and ranlib, objcopy
    const RunResult run = runProgram(scratch.file("app/Debug/App.elf"), {}, scratch.path());
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "hello 49\n");
    EXPECT_TRUE(QFileInfo(scratch.file("app/Debug/App.bin")).size() > 0);

    // Everything made equally old: a dependency as old as its target keeps it up to date.
    const QDateTime past = QDateTime::currentDateTime().addSecs(-100);
    QDirIterator everything(scratch.path(), QDir::Files, QDirIterator::Subdirectories);
    while (everything.hasNext()) {
        const QString file = QDir(scratch.path()).relativeFilePath(everything.next());
        ASSERT_TRUE(setTime(file, past)) << file.toStdString();
    }
    EXPECT_EQ(build(), QStringList()) << builder.messages.join('\n').toStdString();
    EXPECT_EQ(builder.commands, QStringList());

    // The application's header reaches one object and the link.
    scratch.write("app/greet.h", "#define GREETING \"hi\"\n");
    ASSERT_TRUE(setTime("app/greet.h", past.addSecs(50)));
    EXPECT_EQ(build(), QStringList({"Compiling greet.c", "Linking App.elf"}));
    EXPECT_TRUE(
        builder.messages.contains(scratch.file("app/greet.h") + " is newer than Debug/greet.o."))
        << builder.messages.join('\n').toStdString();

    EXPECT_EQ(runProgram(scratch.file("app/Debug/App.elf"), {}, scratch.path()).out, "hi 49\n");

    // The library's header reaches its own object, the archive, and the application's main.
    ASSERT_TRUE(setTime("mathlib/square.h", past.addSecs(60)));
    EXPECT_EQ(build(), QStringList({"Compiling square.c", "Archiving mathlib.a", "Compiling main.c",
                                    "Linking App.elf"}));
}
