#include "frontend/processrunner.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

namespace {

int runShell(const QString &script, QStringList *output = nullptr, QStringList *errors = nullptr)
{
    return QTx::spawnProcess({"sh", "-c", script}, true, QString(), false, output, errors);
}

} // namespace

TEST(SpawnProcess, GivesTheSignedExitStatus)
{
    EXPECT_EQ(QTx::spawnProcess({"no-such-program-here"}, true, {}, false, nullptr, nullptr), -1);
    EXPECT_EQ(QTx::spawnProcess({}, true, QString(), false, nullptr, nullptr), -1);
    EXPECT_EQ(runShell("exit 0"), 0);
    EXPECT_EQ(runShell("exit 1"), 1);
    EXPECT_EQ(runShell("exit 200"), -56);
    EXPECT_EQ(runShell("kill -9 $$"), -1);
}

TEST(SpawnProcess, CapturesLinesOfBothStreams)
{
    QStringList output, errors;
    EXPECT_EQ(runShell("printf 'a\\r\\nb\\rXc\\r\\n'; printf 'e1\\n\\ne2\\nx' >&2; exit 3", &output,
                       &errors),
              3);
    // A CR takes the next character along, whatever it is; an empty line is a null string.
    EXPECT_EQ(output, QStringList({"a", "b", "c"}));
    // A last unterminated piece is kept only when longer than one character.
    EXPECT_EQ(errors, (QStringList{"e1", QString(), "e2"}));
    EXPECT_TRUE(errors.value(1).isNull());
    output.clear();
    runShell("printf 'a\\nxy'", &output, &errors);
    EXPECT_EQ(output, QStringList({"a", "xy"}));
}
