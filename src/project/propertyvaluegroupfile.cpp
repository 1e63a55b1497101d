#include "project/propertyvaluegroupfile.h"

#include "foundation/path.h"
#include "project/propertyvaluegroupclass.h"
#include "project/xmlchildren.h"
#include "xml/xmlelement.h"

#include <QFileInfo>
#include <QtDebug>

namespace {

QDateTime lastModified(const QString &path)
{
    return QFileInfo(path).lastModified();
}

} // namespace

PropertyValueGroupFile::PropertyValueGroupFile(const QString &path) : m_path(path) {}

PropertyValueGroupFile::~PropertyValueGroupFile()
{
    qDeleteAll(m_groupClasses);
}

bool PropertyValueGroupFile::load()
{
    // Group files take no macros and leave "$" in attributes alone.
    if (!XMLPP2::load(Path::toOsBytes(m_path).constData(), "", false))
        return false;
    auto *rootElement = dynamic_cast<XMLElement *>(root);
    if (!rootElement)
        return false;
    m_lastModified = lastModified(m_path);
    for (XMLElement *group : childElements(rootElement, QStringLiteral("group")))
        m_groupClasses.append(new PropertyValueGroupClass(group));
    return true;
}

bool PropertyValueGroupFile::isUpToDate() const
{
    return lastModified(m_path) == m_lastModified;
}

PropertyValueGroupClass *PropertyValueGroupFile::getGroupClass(const QString &name) const
{
    for (PropertyValueGroupClass *groupClass : m_groupClasses) {
        if (groupClass->saveName() == name)
            return groupClass;
    }
    return nullptr;
}

void PropertyValueGroupFile::warning(const QString &message)
{
    qWarning("%s", qPrintable(message));
}
