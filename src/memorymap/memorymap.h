#pragma once

#include "memorymap/memorymapelement.h"

#include "xml/xmlpp2.h"

#include <QList>
#include <QString>

#include <utility>
#include <vector>

/// A memory map or section placement file: an XML document of `MemoryMapElement`s, with the
/// files it imports standing in the tree in place of their "Import" elements.
class MemoryMap : public XMLPP2
{
public:
    using ElementList = QList<const MemoryMapElement *>;

    MemoryMap();
    ~MemoryMap() override;

    XMLElement *mkXMLElement(const char *tagName) override;
    /// Hands a message of the parser or the preprocessor to qWarning.
    virtual void warning(const QString &message);
    void error(const QString &message) override;

    /// Reads `file` (macros allowed in the name), through the preprocessor with
    /// `preprocessorArgument` if `usePreprocessor`, follows its imports and resolves the
    /// addresses. False if the file can't be read or parsed.
    bool load(const QString &file, const QString &preprocessorArgument, bool usePreprocessor);
    /// Parses `text` as a map with no file, following imports and resolving addresses.
    bool loadFromString(const QString &text);
    /// Writes the map to `file`, the "Import" elements in place of what they imported.
    bool store(const QString &file);

    MemoryMapElement *getRoot() const;
    /// Whether the root came from a file that isn't writable.
    bool isReadOnly() const { return isReadOnly(getRoot()); }
    /// Whether `element` came from a file that isn't writable; false for null.
    bool isReadOnly(const MemoryMapElement *element) const;

    /// The whole tree in document order, each element before its children.
    ElementList getAllElements() const;
    /// `from` and everything below it, in document order.
    void getElements(const MemoryMapElement *from, ElementList &out) const;
    /// The elements of `type` from `from` on, not looking below one found; at the front of
    /// `out` if `prepend` (so in reverse document order), else at the end.
    void getElementsOfType(const MemoryMapElement *from, MemoryMapElement::ElementType type,
                           bool prepend, ElementList &out) const;
    /// The segments; with `prepend` in reverse document order.
    ElementList getSegments(bool prepend) const;
    /// The sections of `segment`; with `inOrder` in document order, else reversed.
    ElementList getSections(const MemoryMapElement *segment, bool inOrder) const;
    /// The first element in document order from `from` of `type` named exactly `name`.
    MemoryMapElement *getNamedElementOfType(const MemoryMapElement *from, const QString &name,
                                            MemoryMapElement::ElementType type) const;
    /// The first segment named `name`, or null.
    MemoryMapElement *getSegment(const QString &name) const;

    /// Whether neither the file nor any file it imported changed since it was read or
    /// written: their times are the ones remembered.
    bool upToDate() const;
    /// A deep copy of `element` in this document, children in order.
    MemoryMapElement *clone(const MemoryMapElement *element);
    /// Resolves the addresses of `element` and all below it, `base` being the enclosing
    /// address.
    void fixupAddresses(MemoryMapElement *element, unsigned base);

    bool usePreprocessor = false;
    QString preprocessorArgument;
    /// Handed to each element made while a file is read.
    bool readOnly = false;
    QString fileName;
    QString documentType;

private:
    /// Parses `file` into this document's pool and returns its root, leaving the document's
    /// root and header as they were; null on failure, with the reason in `failure`.
    MemoryMapElement *load1(const QString &file, QString *failure);
    /// Replaces each "Import" child of the root by the root of the file it names.
    void processImports();
    /// Puts the imported roots in place of their "Import" elements if `importsIn`, else the
    /// "Import" elements back in place of what they imported.
    void swapImports(bool importsIn);
    /// The path of an imported file, macros expanded, relative to the importing file.
    QString importPath(const MemoryMapElement *importElement) const;

    /// Each "Import" element of the root that was followed, with the root it imported.
    std::vector<std::pair<MemoryMapElement *, MemoryMapElement *>> m_imports;
};
