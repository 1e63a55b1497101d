#include "foundation/path.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

TEST(PathTest, RemoveRelativePathsFollowsItsRulesToTheLetter)
{
    // "/." goes, "part/.." goes only when a "/" stands before the part, then runs of "/"
    // shrink to one; the removals see the text as each earlier one left it.
    // clang-format off
    const std::pair<const char *, const char *> cases[] = {
        {"/a/b/c/../../d", "/a/d"}, {"a//b///c", "a/b/c"}, {"./a", "./a"}, {"x/y/../z", "x/z"},
        {"a/.b", "ab"}, {"a/../b", "a/../b"}, {"../a/b", "../a/b"}, {"/x/y/..b", "/xb"},
        {"a/b///", "a/b/"}, {"", ""}, {"/a/.", "/a"}, {"/.", ""}, {"/a/...", "."},
        {"a/b/.../c", "a./c"}, {"/a/b/./../c", "/a/c"}, {"x/./y/../../z", "x/../z"},
        {"/a//../b", "/b"}, {"//..", "/.."}};
    // clang-format on
    for (const auto &[text, expected] : cases) {
        QString s = QString::fromLatin1(text);
        Path::removeRelativePaths(s);
        EXPECT_EQ(s, expected) << text;
    }
}

TEST(PathTest, RelativePaths)
{
    QString result = "x";
    EXPECT_TRUE(Path::relativeFilePath("/home/x/p", "/home/x/q/f.c", result));
    EXPECT_EQ(result, "../q/f.c");
    EXPECT_FALSE(Path::relativeFilePath("/home/x", "/usr/f.c", result));
    EXPECT_EQ(Path::relativeFilePath("/home/x", "/usr/f.c"), "/usr/f.c");

    EXPECT_TRUE(Path::relativeDirPath("/a/b", "/a/b", result));
    EXPECT_EQ(result, "");
    EXPECT_TRUE(Path::relativeDirPath("/a/b/c", "/a/d", result));
    EXPECT_EQ(result, "../../d");
    EXPECT_FALSE(Path::relativeDirPath("/a", "/b", result));
    EXPECT_TRUE(result.isNull());
    EXPECT_FALSE(Path::relativeDirPath("/A/b", "/a/b", result)) << "case counts";
}

TEST(PathTest, CopiesShareUntilOneChangesAndCompareByCase)
{
    Path first("/x/./y/f.c");
    Path second = first;
    second.setPath(QString("/other"));
    EXPECT_STREQ(first.osPath(), "/x/y/f.c");
    EXPECT_STREQ(second.canonicalPath(), "/other");
    EXPECT_FALSE(Path("/a/File.c") == Path("/a/file.c"));
    EXPECT_TRUE(Path("/a/F") < Path("/a/f"));
}

TEST(PathTest, FileQueriesSeeTheDiskAsItIsNow)
{
    ScratchDir scratch;
    const QString name = scratch.write("dir/base.tar.gz", "12345");
    Path path(name);
    EXPECT_EQ(path.extension(false), "gz");
    EXPECT_EQ(path.extension(true), "tar.gz");
    const QDateTime earlier = path.lastModified().addSecs(-3600);
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(earlier, QFileDevice::FileModificationTime);
    file.close();
    EXPECT_EQ(path.lastModified(), earlier);
}
