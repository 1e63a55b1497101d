#include "properties/stringlistcodec.h"

QString escapeListItem(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (QChar c : text) {
        if (c == QLatin1Char(';') || c == QLatin1Char('\\'))
            result += QLatin1Char('\\');
        result += c;
    }
    return result;
}

QString joinStringList(const QStringList &list)
{
    QString result;
    for (int i = 0; i < list.size(); ++i) {
        if (i > 0)
            result += QLatin1Char(';');
        result += escapeListItem(list.at(i));
    }
    // An empty list must read back as a null string; a list of one empty item gives "".
    if (!list.isEmpty() && result.isNull())
        result = QLatin1String("");
    return result;
}

QStringList splitStringList(const QString &text, bool keepEmpty)
{
    QStringList list;
    QString item;
    const int length = text.size();
    for (int i = 0; i < length; ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\') && i + 1 < length) {
            item += text.at(++i);
        } else if (c == QLatin1Char(';')) {
            if (keepEmpty || !item.isEmpty())
                list.append(item);
            item.clear();
        } else {
            item += c;
        }
    }
    if (keepEmpty || !item.isEmpty())
        list.append(item);
    return list;
}
