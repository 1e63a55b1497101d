#include "frontend/processrunner.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

// What a child started by fork and exec had, a spawned one must have too.
TEST(StartProcess, BehavesAsForkAndExecDid)
{
    ScratchDir dir;
    QStringList output, errors;
    const auto run = [&](const QStringList &arguments, const QString &directory = QString()) {
        output.clear();
        return QTx::spawnProcess(arguments, true, directory, false, &output, &errors);
    };

    // A program without an interpreter line runs through the shell, also when found along PATH.
    const QString plain = dir.write("bin/plain", "echo plain \"$@\"\nexit 4\n");
    QFile::setPermissions(plain, QFile::permissions(plain) | QFileDevice::ExeOwner);
    EXPECT_EQ(run({plain, "x"}), 4);
    EXPECT_EQ(output, QStringList{"plain x"});
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(dir.file("bin")) + ":" + path);
    EXPECT_EQ(run({"plain", "y"}), 4);
    qputenv("PATH", path);
    EXPECT_EQ(output, QStringList{"plain y"});

    // A directory that can't be entered leaves the child where the caller is.
    EXPECT_EQ(run({"pwd", "-P"}, dir.file("no-such-directory")), 0);
    EXPECT_EQ(output, QStringList{QDir::current().canonicalPath()});

    // The signals held while the child starts are not held in the child.
    EXPECT_EQ(run({"sh", "-c", "kill -TERM $$; sleep 5"}), -1);
}
