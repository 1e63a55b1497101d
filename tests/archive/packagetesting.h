#pragma once

#include <QByteArray>
#include <QList>
#include <QtEndian>

/// One member record of an archive written by hand, as another program might write it.
struct RawMember
{
    QByteArray name;
    quint32 offset, size;
    bool writable;
    quint32 time;
};

/// An archive with `count` in its header, the records of `members` and `data` behind them.
/// The bytes no reader may look at (behind a name, after the flag) are `fill`.
inline QByteArray archiveBytes(qint32 count, const QList<RawMember> &members,
                               const QByteArray &data, quint32 magic = 0x4152C3C8,
                               char fill = '\x55')
{
    const auto le = [](quint32 value) {
        QByteArray bytes(4, '\0');
        qToLittleEndian(value, bytes.data());
        return bytes;
    };
    QByteArray bytes = le(magic) + le(quint32(count));
    for (const RawMember &m : members)
        bytes += QByteArray(m.name + '\0' + QByteArray(1023, fill)).left(1024) + le(m.offset) +
                 le(m.size) + char(m.writable) + QByteArray(3, fill) + le(m.time);
    return bytes + data;
}

/// `archive` in the compressed file format, as a package holds it.
inline QByteArray packageBytes(const QByteArray &archive)
{
    return QByteArray("\x7A\xF4\x31\xB2\0\0\0\0", 8) + qCompress(archive);
}

/// A file that is not a whole package: what is wrong, its bytes, and what `tidefile` says.
struct BadPackage
{
    const char *what;
    QByteArray bytes;
    const char *error;
};

/// One of each kind of damage, from the outer format in.
inline QList<BadPackage> badPackages()
{
    const RawMember one{"m", 8 + 1040, 4, true, 1};
    QByteArray lying = packageBytes(archiveBytes(1, {one}, "data"));
    // The compressed block's length claims a byte more than its stream holds.
    qToBigEndian(qFromBigEndian<quint32>(lying.constData() + 8) + 1, lying.data() + 8);
    const char *cutShort = "damaged package: its directory is cut short";
    return {
        {"plain text", "not a package\n", "not a package"},
        {"a size claim that does not match", lying,
         "damaged package: its compressed data does not unpack"},
        {"a cut-off archive header", packageBytes("\xC8\xC3\x52"), "not a package"},
        {"a wrong archive magic", packageBytes(archiveBytes(0, {}, "", 0x4152C3C9)),
         "not a package"},
        {"a negative count", packageBytes(archiveBytes(-1, {}, "")), "not a package"},
        {"a count of 2^31 - 1", packageBytes(archiveBytes(0x7FFFFFFF, {one}, "data")), cutShort},
        {"a record cut short", packageBytes(archiveBytes(1, {one}, "").left(500)), cutShort},
        {"data past the end", packageBytes(archiveBytes(1, {one}, "dat")),
         "damaged package: a member's data runs past its end"},
    };
}
