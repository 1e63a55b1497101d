#include "targets/fuzzentries.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

FuzzEntry fuzzEntry(const QString &name)
{
    static const struct
    {
        const char *name;
        FuzzEntry entry;
    } entries[] = {{"xmlparser", fuzzXmlParser},
                   {"xmlpreprocessor", fuzzXmlPreprocessor},
                   {"argline", fuzzArgLine},
                   {"indirectfile", fuzzIndirectFile},
                   {"dependencyfile", fuzzDependencyFile},
                   {"macros", fuzzMacros},
                   {"linkerscript", fuzzLinkerScript},
                   {"solution", fuzzSolution},
                   {"projecttemplates", fuzzProjectTemplates},
                   {"archive", fuzzArchive},
                   {"package", fuzzPackage},
                   {"loadfile", fuzzLoadFile}};
    for (const auto &entry : entries) {
        if (name == QLatin1String(entry.name))
            return entry.entry;
    }
    return nullptr;
}

QString fuzzScratchDir()
{
    // Never destroyed: the fuzzer ends the process with exit(), after static destructors
    // that could still be needed by a last input.
    static QTemporaryDir *dir = new QTemporaryDir(QDir::tempPath() + "/tidemake-fuzz-XXXXXX");
    return dir->path();
}

QString writeScratchFile(const QString &relative, const uint8_t *data, size_t size)
{
    const QString path = fuzzScratchDir() + QLatin1Char('/') + relative;
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    return path;
}

bool confineIndirectNames(QByteArray &text)
{
    if (!text.contains('@'))
        return true;
    // Quotes could join a name to text that climbs out; plain names are enough to reach
    // nested and self-naming files.
    if (text.contains('"') || text.contains('\''))
        return false;
    const QByteArray scratch = QFile::encodeName(fuzzScratchDir()) + '/';
    QByteArray confined;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        confined += c;
        if (c != '@')
            continue;
        qsizetype end = i + 1;
        while (end < text.size() && (QChar::isLetterOrNumber(uchar(text.at(end))) ||
                                     text.at(end) == '_' || text.at(end) == '-'))
            ++end;
        // Only a word that is "@" and such a name, in the directory of the scratch files.
        const bool wordStart = i == 0 || QByteArrayView(" \t\r\n").contains(text.at(i - 1));
        const bool wordEnd = end == text.size() || QByteArrayView(" \t\r\n").contains(text.at(end));
        if (!wordStart || !wordEnd)
            return false;
        confined += scratch;
    }
    text = confined;
    return true;
}

bool staysInScratch(const QByteArray &input, const char *keyword)
{
    if (!input.toLower().contains(keyword))
        return true;
    // Names are relative to the file that holds them, so only a name that starts with a slash
    // (directly or through a macro that expands to nothing), climbs out or is written as an
    // entity can leave the directory; of those, only the host's devices and process files
    // could hang or flood a read.
    static const char *const leaving[] = {"..", "&",    "\"/",   "'/",  "=/",
                                          ";/", "/dev", "/proc", "/sys"};
    for (const char *pattern : leaving) {
        if (input.contains(pattern))
            return false;
    }
    return true;
}

int runFuzzRegressions(const QString &name)
{
    const FuzzEntry entry = fuzzEntry(name);
    const QDir dir(QStringLiteral(TIDEMAKE_FUZZ_DIR "/regressions/") + name);
    int count = 0;
    for (const QString &file : dir.entryList(QDir::Files, QDir::Name)) {
        QFile input(dir.filePath(file));
        if (!entry || !input.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = input.readAll();
        entry(reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size()));
        ++count;
    }
    return count;
}
