#include "project/solutionwarningstesting.h"

#include <QFile>
#include <QRegularExpression>

namespace {

QString sourceFile(const QString &relative)
{
    return QStringLiteral(TIDEMAKE_TEST_SOURCE_DIR "/../") + relative;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The blocks of `markdown` fenced as ```xml.
QStringList xmlBlocks(const QString &markdown)
{
    static const QRegularExpression fence(QStringLiteral("```xml\\n(.*?)```"),
                                          QRegularExpression::DotMatchesEverythingOption);
    QStringList blocks;
    for (const QRegularExpressionMatch &match : fence.globalMatch(markdown))
        blocks << match.captured(1);
    return blocks;
}

/// `block` as a whole solution file: a fragment goes into a solution, or into a project of
/// one when it is a project's content.
QByteArray asSolution(const QString &block)
{
    const QByteArray text = block.toUtf8();
    if (block.startsWith(QLatin1String("<!DOCTYPE")))
        return text;
    if (block.startsWith(QLatin1String("<project")))
        return solutionText(text);
    return solutionText("<project Name=\"p\">\n<configuration Name=\"Common\" "
                        "project_type=\"Executable\"/>\n" +
                        text + "</project>\n");
}

using DocumentationTest = SolutionWarningsTest;

TEST_F(DocumentationTest, TheGuidesSolutionsLoadWithoutWarnings)
{
    const QStringList blocks =
        xmlBlocks(QString::fromUtf8(contents(sourceFile("docs/solution-files.md"))));
    // The format's, configurations', macros', templates' and worked example's solutions at
    // least.
    ASSERT_GE(blocks.size(), 5);
    for (const QString &block : blocks) {
        const QString path = scratch.write("guide.hdp", asSolution(block));
        QStringList warnings;
        EXPECT_NO_THROW(warnings = warningsOf(path)) << block.toStdString();
        EXPECT_EQ(warnings, QStringList()) << block.toStdString();
    }
}

TEST(SettingsReference, MatchesTheCatalogue)
{
    const QString generator =
        QFileInfo(QStringLiteral(TIDEMAKE_EXE)).absoluteDir().absoluteFilePath("gensettingsdoc");
    const RunResult run = runProgram(generator, {}, QDir::tempPath());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out == QString::fromUtf8(contents(sourceFile("docs/settings.md"))))
        << "docs/settings.md differs from the catalogue; after building, regenerate it with "
           "build/bin/gensettingsdoc docs/settings.md";
}

} // namespace
