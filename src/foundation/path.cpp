#include "foundation/path.h"

#include <QFile>

void PathData::setText(const QString &text)
{
    osPolished = false;
    osPath = text;
    Path::removeRelativePaths(osPath);
    canonicalPolished = false;
    canonicalPath = osPath;
    fileInfo.reset();
    osPathBytes.clear();
    canonicalPathBytes.clear();
}

bool Path::isPathDelimiter(const QChar &c)
{
    return c == QLatin1Char('/');
}

QString Path::toOsPath(const QString &path)
{
    return path;
}

QString Path::toCanonicalPath(const QString &path)
{
    return path;
}

// The first pass removes "/." and "part/.." in one left-to-right scan. It is
// written as a scan that appends to `out` rather than as removals in place, so
// that long hostile names stay linear; `out` is always the text to the left of
// the search position, which is where every removal ends.
void Path::removeRelativePaths(QString &text)
{
    // Only a "." after a "/" or a second "/" changes anything; most names have neither.
    if (!text.contains(QLatin1String("/.")) && !text.contains(QLatin1String("//")))
        return;
    const QChar dot = QLatin1Char('.');
    const QChar slash = QLatin1Char('/');
    QString out;
    out.reserve(text.size());
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n;) {
        const QChar c = text.at(i);
        if (c != dot || out.isEmpty() || out.back() != slash) {
            out.append(c);
            ++i;
            continue;
        }
        const qsizetype d = out.size();
        if (i + 1 < n && text.at(i + 1) == dot) {
            // A parent reference: drop it with the part before it, if that part
            // has a "/" ahead of it.
            const qsizetype s = d - 3 < 0 ? -1 : out.lastIndexOf(slash, d - 3);
            if (s < 0) {
                out.append(c);
                ++i;
                continue;
            }
            out.truncate(s);
            i += 2;
        } else {
            out.chop(1);
            ++i;
        }
    }

    // The second pass shrinks every run of "/" to one.
    QString result;
    result.reserve(out.size());
    for (const QChar c : std::as_const(out)) {
        if (c == slash && !result.isEmpty() && result.back() == slash)
            continue;
        result.append(c);
    }
    if (text.isNull() && result.isEmpty())
        return;
    text = result;
}

// The file-name encoding, so that a name handed to the system directly names
// the same file as it does when it goes through QFile or QFileInfo.
QByteArray Path::toOsBytes(const QString &path)
{
    return QFile::encodeName(toOsPath(path));
}

bool Path::equal(const QString &a, const QString &b)
{
    return toCanonicalPath(a) == toCanonicalPath(b);
}

bool Path::relativeDirPath(const QString &base, const QString &target, QString &result)
{
    result = QString();
    if (target == QLatin1String("."))
        return true;
    const QStringList baseParts =
        QFileInfo(base).absoluteFilePath().split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QStringList targetParts =
        QFileInfo(target).absoluteFilePath().split(QLatin1Char('/'), Qt::SkipEmptyParts);

    qsizetype common = 0;
    while (common < baseParts.size() && common < targetParts.size() &&
           baseParts.at(common) == targetParts.at(common))
        ++common;
    if (common == 0)
        return false;

    // Empty but not null: the directories are the same, which is a relative name.
    QString text = QLatin1String("");
    for (qsizetype i = common; i < baseParts.size(); ++i)
        text += QLatin1String("../");
    for (qsizetype i = common; i < targetParts.size(); ++i)
        text += targetParts.at(i) + QLatin1Char('/');
    text.chop(1);
    result = text;
    return true;
}

bool Path::relativeFilePath(const QString &baseDir, const QString &file, QString &result)
{
    const QFileInfo info(file);
    QString directory;
    if (!relativeDirPath(baseDir, info.path(), directory))
        return false;
    result = directory.isEmpty() ? info.fileName() : directory + QLatin1Char('/') + info.fileName();
    return true;
}

QString Path::relativeFilePath(const QString &baseDir, const QString &file)
{
    QString result;
    if (relativeFilePath(baseDir, file, result))
        return result;
    return QFileInfo(file).absoluteFilePath();
}

namespace {

/// The body every empty path shares until it is given a name: most elements of a solution
/// never are. Its own reference keeps it alive.
PathData *emptyBody()
{
    static PathData *const body = new PathData;
    return body;
}

} // namespace

Path::Path() : d(emptyBody())
{
    ++d->refCount;
}

