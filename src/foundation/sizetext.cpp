#include "foundation/sizetext.h"

#include "foundation/numberhelpers.h"

namespace {

unsigned long kiloDivisor(SizeUnitFormat format)
{
    return format == SizeUnitDecimal ? 1000 : 1024;
}

unsigned long megaDivisor(SizeUnitFormat format)
{
    return format == SizeUnitDecimal ? 1000000 : 0x100000;
}

QString kiloPrefix(SizeUnitFormat format)
{
    return format == SizeUnitBinaryIEC ? QStringLiteral("ki") : QStringLiteral("k");
}

QString megaPrefix(SizeUnitFormat format)
{
    return format == SizeUnitBinaryIEC ? QStringLiteral("Mi") : QStringLiteral("M");
}

// `bytes` in units of `divisor`, with one decimal digit unless it is 0.
QString withOneDecimal(unsigned int bytes, unsigned long divisor, const QString &prefix)
{
    const QString whole = qCommaize(bytes / divisor);
    const unsigned long tenth = (bytes % divisor) * 10 / divisor;
    if (tenth == 0)
        return QStringLiteral("%1 %2B").arg(whole, prefix);
    return QStringLiteral("%1.%2 %3B").arg(whole, QString::number(tenth), prefix);
}

} // namespace

QString coarseKBSize(unsigned int bytes, SizeUnitFormat format)
{
    if (bytes == 0)
        return QStringLiteral("0 %1B").arg(kiloPrefix(format));
    const unsigned long divisor = kiloDivisor(format);
    const unsigned long kilobytes = (static_cast<unsigned long>(bytes) + divisor) / divisor;
    return QStringLiteral("%1 %2B").arg(qCommaize(kilobytes), kiloPrefix(format));
}

QString kbSize(unsigned int bytes, SizeUnitFormat format)
{
    const unsigned long divisor = kiloDivisor(format);
    if (bytes < divisor)
        return QStringLiteral("%1 bytes").arg(bytes);
    return withOneDecimal(bytes, divisor, kiloPrefix(format));
}

QString bSize(unsigned int bytes, SizeUnitFormat format)
{
    const unsigned long divisor = megaDivisor(format);
    if (bytes < divisor)
        return kbSize(bytes, format);
    return withOneDecimal(bytes, divisor, megaPrefix(format));
}
