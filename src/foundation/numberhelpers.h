#pragma once

#include <QString>

/// Reads a number as memory maps and load files write it: decimal, "0x" hex,
/// "0b" binary, a leading "0" for octal, an optional sign; wraps in 64 bits.
unsigned long long fromStringTouint64(const char *text);
/// The same reading as a signed value.
long long fromStringToint64(const char *text);
/// The digits of `value` in `base` (2 to 36), lower case; the text lives in a
/// static buffer until the next call.
const char *toStringFromuint64(unsigned long long value, int base);
/// As `toStringFromuint64`, with "-" ahead of a negative value.
const char *toStringFromint64(long long value, int base);
/// Reads a floating-point number as `strtod` does.
double fromStringToDouble(const char *text);
/// `value` printed with the printf `format`, or "NaN" or "Inf"; the text lives in
/// a static buffer until the next call.
const char *toStringFromDouble(double value, const char *format);
/// The value of the hexadecimal digit `c` (either case), or -1 when it is none.
int hexDigitValue(char c);
/// `value` with bit `bit` copied into every bit above it.
unsigned long long signExtend(unsigned int bit, unsigned long long value);
/// `value` in decimal with "," between groups of three digits.
QString qCommaize(unsigned long value);
