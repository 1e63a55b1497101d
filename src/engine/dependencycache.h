#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>

#include <limits>
#include <vector>

class DiskInterface;

/// The dependency lists of object files, by absolute object path, kept compactly across runs.
///
/// Each entry remembers the time of the object's dependency file when its list was taken, and
/// counts only while that file keeps its time: a compile that rewrites the file, or its
/// removal, makes the entry stale, and the list is then read from the file again. The entries
/// of the objects of one directory live in a small binary file there, so that a build with
/// nothing to do reads one file per directory rather than one per object. Every distinct name
/// is held once, and a list is a row of numbers into those names.
class DependencyCache
{
public:
    /// The name of the cache file in each directory of objects.
    static const char *fileName();

    /// The list kept for `object`, or an empty one when there is none or its dependency file
    /// changed since. Reads the cache file of the object's directory the first time it is
    /// asked about that directory. Given the object's time, the dependency file need not be
    /// looked at while neither the object nor anything in the directory changed since the
    /// cache file was written.
    QStringList value(const QString &object, const QDateTime &objectTime = QDateTime());
    /// Whether every dependency kept for `object` exists and none is newer than `objectTime`.
    /// The times come from the disk but are remembered by name for as long as its answers
    /// hold, so that the headers many objects share are looked up once. False also when that
    /// can't be told from what is kept; the list itself must then be looked at.
    bool noneNewer(const QString &object, const QDateTime &objectTime);
    /// Keeps `dependencies` for `object`, stamped with its dependency file's present time.
    void insert(const QString &object, const QStringList &dependencies);
    /// Forgets `object`: it is out of date.
    void remove(const QString &object);
    /// Forgets everything held in memory; the files stay as they are.
    void clear();
    /// Writes the cache file of every directory whose entries changed; a file that can't be
    /// written is left, as a cache may be.
    void save();

    /// The entries of `directory` as the text of its cache file.
    QByteArray serialize(const QString &directory) const;
    /// Reads the entries of `directory` from `bytes`; false, with nothing read, when they are
    /// not a cache file of this version or are damaged in any way.
    bool parse(const QString &directory, const QByteArray &bytes);

    /// Where to read and write; the build system's disk unless a test sets another.
    void setDisk(DiskInterface *disk) { m_disk = disk; }

private:
    struct Entry
    {
        qint64 dependencyFileTime = 0; ///< milliseconds since the epoch, -1 for no file
        /// One more than the disk generation in which the dependency file was last found
        /// with that time; 0 for never. The cache asks about dependency files itself, so
        /// that the disk need not hold thousands of names it is asked about once.
        mutable quint64 checked = 0;
        std::vector<quint32> names;
    };
    struct Directory
    {
        QHash<QString, Entry> entries;
        bool loaded = false;
        bool changed = false;
        /// Whether nothing came, went or was renamed in the directory since its cache file
        /// was written (the file has the directory's time, which it is given when written),
        /// so no dependency file was removed or made anew since.
        bool quiet = false;
        /// When the cache file was written, in milliseconds since the epoch: no object
        /// older than that was compiled since.
        qint64 savedAt = 0;
        /// Whether this run wrote the cache file.
        bool written = false;
    };

    DiskInterface &disk();
    Directory &directoryOf(const QString &object);
    quint32 intern(const QString &name);
    /// Whether `entry` already says `dependencies` with a dependency file of that time.
    bool holds(const Entry &entry, qint64 dependencyFileTime,
               const QStringList &dependencies) const;
    qint64 dependencyFileTime(const QString &object);

    /// The entry of `object` if it is there and its dependency file has the time it had, or
    /// the object, of `objectTime` (milliseconds; `unknownTime` for not given), and its quiet
    /// directory are as they were when the entry was written.
    const Entry *currentEntry(const QString &object, qint64 objectTime);
    /// Writes the cache file of `directory` and gives it the directory's new time.
    void write(const QString &name, Directory &directory);
    static constexpr qint64 unknownTime = std::numeric_limits<qint64>::min();

    QHash<QString, Directory> m_directories;
    /// The directory last asked about (objects come a directory at a time), or null.
    QString m_lastDirectoryName;
    Directory *m_lastDirectory = nullptr;
    /// The times of names as `noneNewer` last saw them, by number, while the disk says the
    /// same.
    std::vector<qint64> m_times;
    quint64 m_timesGeneration = 0;
    QStringList m_names;
    QHash<QString, quint32> m_nameNumbers;
    DiskInterface *m_disk = nullptr;
};
