#include "memorymap/memorymap.h"

#include "macros/macrosystem.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

/// What a visit tells the walk to do next.
enum class Next { Descend, SkipChildren, Stop };

/// Visits `from` and the elements below it in document order, each before its children, with
/// its depth below `from`. A child that isn't a `MemoryMapElement`, such as a comment, ends
/// the walk of its parent's remaining children. No recursion, so any depth is safe.
template <typename Visit> void walkElements(const MemoryMapElement *from, Visit visit)
{
    if (!from)
        return;
    auto *start = const_cast<MemoryMapElement *>(from);
    Next next = visit(start, 0);
    if (next != Next::Descend)
        return;
    std::vector<XMLNode *> resume; // per open level: the sibling to go on with
    resume.push_back(nullptr);
    XMLNode *node = start->firstChild;
    for (;;) {
        auto *element = dynamic_cast<MemoryMapElement *>(node);
        if (!element) {
            node = resume.back();
            resume.pop_back();
            if (resume.empty())
                return;
            continue;
        }
        next = visit(element, int(resume.size()));
        if (next == Next::Stop)
            return;
        if (next == Next::Descend && element->firstChild) {
            resume.push_back(element->nextSibling);
            node = element->firstChild;
        } else {
            node = element->nextSibling;
        }
    }
}

QString expandedPath(const QString &file)
{
    return macroSystem.replaceMacros(macroSystem.globalMacros(true), file);
}

bool isImport(const MemoryMapElement *element)
{
    return std::strcmp(element->tagName(), "Import") == 0;
}

} // namespace

MemoryMap::MemoryMap() = default;

MemoryMap::~MemoryMap() = default;

XMLElement *MemoryMap::mkXMLElement(const char *tagName)
{
    return new MemoryMapElement(tagName, readOnly);
}

void MemoryMap::warning(const QString &message)
{
    qWarning("%s", qUtf8Printable(message));
}

void MemoryMap::error(const QString &message)
{
    warning(message);
}

bool MemoryMap::load(const QString &file, const QString &preprocessorArgument, bool usePreprocessor)
{
    this->preprocessorArgument = preprocessorArgument;
    this->usePreprocessor = usePreprocessor;
    QString failure;
    MemoryMapElement *newRoot = load1(expandedPath(file), &failure);
    if (!newRoot) {
        warning(failure);
        return false;
    }
    root = newRoot;
    documentType = docType ? QString::fromLatin1(docType) : QString();
    fileName = file;
    processImports();
    fixupAddresses(newRoot, 0);
    return true;
}

MemoryMapElement *MemoryMap::load1(const QString &path, QString *failure)
{
    // A directory or device would be read as a file of unknown size; only files are maps.
    if (!QFileInfo(path).isFile()) {
        if (failure)
            *failure = path + QStringLiteral(": no such file");
        return nullptr;
    }
    XMLNode *previousRoot = root;
    const bool previousReadOnly = readOnly;
    readOnly = !QFileInfo(path).isWritable();

    const QByteArray osPath = QFile::encodeName(path);
    const bool parsed =
        usePreprocessor
            ? XMLPP2::load(osPath.constData(), preprocessorArgument.toLatin1().constData(), true)
            : XMLDocument::load(osPath.constData());
    auto *newRoot = parsed ? dynamic_cast<MemoryMapElement *>(root) : nullptr;
    if (newRoot)
        newRoot->lastModified = QFileInfo(path).lastModified();
    else if (failure)
        *failure = parsed ? QString(path + QStringLiteral(": no element"))
                          : QString(path + QStringLiteral(":") + QString::number(errorLine) +
                                    QStringLiteral(": ") + QString::fromLocal8Bit(errorMessage()));

    root = previousRoot;
    readOnly = previousReadOnly;
    return newRoot;
}

bool MemoryMap::loadFromString(const QString &text)
{
    if (!XMLDocument::loadFromString(text.toLatin1().constData()) || !getRoot())
        return false;
    documentType = docType ? QString::fromLatin1(docType) : QString();
    fileName.clear();
    processImports();
    fixupAddresses(getRoot(), 0);
    return true;
}

QString MemoryMap::importPath(const MemoryMapElement *importElement) const
{
    const QString file = expandedPath(importElement->attributeText("filename"));
    if (file.isEmpty() || QDir::isAbsolutePath(file) || fileName.isEmpty())
        return file;
    return QFileInfo(expandedPath(fileName)).dir().filePath(file);
}

void MemoryMap::processImports()
{
    MemoryMapElement *top = getRoot();
    if (!top)
        return;
    // An imported file's header must not replace this file's.
    const char *ownDocType = docType;
    const char *ownVersion = version;
    const char *ownEncoding = encoding;
    m_imports.clear();
    for (XMLNode *node = top->firstChild; node;) {
        auto *element = dynamic_cast<MemoryMapElement *>(node);
        if (!element)
            break;
        node = element->nextSibling;
        if (!isImport(element))
            continue;
        if (MemoryMapElement *imported = load1(importPath(element), nullptr)) {
            top->replaceChild(element, imported);
            imported->importElement = element;
            m_imports.push_back({element, imported});
        }
    }
    docType = ownDocType;
    version = ownVersion;
    encoding = ownEncoding;
}

void MemoryMap::swapImports(bool importsIn)
{
    MemoryMapElement *top = getRoot();
    for (const auto &[importElement, imported] : m_imports) {
        MemoryMapElement *out = importsIn ? importElement : imported;
        MemoryMapElement *in = importsIn ? imported : importElement;
        if (!top || out->parent != top)
            continue;
        top->replaceChild(out, in);
        in->importElement = out;
        out->importElement = nullptr;
    }
}

