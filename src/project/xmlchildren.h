#pragma once

#include <QList>
#include <QString>

class XMLElement;

/// The element children of `parent` whose tag is `tag`, in document order; none for a null
/// parent.
QList<XMLElement *> childElements(const XMLElement *parent, const QString &tag);

/// The Latin-1 value of `element`'s attribute `name`; a null string if it has none.
QString attributeText(const XMLElement *element, const char *name);
