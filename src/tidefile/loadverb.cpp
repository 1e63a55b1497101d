#include "tidefile/loadverb.h"

#include "foundation/hexception.h"
#include "foundation/numberhelpers.h"
#include "loadfile/loadfilefactory.h"
#include "tidefile/verb.h"

#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

const char loadUsage[] = "tidefile load [-type TYPE] [-address ADDRESS] FILE\n"
                         "tidefile load [-type TYPE] [-address ADDRESS] [-fill BYTE] -o OUT FILE";

namespace {

/// The command line of one `tidefile load`; an option not given is null.
struct LoadRequest
{
    QString type;
    QString address;
    QString fill;
    QString output;
    QString file;
};

LoadRequest parseArguments(const QStringList &arguments)
{
    LoadRequest request;
    request.file = readVerbArguments(arguments, {{"-type", &request.type},
                                                 {"-address", &request.address},
                                                 {"-fill", &request.fill},
                                                 {"-o", &request.output}});
    if (!request.fill.isNull() && request.output.isNull())
        throw UsageError{QStringLiteral("-fill goes with -o")};
    return request;
}

/// The value of `option`'s `text`; a `UsageError` unless it is a number of at most `max` in
/// one of the system's forms. Their reading takes any character for a digit and wraps in 64
/// bits, so the form is checked first, with too few digits to wrap.
unsigned long long numberOption(const char *option, const QString &text, unsigned long long max)
{
    static const QRegularExpression form(
        QStringLiteral("^(0x0*[0-9a-fA-F]{1,16}|0b0*[01]{1,64}|0[0-7]{0,21}|[1-9][0-9]{0,18})$"));
    const unsigned long long value = fromStringTouint64(text.toLatin1().constData());
    if (!form.match(text).hasMatch() || value > max)
        throw UsageError{QStringLiteral("%1 takes a number up to 0x%2, not %3")
                             .arg(QLatin1String(option), QString::number(max, 16), text)};
    return value;
}

/// The factory's name of the type `type`; a `UsageError` if there is no such type.
const char *knownType(const QString &type)
{
    const LoadFileTypeInfo *types = LoadFileFactory::types();
    QStringList names;
    for (int i = 0; i < LoadFileFactory::typeCount; ++i) {
        if (type == QLatin1String(types[i].type))
            return types[i].type;
        names << QLatin1String(types[i].type);
    }
    throw UsageError{QStringLiteral("unknown type %1; the types are %2")
                         .arg(type, names.join(QStringLiteral(", ")))};
}

void printSummary(const char *type, const LoadFileInterface &loadFile,
                  const LoadFileSections &sections)
{
    std::printf("type\t%s\n", type);
    if (loadFile.hasEntryPoint())
        std::printf("entry\t0x%08lx\n", loadFile.entryPoint());
    for (const auto &section : sections.list())
        std::printf("section\t0x%08x\t0x%08x\n", section->address(), section->length());
    std::printf("total\t0x%08llx\n", sections.length());
}

/// Writes the bytes of `sections` to `output`, which appears only when they all are.
bool writeImage(const LoadFileSections &sections, const QString &output)
{
    QSaveFile file(output);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (const auto &section : sections.list()) {
        const auto *bytes = reinterpret_cast<const char *>(section->data());
        if (section->length() != 0 && file.write(bytes, section->length()) != section->length())
            return false;
    }
    return file.commit();
}

} // namespace

int runLoad(const QStringList &arguments)
{
    const LoadRequest request = parseArguments(arguments);
    const unsigned long address =
        request.address.isNull() ? 0 : numberOption("-address", request.address, 0xFFFFFFFF);
    const auto fill = static_cast<unsigned char>(
        request.fill.isNull() ? 0xFF : numberOption("-fill", request.fill, 0xFF));

    LoadFileFactory *factory = LoadFileFactory::instance();
    const QByteArray fileName = QFile::encodeName(request.file);
    const char *type = nullptr;
    if (request.type.isNull()) {
        type = factory->detect(fileName.constData());
        if (!type) {
            std::fprintf(stderr, "tidefile: cannot tell the type of %s; give -type\n",
                         fileName.constData());
            return 1;
        }
    } else {
        type = knownType(request.type);
    }
    if (!request.address.isNull() && std::strcmp(type, "bin") != 0)
        throw UsageError{QStringLiteral("-address is for binary files only")};

    try {
        const std::unique_ptr<LoadFileInterface> loadFile =
            factory->create(fileName.constData(), type);
        if (!loadFile->hasLoadAddress())
            loadFile->setLoadAddress(address);
        const LoadFileSections *sections = loadFile->loadFileSections();
        if (request.output.isNull()) {
            printSummary(type, *loadFile, *sections);
            return 0;
        }
        loadFile->makeContiguous(fill);
        if (!writeImage(*loadFile->loadFileSections(), request.output)) {
            std::fprintf(stderr, "tidefile: cannot write %s\n",
                         QFile::encodeName(request.output).constData());
            return 1;
        }
        return 0;
    } catch (const HException &error) {
        std::fprintf(stderr, "tidefile: %s: %s\n", fileName.constData(), error.what());
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "tidefile: %s: out of memory\n", fileName.constData());
    }
    return 1;
}
