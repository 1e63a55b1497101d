#include "project/propertyvaluegroups.h"

#include "project/propertyvaluegroupfile.h"

#include <memory>

PropertyValueGroups propertyValueGroups;

PropertyValueGroups::~PropertyValueGroups()
{
    qDeleteAll(m_files);
    qDeleteAll(m_outdated);
}

void PropertyValueGroups::setGroupFile(const QString &path)
{
    m_current = nullptr;
    if (path == QLatin1String("None"))
        return;
    for (qsizetype i = 0; i < m_files.size(); ++i) {
        PropertyValueGroupFile *file = m_files.at(i);
        if (file->path() != path)
            continue;
        if (file->isUpToDate()) {
            m_current = file;
            return;
        }
        m_outdated.append(m_files.takeAt(i));
        break;
    }
    auto file = std::make_unique<PropertyValueGroupFile>(path);
    if (!file->load())
        return;
    m_current = file.release();
    m_files.append(m_current);
}

PropertyValueGroupClass *PropertyValueGroups::getGroupClass(const QString &name) const
{
    return m_current ? m_current->getGroupClass(name) : nullptr;
}
