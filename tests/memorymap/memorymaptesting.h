#pragma once

#include "memorymap/linkerscriptwriter.h"
#include "memorymap/memorymap.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QTextStream>

#include <memory>
#include <ostream>

/// A map parsed from `xml`, or null if it doesn't parse.
inline std::unique_ptr<MemoryMap> mapFrom(const QByteArray &xml)
{
    auto map = std::make_unique<MemoryMap>();
    if (!map->loadFromString(QString::fromLatin1(xml)))
        return nullptr;
    return map;
}

/// A memory map file's text: the root holding `body`.
inline QByteArray memoryMapXml(const QByteArray &body)
{
    return "<!DOCTYPE Board_Memory_Definition_File>\n<Root name=\"Board\">\n" + body + "</Root>\n";
}

/// A section placement file's text: the root holding `body`.
inline QByteArray placementXml(const QByteArray &body)
{
    return "<!DOCTYPE Linker_Placement_File>\n<Root name=\"Placement\">\n" + body + "</Root>\n";
}

/// The sizes the settings have by default.
inline LinkerScriptSizes defaultSizes()
{
    return {"1024", "256", "256", "0", "0", "0", "1024"};
}

/// What the writer makes of a memory map and a placement (none if empty): the script, or
/// "error: " and the text thrown.
inline QString scriptFrom(const QByteArray &mapBody, const QByteArray &placementBody,
                          bool checkOverflow = false,
                          const LinkerScriptSizes &sizes = defaultSizes())
{
    auto map = mapFrom(memoryMapXml(mapBody));
    auto placement = placementBody.isEmpty() ? nullptr : mapFrom(placementXml(placementBody));
    QString text;
    QTextStream stream(&text);
    try {
        LinkerScriptWriter(stream, map.get(), checkOverflow).write(placement.get(), sizes);
    } catch (const QString &error) {
        return QStringLiteral("error: ") + error;
    }
    stream.flush();
    return text;
}

/// The part of `script` from the first line holding `from` up to, not including, the first
/// line after it holding `to` (to the end if none).
inline QString excerpt(const QString &script, const QString &from, const QString &to = QString())
{
    const QStringList lines = script.split(QLatin1Char('\n'));
    qsizetype first = 0;
    while (first < lines.size() && !lines[first].contains(from))
        ++first;
    qsizetype last = first + 1;
    while (!to.isEmpty() && last < lines.size() && !lines[last].contains(to))
        ++last;
    if (to.isEmpty())
        last = lines.size();
    return lines.mid(first, last - first).join(QLatin1Char('\n'));
}

/// Sets the modification time of `path` to `secondsAgo` seconds before now.
inline void age(const QString &path, int secondsAgo)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-secondsAgo),
                                 QFileDevice::FileModificationTime));
}
