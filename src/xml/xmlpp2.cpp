#include "xml/xmlpp2.h"

#include "macros/macrosystem.h"
#include "xml/xmlelement.h"

#include <QFileInfo>
#include <QStringList>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <vector>

namespace {

const QString messagePrefix = QStringLiteral("XmlPP::processConditionals(): ");

// Text in the tree is bytes; it passes through Latin-1 so that every byte survives.
QString fromBytes(const char *text)
{
    return QString::fromLatin1(text);
}

const char *poolString(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    return XMLNode::mkString(bytes.constData(), static_cast<unsigned int>(bytes.size()));
}

// The alternatives of a condition or case: the parts of `list` between commas.
QStringList alternativesOf(const char *list)
{
    return fromBytes(list).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

bool hasTag(const XMLElement *element, const char *tagName)
{
    const char *tag = element->tagName();
    return tag && std::strcmp(tag, tagName) == 0;
}

unsigned long toUnsigned(const QString &text)
{
    return std::strtoul(text.toLatin1().constData(), nullptr, 0);
}

// The elements of the subtree at `element`, counted without recursion.
unsigned long long countElements(XMLElement *element)
{
    unsigned long long count = 0;
    std::vector<XMLNode *> pending{element};
    while (!pending.empty()) {
        XMLNode *node = pending.back();
        pending.pop_back();
        if (!dynamic_cast<XMLElement *>(node))
            continue;
        ++count;
        for (XMLNode *child = node->firstChild; child; child = child->nextSibling)
            pending.push_back(child);
    }
    return count;
}

QString identityOf(const QString &fileName)
{
    const QFileInfo info(fileName);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? info.absoluteFilePath() : canonical;
}

} // namespace

/// What the nodes of one file are processed with.
struct XMLPP2::Context
{
    QString fileName;
    QString identity; ///< the file's canonical path, to recognise it in the include chain
    QMap<QString, QString> macros;
    bool expand;
    const Context *includer; ///< the context of the include that read this file
};

/// A sibling chain being walked. `link` is the pointer that leads to the current
/// node, so that a directive can be unlinked or replaced without searching for it.
struct XMLPP2::Frame
{
    /// What is still to be done to the current node once its children are processed.
    enum Pending { None, Keep, ReplaceByChildren, ReplaceByChosen, FinishInclude };

    XMLNode *parent;
    XMLNode **link;
    const Context *context;
    Pending pending = None;
    XMLElement *chosen = nullptr; ///< the branch of a switch
    bool noRoot = false;          ///< the include had no_root
};

/// The walk over a tree, depth first, with its own stack instead of recursion.
class XMLPP2::Walk
{
public:
    explicit Walk(XMLPP2 &document) : document(document) {}

    void run(XMLNode *parent, XMLNode **link, const Context &top);

private:
    void processNode(size_t frame);
    void finish(Frame &frame);
    void descend(size_t frame, Frame::Pending pending, const Context *context);
    void keep(Frame &frame);
    void replaceBy(Frame &frame, XMLNode *first, bool skipInserted);
    bool lookup(const QString &name, const QMap<QString, QString> &macros, QString &value) const;
    bool isDefined(const QString &name, const QMap<QString, QString> &macros) const;

    void conditional(size_t frame, XMLElement *element, bool negate);
    void definedTest(size_t frame, XMLElement *element, bool negate);
    void replaceByChildrenIf(size_t frame, bool test);
    void switchDirective(size_t frame, XMLElement *element);
    void define(size_t frame, XMLElement *element);
    void include(size_t frame, XMLElement *element);
    void includeFailed(size_t frame, XMLElement *element);
    void forDirective(size_t frame, XMLElement *element);