bool MemoryMap::store(const QString &file)
{
    fileName = file;
    swapImports(false);
    const QString path = expandedPath(file);
    {
        CurrentPoolScope scope(&pool);
        const QByteArray type = documentType.toLatin1();
        docType = documentType.isNull()
                      ? nullptr
                      : XMLNode::mkString(type.constData(), unsigned(type.size()));
    }
    const bool saved = save(QFile::encodeName(path).constData(), 2);
    if (MemoryMapElement *top = getRoot())
        top->lastModified = QFileInfo(path).lastModified();
    swapImports(true);
    return saved;
}

MemoryMapElement *MemoryMap::getRoot() const
{
    return dynamic_cast<MemoryMapElement *>(root);
}

bool MemoryMap::isReadOnly(const MemoryMapElement *element) const
{
    return element && element->readOnly;
}

MemoryMap::ElementList MemoryMap::getAllElements() const
{
    ElementList list;
    getElements(getRoot(), list);
    return list;
}

void MemoryMap::getElements(const MemoryMapElement *from, ElementList &out) const
{
    walkElements(from, [&out](MemoryMapElement *element, int) {
        out.append(element);
        return Next::Descend;
    });
}

void MemoryMap::getElementsOfType(const MemoryMapElement *from, MemoryMapElement::ElementType type,
                                  bool prepend, ElementList &out) const
{
    ElementList found;
    walkElements(from, [&found, type](MemoryMapElement *element, int) {
        if (element->elementType != type)
            return Next::Descend;
        found.append(element);
        return Next::SkipChildren;
    });
    if (!prepend) {
        out += found;
        return;
    }
    std::reverse(found.begin(), found.end());
    out = found + out;
}

MemoryMap::ElementList MemoryMap::getSegments(bool prepend) const
{
    ElementList list;
    getElementsOfType(getRoot(), MemoryMapElement::MemorySegment, prepend, list);
    return list;
}

MemoryMap::ElementList MemoryMap::getSections(const MemoryMapElement *segment, bool inOrder) const
{
    ElementList list;
    getElementsOfType(segment, MemoryMapElement::ProgramSection, !inOrder, list);
    return list;
}

MemoryMapElement *MemoryMap::getNamedElementOfType(const MemoryMapElement *from,
                                                   const QString &name,
                                                   MemoryMapElement::ElementType type) const
{
    const QByteArray wanted = name.toLatin1();
    MemoryMapElement *found = nullptr;
    walkElements(from, [&](MemoryMapElement *element, int) {
        const char *elementName = element->attribute("name");
        if (element->elementType == type && elementName &&
            std::strcmp(elementName, wanted.constData()) == 0) {
            found = element;
            return Next::Stop;
        }
        return Next::Descend;
    });
    return found;
}

MemoryMapElement *MemoryMap::getSegment(const QString &name) const
{
    return getNamedElementOfType(getRoot(), name, MemoryMapElement::MemorySegment);
}

bool MemoryMap::upToDate() const
{
    const MemoryMapElement *top = getRoot();
    if (!top || QFileInfo(expandedPath(fileName)).lastModified() != top->lastModified)
        return false;
    for (XMLNode *node = top->firstChild; node; node = node->nextSibling) {
        const auto *child = dynamic_cast<const MemoryMapElement *>(node);
        if (!child)
            break;
        if (child->importElement &&
            QFileInfo(importPath(child->importElement)).lastModified() != child->lastModified)
            return false;
    }
    return true;
}

MemoryMapElement *MemoryMap::clone(const MemoryMapElement *element)
{
    CurrentPoolScope scope(&pool);
    MemoryMapElement *copy = nullptr;
    std::vector<MemoryMapElement *> lastChild; // per depth: the copy made last there
    walkElements(element, [&](MemoryMapElement *source, int depth) {
        auto *made = new MemoryMapElement(*source);
        lastChild.resize(size_t(depth) + 1);
        if (depth == 0) {
            copy = made;
        } else {
            // Linked by hand: appendChild would walk all earlier children each time.
            XMLNode *parentCopy = lastChild[size_t(depth) - 1];
            made->parent = parentCopy;
            if (MemoryMapElement *previous = lastChild[size_t(depth)])
                previous->nextSibling = made;
            else
                parentCopy->firstChild = made;
        }
        lastChild[size_t(depth)] = made;
        return Next::Descend;
    });
    return copy;
}

void MemoryMap::fixupAddresses(MemoryMapElement *element, unsigned base)
{
    std::vector<unsigned> childBase; // per depth: the base for the children of the last visit
    walkElements(element, [&](MemoryMapElement *visited, int depth) {
        const unsigned enclosing = depth == 0 ? base : childBase[size_t(depth) - 1];
        unsigned forChildren = enclosing;
        if (visited->hasAttribute("start")) {
            switch (visited->elementType) {
            case MemoryMapElement::MemorySegment:
            case MemoryMapElement::ProgramSection:
            case MemoryMapElement::RegisterGroup:
                visited->updateAddress(enclosing);
                forChildren = visited->address();
                break;
            case MemoryMapElement::Register:
                visited->updateAddress(enclosing);
                break;
            case MemoryMapElement::BitField:
            case MemoryMapElement::Enum:
                visited->updateAddress(0);
                break;
            default:
                break;
            }
        }
        childBase.resize(size_t(depth) + 1);
        childBase[size_t(depth)] = forChildren;
        return Next::Descend;
    });
}
