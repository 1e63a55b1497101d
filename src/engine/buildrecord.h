#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

class DiskInterface;

/// What the outputs of one project in one configuration were last made from, kept across
/// runs in a small file of the project's intermediate directory. An output's signature is a
/// list of "key=value" entries: the settings its command is made from, its input list, the
/// tool chain root.
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
    const QStringList *find(const QString &output) const;
    /// Keeps `signature` for `output`.
    void set(const QString &output, const QStringList &signature);
    /// Forgets `output`: its last command failed or was interrupted.
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
    /// only in their number of entries, a null string when they are equal.
    static QString firstDifference(const QStringList &before, const QStringList &now);

private:
    QString m_path;
    QString m_project;
    QString m_configuration;
    QHash<QString, QStringList> m_entries;
    bool m_present = false;
    bool m_changed = false;
};

/// The file that keeps the record of `project` in `configuration`, in `intermediateDirectory`.
/// Named after both, so that projects and configurations sharing a directory keep theirs apart.
QString buildRecordPath(const QString &intermediateDirectory, const QString &project,
                        const QString &configuration);
