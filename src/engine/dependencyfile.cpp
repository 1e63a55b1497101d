#include "engine/dependencyfile.h"

#include "engine/buildsystem.h"
#include "engine/diskinterface.h"

namespace {

// Dependency files list a few hundred names at most; one far larger than this is not a
// compiler's, and reading it whole could exhaust memory.
constexpr qint64 maximumDependencyFileSize = 64 * 1024 * 1024;

void appendName(QString &name, const QString &prefix, QStringList &names)
{
    if (name.isEmpty())
        return;
    names.append(name.startsWith(QLatin1Char('/')) ? name : prefix + name);
    name.clear();
}

} // namespace

QStringList parseDependencyFile(const QByteArray &contents, const QString &projectDirectory)
{
    QStringList names;
    const qsizetype colon = contents.indexOf(':');
    if (colon < 0)
        return names;
    const QString text =
        QString::fromLocal8Bit(contents.constData() + colon + 1, contents.size() - colon - 1);
    const QString prefix = projectDirectory + QLatin1Char('/');
    QString name;
    const qsizetype length = text.size();
    for (qsizetype i = 0; i < length; ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char(' ')) {
            appendName(name, prefix, names);
        } else if (c == QLatin1Char('\n')) {
            // A line end alone neither ends a name nor joins it.
        } else if (c == QLatin1Char('\\') && i + 1 < length) {
            const QChar next = text.at(i + 1);
            if (next == QLatin1Char(' ')) {
                name += next;
                ++i;
            } else if (next == QLatin1Char('\n')) {
                ++i;
            } else {
                // Kept as written; the next character is read on its own.
                name += c;
            }
        } else {
            name += c;
        }
    }
    appendName(name, prefix, names);
    return names;
}

QStringList readDependencyFile(const QString &path, const QString &projectDirectory,
                               DiskInterface *disk)
{
    RealDiskInterface realDisk;
    if (!disk)
        disk = buildSystem ? &buildSystem->disk() : &realDisk;
    QByteArray contents;
    if (!disk->readFile(path, maximumDependencyFileSize, contents))
        return QStringList();
    return parseDependencyFile(contents, projectDirectory);
}
