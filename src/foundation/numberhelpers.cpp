#include "foundation/numberhelpers.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

const char digitTable[] = "0123456789abcdefghijklmnopqrstuvwxyz";

// Any character is taken as a digit: a letter by its place in the alphabet, and
// anything else by its code less 0x37, which is right for upper-case letters.
unsigned long long digitValue(unsigned char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 10;
    return static_cast<unsigned long long>(static_cast<long long>(c) - 0x37);
}

// Writes the digits of `value` backwards from `end`; returns the first digit.
char *writeDigits(unsigned long long value, int base, char *end)
{
    if (base < 2 || base > 36)
        base = 10;
    *end = '\0';
    char *p = end;
    do {
        *--p = digitTable[value % unsigned(base)];
        value /= unsigned(base);
    } while (value != 0);
    return p;
}

} // namespace

unsigned long long fromStringTouint64(const char *text)
{
    if (!text)
        return 0;
    const unsigned char *p = reinterpret_cast<const unsigned char *>(text);
    while (std::isspace(*p))
        ++p;
    bool negative = false;
    if (*p == '-') {
        negative = true;
        ++p;
    } else if (*p == '+') {
        ++p;
    }
    unsigned long long base = 10;
    if (p[0] == '0') {
        if (p[1] == 'x') {
            base = 16;
            p += 2;
        } else if (p[1] == 'b') {
            base = 2;
            p += 2;
        } else {
            base = 8;
        }
    }
    unsigned long long value = 0;
    for (; *p; ++p)
        value = value * base + digitValue(*p);
    return negative ? 0 - value : value;
}

long long fromStringToint64(const char *text)
{
    return static_cast<long long>(fromStringTouint64(text));
}

const char *toStringFromuint64(unsigned long long value, int base)
{
    static char buffer[65];
    return writeDigits(value, base, buffer + sizeof buffer - 1);
}

const char *toStringFromint64(long long value, int base)
{
    // One byte more than the unsigned form: 64 binary digits and the sign.
    static char buffer[66];
    const bool negative = value < 0;
    const unsigned long long magnitude = negative ? 0 - static_cast<unsigned long long>(value)
                                                  : static_cast<unsigned long long>(value);
    char *p = writeDigits(magnitude, base, buffer + sizeof buffer - 1);
    if (negative)
        *--p = '-';
    return p;
}

double fromStringToDouble(const char *text)
{
    return text ? std::strtod(text, nullptr) : 0.0;
}

const char *toStringFromDouble(double value, const char *format)
{
    static char buffer[512];
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return "Inf";
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

unsigned long long signExtend(unsigned int bit, unsigned long long value)
{
    if (bit >= 64 || !((value >> bit) & 1))
        return value;
    const unsigned long long kept = (2ULL << bit) - 1; // wraps to all ones for bit 63
    return value | ~kept;
}

QString qCommaize(unsigned long value)
{
    QString text = QString::number(value);
    for (qsizetype at = text.size() - 3; at > 0; at -= 3)
        text.insert(at, QLatin1Char(','));
    return text;
}

int hexDigitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}
