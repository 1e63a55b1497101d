#include "foundation/qtx.h"
#include "support/testsupport.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <gtest/gtest.h>

namespace {

const QByteArray magic("\x7A\xF4\x31\xB2\x00\x00\x00\x00", 8);

} // namespace

TEST(QTxCompressTest, RoundTripsAnyContents)
{
    ScratchDir scratch;
    QByteArray random(100000, '\0');
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32 *>(random.data()), random.size() / 4);
    const QList<QByteArray> contents{QByteArray(), QByteArray("x"), QByteArray(1 << 20, 'a'),
                                     random};
    for (const QByteArray &bytes : contents) {
        const QString source = scratch.write("source", bytes);
        ASSERT_TRUE(QTx::compressFile(source, scratch.file("packed")));
        const QByteArray packed = scratch.read("packed");
        EXPECT_TRUE(packed.startsWith(magic));
        EXPECT_EQ(qUncompress(packed.mid(8)), bytes) << "the body is qCompress output";
        EXPECT_TRUE(QTx::isCompressedFile(scratch.file("packed")));
        QFile::remove(scratch.file("back"));
        ASSERT_TRUE(QTx::decompressFile(scratch.file("packed"), scratch.file("back")));
        EXPECT_TRUE(QFileInfo::exists(scratch.file("back")));
        EXPECT_EQ(scratch.read("back"), bytes);
    }
    EXPECT_FALSE(QTx::compressFile(scratch.file("missing"), scratch.file("out")));
}

TEST(QTxCompressTest, RefusesShortAndHostileFilesWithoutATarget)
{
    ScratchDir scratch;
    const QByteArray good = qCompress(QByteArray(1000, 'z'));
    QByteArray hugeLength = good;
    hugeLength[0] = char(0x7F);
    QByteArray smallLength = good;
    smallLength[2] = 0;
    smallLength[3] = 1;
    const QList<QByteArray> hostile{
        magic.left(7),
        magic,
        magic + "\x00\x00",
        magic + hugeLength,
        magic + smallLength,
        magic + good.left(good.size() - 5),
        magic + QByteArray("\x00\x00\x00\x10garbage garbage!"),
        QByteArray("\x7A\xF4\x31\xB2\x01\x00\x00\x00", 8) + good,
    };
    for (const QByteArray &bytes : hostile) {
        const QString source = scratch.write("bad", bytes);
        EXPECT_EQ(QTx::isCompressedFile(source), bytes.startsWith(magic));
        EXPECT_FALSE(QTx::decompressFile(source, scratch.file("target")))
            << bytes.toHex().toStdString();
        EXPECT_FALSE(QFileInfo::exists(scratch.file("target")));
    }
    EXPECT_FALSE(QTx::isCompressedFile(scratch.file("missing")));
}
