#include "foundation/numberhelpers.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(NumberHelpersTest, ReadsNumbersInEveryNotation)
{
    // No digit check: a letter counts by its place, whatever the base; 64 bits wrap.
    // clang-format off
    const std::pair<const char *, unsigned long long> cases[] = {
        {"0xFfA0", 0xffa0}, {"0b101", 5}, {"010", 8}, {"\t +7", 7}, {"-1", ~0ULL}, {"1a", 20},
        {"0xffffffffffffffff", ~0ULL}, {"0x10000000000000000", 0}, {"", 0}};
    // clang-format on
    for (const auto &[text, value] : cases)
        EXPECT_EQ(fromStringTouint64(text), value) << text;
    EXPECT_EQ(fromStringTouint64(nullptr), 0u);
    EXPECT_EQ(fromStringToint64("-0x20"), -32);
    EXPECT_DOUBLE_EQ(fromStringToDouble("2.5e3"), 2500.0);
}

TEST(NumberHelpersTest, WritesDigitsAndCommasAndExtendsSigns)
{
    EXPECT_STREQ(toStringFromuint64(35, 36), "z");
    EXPECT_STREQ(toStringFromint64(std::numeric_limits<long long>::min(), 2),
                 ("-1" + std::string(63, '0')).c_str());
    EXPECT_STREQ(toStringFromDouble(std::nan(""), "%f"), "NaN");
    EXPECT_STREQ(toStringFromDouble(-HUGE_VAL, "%f"), "Inf");
    EXPECT_EQ(std::string(toStringFromDouble(1e308, "%f")).size(), 316u);
    EXPECT_EQ(qCommaize(1002003), "1,002,003");
    EXPECT_EQ(signExtend(7, 0x80), 0xffffffffffffff80ULL);
    EXPECT_EQ(signExtend(7, 0x17f), 0x17fULL) << "bit 7 clear: unchanged";
    EXPECT_EQ(signExtend(64, 5), 5u);
}
