#pragma once

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <memory>
#include <string>

/// The shared body of `Path` values; one body serves every copy until one changes.
struct PathData
{
    int refCount = 1;
    QString osPath;
    QString canonicalPath;
    bool osPolished = false;
    bool canonicalPolished = false;
    std::unique_ptr<QFileInfo> fileInfo;
    /// Byte forms handed out by `Path::osPath()` and `Path::canonicalPath()`; they
    /// must live as long as the body, so they are kept here.
    QByteArray osPathBytes;
    QByteArray canonicalPathBytes;

    /// Stores `text` as the name, without relative parts, and drops derived state.
    void setText(const QString &text);
};

/// A file or directory name with its OS form (handed to the system) and its
/// canonical form (what names are compared by); copies share one body.
class Path
{
public:
    /// True for the characters that separate the parts of a name.
    static bool isPathDelimiter(const QChar &c);
    /// The form of `path` handed to the operating system.
    static QString toOsPath(const QString &path);
    /// The form of `path` that names are compared by.
    static QString toCanonicalPath(const QString &path);
    /// The bytes that name `path` in calls to the operating system.
    static QByteArray toOsBytes(const QString &path);
    /// Removes "/." parts and "dir/.." pairs, then doubled "/", in place.
    static void removeRelativePaths(QString &text);
    /// True if `a` and `b` have the same canonical form (case counts).
    static bool equal(const QString &a, const QString &b);
    /// The relative name of directory `target` seen from directory `base`; false
    /// (and a null `result`) if they share nothing but the root.
    static bool relativeDirPath(const QString &base, const QString &target, QString &result);
    /// The relative name of `file` seen from directory `baseDir`; false if none.
    static bool relativeFilePath(const QString &baseDir, const QString &file, QString &result);
    /// The relative name of `file` from `baseDir`, or its absolute name if none.
    static QString relativeFilePath(const QString &baseDir, const QString &file);

    /// An empty path.
    Path();
    Path(const char *text);
    Path(const std::string &text);
    Path(const QString &text);
    Path(const Path &other);
    Path &operator=(const Path &other);
    ~Path();

    /// Gives this value a body of its own if the body is shared.
    void detach();
    /// Replaces the name, leaving any copies as they were.
    void setPath(const char *text);
    void setPath(const std::string &text);
    void setPath(const QString &text);

    /// True if the name has no characters.
    bool isEmpty() const;
    /// The OS form as bytes in the file-name encoding; valid while this body lives.
    const char *osPath() const;
    /// The canonical form as bytes; valid while this body lives.
    const char *canonicalPath() const;
    /// The OS form of the name.
    QString osPathQString() const;
    /// The canonical form of the name.
    QString canonicalPathQString() const;

    bool operator==(const Path &other) const;
    bool operator!=(const Path &other) const;
    bool operator<(const Path &other) const;

    /// Queries on the named file, answered by a lazily made `QFileInfo`. The time
    /// queries look at the disk again on every call.
    qint64 size() const;
    QDateTime lastRead() const;
    QDateTime lastModified() const;
    QDateTime created() const;
    bool readable() const;
    bool writable() const;
    bool exists() const;
    /// The directory holding the file, absolute if `absolute` is set.
    QDir dir(bool absolute = false) const;
    /// The name of the directory holding the file, absolute if `absolute` is set.
    QString dirPath(bool absolute = false) const;
    /// The text after the last "." of the file name, or after the first if `complete`.
    QString extension(bool complete = true) const;
    /// The file name up to its first ".".
    QString baseName() const;
    QString fileName() const;
    QString filePath() const;
    /// The parts of the file's name (absolute or as given), without empty parts.
    QStringList filePathQStringList(bool absolute) const;
    /// The parts of the name of the directory holding the file, without empty parts.
    QStringList dirPathQStringList(bool absolute) const;

private:
    QFileInfo &info() const;
    void release();

    PathData *d;
};
