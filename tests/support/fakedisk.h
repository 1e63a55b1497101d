#pragma once

#include "engine/diskinterface.h"
#include "engine/sidefiles.h"

#include <QDateTime>
#include <QHash>
#include <QStringList>

/// A file system in memory: files have the times the test gives them.
class FakeDisk : public DiskInterface
{
public:
    /// Makes `path` a file modified at `time` (any clock: only order counts), with `contents`.
    void touch(const QString &path, qint64 time, const QByteArray &contents = QByteArray())
    {
        changed();
        latest = qMax(latest, time);
        if (!files.contains(path))
            directoryChanged(path);
        files.insert(path, time);
        this->contents.insert(path, contents);
    }
    void erase(const QString &path)
    {
        changed();
        if (files.remove(path))
            directoryChanged(path);
        contents.remove(path);
    }

    QDateTime modified(const QString &path) override
    {
        ++stats;
        const auto found = files.constFind(path);
        return found == files.cend() ? QDateTime()
                                     : QDateTime::fromMSecsSinceEpoch(*found, Qt::UTC);
    }
    QDateTime probe(const QString &path) override { return modified(path); }
    bool isReadable(const QString &path) override { return files.contains(path); }
    bool readFile(const QString &path, qint64 maximumSize, QByteArray &data) override
    {
        if (!files.contains(path) || contents.value(path).size() > maximumSize)
            return false;
        data = contents.value(path);
        return true;
    }
    bool removeFile(const QString &path) override
    {
        removed << path;
        if (readOnly.contains(path) || !files.contains(path))
            return false;
        erase(path);
        return true;
    }
    bool writeFile(const QString &path, const QByteArray &data) override
    {
        if (!writable)
            return false;
        touch(path, 0, data);
        return true;
    }
    qint64 stamp(const QString &path) override
    {
        const auto found = files.constFind(path);
        return found != files.cend() ? *found * 1000000 : directories.value(path, -1);
    }
    bool setStamp(const QString &path, qint64 stamp) override
    {
        if (!files.contains(path))
            return false;
        changed();
        files.insert(path, stamp / 1000000);
        return true;
    }
    void invalidate(const QString &) override { changed(); }
    void invalidateAll() override { changed(); }

    /// A file came or went in the directory of `path`: the directory changes, later than
    /// any time seen so far.
    void directoryChanged(const QString &path)
    {
        directories.insert(fileDirectory(path), ++latest * 1000000);
    }

    QHash<QString, qint64> files;
    QHash<QString, qint64> directories; ///< stamps, nanoseconds
    qint64 latest = 0;
    QHash<QString, QByteArray> contents;
    QStringList removed;
    QStringList readOnly; ///< files that can't be removed
    int stats = 0;
    bool writable = true; ///< whether writeFile succeeds
};
