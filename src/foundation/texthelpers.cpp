#include "foundation/texthelpers.h"

QString xmlEscapeEntities(const QString &text)
{
    QString result = text;
    result.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    result.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    result.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    result.replace(QLatin1Char('"'), QLatin1String("&quot;"));
    result.replace(QLatin1Char('\''), QLatin1String("&apos;"));
    result.replace(QChar(0xB7), QLatin1String("&middot;"));
    return result;
}

QString xmlUnescapeEntities(const QString &text)
{
    QString result = text;
    result.replace(QLatin1String("&amp;"), QLatin1String("&"));
    result.replace(QLatin1String("&lt;"), QLatin1String("<"));
    result.replace(QLatin1String("&gt;"), QLatin1String(">"));
    result.replace(QLatin1String("&quot;"), QLatin1String("\""));
    result.replace(QLatin1String("&apos;"), QLatin1String("'"));
    result.replace(QLatin1String("&nbsp;"), QLatin1String(" "));
    result.replace(QLatin1String("&middot;"), QString(QChar(0xB7)));
    return result;
}

QString ldquot()
{
    return QStringLiteral("\"");
}

QString rdquot()
{
    return QStringLiteral("\"");
}

QString emdash()
{
    return QStringLiteral("--");
}

void appendSplitItems(QStringList &list, const QString &prefix, const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &part : parts)
        list.append(prefix + part);
}

QString abbreviateFileName(const QString &path, int length)
{
    if (path.size() <= length)
        return path;
    const qsizetype cut = path.lastIndexOf(QLatin1Char('/'));
    const QString name = path.mid(cut + 1);
    const QString ellipsis = QStringLiteral(".../");
    if (name.size() + ellipsis.size() > length)
        return name;
    // Take in whole directories from the right while the result still fits.
    qsizetype keepFrom = cut + 1;
    while (keepFrom > 1) {
        const qsizetype previous = path.lastIndexOf(QLatin1Char('/'), keepFrom - 2);
        if (previous < 0 || ellipsis.size() + path.size() - (previous + 1) > length)
            break;
        keepFrom = previous + 1;
    }
    return ellipsis + path.mid(keepFrom);
}
