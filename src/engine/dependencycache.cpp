#include "engine/dependencycache.h"

#include "engine/buildsystem.h"
#include "engine/diskinterface.h"
#include "engine/sidefiles.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

const char magic[] = "tidemake dependencies 1\n";
constexpr qsizetype magicSize = sizeof(magic) - 1;
// A cache file holds a few hundred names per directory; a far larger one is not ours.
constexpr qint64 maximumCacheFileSize = 64 * 1024 * 1024;

template <typename Number> void putNumber(QByteArray &out, Number value)
{
    const Number little = qToLittleEndian(value);
    out.append(reinterpret_cast<const char *>(&little), sizeof little);
}

/// Reads numbers from a byte buffer, never past its end: once a read would pass it, every
/// later read fails too.
class Reader
{
public:
    explicit Reader(const QByteArray &bytes) : m_bytes(bytes) {}
    template <typename Number> bool number(Number &value)
    {
        if (!take(&value, sizeof value))
            return false;
        value = qFromLittleEndian(value);
        return true;
    }
    bool text(quint32 size, QString &value)
    {
        if (!fits(size))
            return false;
        value = QString::fromUtf8(m_bytes.constData() + m_offset, qsizetype(size));
        m_offset += size;
        return true;
    }
    /// Whether `count` more items of `itemSize` bytes each can be there.
    bool fits(quint64 count, quint64 itemSize = 1) const
    {
        return count * itemSize <= quint64(m_bytes.size() - m_offset);
    }
    bool atEnd() const { return m_offset == m_bytes.size(); }
    void skip(qsizetype size) { m_offset += size; }

private:
    bool take(void *value, size_t size)
    {
        if (!fits(size))
            return false;
        std::memcpy(value, m_bytes.constData() + m_offset, size);
        m_offset += qsizetype(size);
        return true;
    }
    const QByteArray &m_bytes;
    qsizetype m_offset = 0;
};

QString cacheFilePath(const QString &directory)
{
    return directory + QLatin1Char('/') + QLatin1String(DependencyCache::fileName());
}

} // namespace

const char *DependencyCache::fileName()
{
    return ".tidemake-dependencies";
}

DiskInterface &DependencyCache::disk()
{
    return m_disk ? *m_disk : buildSystem->disk();
}

quint32 DependencyCache::intern(const QString &name)
{
    // One look into the table, whether the name is new or not.
    const qsizetype known = m_nameNumbers.size();
    quint32 &number = m_nameNumbers[name];
    if (m_nameNumbers.size() != known) {
        number = quint32(m_names.size());
        m_names.append(name);
    }
    return number;
}

DependencyCache::Directory &DependencyCache::directoryOf(const QString &object)
{
    const qsizetype length = m_lastDirectoryName.size();
    if (m_lastDirectory && object.size() > length && object.startsWith(m_lastDirectoryName) &&
        object.at(length) == QLatin1Char('/') && object.indexOf(QLatin1Char('/'), length + 1) < 0)
        return *m_lastDirectory;
    const QString directory = fileDirectory(object);
    // Entering a directory may move the others in memory.
    m_lastDirectory = nullptr;
    Directory &known = m_directories[directory];
    if (!known.loaded) {
        known.loaded = true;
        QByteArray bytes;
        const QString cacheFile = cacheFilePath(directory);
        if (disk().readFile(cacheFile, maximumCacheFileSize, bytes) && parse(directory, bytes)) {
            const qint64 written = disk().stamp(cacheFile);
            Directory &parsed = m_directories[directory];
            parsed.quiet = written >= 0 && written == disk().stamp(directory);
            parsed.savedAt = written / 1000000;
        }
    }
    Directory &entered = m_directories[directory];
    if (directory.size() > 1) {
        m_lastDirectoryName = directory;
        m_lastDirectory = &entered;
    }
    return entered;
}

qint64 DependencyCache::dependencyFileTime(const QString &object)
{
    const QDateTime modified = disk().probe(dependencyFilePath(object));
    return modified.isValid() ? modified.toMSecsSinceEpoch() : -1;
}

