#pragma once

#include "engine/diskinterface.h"

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
        files.insert(path, time);
        this->contents.insert(path, contents);
    }
    void erase(const QString &path)
    {
        changed();
        files.remove(path);
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
    void invalidate(const QString &) override { changed(); }
    void invalidateAll() override { changed(); }

    QHash<QString, qint64> files;
    QHash<QString, QByteArray> contents;
    QStringList removed;
    QStringList readOnly; ///< files that can't be removed
    int stats = 0;
    bool writable = true; ///< whether writeFile succeeds
};