Path::Path(const char *text) : d(new PathData)
{
    d->setText(QFile::decodeName(text));
}

Path::Path(const std::string &text) : d(new PathData)
{
    d->setText(QFile::decodeName(QByteArray::fromStdString(text)));
}

Path::Path(const QString &text) : d(new PathData)
{
    d->setText(text);
}

Path::Path(const Path &other) : d(other.d)
{
    ++d->refCount;
}

Path &Path::operator=(const Path &other)
{
    if (other.d != d) {
        ++other.d->refCount;
        release();
        d = other.d;
    }
    return *this;
}

Path::~Path()
{
    release();
}

void Path::release()
{
    if (--d->refCount == 0)
        delete d;
}

void Path::detach()
{
    if (d->refCount <= 1)
        return;
    PathData *own = new PathData;
    own->osPath = d->osPath;
    own->canonicalPath = d->canonicalPath;
    own->osPolished = d->osPolished;
    own->canonicalPolished = d->canonicalPolished;
    release();
    d = own;
}

void Path::setPath(const char *text)
{
    setPath(QFile::decodeName(text));
}

void Path::setPath(const std::string &text)
{
    setPath(QFile::decodeName(QByteArray::fromStdString(text)));
}

void Path::setPath(const QString &text)
{
    detach();
    d->setText(text);
}

bool Path::isEmpty() const
{
    return d->osPath.isEmpty();
}

QString Path::osPathQString() const
{
    if (!d->osPolished) {
        d->osPath = toOsPath(d->osPath);
        d->osPolished = true;
    }
    return d->osPath;
}

QString Path::canonicalPathQString() const
{
    if (!d->canonicalPolished) {
        d->canonicalPath = toCanonicalPath(d->canonicalPath);
        d->canonicalPolished = true;
    }
    return d->canonicalPath;
}

const char *Path::osPath() const
{
    if (d->osPathBytes.isNull())
        d->osPathBytes = toOsBytes(osPathQString());
    return d->osPathBytes.constData();
}

const char *Path::canonicalPath() const
{
    if (d->canonicalPathBytes.isNull())
        d->canonicalPathBytes = toOsBytes(canonicalPathQString());
    return d->canonicalPathBytes.constData();
}

bool Path::operator==(const Path &other) const
{
    return d == other.d || canonicalPathQString() == other.canonicalPathQString();
}

bool Path::operator!=(const Path &other) const
{
    return !(*this == other);
}

bool Path::operator<(const Path &other) const
{
    return d != other.d && canonicalPathQString() < other.canonicalPathQString();
}

QFileInfo &Path::info() const
{
    if (!d->fileInfo)
        d->fileInfo = std::make_unique<QFileInfo>(osPathQString());
    return *d->fileInfo;
}

qint64 Path::size() const
{
    return info().size();
}

QDateTime Path::lastRead() const
{
    info().refresh();
    return info().lastRead();
}

QDateTime Path::lastModified() const
{
    info().refresh();
    return info().lastModified();
}

// The creation time where the file system keeps one, else the time of the last
// change of the file's status, as a Unix system reports it.
QDateTime Path::created() const
{
    info().refresh();
    const QDateTime birth = info().birthTime();
    return birth.isValid() ? birth : info().metadataChangeTime();
}

bool Path::readable() const
{
    return info().isReadable();
}

bool Path::writable() const
{
    return info().isWritable();
}

bool Path::exists() const
{
    return info().exists();
}

QDir Path::dir(bool absolute) const
{
    return absolute ? info().absoluteDir() : info().dir();
}

QString Path::dirPath(bool absolute) const
{
    return absolute ? info().absolutePath() : info().path();
}

QString Path::extension(bool complete) const
{
    return complete ? info().completeSuffix() : info().suffix();
}

QString Path::baseName() const
{
    return info().baseName();
}

QString Path::fileName() const
{
    return info().fileName();
}

QString Path::filePath() const
{
    return info().filePath();
}

QStringList Path::filePathQStringList(bool absolute) const
{
    const QString text = absolute ? info().absoluteFilePath() : info().filePath();
    return text.split(QLatin1Char('/'), Qt::SkipEmptyParts);
}

QStringList Path::dirPathQStringList(bool absolute) const
{
    return dirPath(absolute).split(QLatin1Char('/'), Qt::SkipEmptyParts);
}
