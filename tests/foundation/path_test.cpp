#include "foundation/path.h"
#include "support/testsupport.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

namespace {

// The removal done the plain way, by editing the text in place; the fast
// version must agree with it on every text.
QString removeRelativePathsInPlace(QString text)
{
    qsizetype p = 0;
    for (;;) {
        const qsizetype d = text.indexOf(QLatin1Char('.'), p);
        if (d < 0)
            break;
        p = d + 1;
        if (d == 0 || text.at(d - 1) != QLatin1Char('/'))
            continue;
        if (d + 1 < text.size() && text.at(d + 1) == QLatin1Char('.')) {
            const qsizetype s = d - 3 < 0 ? -1 : text.lastIndexOf(QLatin1Char('/'), d - 3);
            if (s < 0)
                continue;
            text.remove(s, d + 2 - s);
            p = s;
        } else {
            text.remove(d - 1, 2);
            p = d - 1;
        }
    }
    for (qsizetype i = 0; i + 1 < text.size();) {
        if (text.at(i) == QLatin1Char('/') && text.at(i + 1) == QLatin1Char('/'))
            text.remove(i, 1);
        else
            ++i;
    }
    return text;
}

QString removed(const char *text)
{
    QString s = QString::fromLatin1(text);
    Path::removeRelativePaths(s);
    return s;
}

} // namespace

TEST(PathTest, RemoveRelativePathsFollowsItsRulesToTheLetter)
{
    EXPECT_EQ(removed("/a/b/../c"), "/a/c");
    EXPECT_EQ(removed("/a/./b"), "/a/b");
    EXPECT_EQ(removed("a//b///c"), "a/b/c");
    EXPECT_EQ(removed("./a"), "./a");
    EXPECT_EQ(removed("x/y/../z"), "x/z");
    EXPECT_EQ(removed("a/.b"), "ab");
    EXPECT_EQ(removed("a/../b"), "a/../b");
    EXPECT_EQ(removed("../a/b"), "../a/b");
    EXPECT_EQ(removed("/x/y/..b"), "/xb");
    EXPECT_EQ(removed("/a/b/c/../../d"), "/a/d");
    EXPECT_EQ(removed("a/b///"), "a/b/");
    EXPECT_EQ(removed("/"), "/");
    EXPECT_EQ(removed(""), "");
    EXPECT_EQ(removed("/a/."), "/a");
}

TEST(PathTest, RemoveRelativePathsAgreesWithTheInPlaceAlgorithm)
{
    QRandomGenerator random(12345);
    const char alphabet[] = "/.ab";
    for (int round = 0; round < 20000; ++round) {
        QString text;
        const int length = random.bounded(14);
        for (int i = 0; i < length; ++i)
            text.append(QLatin1Char(alphabet[random.bounded(4)]));
        QString fast = text;
        Path::removeRelativePaths(fast);
        ASSERT_EQ(fast, removeRelativePathsInPlace(text)) << "for " << text.toStdString();
    }
}

TEST(PathTest, RemoveRelativePathsIsLinearOnLongHostileNames)
{
    QString text = QString("/.").repeated(400000) + QString("/").repeated(400000);
    Path::removeRelativePaths(text);
    EXPECT_EQ(text, "/");
}

TEST(PathTest, RelativePaths)
{
    QString result = "x";
    EXPECT_TRUE(Path::relativeFilePath("/home/x/p", "/home/x/q/f.c", result));
    EXPECT_EQ(result, "../q/f.c");
    EXPECT_TRUE(Path::relativeFilePath("/home/x/p", "/home/x/p/f.c", result));
    EXPECT_EQ(result, "f.c");
    EXPECT_TRUE(Path::relativeFilePath("/home/x/p", "/home/x/p/sub/deeper/f.c", result));
    EXPECT_EQ(result, "sub/deeper/f.c");
    EXPECT_FALSE(Path::relativeFilePath("/home/x", "/usr/f.c", result));
    EXPECT_EQ(Path::relativeFilePath("/home/x", "/usr/f.c"), "/usr/f.c");
    EXPECT_EQ(Path::relativeFilePath("/home/x", "/home/y/f.c"), "../y/f.c");

    EXPECT_TRUE(Path::relativeDirPath("/a/b", "/a/b", result));
    EXPECT_TRUE(result.isEmpty());
    EXPECT_TRUE(Path::relativeDirPath("/a/b/c", "/a/d", result));
    EXPECT_EQ(result, "../../d");
    EXPECT_FALSE(Path::relativeDirPath("/a", "/b", result));
    EXPECT_TRUE(result.isNull());
    EXPECT_FALSE(Path::relativeDirPath("/A/b", "/a/b", result)) << "case counts";
}

TEST(PathTest, CopiesShareUntilOneChanges)
{
    Path first("/x/./y/f.c");
    EXPECT_EQ(first.osPathQString(), "/x/y/f.c");
    EXPECT_STREQ(first.osPath(), "/x/y/f.c");
    Path second = first;
    EXPECT_TRUE(first == second);
    second.setPath(QString("/other"));
    EXPECT_EQ(first.canonicalPathQString(), "/x/y/f.c");
    EXPECT_STREQ(second.canonicalPath(), "/other");
    EXPECT_TRUE(first != second);

    Path third;
    EXPECT_TRUE(third.isEmpty());
    third = first;
    third = third;
    EXPECT_EQ(third.fileName(), "f.c");
    EXPECT_EQ(first.fileName(), "f.c");

    EXPECT_FALSE(Path("/a/File.c") == Path("/a/file.c"));
    EXPECT_TRUE(Path("/a/F") < Path("/a/f"));
    EXPECT_FALSE(first < third) << "a shared body is equal to itself";
    EXPECT_TRUE(Path(std::string("/q/r")) == Path("/q/r"));
}

TEST(PathTest, FileQueriesSeeTheDiskAsItIsNow)
{
    ScratchDir scratch;
    const QString name = scratch.write("dir/base.tar.gz", "12345");
    Path path(name);
    EXPECT_TRUE(path.exists());
    EXPECT_EQ(path.size(), 5);
    EXPECT_EQ(path.baseName(), "base");
    EXPECT_EQ(path.extension(false), "gz");
    EXPECT_EQ(path.extension(true), "tar.gz");
    EXPECT_EQ(path.dirPath(true), scratch.path() + "/dir");
    EXPECT_EQ(path.filePathQStringList(true).last(), "base.tar.gz");
    EXPECT_EQ(path.dirPathQStringList(true).last(), "dir");

    const QDateTime before = path.lastModified();
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(before.addSecs(-3600), QFileDevice::FileModificationTime);
    file.close();
    EXPECT_EQ(path.lastModified(), before.addSecs(-3600));
    EXPECT_TRUE(path.created().isValid());
}
