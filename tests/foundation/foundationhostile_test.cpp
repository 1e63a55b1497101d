// Inputs meant to exhaust the path and file services: each must end with a defined result.

#include "foundation/path.h"
#include "foundation/qtx.h"
#include "support/testsupport.h"

#include <QFileInfo>
#include <gtest/gtest.h>

TEST(FoundationHostile, VeryLongNames)
{
    QString text = QString("/.").repeated(400000) + QString("/").repeated(400000);
    Path::removeRelativePaths(text);
    EXPECT_EQ(text, "/") << "simplified in linear time";
    ScratchDir scratch;
    EXPECT_FALSE(QTx::makeDir(scratch.path() + "/" + QString("d/").repeated(5000)));
}

TEST(FoundationHostile, DirectoryLinkLoopsAreNotFollowed)
{
    ScratchDir scratch;
    scratch.write("from/sub/file.c", "");
    ::symlink("..", QFile::encodeName(scratch.file("from/sub/loop")).constData());
    QDir().mkdir(scratch.file("to"));
    EXPECT_TRUE(QTx::copyDir(scratch.file("from"), scratch.file("to")));
    EXPECT_TRUE(QFileInfo::exists(scratch.file("to/sub/file.c")));
    EXPECT_FALSE(QFileInfo::exists(scratch.file("to/sub/loop")));
    QStringList files;
    QTx::findFiles(scratch.file("from"), "c", files);
    EXPECT_EQ(files, QStringList{scratch.file("from/sub/file.c")});
}

TEST(FoundationHostile, CompressedFilesThatLieMakeNoTarget)
{
    ScratchDir scratch;
    const QByteArray magic("\x7A\xF4\x31\xB2\x00\x00\x00\x00", 8);
    const QByteArray good = qCompress(QByteArray(1000, 'z'));
    // The body's first four bytes give its length: far too much, or too little.
    const QByteArray hugeLength = QByteArray("\x7F", 1) + good.mid(1);
    const QByteArray smallLength = good.left(2) + QByteArray("\x00\x01", 2) + good.mid(4);
    // clang-format off
    const QByteArray hostile[] = {
        magic.left(7), magic, magic + QByteArray(2, '\0'), magic + hugeLength, magic + smallLength,
        magic + good.left(good.size() - 5), magic + QByteArray("\x00\x00\x00\x10garbage garbage!", 20),
        QByteArray("\x7A\xF4\x31\xB2\x01\x00\x00\x00", 8) + good};
    // clang-format on
    for (const QByteArray &bytes : hostile) {
        const QString source = scratch.write("bad", bytes);
        EXPECT_EQ(QTx::isCompressedFile(source), bytes.startsWith(magic));
        EXPECT_FALSE(QTx::decompressFile(source, scratch.file("target")))
            << bytes.toHex().toStdString();
        EXPECT_FALSE(QFileInfo::exists(scratch.file("target")));
    }
}
