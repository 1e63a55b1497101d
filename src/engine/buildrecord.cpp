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

QString unescaped(QByteArrayView bytes)
{
    if (!bytes.contains('\\'))
        return QString::fromUtf8(bytes);
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
    m_settingsDifferences.clear();
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

const BuildSignature *BuildRecord::find(const QString &output) const
{
    const auto found = m_entries.constFind(output);
    return found == m_entries.cend() ? nullptr : &*found;
}

void BuildRecord::set(const QString &output, const BuildSignature &signature)
{
    auto found = m_entries.find(output);
    if (found != m_entries.end() && *found == signature)
        return;
    m_entries.insert(output, signature);
    m_changed = true;
}

void BuildRecord::remove(const QString &output)
{
    // Without a record file, one must now be written: a failed first build may have left an
    // output behind that its time alone would take as current.
    if (m_entries.remove(output) || !m_present)
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

// The file: a header line, then a line "s" and the entries of each distinct settings list,
// numbered from 0 in their order, then a line "o", the output, the number of its settings
// list and its own entries for each output.
QByteArray BuildRecord::serialize() const
{
    QByteArray text = header + '\t' + escaped(m_project) + '\t' + escaped(m_configuration) + '\n';
    // In a fixed order, so that the same record is always the same file.
    QStringList outputs = m_entries.keys();
    outputs.sort();
    QHash<QStringList, int> numbers;
    QByteArray outputLines;
    for (const QString &output : outputs) {
        const BuildSignature &signature = m_entries[output];
        auto number = numbers.constFind(signature.settings);
        if (number == numbers.cend()) {
            number = numbers.insert(signature.settings, int(numbers.size()));
            text += 's';
            for (const QString &entry : signature.settings)
                text += '\t' + escaped(entry);
            text += '\n';
        }
        outputLines += "o\t" + escaped(output) + '\t' + QByteArray::number(*number);
        for (const QString &entry : signature.extras)
            outputLines += '\t' + escaped(entry);
        outputLines += '\n';
    }
    return text + outputLines;
}

bool BuildRecord::parse(const QByteArray &text)
{
    m_entries.clear();
    if (!text.endsWith('\n'))
        return false; // cut off while it was written
    // Read in place, field by field: a build reads every record of the solution.
    qsizetype lineStart = 0;
    auto nextLine = [&](QList<QByteArrayView> &fields) {
        const qsizetype end = text.indexOf('\n', lineStart);
        fields.clear();
        qsizetype fieldStart = lineStart;
        for (;;) {
            const qsizetype tab = text.indexOf('\t', fieldStart);
            if (tab < 0 || tab > end) {
                fields.append(QByteArrayView(text.constData() + fieldStart, end - fieldStart));
                break;
            }
            fields.append(QByteArrayView(text.constData() + fieldStart, tab - fieldStart));
            fieldStart = tab + 1;
        }
        lineStart = end + 1;
    };
    QList<QByteArrayView> fields;
    nextLine(fields);
    if (fields.size() != 3 || fields.at(0) != header || unescaped(fields.at(1)) != m_project ||
        unescaped(fields.at(2)) != m_configuration)
        return false;
    QList<QStringList> settings;
    // The settings lists of a record differ in a few entries: each distinct entry is made once.
    QHash<QByteArrayView, QString> entryTexts;
    while (lineStart < text.size()) {
        nextLine(fields);
        if (fields.at(0) == "s") {
            QStringList entries;
            entries.reserve(fields.size() - 1);
            for (qsizetype f = 1; f < fields.size(); ++f) {
                auto known = entryTexts.constFind(fields.at(f));
                if (known == entryTexts.cend())
                    known = entryTexts.insert(fields.at(f), unescaped(fields.at(f)));
                entries.append(*known);
            }
            settings.append(entries);
            continue;
        }
        bool ok = false;
        const int number = fields.size() < 3 ? -1 : fields.at(2).toInt(&ok);
        if (fields.at(0) != "o" || !ok || number < 0 || number >= settings.size())
            return false;
        BuildSignature signature{settings.at(number), {}};
        signature.extras.reserve(fields.size() - 3);
        for (qsizetype f = 3; f < fields.size(); ++f)
            signature.extras.append(unescaped(fields.at(f)));
        m_entries.insert(unescaped(fields.at(1)), signature);
    }
    return true;
}

QString BuildRecord::firstDifference(const BuildSignature &before, const BuildSignature &now) const
{
    const QPair<const void *, const void *> key(before.settings.constData(),
                                                now.settings.constData());
    auto known = m_settingsDifferences.constFind(key);
    if (known == m_settingsDifferences.cend())
        known = m_settingsDifferences.insert(
            key, {before.settings, now.settings, firstDifference(before.settings, now.settings)});
    if (!known->difference.isNull())
        return known->difference;
    return firstDifference(before.extras, now.extras);
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
