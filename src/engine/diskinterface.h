#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QString>

struct stat;

/// What the build engine asks of the file system: times, existence, reading and removing.
/// The engine goes through this seam only, so its decisions can be tested against a disk held
/// in memory.
class DiskInterface
{
public:
    virtual ~DiskInterface();
    /// The modification time of the file `path`; an invalid time when there is none.
    virtual QDateTime modified(const QString &path) = 0;
    /// `modified`, asked afresh and not remembered: for files whose answer the caller keeps
    /// itself.
    virtual QDateTime probe(const QString &path) = 0;
    /// Whether `path` exists and can be read.
    virtual bool isReadable(const QString &path) = 0;
    /// Reads the file `path` whole; false when it is missing, unreadable or larger than
    /// `maximumSize` bytes.
    virtual bool readFile(const QString &path, qint64 maximumSize, QByteArray &contents) = 0;
    /// Removes the file `path`.
    virtual bool removeFile(const QString &path) = 0;
    /// Writes `contents` to `path` through a temporary file and a rename, making its directory
    /// first; false when it can't, leaving any earlier file as it was.
    virtual bool writeFile(const QString &path, const QByteArray &contents) = 0;
    /// The modification time of `path`, a file or a directory, in nanoseconds since the epoch,
    /// asked afresh; -1 when there is none. Creating, removing or renaming a file changes its
    /// directory's.
    virtual qint64 stamp(const QString &path) = 0;
    /// Gives the file `path` the modification time `stamp`; false when it can't.
    virtual bool setStamp(const QString &path, qint64 stamp) = 0;
    /// Forgets what is known of `path`: a command is about to make or change it.
    virtual void invalidate(const QString &path) = 0;
    /// Forgets everything known: a command with unknown effects has run, or a build starts.
    virtual void invalidateAll() = 0;

    /// A number that changes whenever what this disk said of any file may no longer hold
    /// (a file was invalidated, written or removed), so that callers can keep answers of their
    /// own while it stays the same.
    quint64 generation() const { return m_generation; }

protected:
    /// Tells callers that earlier answers may no longer hold.
    void changed() { ++m_generation; }

private:
    quint64 m_generation = 0;
};

/// The real file system, each file looked at once until it is invalidated.
class RealDiskInterface : public DiskInterface
{
public:
    RealDiskInterface() = default;
    RealDiskInterface(const RealDiskInterface &) = delete;
    RealDiskInterface &operator=(const RealDiskInterface &) = delete;
    ~RealDiskInterface() override;
    QDateTime modified(const QString &path) override;
    QDateTime probe(const QString &path) override;
    bool isReadable(const QString &path) override;
    bool readFile(const QString &path, qint64 maximumSize, QByteArray &contents) override;
    bool removeFile(const QString &path) override;
    bool writeFile(const QString &path, const QByteArray &contents) override;
    qint64 stamp(const QString &path) override;
    bool setStamp(const QString &path, qint64 stamp) override;
    void invalidate(const QString &path) override;
    void invalidateAll() override;

    /// The number of times the file system was asked about a file, for measurements.
    qint64 statCount() const { return m_statCount; }

private:
    struct Entry
    {
        QDateTime modified; ///< invalid when the file does not exist
        int readable = -1;  ///< -1 not asked yet, else 0 or 1
        bool looked = false;
    };
    Entry &entry(const QString &path);
    /// The modification time `stat` gives `path`; invalid for a missing file or a directory.
    QDateTime timeOf(const QString &path);
    /// stat() of the file `name`, through an open descriptor of its directory.
    int statFile(const QByteArray &name, struct stat &status);
    void closeDirectories();

    static constexpr qsizetype maximumOpenDirectories = 256;
    QHash<QString, Entry> m_entries;
    QHash<QByteArray, int> m_directories;
    /// The directory of the last file asked about, and its descriptor (-1 for none).
    QByteArray m_lastDirectoryName;
    int m_lastDirectory = -1;
    /// Reused for the encoded names of files.
    QByteArray m_nameBuffer;
    qint64 m_statCount = 0;
};
