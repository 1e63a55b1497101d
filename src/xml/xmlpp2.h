#pragma once

#include "xml/xmldocument.h"

#include <QMap>
#include <QString>

#include <map>

class XMLElement;
class XMLNode;

/// A document that, once parsed, rewrites its own tree: it evaluates the directives
/// if, ifnot, ifdef, ifndef, switch, define, include and for that stand in the file
/// as elements, so that data files can be shared and parametrised.
class XMLPP2 : public XMLDocument
{
public:
    explicit XMLPP2(bool keepText = false);
    ~XMLPP2() override;

    /// Reports a directive error; processing goes on after it.
    virtual void error(const QString &message) = 0;

    /// Loads `fileName` and processes its directives with the macros of the
    /// ";"-separated "name=value" list `macros`, expanding attribute macros if
    /// `expand`. False only if the file can't be read or parsed.
    bool load(const char *fileName, const char *macros, bool expand);
    /// Processes `node` and its following siblings, which come from `fileName`.
    void processConditionals(XMLNode *node, const QString &fileName,
                             const QMap<QString, QString> &macros, bool expand);
    /// Expands the macros in each attribute value of `element` that holds a "$".
    void expandAttributeMacros(XMLElement *element, const QMap<QString, QString> &macros);
    /// A deep copy of `element` and its element children, attribute values expanded.
    XMLElement *copyElementAndExpandAttributeMacros(XMLElement *element,
                                                    const QMap<QString, QString> &macros);

    /// Definitions made by define directives, shared by all included files.
    std::map<QString, QString> defines;

    /// Most elements that for directives may copy in one load; a loop that would go
    /// beyond it is refused whole, with a message. Far more than a board's registers need,
    /// and little enough that a few hundred bytes of nested loops can't take seconds and
    /// hundreds of megabytes to expand.
    unsigned long long forCopyLimit = 20000;
    /// Most include directives that one load may follow.
    int includeLimit = 10000;

private:
    struct Context;
    struct Frame;
    class Walk;
    friend class Walk;

    unsigned long long forCopiesLeft = forCopyLimit;
    int includesLeft = includeLimit;
};
