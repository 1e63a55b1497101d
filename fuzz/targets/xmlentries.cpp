#include "targets/fuzzentries.h"

#include "xml/xmldocument.h"
#include "xml/xmlpp2.h"

#include <QFile>

namespace {

/// A preprocessor that drops its messages: only what it does with the tree matters here.
class QuietPreprocessor : public XMLPP2
{
public:
    void error(const QString &) override {}
};

} // namespace

int fuzzXmlParser(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    // The first byte says whether text and comments are kept; the parser wants a NUL at the end.
    const bool keepText = data[0] & 1;
    const QByteArray text(reinterpret_cast<const char *>(data) + 1, qsizetype(size) - 1);
    XMLDocument document(keepText);
    if (!document.loadFromString(text.constData()))
        return 0;
    // What was read must survive the writer and be read again.
    const QString saved = fuzzScratchDir() + QStringLiteral("/saved.xml");
    if (document.save(QFile::encodeName(saved).constData(), 2)) {
        XMLDocument again(keepText);
        again.load(QFile::encodeName(saved).constData());
    }
    return 0;
}

int fuzzXmlPreprocessor(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!staysInScratch(input, "include"))
        return 0;
    static const QByteArray included = "<included><define name=\"fromInclude\" value=\"1\"/>"
                                       "<ifdef name=\"A\"><a/></ifdef><item/></included>\n";
    writeScratchFile(QStringLiteral("pp/inc.xml"),
                     reinterpret_cast<const uint8_t *>(included.constData()),
                     size_t(included.size()));
    const QString path = writeScratchFile(QStringLiteral("pp/input.xml"), data, size);
    QuietPreprocessor document;
    document.load(QFile::encodeName(path).constData(), "A=1;B=two;List=x\\;y", true);
    return 0;
}