const DependencyCache::Entry *DependencyCache::currentEntry(const QString &object,
                                                            qint64 objectTime)
{
    const Directory &directory = directoryOf(object);
    const auto found = directory.entries.constFind(object);
    if (found == directory.entries.constEnd())
        return nullptr;
    const quint64 now = disk().generation() + 1;
    if (found->checked != now) {
        // In a quiet directory only a compile can have rewritten the dependency file, and
        // that would have made the object newer than the cache file.
        const bool unchanged = directory.quiet && objectTime != unknownTime &&
                               objectTime <= directory.savedAt;
        if (!unchanged && found->dependencyFileTime != dependencyFileTime(object))
            return nullptr;
        found->checked = now;
    }
    return &*found;
}

QStringList DependencyCache::value(const QString &object, const QDateTime &objectTime)
{
    const Entry *found =
        currentEntry(object, objectTime.isValid() ? objectTime.toMSecsSinceEpoch() : unknownTime);
    if (!found)
        return QStringList();
    QStringList list;
    list.reserve(qsizetype(found->names.size()));
    for (const quint32 number : found->names)
        list.append(m_names.at(qsizetype(number)));
    return list;
}

bool DependencyCache::noneNewer(const QString &object, const QDateTime &objectTime)
{
    constexpr qint64 unknown = std::numeric_limits<qint64>::min();
    constexpr qint64 missing = unknown + 1;
    const Entry *found =
        objectTime.isValid() ? currentEntry(object, objectTime.toMSecsSinceEpoch()) : nullptr;
    // An empty list says nothing: the object then depends on its source.
    if (!found || found->names.empty())
        return false;
    DiskInterface &files = disk();
    if (m_timesGeneration != files.generation()) {
        m_times.assign(m_times.size(), unknown);
        m_timesGeneration = files.generation();
    }
    if (m_times.size() < size_t(m_names.size()))
        m_times.resize(size_t(m_names.size()), unknown);
    const qint64 limit = objectTime.toMSecsSinceEpoch();
    for (const quint32 name : found->names) {
        qint64 &time = m_times[name];
        if (time == unknown) {
            // A relative name would be resolved against the caller's directory.
            const QString &path = m_names.at(qsizetype(name));
            if (!path.startsWith(QLatin1Char('/')))
                return false;
            const QDateTime modified = files.modified(path);
            time = modified.isValid() ? modified.toMSecsSinceEpoch() : missing;
        }
        if (time == missing || time > limit)
            return false;
    }
    return true;
}

bool DependencyCache::holds(const Entry &entry, qint64 dependencyFileTime,
                            const QStringList &dependencies) const
{
    // A list handed out by `value` shares each name's text with the table, so it is
    // recognised without hashing a name.
    if (entry.dependencyFileTime != dependencyFileTime ||
        entry.names.size() != size_t(dependencies.size()))
        return false;
    for (qsizetype i = 0; i < dependencies.size(); ++i) {
        const QString &kept = m_names.at(qsizetype(entry.names[size_t(i)]));
        if (kept.constData() != dependencies.at(i).constData() && kept != dependencies.at(i))
            return false;
    }
    return true;
}

void DependencyCache::insert(const QString &object, const QStringList &dependencies)
{
    Directory &directory = directoryOf(object);
    const quint64 now = disk().generation() + 1;
    const auto found = directory.entries.constFind(object);
    const bool known = found != directory.entries.constEnd() && found->checked == now;
    const qint64 time = known ? found->dependencyFileTime : dependencyFileTime(object);
    if (found != directory.entries.constEnd() && holds(*found, time, dependencies))
        return;
    Entry entry;
    entry.dependencyFileTime = time;
    entry.checked = now;
    entry.names.reserve(size_t(dependencies.size()));
    for (const QString &name : dependencies)
        entry.names.push_back(intern(name));
    directory.entries.insert(object, std::move(entry));
    directory.changed = true;
}

void DependencyCache::remove(const QString &object)
{
    Directory &directory = directoryOf(object);
    if (directory.entries.remove(object))
        directory.changed = true;
}

void DependencyCache::clear()
{
    m_lastDirectory = nullptr;
    m_directories.clear();
}

