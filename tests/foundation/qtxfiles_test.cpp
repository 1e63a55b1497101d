#include "foundation/qtx.h"
#include "support/testsupport.h"

#include <QFileInfo>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

namespace {

// Puts the named environment variables back as they were when it goes.
class EnvironmentScope
{
public:
    EnvironmentScope(std::initializer_list<const char *> names)
    {
        for (const char *name : names)
            saved.push_back({name, qEnvironmentVariableIsSet(name), qgetenv(name)});
    }
    ~EnvironmentScope()
    {
        for (const Saved &s : saved)
            s.wasSet ? qputenv(s.name, s.value) : qunsetenv(s.name);
        tzset();
    }

private:
    struct Saved
    {
        const char *name;
        bool wasSet;
        QByteArray value;
    };
    std::vector<Saved> saved;
};

mode_t modeOf(const QString &path)
{
    struct stat status;
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
}

void setTimes(const QString &path, time_t time)
{
    struct utimbuf times
    {
        time, time
    };
    ::utime(QFile::encodeName(path).constData(), &times);
}

} // namespace

TEST(QTxLocationsTest, InstallationRootAndTemporaryDirectory)
{
    EXPECT_EQ(QTx::getBenchDir("/opt/x/bin/tool"), "/opt/x");
    // Without an application object the running program is asked of the system:
    // the test program lies in <build>/tests, so the root is the build directory.
    EXPECT_TRUE(QFileInfo::exists(QTx::rootDirectory() + "/tests"));
    EXPECT_TRUE(QTx::appPath().endsWith("foundation_tests"));
    EXPECT_EQ(QTx::appDir(), QTx::rootDirectory() + "/tests");

    EnvironmentScope env{"TMP", "TEMP", "TMPDIR", "HOME"};
    qunsetenv("TMP");
    qunsetenv("TEMP");
    qunsetenv("TMPDIR");
    EXPECT_EQ(QTx::tmpDir(), "/tmp");
    qputenv("TMPDIR", "/var/tmpdir");
    EXPECT_EQ(QTx::tmpDir(), "/var/tmpdir");
    qputenv("TMP", "/var/tmp1");
    EXPECT_EQ(QTx::tmpDir(), "/var/tmp1");
    qputenv("HOME", "/home/someone");
    EXPECT_EQ(QTx::userProfileDirectory(), "/home/someone");
}

TEST(QTxLocationsTest, PathText)
{
    QString path = "c:\\x\\";
    QTx::formatPath(path);
    EXPECT_EQ(path, "c:/x");
    path = "/";
    QTx::formatPath(path);
    EXPECT_EQ(path, "");
    path = "a//";
    QTx::formatPath(path);
    EXPECT_EQ(path, "a/") << "only one trailing slash goes";
    EXPECT_EQ(QTx::simplifyPath("/a\\b/", true), "/a/b");
    EXPECT_EQ(QTx::simplifyPath("a\\b", false), "a/b");
}

TEST(QTxDirsTest, MakeDirCreatesParentsAndParentDirCutsAtTheLastSlash)
{
    ScratchDir scratch;
    EXPECT_TRUE(QTx::makeDir(scratch.file("a/b/c")));
    EXPECT_TRUE(QFileInfo(scratch.file("a/b/c")).isDir());
    EXPECT_TRUE(QTx::makeDir(scratch.file("a/b/c"))) << "an existing directory is fine";
    scratch.write("file", "x");
    EXPECT_FALSE(QTx::makeDir(scratch.file("file/sub")));
    EXPECT_FALSE(QTx::makeDir(scratch.path() + "/" + QString("d/").repeated(5000)));

    EXPECT_EQ(QTx::parentDir(QDir(scratch.file("a/b"))).absolutePath(), scratch.file("a"));
    EXPECT_EQ(QTx::parentDir(QDir("/usr")).absolutePath(), "/");

    EXPECT_TRUE(QTx::removeDir(scratch.file("a/b/c")));
    EXPECT_FALSE(QTx::removeDir(scratch.file("a"))) << "not empty";
    EXPECT_TRUE(QTx::removeFile(scratch.file("file")));
    EXPECT_FALSE(QTx::removeFile(scratch.file("file")));
}

TEST(QTxFilesTest, CopyFileKeepsTimeAndModeLessUmask)
{
    ScratchDir scratch;
    const QString source = scratch.write("src.txt", QByteArray(300000, 'q'));
    ::chmod(QFile::encodeName(source).constData(), 0777);
    setTimes(source, 1000000000);
    const QString target = scratch.write("dst.txt", "old contents that are longer");

    const mode_t mask = ::umask(022);
    EXPECT_TRUE(QTx::copyFile(source, target));
    EXPECT_TRUE(QTx::filesMatch(source, target));
    EXPECT_EQ(QFileInfo(target).lastModified(), QFileInfo(source).lastModified());
    EXPECT_EQ(modeOf(target), 0755u);

    QDir().mkdir(scratch.file("into"));
    EXPECT_TRUE(QTx::copyFile(source, scratch.file("into")));
    EXPECT_TRUE(QTx::filesMatch(source, scratch.file("into/src.txt")));
    ::umask(mask);

    EXPECT_TRUE(QTx::copyFile(source, source)) << "a file is its own copy";
    EXPECT_EQ(QFileInfo(source).size(), 300000);
    EXPECT_FALSE(QTx::copyFile(scratch.file("missing"), target));
}

