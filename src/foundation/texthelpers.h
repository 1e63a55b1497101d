#pragma once

#include <QString>
#include <QStringList>

/// `text` with "&", ">", "<", quotes and the middle dot written as XML entities.
QString xmlEscapeEntities(const QString &text);
/// `text` with the entities `xmlEscapeEntities` writes (and "&nbsp;") read back.
QString xmlUnescapeEntities(const QString &text);
/// The quotes that messages put around a name.
QString ldquot();
QString rdquot();
/// The dash that separates parts of a message.
QString emdash();
/// Appends `prefix` and each non-empty ";"-separated part of `text` to `list`,
/// as when a setting's list becomes options.
void appendSplitItems(QStringList &list, const QString &prefix, const QString &text);
/// `path` shortened to about `length` characters for display, keeping the file
/// name and as many of the last directories as fit behind ".../".
QString abbreviateFileName(const QString &path, int length);
