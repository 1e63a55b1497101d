#include "foundation/numberhelpers.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

TEST(NumberHelpersTest, ReadsNumbersInEveryNotation)
{
    EXPECT_EQ(fromStringTouint64("0x10"), 16u);
    EXPECT_EQ(fromStringTouint64("0xFfA0"), 0xffa0u);
    EXPECT_EQ(fromStringTouint64("0b101"), 5u);
    EXPECT_EQ(fromStringTouint64("010"), 8u);
    EXPECT_EQ(fromStringTouint64("0"), 0u);
    EXPECT_EQ(fromStringTouint64("  +7"), 7u);
    EXPECT_EQ(fromStringTouint64("\t123"), 123u);
    EXPECT_EQ(fromStringTouint64("-1"), std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(fromStringToint64("-0x20"), -32);
    EXPECT_EQ(fromStringTouint64("0xffffffffffffffff"), ~0ULL);
    EXPECT_EQ(fromStringTouint64("0x10000000000000000"), 0u) << "wraps in 64 bits";
    EXPECT_EQ(fromStringTouint64(""), 0u);
    EXPECT_EQ(fromStringTouint64(nullptr), 0u);
    // No digit check: a letter counts by its place, whatever the base.
    EXPECT_EQ(fromStringTouint64("1a"), 20u);
}

TEST(NumberHelpersTest, WritesDigitsInAnyBase)
{
    EXPECT_STREQ(toStringFromuint64(0, 10), "0");
    EXPECT_STREQ(toStringFromuint64(255, 16), "ff");
    EXPECT_STREQ(toStringFromuint64(35, 36), "z");
    EXPECT_STREQ(toStringFromuint64(~0ULL, 2), std::string(64, '1').c_str());
    EXPECT_STREQ(toStringFromint64(-255, 16), "-ff");
    EXPECT_STREQ(toStringFromint64(std::numeric_limits<long long>::min(), 2),
                 ("-1" + std::string(63, '0')).c_str());
    EXPECT_STREQ(toStringFromint64(42, 10), "42");

    EXPECT_STREQ(toStringFromDouble(1.5, "%.2f"), "1.50");
    EXPECT_STREQ(toStringFromDouble(std::nan(""), "%f"), "NaN");
    EXPECT_STREQ(toStringFromDouble(-HUGE_VAL, "%f"), "Inf");
    EXPECT_EQ(std::string(toStringFromDouble(1e308, "%f")).size(), 316u);
    EXPECT_DOUBLE_EQ(fromStringToDouble("2.5e3"), 2500.0);
}

TEST(NumberHelpersTest, SignExtendAndCommaize)
{
    EXPECT_EQ(signExtend(7, 0x80), 0xffffffffffffff80ULL);
    EXPECT_EQ(signExtend(7, 0x17f), 0x17fULL) << "bit 7 clear: unchanged";
    EXPECT_EQ(signExtend(0, 1), ~0ULL);
    EXPECT_EQ(signExtend(63, 1ULL << 63), 1ULL << 63);
    EXPECT_EQ(signExtend(64, 5), 5u);

    EXPECT_EQ(qCommaize(0), "0");
    EXPECT_EQ(qCommaize(999), "999");
    EXPECT_EQ(qCommaize(1000), "1,000");
    EXPECT_EQ(qCommaize(1002003), "1,002,003");
    EXPECT_EQ(qCommaize(123456), "123,456");
}
