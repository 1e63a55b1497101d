#include "foundation/qtx.h"

#include <QFile>
#include <QtEndian>

namespace {

constexpr char compressedFileHeader[8] = {'\x7A', '\xF4', '\x31', '\xB2', 0, 0, 0, 0};
constexpr qint64 headerSize = sizeof compressedFileHeader;
// Deflate spends at least 2 bits on 258 bytes, so it can't shrink data by more
// than 1032 to 1; a length header that claims more than that of its stream is a
// lie, and decompressing it isn't even tried.
constexpr quint64 maxDeflateRatio = 1032;

bool hasHeader(const QByteArray &bytes)
{
    return bytes.size() >= headerSize &&
           memcmp(bytes.constData(), compressedFileHeader, headerSize) == 0;
}

bool readWhole(const QString &path, QByteArray &contents)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    contents = file.readAll();
    return file.error() == QFileDevice::NoError;
}

bool writeWhole(const QString &path, const QByteArray &header, const QByteArray &contents)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(header) == header.size() && file.write(contents) == contents.size() &&
           file.flush();
}

// qUncompress reports bad input on the message channel; a low-level service
// stays silent, so messages are held back for the call.
QByteArray uncompressQuietly(const QByteArray &packed)
{
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QByteArray unpacked = qUncompress(packed);
    qInstallMessageHandler(previous);
    return unpacked;
}

// The bytes of a stream made by qCompress, or false if the stream is damaged:
// the length header must match what the stream really holds.
bool uncompressChecked(const QByteArray &packed, QByteArray &unpacked)
{
    if (packed.size() < 4)
        return false;
    const quint64 claimed = qFromBigEndian<quint32>(packed.constData());
    if (claimed > quint64(packed.size() - 4) * maxDeflateRatio)
        return false;
    unpacked = uncompressQuietly(packed);
    return quint64(unpacked.size()) == claimed;
}

} // namespace

namespace QTx {

bool isCompressedFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && hasHeader(file.read(headerSize));
}

bool compressFile(const QString &from, const QString &to)
{
    QByteArray contents;
    if (!readWhole(from, contents))
        return false;
    return writeWhole(to, QByteArray(compressedFileHeader, headerSize), qCompress(contents));
}

bool decompressFile(const QString &from, const QString &to)
{
    QByteArray contents;
    if (!readWhole(from, contents) || !hasHeader(contents))
        return false;
    QByteArray unpacked;
    if (!uncompressChecked(contents.mid(headerSize), unpacked))
        return false;
    return writeWhole(to, QByteArray(), unpacked);
}

} // namespace QTx
