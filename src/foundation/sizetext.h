#pragma once

#include <QString>

/// How sizes are shown: decimal kilo and mega, binary ones with the short
/// prefixes, or binary ones with the "ki" and "Mi" prefixes.
enum SizeUnitFormat {
    SizeUnitDecimal = 0,
    SizeUnitBinary = 1,
    SizeUnitBinaryIEC = 2,
};

/// A size in whole kilobytes rounded up past the next one, as "12 kB".
QString coarseKBSize(unsigned int bytes, SizeUnitFormat format);
/// A size as "N bytes" below a kilobyte, else in kilobytes with one decimal.
QString kbSize(unsigned int bytes, SizeUnitFormat format);
/// As `kbSize`, but in megabytes from one megabyte up.
QString bSize(unsigned int bytes, SizeUnitFormat format);