void DependencyCache::save()
{
    for (auto it = m_directories.begin(); it != m_directories.end(); ++it) {
        // A directory that changed under an unchanged cache is written too once every entry
        // was found current, so that the next run finds it quiet.
        const auto &entries = it->entries;
        const auto checked = [](const Entry &entry) { return entry.checked != 0; };
        if (it->changed ||
            (it->loaded && !it->quiet && !it->written && !entries.isEmpty() &&
             std::all_of(entries.cbegin(), entries.cend(), checked)))
            write(it.key(), *it);
    }
}

void DependencyCache::write(const QString &name, Directory &directory)
{
    directory.changed = false;
    directory.written = true;
    // What this run does in the directory from now on is not reflected in the stamp.
    directory.quiet = false;
    const QString cacheFile = cacheFilePath(name);
    if (!disk().writeFile(cacheFile, serialize(name)))
        return;
    const qint64 stamp = disk().stamp(name);
    if (stamp >= 0)
        disk().setStamp(cacheFile, stamp);
}

QByteArray DependencyCache::serialize(const QString &directory) const
{
    // The file numbers its own names, in the order the entries first use them.
    const Directory empty;
    const auto found = m_directories.constFind(directory);
    const Directory &entries = found == m_directories.constEnd() ? empty : *found;
    QHash<QString, quint32> local;
    QStringList used;
    auto localNumber = [&](const QString &name) {
        auto known = local.constFind(name);
        if (known != local.constEnd())
            return *known;
        const quint32 number = quint32(used.size());
        local.insert(name, number);
        used.append(name);
        return number;
    };
    QByteArray body;
    putNumber(body, quint32(entries.entries.size()));
    for (auto it = entries.entries.constBegin(); it != entries.entries.constEnd(); ++it) {
        putNumber(body, localNumber(it.key()));
        putNumber(body, it->dependencyFileTime);
        putNumber(body, quint32(it->names.size()));
        for (const quint32 name : it->names)
            putNumber(body, localNumber(m_names.at(qsizetype(name))));
    }
    QByteArray out(magic, magicSize);
    putNumber(out, quint32(used.size()));
    for (const QString &name : used) {
        const QByteArray bytes = name.toUtf8();
        putNumber(out, quint32(bytes.size()));
        out.append(bytes);
    }
    return out + body;
}

bool DependencyCache::parse(const QString &directory, const QByteArray &bytes)
{
    if (!bytes.startsWith(QByteArray::fromRawData(magic, magicSize)))
        return false;
    Reader reader(bytes);
    reader.skip(magicSize);
    quint32 nameCount = 0;
    // Each name takes at least its four-byte length.
    if (!reader.number(nameCount) || !reader.fits(nameCount, 4))
        return false;
    QStringList names;
    names.reserve(qsizetype(nameCount));
    for (quint32 i = 0; i < nameCount; ++i) {
        quint32 size = 0;
        QString name;
        if (!reader.number(size) || !reader.text(size, name))
            return false;
        names.append(name);
    }
    quint32 entryCount = 0;
    // An entry takes at least 16 bytes: its object, time and count.
    if (!reader.number(entryCount) || !reader.fits(entryCount, 16))
        return false;
    // Only the names that lists use enter the shared table; objects are keys alone.
    constexpr quint32 notYet = std::numeric_limits<quint32>::max();
    std::vector<quint32> numbers(nameCount, notYet);
    QHash<QString, Entry> entries;
    entries.reserve(qsizetype(entryCount));
    for (quint32 i = 0; i < entryCount; ++i) {
        quint32 object = 0;
        quint32 count = 0;
        Entry entry;
        if (!reader.number(object) || object >= nameCount ||
            !reader.number(entry.dependencyFileTime) || !reader.number(count) ||
            !reader.fits(count, 4))
            return false;
        entry.names.reserve(count);
        for (quint32 j = 0; j < count; ++j) {
            quint32 name = 0;
            if (!reader.number(name) || name >= nameCount)
                return false;
            if (numbers[name] == notYet)
                numbers[name] = intern(names.at(qsizetype(name)));
            entry.names.push_back(numbers[name]);
        }
        entries.insert(names.at(qsizetype(object)), std::move(entry));
    }
    if (!reader.atEnd())
        return false;
    m_lastDirectory = nullptr;
    m_directories[directory].entries = std::move(entries);
    return true;
}
