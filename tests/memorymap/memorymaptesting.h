#pragma once

#include "memorymap/linkerscriptwriter.h"
#include "memorymap/memorymap.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>

#include <memory>

/// A map parsed from `xml`, or null if it doesn't parse.
inline std::unique_ptr<MemoryMap> mapFrom(const QByteArray &xml)
{
    auto map = std::make_unique<MemoryMap>();
    return map->loadFromString(QString::fromLatin1(xml)) ? std::move(map) : nullptr;
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

/// The names of `elements`, joined by blanks.
inline QString names(const MemoryMap::ElementList &elements)
{
    QStringList list;
    for (const MemoryMapElement *element : elements)
        list << element->name();
    return list.join(QLatin1Char(' '));
}

/// What the writer makes of a memory map and a placement (none if empty), with the sizes the
/// settings have by default: the script, or "error: " and the text thrown.
inline QString
scriptFrom(const QByteArray &mapBody, const QByteArray &placementBody, bool checkOverflow = false,
           const LinkerScriptSizes &sizes = {"1024", "256", "256", "0", "0", "0", "1024"})
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

/// Sets the modification time of `path` to `secondsAgo` seconds before now.
inline void age(const QString &path, int secondsAgo)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-secondsAgo),
                                 QFileDevice::FileModificationTime));
}
