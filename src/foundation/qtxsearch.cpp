#include "foundation/qtx.h"

namespace {

bool isWordCharacter(const QString &text, qsizetype index)
{
    if (index < 0 || index >= text.size())
        return false;
    const QChar c = text.at(index);
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

// A hit counts unless it is empty or, for whole words, touches a word character.
bool countsAsHit(const QRegularExpressionMatch &hit, const QString &text, bool wholeWord)
{
    if (hit.capturedLength() == 0)
        return false;
    return !wholeWord || (!isWordCharacter(text, hit.capturedStart() - 1) &&
                          !isWordCharacter(text, hit.capturedEnd()));
}

} // namespace

namespace QTx {

QString literalRegularExpressionString(const QString &text)
{
    static const QString special = QStringLiteral("\\{}[]():?^$.+*,|");
    QString result;
    result.reserve(text.size() * 2);
    for (const QChar c : text) {
        if (special.contains(c))
            result.append(QLatin1Char('\\'));
        result.append(c);
    }
    return result;
}

QRegularExpression constructSearchRegularExpression(const QString &text, bool caseSensitive,
                                                    bool isRegularExpression)
{
    return QRegularExpression(isRegularExpression ? text : literalRegularExpressionString(text),
                              caseSensitive ? QRegularExpression::NoPatternOption
                                            : QRegularExpression::CaseInsensitiveOption);
}

int search(const QRegularExpression &re, const QString &text, int start, bool forward,
           bool wholeWord, QString &match, QRegularExpressionMatch *lastMatch)
{
    const auto report = [&](const QRegularExpressionMatch &hit) {
        match = hit.captured();
        if (lastMatch)
            *lastMatch = hit;
        return int(hit.capturedStart());
    };
    if (start < 0)
        return -1;
    if (forward) {
        for (qsizetype from = start; from <= text.size();) {
            const QRegularExpressionMatch hit = re.match(text, from);
            if (!hit.hasMatch())
                return -1;
            if (countsAsHit(hit, text, wholeWord))
                return report(hit);
            from = hit.capturedStart() + 1;
        }
        return -1;
    }
    // Backwards, each position is tried in turn as the start of a match.
    for (qsizetype at = qMin<qsizetype>(start, text.size()); at >= 0; --at) {
        const QRegularExpressionMatch hit = re.match(text, at, QRegularExpression::NormalMatch,
                                                     QRegularExpression::AnchorAtOffsetMatchOption);
        if (hit.hasMatch() && countsAsHit(hit, text, wholeWord))
            return report(hit);
    }
    return -1;
}

void expandSearchResults(const QRegularExpressionMatch &lastMatch, QString &text)
{
    for (int n = 0; n <= 9; ++n)
        text.replace(QLatin1Char('\\') + QString::number(n), lastMatch.captured(n));
}

} // namespace QTx
