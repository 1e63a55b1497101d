#pragma once

#include <QString>
#include <QStringList>

// A list held as one string: items joined by ";", with a backslash in front of each ";" and
// backslash inside an item. The macro system offers these under its own names; they live here
// because property values convert to and from lists too.

/// Puts a backslash in front of each ";" and each backslash of `text`.
QString escapeListItem(const QString &text);

/// Joins `list` into one string, each item escaped; an empty list gives a null string.
QString joinStringList(const QStringList &list);

/// Splits `text` at unescaped ";"; a backslash makes the next character literal. Empty items
/// are kept only if `keepEmpty` is set.
QStringList splitStringList(const QString &text, bool keepEmpty);
