#include "foundation/qtx.h"
#include "support/testsupport.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

namespace {
mode_t modeOf(const QString &path)
{
    struct stat status;
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
}
} // namespace

TEST(QTxLocationsTest, InstallationRootAndPathText)
{
    EXPECT_EQ(QTx::getBenchDir("/opt/x/bin/tool"), "/opt/x");
    // The test program lies in <build>/tests, so the root is the build directory.
    EXPECT_EQ(QTx::appDir(), QTx::rootDirectory() + "/tests");
    QString path = "c:\\x\\";
    QTx::formatPath(path);
    EXPECT_EQ(path, "c:/x");
    EXPECT_EQ(QTx::simplifyPath("a//", false), "a/") << "only one trailing slash goes";
}

TEST(QTxDirsTest, MakeDirCreatesParentsAndRemovalsTakeOneKindEach)
{
    ScratchDir scratch;
    EXPECT_TRUE(QTx::makeDir(scratch.file("a/b/c")));
    EXPECT_TRUE(QTx::makeDir(scratch.file("a/b/c"))) << "an existing directory is fine";
    EXPECT_FALSE(QTx::makeDir(scratch.write("file", "x") + "/sub"));
    EXPECT_TRUE(QTx::removeDir(scratch.file("a/b/c")));
    EXPECT_FALSE(QTx::removeDir(scratch.file("a"))) << "not empty";
    EXPECT_FALSE(QTx::removeFile(scratch.file("a/b")));
    EXPECT_TRUE(QTx::removeFile(scratch.file("file")));
}

TEST(QTxFilesTest, CopyFileKeepsTimeAndModeLessUmask)
{
    ScratchDir scratch;
    const QString source = scratch.write("src.txt", QByteArray(300000, 'q'));
    ::chmod(QFile::encodeName(source).constData(), 0777);
    const utimbuf times{1000000000, 1000000000};
    ::utime(QFile::encodeName(source).constData(), &times);
    const QString target = scratch.write("dst.txt", "old contents that are longer");

    const mode_t mask = ::umask(022);
    EXPECT_TRUE(QTx::copyFile(source, target));
    QDir().mkdir(scratch.file("into"));
    EXPECT_TRUE(QTx::copyFile(source, scratch.file("into")));
    ::umask(mask);
    EXPECT_TRUE(QTx::filesMatch(source, target));
    EXPECT_TRUE(QTx::filesMatch(source, scratch.file("into/src.txt")));
    EXPECT_EQ(QFileInfo(target).lastModified().toSecsSinceEpoch(), 1000000000);
    EXPECT_EQ(modeOf(target), 0755u);
    EXPECT_TRUE(QTx::copyFile(source, source)) << "a file is its own copy";
    EXPECT_EQ(QFileInfo(source).size(), 300000);
    EXPECT_FALSE(QTx::copyFile(scratch.file("missing"), target));

    // Files that differ only at the end, or in length, don't match.
    EXPECT_FALSE(QTx::filesMatch(source, scratch.write("c", QByteArray(299999, 'q') + "x")));
    EXPECT_FALSE(QTx::filesMatch(source, scratch.write("d", QByteArray(299999, 'q'))));
    EXPECT_FALSE(QTx::filesMatch(source, scratch.file("missing")));
}

TEST(QTxFilesTest, CreateFileSetWriteableAndUtcTime)
{
    ScratchDir scratch;
    const QString name = scratch.file("made");
    const unsigned char data[] = {1, 2, 3};
    ASSERT_TRUE(QTx::createFile(name, 3, data, true, 1234567890));
    EXPECT_EQ(scratch.read("made"), QByteArray("\1\2\3"));
    EXPECT_EQ(modeOf(name), 0400u);
    EXPECT_TRUE(QTx::setWriteable(name, true));
    EXPECT_EQ(modeOf(name), 0600u);
    EXPECT_FALSE(QTx::setWriteable(scratch.file("missing"), true));

    // The UTC clock reading taken as local time: in a zone 5 hours behind UTC,
    // that lies 5 hours after the real instant.
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "EST5");
    tzset();
    EXPECT_EQ(QTx::getUTCModificationTime(name), 1234567890 + 5 * 3600);
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
    tzset();
    EXPECT_EQ(QTx::getUTCModificationTime(scratch.file("missing")), 0);
}

TEST(QTxDirsTest, CopyDirAndFindFilesWalkTheWholeTree)
{
    ScratchDir scratch;
    scratch.write("from/sub/deep/file.c", "deep");
    scratch.write("from/.hidden", "h");
    scratch.write("from/x.tar.c", "");
    scratch.write("from/b.C", "");
    QDir().mkdir(scratch.file("from/empty.c"));
    EXPECT_FALSE(QTx::copyDir(scratch.file("from"), scratch.file("to"))) << "into existing only";
    QDir().mkdir(scratch.file("to"));
    EXPECT_TRUE(QTx::copyDir(scratch.file("from"), scratch.file("to")));
    EXPECT_EQ(scratch.read("to/sub/deep/file.c"), "deep");
    EXPECT_EQ(scratch.read("to/.hidden"), "h");
    EXPECT_TRUE(QFileInfo(scratch.file("to/empty.c")).isDir());
    scratch.write("blocked/sub", "a file where a directory should go");
    EXPECT_FALSE(QTx::copyDir(scratch.file("from"), scratch.file("blocked")));
    EXPECT_FALSE(QTx::copyDir(scratch.file("from"), scratch.file("from/sub")));

    QStringList files{"kept"};
    QTx::findFiles(scratch.file("to"), "c", files);
    EXPECT_EQ(files, (QStringList{"kept", scratch.file("to/sub/deep/file.c"),
                                  scratch.file("to/x.tar.c")}));
}

TEST(QTxCompressTest, RoundTripsAnyContents)
{
    ScratchDir scratch;
    QByteArray random(100000, '\0');
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32 *>(random.data()), random.size() / 4);
    for (const QByteArray &bytes : {QByteArray(), QByteArray(1 << 20, 'a'), random}) {
        const QString source = scratch.write("source", bytes);
        ASSERT_TRUE(QTx::compressFile(source, scratch.file("packed")));
        const QByteArray packed = scratch.read("packed");
        EXPECT_TRUE(packed.startsWith(QByteArray("\x7A\xF4\x31\xB2\x00\x00\x00\x00", 8)));
        EXPECT_EQ(qUncompress(packed.mid(8)), bytes) << "the body is qCompress output";
        ASSERT_TRUE(QTx::decompressFile(scratch.file("packed"), scratch.file("back")));
        EXPECT_EQ(scratch.read("back"), bytes);
    }
    EXPECT_FALSE(QTx::compressFile(scratch.file("missing"), scratch.file("out")));
    EXPECT_FALSE(QTx::isCompressedFile(scratch.file("missing")));
}

TEST(QTxTimeTest, FriendlyDate)
{
    EXPECT_EQ(QTx::friendlyDate(QDateTime(QDate(2024, 3, 7), QTime(9, 5))), "07/03/2024 09:05");
    EXPECT_EQ(QTx::friendlyDate(QDateTime()), "(not available)");
}