TEST(QTxFilesTest, CreateFileSetWriteableAndUtcTime)
{
    ScratchDir scratch;
    const QString name = scratch.file("made");
    const unsigned char data[] = {1, 2, 3};
    ASSERT_TRUE(QTx::createFile(name, 3, data, true, 1234567890));
    EXPECT_EQ(scratch.read("made"), QByteArray("\1\2\3"));
    EXPECT_EQ(modeOf(name), 0400u);
    EXPECT_EQ(QFileInfo(name).lastModified().toSecsSinceEpoch(), 1234567890);
    EXPECT_TRUE(QTx::setWriteable(name, true));
    EXPECT_EQ(modeOf(name), 0600u);
    EXPECT_FALSE(QTx::setWriteable(scratch.file("missing"), true));

    // The UTC clock reading taken as local time: in a zone 5 hours behind UTC,
    // that lies 5 hours after the real instant.
    EnvironmentScope env{"TZ"};
    qputenv("TZ", "UTC0");
    tzset();
    EXPECT_EQ(QTx::getUTCModificationTime(name), 1234567890);
    qputenv("TZ", "EST5");
    tzset();
    EXPECT_EQ(QTx::getUTCModificationTime(name), 1234567890 + 5 * 3600);
    EXPECT_EQ(QTx::getUTCModificationTime(scratch.file("missing")), 0);
}

TEST(QTxFilesTest, FilesMatch)
{
    ScratchDir scratch;
    QByteArray big(5000, 'x');
    const QString a = scratch.write("a", big);
    const QString b = scratch.write("b", big);
    big[4500] = 'y';
    const QString c = scratch.write("c", big);
    const QString d = scratch.write("d", big.left(4999));
    EXPECT_TRUE(QTx::filesMatch(a, b));
    EXPECT_FALSE(QTx::filesMatch(a, c)) << "differs in the last block";
    EXPECT_FALSE(QTx::filesMatch(a, d));
    EXPECT_FALSE(QTx::filesMatch(a, scratch.file("missing")));
    EXPECT_TRUE(QTx::filesMatch(scratch.write("e1", ""), scratch.write("e2", "")));
}

TEST(QTxDirsTest, CopyDirCopiesIntoAnExistingTreeOnly)
{
    ScratchDir scratch;
    scratch.write("from/top.c", "top");
    scratch.write("from/sub/deep/file.h", "deep");
    scratch.write("from/.hidden", "h");
    QDir().mkdir(scratch.file("from/empty"));
    ::symlink("..", QFile::encodeName(scratch.file("from/sub/loop")).constData());

    EXPECT_FALSE(QTx::copyDir(scratch.file("from"), scratch.file("to")));
    EXPECT_FALSE(QFileInfo::exists(scratch.file("to")));

    QDir().mkdir(scratch.file("to"));
    EXPECT_TRUE(QTx::copyDir(scratch.file("from"), scratch.file("to")));
    EXPECT_EQ(scratch.read("to/top.c"), "top");
    EXPECT_EQ(scratch.read("to/sub/deep/file.h"), "deep");
    EXPECT_EQ(scratch.read("to/.hidden"), "h");
    EXPECT_TRUE(QFileInfo(scratch.file("to/empty")).isDir());
    EXPECT_FALSE(QFileInfo::exists(scratch.file("to/sub/loop"))) << "directory links are skipped";

    scratch.write("blocked/sub", "a file where a directory should go");
    EXPECT_FALSE(QTx::copyDir(scratch.file("from"), scratch.file("blocked")));
    EXPECT_FALSE(QTx::copyDir(scratch.file("from"), scratch.file("from/sub")));
}

TEST(QTxDirsTest, FindFilesWalksTheTreeWithoutFollowingDirectoryLinks)
{
    ScratchDir scratch;
    scratch.write("a.c", "");
    scratch.write("b.C", "");
    scratch.write("x.tar.c", "");
    scratch.write("sub/c.c", "");
    scratch.write("sub/d.h", "");
    QDir().mkdir(scratch.file("sub/dir.c"));
    ::symlink("..", QFile::encodeName(scratch.file("sub/loop")).constData());

    QStringList files{"kept"};
    QTx::findFiles(scratch.path(), "c", files);
    EXPECT_EQ(files, (QStringList{"kept", scratch.file("a.c"), scratch.file("sub/c.c"),
                                  scratch.file("x.tar.c")}));
}
