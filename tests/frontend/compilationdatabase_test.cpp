#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

namespace {

/// Runs -compdb over a copy of the examples, which it writes beside.
class CompilationDatabaseTest : public ::testing::Test
{
protected:
    CompilationDatabaseTest()
    {
        const QString examples = QStringLiteral(TIDEMAKE_TEST_SOURCE_DIR "/../examples");
        QDirIterator files(examples, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString from = files.next();
            QFile source(from);
            if (source.open(QIODevice::ReadOnly))
                work.write(QDir(examples).relativeFilePath(from), source.readAll());
        }
    }

    RunResult compdb(const QStringList &options)
    {
        return runTidemake(QStringList{"-compdb"} + options + QStringList{"examples.hdp"},
                           work.path(), settings.path());
    }
    /// The entries of the database written last.
    QJsonArray entries() const
    {
        return QJsonDocument::fromJson(work.read("compile_commands.json")).array();
    }
    /// The file names of the entries, without their directories.
    QStringList fileNames() const
    {
        QStringList names;
        for (const QJsonValue &entry : entries())
            names << QFileInfo(entry[QStringLiteral("file")].toString()).fileName();
        return names;
    }

    ScratchDir work;
    ScratchDir settings;
};

TEST_F(CompilationDatabaseTest, ClangAcceptsEveryExampleSourceInEveryConfiguration)
{
    const QString clang = QStandardPaths::findExecutable(QStringLiteral("clang"));
    if (clang.isEmpty()) {
        if (qEnvironmentVariableIsSet("CI"))
            FAIL() << "clang is missing; scripts/setup.sh installs it";
        GTEST_SKIP() << "clang is missing";
    }
    for (const char *configuration :
         {"versatilepb Debug", "versatilepb Release", "lm3s6965evb Debug", "lm3s6965evb Release"}) {
        SCOPED_TRACE(configuration);
        const RunResult run = compdb({"-config", configuration});
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_EQ(run.out, "");
        // The library first, as the build makes it; the staging project compiles nothing.
        EXPECT_EQ(fileNames(), QStringList({"statistics.c", "crc32.c", "main.c", "shapes.cpp"}));
        for (const QJsonValue &entry : entries()) {
            QStringList arguments;
            for (const QJsonValue &argument : entry[QStringLiteral("arguments")].toArray())
                arguments << argument.toString();
            const RunResult check = runProgram(clang,
                                               arguments.mid(1) << "-fsyntax-only"
                                                                << "-Werror",
                                               entry[QStringLiteral("directory")].toString());
            EXPECT_EQ(check.exitCode, 0) << arguments.join(' ').toStdString() << "\n"
                                         << check.err.toStdString();
        }
    }
    // Nothing was built.
    EXPECT_FALSE(QFileInfo::exists(work.file("app/versatilepb")));
    EXPECT_FALSE(QFileInfo::exists(work.file("mathlib/lm3s6965evb")));
}

TEST_F(CompilationDatabaseTest, ScopeAndRefusals)
{
    RunResult run = compdb({"-config", "versatilepb Debug", "-project", "mathlib"});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(fileNames(), QStringList({"statistics.c", "crc32.c"}));
    const QJsonObject entry = entries().at(0).toObject();
    EXPECT_EQ(entry["directory"].toString(), QDir(work.file("mathlib")).canonicalPath());
    EXPECT_EQ(entry["output"].toString(),
              QDir(work.file("mathlib")).canonicalPath() + "/versatilepb/Debug/statistics.o");

    run = compdb({"-config", "Nope"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.startsWith("can't find configuration 'Nope' supported configurations:\n"))
        << run.out.toStdString();

    // A database that can't be written, whoever runs the test: a directory stands in its way.
    QFile::remove(work.file("compile_commands.json"));
    QDir(work.path()).mkdir("compile_commands.json");
    run = compdb({"-config", "versatilepb Debug"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.startsWith("error: can't write " + QDir(work.path()).canonicalPath() +
                                   "/compile_commands.json: "))
        << run.err.toStdString();
}

} // namespace