    XMLPP2 &document;
    std::vector<Frame> frames;
    std::deque<Context> contexts; // stable addresses for the frames that point at them
};

void XMLPP2::Walk::run(XMLNode *parent, XMLNode **link, const Context &top)
{
    contexts.push_back(top);
    frames.push_back({parent, link, &contexts.back()});
    while (!frames.empty()) {
        const size_t current = frames.size() - 1;
        if (frames[current].pending != Frame::None)
            finish(frames[current]);
        else if (!*frames[current].link)
            frames.pop_back();
        else
            processNode(current);
    }
}

void XMLPP2::Walk::processNode(size_t frame)
{
    auto *element = dynamic_cast<XMLElement *>(*frames[frame].link);
    if (!element) { // text and such have no place among the directives
        keep(frames[frame]);
        return;
    }
    const Context &context = *frames[frame].context;
    if (context.expand)
        document.expandAttributeMacros(element, context.macros);

    if (hasTag(element, "if"))
        conditional(frame, element, false);
    else if (hasTag(element, "ifnot"))
        conditional(frame, element, true);
    else if (hasTag(element, "ifdef"))
        definedTest(frame, element, false);
    else if (hasTag(element, "ifndef"))
        definedTest(frame, element, true);
    else if (hasTag(element, "switch"))
        switchDirective(frame, element);
    else if (hasTag(element, "define"))
        define(frame, element);
    else if (hasTag(element, "include"))
        include(frame, element);
    else if (hasTag(element, "for"))
        forDirective(frame, element);
    else
        descend(frame, Frame::Keep, &context);
}

// Processes the children of the current node first; finish() does the rest.
void XMLPP2::Walk::descend(size_t frame, Frame::Pending pending, const Context *context)
{
    frames[frame].pending = pending;
    XMLNode *node = *frames[frame].link;
    frames.push_back({node, &node->firstChild, context});
}

void XMLPP2::Walk::finish(Frame &frame)
{
    XMLNode *node = *frame.link;
    switch (frame.pending) {
    case Frame::ReplaceByChildren:
        replaceBy(frame, node->firstChild, true);
        break;
    case Frame::ReplaceByChosen:
        replaceBy(frame, frame.chosen->firstChild, true);
        break;
    case Frame::FinishInclude:
        if (frame.noRoot)
            replaceBy(frame, node->firstChild, true);
        else
            keep(frame);
        break;
    default:
        keep(frame);
        break;
    }
    frame.pending = Frame::None;
    frame.chosen = nullptr;
    frame.noRoot = false;
}

void XMLPP2::Walk::keep(Frame &frame)
{
    frame.link = &(*frame.link)->nextSibling;
}

// Puts the sibling chain from `first` in place of the current node; with no chain the
// node is just taken out. With `skipInserted` the walk goes on behind the chain.
void XMLPP2::Walk::replaceBy(Frame &frame, XMLNode *first, bool skipInserted)
{
    XMLNode *node = *frame.link;
    XMLNode *following = node->nextSibling;
    if (!first) {
        *frame.link = following;
        return;
    }
    XMLNode *last = first;
    for (;;) {
        last->parent = frame.parent;
        if (!last->nextSibling)
            break;
        last = last->nextSibling;
    }
    last->nextSibling = following;
    *frame.link = first;
    if (skipInserted)
        frame.link = &last->nextSibling;
}

bool XMLPP2::Walk::lookup(const QString &name, const QMap<QString, QString> &macros,
                          QString &value) const
{
    const auto defined = document.defines.find(name);
    if (defined != document.defines.end()) {
        value = defined->second;
        return true;
    }
    const auto macro = macros.constFind(name);
    if (macro == macros.cend())
        return false;
    value = macro.value();
    return true;
}

bool XMLPP2::Walk::isDefined(const QString &name, const QMap<QString, QString> &macros) const
{
    return document.defines.count(name) != 0 || macros.contains(name);
}

void XMLPP2::Walk::conditional(size_t frame, XMLElement *element, bool negate)
{
    const Context *context = frames[frame].context;
    XMLElement::AttributeList &attributes = element->getAttributeList();
    if (attributes.size() != 1) {
        document.error(messagePrefix + QStringLiteral("one condition required for <if[not]>"));
        descend(frame, Frame::Keep, context);
        return;
    }
    const QStringList alternatives = alternativesOf(attributes.front().second);
    QString value;
    const bool test = lookup(fromBytes(attributes.front().first), context->macros, value) &&
                      alternatives.contains(value);
    replaceByChildrenIf(frame, test != negate);
}

void XMLPP2::Walk::definedTest(size_t frame, XMLElement *element, bool negate)
{
    const Context *context = frames[frame].context;
    const char *name = element->attribute("name");
    const bool test = name && isDefined(fromBytes(name), context->macros);
    replaceByChildrenIf(frame, test != negate);
}

// A true test leaves the processed children in the element's place; a false one
// removes the element unprocessed.
void XMLPP2::Walk::replaceByChildrenIf(size_t frame, bool test)
{
    if (test)
        descend(frame, Frame::ReplaceByChildren, frames[frame].context);
    else
        replaceBy(frames[frame], nullptr, false);
}

void XMLPP2::Walk::switchDirective(size_t frame, XMLElement *element)
{
    const Context *context = frames[frame].context;
    const char *name = element->attribute("name");
    QString value;
    const bool hasValue = name && lookup(fromBytes(name), context->macros, value);
    XMLElement *chosen = nullptr;
    XMLElement *fallback = nullptr;
    for (XMLNode *child = element->firstChild; child && !chosen; child = child->nextSibling) {
        auto *branch = dynamic_cast<XMLElement *>(child);
        if (!branch)
            continue;
        if (hasTag(branch, "case")) {
            if (hasValue && alternativesOf(branch->attribute("value")).contains(value))
                chosen = branch;
        } else if (hasTag(branch, "default")) {
            fallback = branch;
        }
    }
    if (!chosen)
        chosen = fallback;
    if (!chosen) {
        replaceBy(frames[frame], nullptr, false);
        return;
    }
    // All branches are processed, so that a define in any of them takes effect.
    frames[frame].chosen = chosen;
    descend(frame, Frame::ReplaceByChosen, context);
}

void XMLPP2::Walk::define(size_t frame, XMLElement *element)
{
    const char *name = element->attribute("name");
    const char *value = element->attribute("value");
    if (name && value)
        document.defines[fromBytes(name)] = fromBytes(value);
    else
        document.error(messagePrefix + QStringLiteral("missing name and/or value in <define>"));
    replaceBy(frames[frame], nullptr, false);
}

void XMLPP2::Walk::include(size_t frame, XMLElement *element)
{
    const Context *context = frames[frame].context;
    const char *fileAttribute = element->attribute("filename");
    if (!fileAttribute) {
        document.error(messagePrefix + QStringLiteral("missing filename in <include>"));
        descend(frame, Frame::Keep, context);
        return;
    }
    // Relative to the including file; an absolute name stands as it is.
    const QString name = QString::fromLocal8Bit(fileAttribute);
    const QString path = QFileInfo(name).isAbsolute()
                             ? name
                             : QFileInfo(context->fileName).path() + QLatin1Char('/') + name;
    const QString identity = identityOf(path);
    for (const Context *open = context; open; open = open->includer) {
        if (open->identity == identity) {
            document.error(messagePrefix + QStringLiteral("recursive include of ") + path);
            includeFailed(frame, element);
            return;
        }
    }
    if (document.includesLeft <= 0) {
        document.error(messagePrefix + QStringLiteral("more than %1 includes, %2 not read")
                                           .arg(document.includeLimit)
                                           .arg(path));
        includeFailed(frame, element);
        return;
    }
    --document.includesLeft;

    // The included file is read into this document; the prolog and root stay those of the top file.
    XMLNode *savedRoot = document.root;
    const char *savedDocType = document.docType;
    const char *savedVersion = document.version;
    const char *savedEncoding = document.encoding;
    const bool loaded = document.XMLDocument::load(path.toLocal8Bit().constData());
    XMLNode *newRoot = document.root;
    document.root = savedRoot;
    document.docType = savedDocType;
    document.version = savedVersion;
    document.encoding = savedEncoding;
    if (!loaded) {
        document.error(messagePrefix + QStringLiteral("error \"") +
                       fromBytes(document.errorMessage()) + QStringLiteral("\" in include file ") +
                       path + QStringLiteral(" line:") + QString::number(document.errorLine));
        includeFailed(frame, element);
        return;
    }
    auto *rootElement = dynamic_cast<XMLElement *>(newRoot);
    if (!rootElement) {
        document.error(messagePrefix + QStringLiteral("no root element in include file ") + path);
        replaceBy(frames[frame], nullptr, false);
        return;
    }

    const bool noRoot = element->hasAttribute("no_root");
    replaceBy(frames[frame], rootElement, false);

    Context included{path, identity, context->macros, context->expand, context};
    const char *macros = element->attribute("macros");
    if ((context->expand || element->hasAttribute("expand_macros")) && macros) {
        const QStringList list =
            MacroSystem::stringListFromString(fromBytes(macros).remove(QLatin1Char('\n')), false);
        included.macros =
            macroSystem.overwriteMacros(context->macros, macroSystem.macrosFromStringList(list));
        included.expand = true;
    }
    if (included.expand)
        document.expandAttributeMacros(rootElement, included.macros);
    contexts.push_back(included);
    frames[frame].noRoot = noRoot;
    descend(frame, Frame::FinishInclude, &contexts.back());
}

// Without a new tree the include element itself stands for it.
void XMLPP2::Walk::includeFailed(size_t frame, XMLElement *element)
{
    if (element->hasAttribute("no_root"))
        replaceBy(frames[frame], element->firstChild, true);
    else
        keep(frames[frame]);
}

void XMLPP2::Walk::forDirective(size_t frame, XMLElement *element)
{
    const Context *context = frames[frame].context;
    const char *index = element->attribute("index");
    const char *startText = element->attribute("start");
    const char *endText = element->attribute("end");
    const char *incrText = element->attribute("incr");
    if (!index || !startText || !endText || !incrText || !element->firstChild) {
        document.error(messagePrefix +
                       QStringLiteral("<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">"));
        replaceBy(frames[frame], nullptr, false);
        return;
    }
    const char *addText = element->attribute("add");
    const char *mulText = element->attribute("mul");
    const auto add = static_cast<uint32_t>(
        addText ? toUnsigned(macroSystem.replaceMacros(context->macros, fromBytes(addText))) : 0);
    const auto mul = static_cast<uint32_t>(
        mulText ? toUnsigned(macroSystem.replaceMacros(context->macros, fromBytes(mulText))) : 1);
    const auto start = static_cast<uint32_t>(toUnsigned(fromBytes(startText)));
    const auto end = static_cast<uint32_t>(toUnsigned(fromBytes(endText)));
    const auto incr = static_cast<uint32_t>(toUnsigned(fromBytes(incrText)));
    const QString name = fromBytes(index);
    if (incr == 0) {
        document.error(
            messagePrefix +
            QStringLiteral("<for index=\"%1\"> with incr=\"0\" would never end").arg(name));
        replaceBy(frames[frame], nullptr, false);
        return;
    }

    // The copies are counted before any is made, so that a loop too large for memory
    // is refused whole rather than cut off somewhere.
    std::vector<XMLElement *> body;
    unsigned long long elementsPerPass = 0;
    for (XMLNode *child = element->firstChild; child; child = child->nextSibling) {
        auto *childElement = dynamic_cast<XMLElement *>(child);
        if (!childElement)
            break;
        body.push_back(childElement);
        elementsPerPass += countElements(childElement);
    }
    const unsigned long long passes =
        start < end ? (static_cast<unsigned long long>(end) - start + incr - 1) / incr : 0;
    const unsigned long long copies = passes * elementsPerPass;
    if (copies > document.forCopiesLeft) {
        document.error(messagePrefix + QStringLiteral("<for index=\"%1\"> would copy %2 elements, "
                                                      "more than the %3 allowed")
                                           .arg(name)
                                           .arg(copies)
                                           .arg(document.forCopyLimit));
        replaceBy(frames[frame], nullptr, false);
        return;
    }
    document.forCopiesLeft -= copies;

    const QString alphaName = name + QStringLiteral("_alpha");
    const QString hexName = name + QStringLiteral("_hex");
    const QString addressName = name + QStringLiteral("_ap");
    const QString addressHexName = name + QStringLiteral("_ap_hex");
    QMap<QString, QString> loopMacros; // one set for all passes, its values replaced on each
    XMLNode *first = nullptr;
    XMLNode *last = nullptr;
    for (unsigned long long pass = 0; pass < passes && !body.empty(); ++pass) {
        const auto n = static_cast<uint32_t>(start + pass * incr);
        const uint32_t p = n * mul + add;
        loopMacros[name] = QString::number(n);
        loopMacros[alphaName] = QString(QChar(static_cast<char16_t>(n + 0x41)));
        loopMacros[hexName] = QStringLiteral("0x") + QString::number(n, 16).toUpper();
        loopMacros[addressName] = QString::number(p);
        loopMacros[addressHexName] = QStringLiteral("0x") + QString::number(p, 16).toUpper();
        for (XMLElement *child : body) {
            XMLElement *copy = document.copyElementAndExpandAttributeMacros(child, loopMacros);
            if (last)
                last->nextSibling = copy;
            else
                first = copy;
            last = copy;
        }
    }
    // The walk goes on with the first copy, so that directives in the copies are processed.
    replaceBy(frames[frame], first, false);
}

XMLPP2::XMLPP2(bool keepText) : XMLDocument(keepText) {}

XMLPP2::~XMLPP2() = default;

bool XMLPP2::load(const char *fileName, const char *macros, bool expand)
{
    if (!XMLDocument::load(fileName))
        return false;
    CurrentPoolScope current(&pool);
    const QStringList list =
        QString::fromLatin1(macros ? macros : "").split(QLatin1Char(';'), Qt::SkipEmptyParts);
    forCopiesLeft = forCopyLimit;
    includesLeft = includeLimit;
    processConditionals(root, QString::fromLocal8Bit(fileName),
                        macroSystem.macrosFromStringList(list), expand);
    return true;
}

void XMLPP2::processConditionals(XMLNode *node, const QString &fileName,
                                 const QMap<QString, QString> &macros, bool expand)
{
    if (!node)
        return;
    CurrentPoolScope current(&pool);
    const Context top{fileName, identityOf(fileName), macros, expand, nullptr};
    Walk walk(*this);
    if (XMLNode *parent = node->parent) {
        XMLNode **link = &parent->firstChild;
        while (*link && *link != node)
            link = &(*link)->nextSibling;
        if (*link)
            walk.run(parent, link, top);
        return;
    }
    // A top-level chain gets a parent for the time of the walk, so that a directive
    // there can be removed or replaced like anywhere else.
    XMLNode holder;
    holder.firstChild = node;
    for (XMLNode *sibling = node; sibling; sibling = sibling->nextSibling)
        sibling->parent = &holder;
    walk.run(&holder, &holder.firstChild, top);
    for (XMLNode *sibling = holder.firstChild; sibling; sibling = sibling->nextSibling)
        sibling->parent = nullptr;
    if (root == node)
        root = holder.firstChild;
    holder.firstChild = nullptr;
}

void XMLPP2::expandAttributeMacros(XMLElement *element, const QMap<QString, QString> &macros)
{
    CurrentPoolScope current(&pool);
    for (XMLElement::Attribute &attribute : element->getAttributeList()) {
        if (!attribute.second || !std::strchr(attribute.second, '$'))
            continue;
        const QString original = fromBytes(attribute.second);
        const QString expanded = macroSystem.replaceMacros(macros, original);
        if (expanded != original)
            attribute.second = poolString(expanded);
    }
}

XMLElement *XMLPP2::copyElementAndExpandAttributeMacros(XMLElement *element,
                                                        const QMap<QString, QString> &macros)
{
    CurrentPoolScope current(&pool);
    auto copyOf = [&](XMLElement *source) {
        XMLElement *copy = mkXMLElement(source->tagName());
        // The source's names are distinct already, so no search is needed.
        for (const XMLElement::Attribute &attribute : source->getAttributeList())
            copy->getAttributeList().push_back(attribute);
        expandAttributeMacros(copy, macros);
        return copy;
    };
    struct Level
    {
        XMLNode *nextSource;
        XMLElement *copy;
        XMLNode *lastCopy;
    };
    XMLElement *top = copyOf(element);
    std::vector<Level> levels{{element->firstChild, top, nullptr}};
    while (!levels.empty()) {
        XMLNode *source = levels.back().nextSource;
        if (!source) {
            levels.pop_back();
            continue;
        }
        levels.back().nextSource = source->nextSibling;
        auto *sourceElement = dynamic_cast<XMLElement *>(source);
        if (!sourceElement)
            continue;
        XMLElement *copy = copyOf(sourceElement);
        Level &level = levels.back();
        copy->parent = level.copy;
        if (level.lastCopy)
            level.lastCopy->nextSibling = copy;
        else
            level.copy->firstChild = copy;
        level.lastCopy = copy;
        levels.push_back({sourceElement->firstChild, copy, nullptr});
    }
    return top;
}
