#include "foundation/texthelpers.h"

namespace {

struct Replacement
{
    const char *from;
    const char *to;
};

QString replacedInOrder(const QString &text, std::initializer_list<Replacement> replacements)
{
    QString result = text;
    for (const Replacement &r : replacements)
        result.replace(QString::fromUtf8(r.from), QString::fromUtf8(r.to));
    return result;
}

} // namespace

// The order matters: "&" goes first so that the entities written later keep theirs.
QString xmlEscapeEntities(const QString &text)
{
    return replacedInOrder(text, {{"&", "&amp;"},
                                  {">", "&gt;"},
                                  {"<", "&lt;"},
                                  {"\"", "&quot;"},
                                  {"'", "&apos;"},
                                  {"\u00B7", "&middot;"}});
}

QString xmlUnescapeEntities(const QString &text)
{
    return replacedInOrder(text, {{"&amp;", "&"},
                                  {"&lt;", "<"},
                                  {"&gt;", ">"},
                                  {"&quot;", "\""},
                                  {"&apos;", "'"},
                                  {"&nbsp;", " "},
                                  {"&middot;", "\u00B7"}});
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
