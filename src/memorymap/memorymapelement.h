#pragma once

#include "xml/xmlelement.h"

#include <QDateTime>
#include <QString>

/// An element of a memory map or section placement file: a segment, section, register and so
/// on, its kind told by its tag. Lives in its document's pool like any XML node.
class MemoryMapElement : public XMLElement
{
public:
    /// The kinds of element, each with its tag; `Unsupported` is any other tag, kept as it is.
    enum ElementType {
        MemorySegment = 0,
        Register = 1,
        ProgramSection = 2,
        Root = 3,
        RegisterGroup = 4,
        BitField = 5,
        Enum = 6,
        Processor = 7,
        Unsupported = 8
    };

    /// An element for `tagName` (which must outlive it), its type told by the tag.
    MemoryMapElement(const char *tagName, bool readOnly);
    /// An element of `type`, tagged with the type's name.
    explicit MemoryMapElement(ElementType type);
    /// A copy of `other`'s tag, type, address and attributes, without links, not read-only.
    explicit MemoryMapElement(const MemoryMapElement &other);
    ~MemoryMapElement() override;

    using XMLElement::setAttribute;
    /// Sets attribute `name` to `value`, both copied into this element's pool.
    void setAttribute(const QString &name, const QString &value);
    /// The text of attribute `name`; a null string if it is absent.
    QString attributeText(const char *name) const;

    /// The type that `tagName` gives.
    static ElementType elementTypeOf(const char *tagName);
    /// The tag of `type`; "Unsupported" for `Unsupported`.
    static const char *elementTypeAsString(ElementType type);
    ElementType getElementType() const { return elementType; }
    const char *elementTypeAsString() const { return elementTypeAsString(elementType); }
    /// Sets the type from the tag.
    void setElementType();

    // Attribute texts.
    QString name() const { return attributeText("name"); }
    QString addressAsString() const { return attributeText("start"); }
    QString sizeAsString() const { return attributeText("size"); }
    QString alignmentAsString() const { return attributeText("alignment"); }
    QString addressSymbol() const { return attributeText("address_symbol"); }
    QString sizeSymbol() const { return attributeText("size_symbol"); }
    QString runIn() const { return attributeText("runin"); }
    QString accessType() const { return attributeText("access"); }
    QString endian() const { return attributeText("endian"); }
    QString inputSections() const { return attributeText("inputsections"); }
    QString loadAsString() const { return attributeText("load"); }
    QString addressSpace() const { return attributeText("addressSpace"); }
    void setName(const QString &text) { setAttribute(QStringLiteral("name"), text); }
    void setAccessType(const QString &text) { setAttribute(QStringLiteral("access"), text); }
    void setEndian(const QString &text) { setAttribute(QStringLiteral("endian"), text); }
    void setInputSections(const QString &text)
    {
        setAttribute(QStringLiteral("inputsections"), text);
    }
    void setLoad(const QString &text) { setAttribute(QStringLiteral("load"), text); }
    void setAddressSpace(const QString &text)
    {
        setAttribute(QStringLiteral("addressSpace"), text);
    }

    // Presence: these hold for an attribute that exists, even empty.
    bool hasAddressSymbol() const { return hasAttribute("address_symbol"); }
    bool hasSizeSymbol() const { return hasAttribute("size_symbol"); }
    bool hasRunIn() const { return hasAttribute("runin"); }
    bool hasAccessType() const { return hasAttribute("access"); }
    bool hasEndian() const { return hasAttribute("endian"); }
    bool hasLoad() const { return hasAttribute("load"); }
    bool hasAddressSpace() const { return hasAttribute("addressSpace"); }
    // Presence: these hold for an attribute that exists and isn't empty.
    bool hasAddress() const { return hasText("start"); }
    bool hasSize() const { return hasText("size"); }
    bool hasAlignment() const { return hasText("alignment"); }
    bool hasInputSections() const { return hasText("inputsections"); }

    /// The resolved address.
    unsigned address() const { return m_address; }
    /// "alignment" as a number, 0 if absent.
    unsigned alignment() const;
    /// "size" as a number; without it the size of the "register_type", else 0.
    unsigned long long size() const;

    /// Writes "start" in hexadecimal and resolves it against the parent's address.
    void setAddress(unsigned address);
    /// Stores "start" (removes it if `text` is empty) and resolves it against the parent.
    void setAddress(const QString &text);
    void setSize(unsigned size);
    /// Removes "size" if `text` is empty, converts it if it begins with a digit, else keeps
    /// it as a symbol.
    void setSize(const QString &text);
    void setAlignment(unsigned alignment);
    /// Removes "alignment" if `text` is empty, else converts it.
    void setAlignment(const QString &text);
    void setAddressSymbol(const QString &text) { setOrRemove("address_symbol", text); }
    void setSizeSymbol(const QString &text) { setOrRemove("size_symbol", text); }
    void setRunIn(const QString &text) { setOrRemove("runin", text); }
    /// "load" as "Yes" or "No".
    void setLoad(bool load);

    bool isReadOnly() const { return hasAccess("ReadOnly"); }
    bool isWriteOnly() const { return hasAccess("WriteOnly"); }
    bool isNone() const { return hasAccess("None"); }
    /// Whether the contents are loaded: "load" is "Yes".
    bool load() const;
    /// Whether the element came from a file that isn't writable.
    bool isElementReadOnly() const { return readOnly; }

    /// Orders by address: negative, 0 or positive.
    int cmp(const MemoryMapElement &other) const;
    /// Forgets the parent, sibling and child links.
    void clearLinks();
    /// Resolves "start" against `base`: a number, "+" and an offset from `base`, or two
    /// numbers joined by "+".
    void updateAddress(unsigned base);
    /// The register as a debugger expression, with its fields.
    QString getRegisterExpression() const;

    ElementType elementType = Unsupported;
    /// On an imported root, the "Import" element it replaced; on that element while it is
    /// swapped back, the imported root.
    MemoryMapElement *importElement = nullptr;
    /// On a file's root, the file's time when it was read or written.
    QDateTime lastModified;
    bool readOnly = false;

private:
    bool hasText(const char *name) const;
    bool hasAccess(const char *value) const;
    void setOrRemove(const char *name, const QString &text);
    /// `text` copied into this element's pool.
    const char *poolString(const QByteArray &text) const;

    unsigned m_address = 0;
};
