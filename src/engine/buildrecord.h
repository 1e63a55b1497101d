#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

class DiskInterface;

/// What one output was made from, as "key=value" entries: `settings`, the values of the
/// settings of its command and the tools, which many outputs share (and share one list), and
/// `extras`, its own (its inputs).
struct BuildSignature
{
    QStringList settings;
    QStringList extras;
    bool operator==(const BuildSignature &other) const
    {
        return settings == other.settings && extras == other.extras;
    }
    bool operator!=(const BuildSignature &other) const { return !(*this == other); }
};

/// What the outputs of one project in one configuration were last made from, kept across
/// runs in a small file of the project's intermediate directory.
class BuildRecord
{
public:
    /// Reads the record at `path` for `project` in `configuration`. A missing file leaves the
    /// record absent; a file that is damaged, of another version or of another project leaves
    /// it present and empty, so that everything it should cover is rebuilt.
    void load(DiskInterface &disk, const QString &path, const QString &project,
              const QString &configuration);
    /// Whether a record file was there when the record was loaded.
    bool present() const { return m_present; }
    /// The signature kept for `output`, or null when there is none.
    const BuildSignature *find(const QString &output) const;
    /// Keeps `signature` for `output`.
    void set(const QString &output, const BuildSignature &signature);
    /// Forgets `output`: its last command failed or was interrupted. The record then counts
    /// as changed, even when it was absent, so that the file says so.
    void remove(const QString &output);
    /// Whether the record differs from the file it was loaded from.
    bool changed() const { return m_changed; }
    /// Writes the record to its file through a temporary file and a rename; false when it
    /// could not be written.
    bool save(DiskInterface &disk);
    /// The path the record was loaded from.
    const QString &path() const { return m_path; }

    /// The record as the text of its file.
    QByteArray serialize() const;
    /// Reads `text` into the entries; false when it is not a record of this project and
    /// configuration.
    bool parse(const QByteArray &text);

    /// The key of the first entry in which `now` differs from `before`; "*" when they differ
    /// only in their number of entries, a null string when they are equal. Settings lists
    /// compared once are not compared again.
    QString firstDifference(const BuildSignature &before, const BuildSignature &now) const;
    /// The same for two lists of entries.
    static QString firstDifference(const QStringList &before, const QStringList &now);

private:
    QString m_path;
    QString m_project;
    QString m_configuration;
    QHash<QString, BuildSignature> m_entries;
    /// Settings lists already compared, by the data of both, with the answer. The lists are
    /// held, so that their data can't be freed and its address used for another list.
    struct Comparison
    {
        QStringList before;
        QStringList now;
        QString difference;
    };
    mutable QHash<QPair<const void *, const void *>, Comparison> m_settingsDifferences;
    bool m_present = false;
    bool m_changed = false;
};

/// The file that keeps the record of `project` in `configuration`, in `intermediateDirectory`.
/// Named after both, so that projects and configurations sharing a directory keep theirs apart.
QString buildRecordPath(const QString &intermediateDirectory, const QString &project,
                        const QString &configuration);
