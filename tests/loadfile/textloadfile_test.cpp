#include "loadfiletesting.h"

#include "loadfile/hexloadfile.h"
#include "loadfile/intelhexloadfile.h"
#include "loadfile/srecordloadfile.h"
#include "loadfile/tihexloadfile.h"

#include <gtest/gtest.h>

namespace {

QByteArray withSum(QByteArray bytes, bool onesComplement)
{
    unsigned char sum = 0;
    for (const char byte : bytes)
        sum += static_cast<unsigned char>(byte);
    bytes.append(static_cast<char>(onesComplement ? ~sum : 0 - sum));
    return bytes.toHex().toUpper() + "\n";
}

/// An S-record of `type` over `fields` (address and data in hexadecimal), with its count
/// and checksum.
QByteArray srec(char type, const QByteArray &fields)
{
    const QByteArray bytes = QByteArray::fromHex(fields);
    return QByteArray("S") + type + withSum(char(bytes.size() + 1) + bytes, true);
}

/// An Intel Hex record of `type` at the 16-bit `address` over `data`, with its checksum.
QByteArray ihex(int type, const QByteArray &address, const QByteArray &data)
{
    const QByteArray bytes = QByteArray::fromHex(data);
    return ":" +
           withSum(char(bytes.size()) + QByteArray::fromHex(address) + char(type) + bytes, false);
}

const QByteArray ihexEnd = ":00000001FF\n";

} // namespace

TEST(TextLoadFileTest, AsciiHexBytesStopAtTheEndOfTheLine)
{
    const char *cursor = "a5F";
    EXPECT_EQ(getAsciiHexByte(cursor, nullptr), 0xA5);
    EXPECT_THROW(getAsciiHexByte(cursor, nullptr), HException) << "one digit and the end";
}

TEST(SRecordLoadFileTest, DataRecordsAddressesAndStart)
{
    const auto file = readerOf<SRecordLoadFile>(srec('0', "0000414243") + srec('1', "01000102") +
                                                srec('1', "01020304") + srec('2', "02000005") +
                                                srec('3', "8000000006") + srec('5', "0004") +
                                                srec('7', "08000100"));
    EXPECT_EQ(layout(*file), "100+4 20000+1 80000000+1") << "adjoining records make one";
    EXPECT_EQ(bytesOf(*file), "\x01\x02\x03\x04");
    EXPECT_TRUE(file->hasEntryPoint());
    EXPECT_EQ(file->entryPoint(), 0x08000100u);

    EXPECT_EQ(readerOf<SRecordLoadFile>(srec('9', "0010"))->entryPoint(), 0x10u);
    EXPECT_FALSE(readerOf<SRecordLoadFile>(srec('1', "0000AA"))->hasEntryPoint());
}

TEST(SRecordLoadFileTest, Errors)
{
    EXPECT_EQ(errorOf<SRecordLoadFile>(srec('1', "0000AA") + "X1\n"),
              "no leading 'S' character : line 2");
    EXPECT_EQ(errorOf<SRecordLoadFile>("S1040000AA00\n"), "invalid checksum : line 1");
    EXPECT_EQ(errorOf<SRecordLoadFile>(srec('1', "0000AA") + srec('5', "0002")),
              "incorrect data record count : line 2");
    EXPECT_EQ(errorOf<SRecordLoadFile>("S1040000AZ\n"), "invalid ASCII encoded byte : line 1");
}

TEST(IntelHexLoadFileTest, SegmentsUpperAddressesAndStart)
{
    const auto file = readerOf<IntelHexLoadFile>(
        ihex(0, "0010", "0102") + ihex(4, "0000", "0800") + ihex(0, "0012", "03") +
        ihex(2, "0000", "0001") + ihex(0, "0003", "04") + ihex(5, "0000", "08000100") + ihexEnd +
        "garbage after the end\n");
    EXPECT_EQ(layout(*file), "10+2 8000012+2") << "type 2 adds 16 times its value";
    EXPECT_EQ(bytesOf(*file, 1), "\x03\x04");
    EXPECT_TRUE(file->hasEntryPoint());
    EXPECT_EQ(file->entryPoint(), 0x08000100u);
}

TEST(IntelHexLoadFileTest, Errors)
{
    EXPECT_EQ(errorOf<IntelHexLoadFile>(ihex(0, "0000", "AA") + "0000\n"),
              "missing record mark in hex file : line 2");
    EXPECT_EQ(errorOf<IntelHexLoadFile>(":01000000AA00\n"), "invalid checksum : line 1");
    EXPECT_EQ(errorOf<IntelHexLoadFile>(ihex(0, "0000", "AA") + ihex(0, "0001", "BB")),
              "invalid end of file in hex file : line 3");
}

TEST(TIHexLoadFileTest, AddressLinesDataLinesAndQ)
{
    const auto file = readerOf<TIHexLoadFile>("@0100\n01 02\n@0102\n03 04 05\n@ff00\n"
                                              "aa\nq\nnot read\n");
    EXPECT_EQ(layout(*file), "100+5 ff00+1") << "adjoining runs of two @ lines make one";
    EXPECT_EQ(bytesOf(*file), "\x01\x02\x03\x04\x05");
    EXPECT_FALSE(file->hasEntryPoint());
    EXPECT_EQ(errorOf<TIHexLoadFile>("@0100\n01 02\n"), "unexpected end of file : line 3");
}

TEST(HexLoadFileTest, AddressAndBytesPerLine)
{
    const auto file =
        readerOf<HexLoadFile>("00000100 01 02\n00000102 03\n00000200\n80000000\t04\n");
    EXPECT_EQ(layout(*file), "100+3 80000000+1") << "an address alone adds nothing";
    EXPECT_EQ(errorOf<HexLoadFile>("00000100 01\n0100\n"), "invalid address : line 2");
    EXPECT_EQ(errorOf<HexLoadFile>("00000100,01\n"), "invalid seperator : line 1");
}

TEST(TextLoadFileTest, EmptyNulAndOverlongFiles)
{
    const QByteArray nul(1000, '\0');
    const QByteArray zeros(100000, '0');
    EXPECT_EQ(errorOf<SRecordLoadFile>(""), "no error");
    EXPECT_EQ(errorOf<SRecordLoadFile>(nul), "no leading 'S' character : line 1");
    EXPECT_EQ(errorOf<IntelHexLoadFile>(""), "invalid end of file in hex file : line 1");
    EXPECT_EQ(errorOf<IntelHexLoadFile>(zeros), "missing record mark in hex file : line 1");
    EXPECT_EQ(errorOf<HexLoadFile>(""), "no error");
    EXPECT_EQ(errorOf<HexLoadFile>(nul), "invalid address : line 1");
    EXPECT_EQ(errorOf<TIHexLoadFile>(""), "unexpected end of file : line 1");
    // 63 characters a read: the zeros make 1588 lines, and the "q" is missing on the next.
    EXPECT_EQ(errorOf<TIHexLoadFile>(zeros), "unexpected end of file : line 1589");

    // A line longer than the buffer is read as two: the second has no address.
    EXPECT_EQ(errorOf<HexLoadFile>("00000000" + QByteArray(" 01").repeated(30) + "\n"),
              "invalid ASCII encoded byte : line 2");
    const QByteArray longRecord = ihex(0, "0000", QByteArray("AA").repeated(255));
    EXPECT_EQ(layout(*readerOf<IntelHexLoadFile>(longRecord + ihexEnd)), "0+ff");
    EXPECT_EQ(errorOf<IntelHexLoadFile>(longRecord.chopped(1) + QByteArray(100, '0') + "\n"),
              "missing record mark in hex file : line 2");
}
