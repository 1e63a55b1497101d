#include "loadfiletesting.h"

#include "loadfile/binaryloadfile.h"
#include "loadfile/hexloadfile.h"
#include "loadfile/intelhexloadfile.h"
#include "loadfile/srecordloadfile.h"
#include "loadfile/tihexloadfile.h"

#include <gtest/gtest.h>

#include <tuple>

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
// The longest record there is, longer than one read of the text readers' buffer.
const QByteArray longRecord = ihex(0, "0000", QByteArray("AA").repeated(255));

} // namespace

TEST(TextLoadFileTest, ReadsRecordsAndNamesTheLineOfAnError)
{
    using Reader = std::string (*)(const QByteArray &);
    const Reader srecord = readOf<SRecordLoadFile>, intel = readOf<IntelHexLoadFile>,
                 ti = readOf<TIHexLoadFile>, hex = readOf<HexLoadFile>,
                 binary = readOf<BinaryLoadFile>;
    const std::tuple<Reader, QByteArray, std::string> cases[] = {
        // Adjoining records make one section.
        {srecord,
         srec('0', "0000414243") + srec('1', "01000102") + srec('1', "01020304") +
             srec('2', "02000005") + srec('3', "8000000006") + srec('5', "0004") +
             srec('7', "08000100"),
         "100:01020304 20000:05 80000000:06 start 8000100"},
        {srecord, srec('9', "0010"), "start 10"},
        {srecord, srec('1', "0000AA"), "0:aa"},
        {srecord, "", ""},
        {srecord, srec('1', "0000AA") + "X1\n", "no leading 'S' character : line 2"},
        {srecord, "S1040000AA00\n", "invalid checksum : line 1"},
        {srecord, srec('1', "0000AA") + srec('5', "0002"), "incorrect data record count : line 2"},
        {srecord, "S1040000AZ\n", "invalid ASCII encoded byte : line 1"},
        // Type 4 gives the upper half of the address, type 2 adds 16 times its value.
        {intel,
         ihex(0, "0010", "0102") + ihex(4, "0000", "0800") + ihex(0, "0012", "03") +
             ihex(2, "0000", "0001") + ihex(0, "0003", "04") + ihex(5, "0000", "08000100") +
             ihexEnd + "garbage after the end\n",
         "10:0102 8000012:0304 start 8000100"},
        {intel, longRecord + ihexEnd, "0:" + std::string(510, 'a')},
        {intel, ihex(0, "0000", "AA") + "0000\n", "missing record mark in hex file : line 2"},
        {intel, ":01000000AA00\n", "invalid checksum : line 1"},
        {intel, ihex(0, "0000", "AA") + ihex(0, "0001", "BB"),
         "invalid end of file in hex file : line 3"},
        {ti, "@0100\n01 02\n@0102\n03 04 05\n@ff00\naa\nq\nnot read\n", "100:0102030405 ff00:aa"},
        {ti, "@0100\n01 02\n", "unexpected end of file : line 3"},
        {binary, "abc", "0:616263"},
        {binary, "", "0:"},
        {hex, "00000100 01 02\n00000102 03\n00000200\n80000000\t04\n", "100:010203 80000000:04"},
        {hex, "00000100 01\n0100\n", "invalid address : line 2"},
        {hex, "00000100,01\n", "invalid seperator : line 1"},
        {hex, "00000100 a5 F\n", "invalid ASCII encoded byte : line 1"},
        {hex, QByteArray(1000, '\0'), "invalid address : line 1"},
        // Lines longer than the buffer are read as several: the rest has no address or mark,
        // and 63 characters a read make 1588 lines of the zeros, the "q" missing on the next.
        {hex, "00000000" + QByteArray(" 01").repeated(30) + "\n",
         "invalid ASCII encoded byte : line 2"},
        {intel, longRecord.chopped(1) + QByteArray(100, '0') + "\n",
         "missing record mark in hex file : line 2"},
        {ti, QByteArray(100000, '0'), "unexpected end of file : line 1589"},
    };
    for (const auto &[read, text, result] : cases)
        EXPECT_EQ(read(text), result) << text.left(60).toStdString();
}
