#include "targets/fuzzentries.h"

#include "frontend/argparse.h"
#include "frontend/hreporter.h"

#include <QFile>

#include <sstream>

namespace {

/// A parser with an option of every kind, keeping what it is given where nobody looks.
class TableParser : public ArgParse
{
public:
    TableParser() : ArgParse(&quietReporter)
    {
        addFlag("-verbose", &verbose);
        addHandler("-config", 1, static_cast<OptionHandler>(&TableParser::take));
        addHandler("-D", 2, static_cast<OptionHandler>(&TableParser::take));
        addHandler("-j", 3, static_cast<OptionHandler>(&TableParser::take));
    }
    void onArgument(const char *argument) override { taken.append(argument); }
    void take(const char *option, const char *value)
    {
        taken.append(option);
        taken.append(value ? value : "");
    }

    std::ostringstream messages;
    HReporter quietReporter{"tidemake", &messages};
    bool verbose = false;
    QByteArray taken;
};

} // namespace

int fuzzArgLine(const uint8_t *data, size_t size)
{
    QByteArray line(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!confineIndirectNames(line))
        return 0;
    TableParser parser;
    char *argv[ArgParse::maxWords];
    parser.argifyLine(nullptr, 0, line.constData(), argv);
    parser.parse(line.constData());
    return 0;
}

int fuzzIndirectFile(const uint8_t *data, size_t size)
{
    // The file may name itself, or "other", which holds the same words.
    QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!confineIndirectNames(text))
        return 0;
    const auto *bytes = reinterpret_cast<const uint8_t *>(text.constData());
    writeScratchFile(QStringLiteral("other"), bytes, size_t(text.size()));
    const QString path = writeScratchFile(QStringLiteral("arguments"), bytes, size_t(text.size()));
    TableParser parser;
    parser.parseArgsFromIndirectFile(QFile::encodeName(path).constData());
    return 0;
}
