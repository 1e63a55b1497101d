#include "memorymap/memorymapelement.h"

#include "foundation/numberhelpers.h"

#include <cstring>

namespace {

const char *const typeTags[] = {"MemorySegment", "Register",      "ProgramSection",
                                "Root",          "RegisterGroup", "BitField",
                                "Enum",          "Processor",     "Unsupported"};

unsigned long long toNumber(const QString &text)
{
    return fromStringTouint64(text.toLatin1().constData());
}

QString hexText(unsigned value)
{
    return QStringLiteral("0x") + QString::number(value, 16);
}

/// The size in bytes of a register of C type `type`.
unsigned registerTypeSize(const QString &type)
{
    if (type == QLatin1String("unsigned char") || type == QLatin1String("signed char"))
        return 1;
    if (type == QLatin1String("unsigned short") || type == QLatin1String("short"))
        return 2;
    if (type == QLatin1String("unsigned long") || type == QLatin1String("long") ||
        type == QLatin1String("float"))
        return 4;
    // The width of an int is left to the target, so it counts as unknown.
    if (type == QLatin1String("unsigned int") || type == QLatin1String("int"))
        return 0;
    return 8;
}

} // namespace

MemoryMapElement::MemoryMapElement(const char *tagName, bool readOnly)
    : XMLElement(tagName), readOnly(readOnly)
{
    setElementType();
}

MemoryMapElement::MemoryMapElement(ElementType type)
    : XMLElement(elementTypeAsString(type)), elementType(type)
{
}

MemoryMapElement::MemoryMapElement(const MemoryMapElement &other)
    : XMLElement(other.tagName()), elementType(other.elementType), m_address(other.m_address)
{
    const bool samePool = ownerPool() == other.ownerPool() || !ownerPool();
    auto &attributes = const_cast<MemoryMapElement &>(other).getAttributeList();
    for (const Attribute &attribute : attributes) {
        if (samePool)
            XMLElement::setAttribute(attribute.first, attribute.second);
        else
            XMLElement::setAttribute(poolString(attribute.first), poolString(attribute.second));
    }
    if (!samePool)
        setTagName(poolString(other.tagName()));
}

MemoryMapElement::~MemoryMapElement() = default;

const char *MemoryMapElement::poolString(const QByteArray &text) const
{
    CurrentPoolScope scope(ownerPool() ? ownerPool() : Pool::currentPool);
    return XMLNode::mkString(text.constData(), static_cast<unsigned>(text.size()));
}

void MemoryMapElement::setAttribute(const QString &name, const QString &value)
{
    XMLElement::setAttribute(poolString(name.toLatin1()), poolString(value.toLatin1()));
}

QString MemoryMapElement::attributeText(const char *name) const
{
    const char *value = attribute(name);
    return value ? QString::fromLatin1(value) : QString();
}

MemoryMapElement::ElementType MemoryMapElement::elementTypeOf(const char *tagName)
{
    for (int type = MemorySegment; tagName && type < Unsupported; ++type)
        if (std::strcmp(tagName, typeTags[type]) == 0)
            return ElementType(type);
    return Unsupported;
}

const char *MemoryMapElement::elementTypeAsString(ElementType type)
{
    return typeTags[type >= MemorySegment && type <= Unsupported ? type : Unsupported];
}

void MemoryMapElement::setElementType()
{
    elementType = elementTypeOf(tagName());
}

bool MemoryMapElement::hasText(const char *name) const
{
    const char *value = attribute(name);
    return value && *value;
}

bool MemoryMapElement::hasAccess(const char *value) const
{
    const char *access = attribute("access");
    return access && std::strcmp(access, value) == 0;
}

void MemoryMapElement::setOrRemove(const char *name, const QString &text)
{
    if (text.isEmpty())
        removeAttribute(name);
    else
        setAttribute(QString::fromLatin1(name), text);
}

unsigned MemoryMapElement::alignment() const
{
    return hasAlignment() ? unsigned(toNumber(alignmentAsString())) : 0;
}

unsigned long long MemoryMapElement::size() const
{
    if (hasSize())
        return toNumber(sizeAsString());
    if (hasAttribute("register_type"))
        return registerTypeSize(attributeText("register_type"));
    return 0;
}

void MemoryMapElement::setAddress(unsigned address)
{
    setAddress(hexText(address));
}

void MemoryMapElement::setAddress(const QString &text)
{
    setOrRemove("start", text);
    const auto *parentElement = dynamic_cast<const MemoryMapElement *>(parent);
    updateAddress(parentElement ? parentElement->address() : 0);
}

void MemoryMapElement::setSize(unsigned size)
{
    setAttribute(QStringLiteral("size"), hexText(size));
}

void MemoryMapElement::setSize(const QString &text)
{
    if (text.isEmpty())
        removeAttribute("size");
    else if (text.at(0).isDigit())
        setSize(unsigned(toNumber(text)));
    else
        setAttribute(QStringLiteral("size"), text);
}

void MemoryMapElement::setAlignment(unsigned alignment)
{
    setAttribute(QStringLiteral("alignment"), hexText(alignment));
}

void MemoryMapElement::setAlignment(const QString &text)
{
    if (text.isEmpty())
        removeAttribute("alignment");
    else
        setAlignment(unsigned(toNumber(text)));
}

void MemoryMapElement::setLoad(bool load)
{
    setLoad(load ? QStringLiteral("Yes") : QStringLiteral("No"));
}

bool MemoryMapElement::load() const
{
    const char *value = attribute("load");
    return value && std::strcmp(value, "Yes") == 0;
}

int MemoryMapElement::cmp(const MemoryMapElement &other) const
{
    return m_address < other.m_address ? -1 : (m_address > other.m_address ? 1 : 0);
}

void MemoryMapElement::clearLinks()
{
    parent = nullptr;
    nextSibling = nullptr;
    firstChild = nullptr;
}

void MemoryMapElement::updateAddress(unsigned base)
{
    m_address = 0;
    const QString start = addressAsString();
    if (start.isEmpty())
        return;
    const qsizetype plus = start.indexOf(QLatin1Char('+'));
    unsigned long long value;
    if (plus < 0)
        value = toNumber(start);
    else if (plus == 0)
        value = toNumber(start.mid(1)) + base;
    else
        value = toNumber(start.left(plus)) + toNumber(start.mid(plus + 1));
    m_address = unsigned(value);
}

QString MemoryMapElement::getRegisterExpression() const
{
    const QString start = addressAsString();
    const bool symbolic = start.startsWith(QLatin1Char('@'));
    QString expression = (symbolic ? QStringLiteral("(register ") : QStringLiteral("*(register ")) +
                         QString::number(size());
    for (XMLNode *child = firstChild; child; child = child->nextSibling) {
        const auto *field = dynamic_cast<const MemoryMapElement *>(child);
        if (!field)
            continue;
        expression += QLatin1Char(' ') + field->name() + QLatin1Char(' ') +
                      QString::number(field->address()) + QLatin1Char(' ') +
                      QString::number(field->size());
    }
    if (symbolic)
        return expression + QStringLiteral(";)") + start;
    return expression + QStringLiteral(";*)0x") + QString::number(address(), 16);
}
