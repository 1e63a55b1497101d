#include "engine/buildrecord.h"

#include "engine/diskinterface.h"

#include <QCryptographicHash>

namespace {

const QByteArray header = QByteArrayLiteral("tidemake build record 1");
// A record is a few bytes per output; anything this large is not one of ours.
constexpr qint64 maximumRecordSize = 64 * 1024 * 1024;

// Tabs and line ends separate the fields and lines of the file.
QByteArray escaped(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    bytes.replace('\\', "\\\\").replace('\t', "\\t").replace('\n', "\\n").replace('\r', "\\r");
    return bytes;
}

QString unescaped(const QByteArray &bytes)
{
    QByteArray plain;
    plain.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        char c = bytes.at(i);
        if (c == '\\' && i + 1 < bytes.size()) {
            const char next = bytes.at(++i);
            c = next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : next;
        }
        plain.append(c);
    }
    return QString::fromUtf8(plain);
}

QString keyOf(const QString &entry)
{
    return entry.left(entry.indexOf(QLatin1Char('=')));
}

} // namespace

void BuildRecord::load(DiskInterface &disk, const QString &path, const QString &project,
                       const QString &configuration)
{
    m_path = path;
    m_project = project;
    m_configuration = configuration;
    m_entries.clear();
    m_changed = false;
    QByteArray text;
    m_present = disk.readFile(path, maximumRecordSize, text);
    if (!m_present) {
        // There, but not readable as a record: it can vouch for nothing.
        m_present = disk.modified(path).isValid();
        return;
    }
    if (!parse(text))
        m_entries.clear();
}

const QStringList *BuildRecord::find(const QString &output) const
{
    const auto found = m_entries.constFind(output);
    return found == m_entries.cend() ? nullptr : &*found;
}

void BuildRecord::set(const QString &output, const QStringList &signature)
{
    auto found = m_entries.find(output);
    if (found != m_entries.end() && *found == signature)
        return;
    m_entries.insert(output, signature);
    m_changed = true;
}

void BuildRecord::remove(const QString &output)
{
    if (m_entries.remove(output))
        m_changed = true;
}

bool BuildRecord::save(DiskInterface &disk)
{
    if (!disk.writeFile(m_path, serialize()))
        return false;
    m_present = true;
    m_changed = false;
    return true;
}

QByteArray BuildRecord::serialize() const
{
    QByteArray text = header + '\t' + escaped(m_project) + '\t' + escaped(m_configuration) + '\n';
    // In a fixed order, so that the same record is always the same file.
    QStringList outputs = m_entries.keys();
    outputs.sort();
    for (const QString &output : outputs) {
        text += escaped(output);
        for (const QString &entry : m_entries.value(output))
            text += '\t' + escaped(entry);
        text += '\n';
    }
    return text;
}

bool BuildRecord::parse(const QByteArray &text)
{
    m_entries.clear();
    if (!text.endsWith('\n'))
        return false; // cut off while it was written
    const QList<QByteArray> lines = text.split('\n');
    const QList<QByteArray> first = lines.value(0).split('\t');
    if (first.size() != 3 || first.at(0) != header || unescaped(first.at(1)) != m_project ||
        unescaped(first.at(2)) != m_configuration)
        return false;
    for (qsizetype i = 1; i + 1 < lines.size(); ++i) {
        const QList<QByteArray> fields = lines.at(i).split('\t');
        QStringList signature;
        signature.reserve(fields.size() - 1);
        for (qsizetype f = 1; f < fields.size(); ++f)
            signature.append(unescaped(fields.at(f)));
        m_entries.insert(unescaped(fields.at(0)), signature);
    }
    return true;
}

QString BuildRecord::firstDifference(const QStringList &before, const QStringList &now)
{
    const qsizetype common = qMin(before.size(), now.size());
    for (qsizetype i = 0; i < common; ++i)
        if (before.at(i) != now.at(i))
            return keyOf(now.at(i));
    return before.size() == now.size() ? QString() : QStringLiteral("*");
}

QString buildRecordPath(const QString &intermediateDirectory, const QString &project,
                        const QString &configuration)
{
    const QByteArray key = project.toUtf8() + '\0' + configuration.toUtf8();
    const QByteArray hash =
        QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex().left(16);
    return intermediateDirectory + QStringLiteral("/.tidemake-") + QString::fromLatin1(hash) +
           QStringLiteral(".record");
}
