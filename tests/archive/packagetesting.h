#pragma once

#include <QByteArray>
#include <QList>
#include <QtEndian>

/// One member record of an archive written by hand, as another program might write it.
struct RawMember
{
    QByteArray name;
    quint32 offset;
    quint32 size;
    bool writable;
    quint32 time;
};

inline QByteArray littleEndian(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

/// The bytes of an archive with `count` in its header, the records of `members` and `data`
/// behind them. The undefined bytes (behind a name, after the flag) are not zero, as no
/// reader may look at them.
inline QByteArray archiveBytes(qint32 count, const QList<RawMember> &members,
                               const QByteArray &data, quint32 magic = 0x4152C3C8)
{
    QByteArray bytes = littleEndian(magic) + littleEndian(quint32(count));
    for (const RawMember &member : members) {
        QByteArray name = member.name;
        if (name.size() < 1024)
            name += '\0' + QByteArray(1023 - name.size(), '\xAA');
        bytes += name + littleEndian(member.offset) + littleEndian(member.size) +
                 char(member.writable ? 1 : 0) + QByteArray(3, '\x55') + littleEndian(member.time);
    }
    return bytes + data;
}

/// `archive` as a package: the compressed file format's magic and `qCompress` of it.
inline QByteArray packageBytes(const QByteArray &archive)
{
    return QByteArray("\x7A\xF4\x31\xB2\x00\x00\x00\x00", 8) + qCompress(archive);
}

/// A package of two members, "a.txt" ("alpha", writable, time 1000) and "dir/b.bin"
/// ("beta!", read-only, time 0), written by hand.
inline QByteArray foreignPackage()
{
    const quint32 data = 8 + 2 * 1040;
    return packageBytes(archiveBytes(
        2, {{"a.txt", data, 5, true, 1000}, {"dir/b.bin", data + 5, 5, false, 0}}, "alphabeta!"));
}

/// A file that must not be taken for a package, and what `tidefile` says of it.
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
    // The compressed block's length header claims a byte more than the stream holds.
    qToBigEndian(qFromBigEndian<quint32>(lying.constData() + 8) + 1, lying.data() + 8);
    return {
        {"plain text", "not a package at all\n", "not a package"},
        {"the magic alone", packageBytes("").left(8),
         "damaged package: its compressed data does not unpack"},
        {"a size claim that does not match", lying,
         "damaged package: its compressed data does not unpack"},
        {"a cut-off archive header", packageBytes(QByteArray("\xC8\xC3\x52", 3)), "not a package"},
        {"a wrong archive magic", packageBytes(archiveBytes(0, {}, "", 0x4152C3C9)),
         "not a package"},
        {"a negative count", packageBytes(archiveBytes(-1, {}, "")), "not a package"},
        {"a count of 2^31 - 1", packageBytes(archiveBytes(0x7FFFFFFF, {one}, "data")),
         "damaged package: its directory is cut short"},
        {"a directory cut short", packageBytes(archiveBytes(1, {one}, "").left(500)),
         "damaged package: its directory is cut short"},
        {"data past the end", packageBytes(archiveBytes(1, {one}, "dat")),
         "damaged package: a member's data runs past its end"},
        {"an offset past the end",
         packageBytes(archiveBytes(1, {{"m", 0xFFFFFFF0, 4, true, 1}}, "data")),
         "damaged package: a member's data runs past its end"},
    };
}
