#include "project/projectelement.h"

#include "macros/macrosystem.h"
#include "project/projectsystem.h"
#include "xml/xmlelement.h"

#include <QHash>

namespace {

const QString nameAttribute = QStringLiteral("Name");
const QString fileNameAttribute = QStringLiteral("file_name");
const QString inheritedConfigurationsAttribute = QStringLiteral("inherited_configurations");

const char *const tags[] = {"solution", "configuration", "project", "folder", "file"};
const int tagCount = int(sizeof tags / sizeof tags[0]);

/// A value that counts as found: an attribute that is there is never a null string.
QString nonNull(const QString &value)
{
    return value.isNull() ? QStringLiteral("") : value;
}

} // namespace

const QString &ProjectElement::commonConfiguration()
{
    static const QString common = QStringLiteral("Common");
    return common;
}

ProjectElement::ProjectElement(int type) : m_type(type) {}

ProjectElement::ProjectElement(const QString &tag) : m_type(typeOfTag(tag)) {}

ProjectElement::ProjectElement(const ProjectElement *other)
    : m_type(other->m_type), m_attributes(other->m_attributes)
{
}

ProjectElement::~ProjectElement()
{
    deleteChildren();
}

void ProjectElement::deleteChildren()
{
    // The child chain doubles as the work list: a child's own children are spliced in
    // front of its siblings before it goes, so no element is deleted with children.
    ProjectElement *pending = m_firstChild;
    m_firstChild = m_lastChild = nullptr;
    m_configurationChildren.clear();
    while (pending) {
        ProjectElement *element = pending;
        pending = element->m_nextSibling;
        if (element->m_firstChild) {
            element->m_lastChild->m_nextSibling = pending;
            pending = element->m_firstChild;
            element->m_firstChild = element->m_lastChild = nullptr;
        }
        delete element;
    }
}

QString ProjectElement::tagName(int type)
{
    if (type < 0 || type >= tagCount)
        return QString();
    return QString::fromLatin1(tags[type]);
}

int ProjectElement::typeOfTag(const QString &tag)
{
    for (int type = 0; type < tagCount; ++type) {
        if (tag == QLatin1String(tags[type]))
            return type;
    }
    return NoType;
}

void ProjectElement::appendChild(ProjectElement *child)
{
    if (m_lastChild)
        m_lastChild->m_nextSibling = child;
    else
        m_firstChild = child;
    m_lastChild = child;
    if (child->m_type == Configuration)
        m_configurationChildren.insert(child->getName(), child);
    child->m_parent = this;
    child->m_nextSibling = nullptr;
    m_modified = true;
}

void ProjectElement::removeChild(ProjectElement *child)
{
    ProjectElement *previous = nullptr;
    ProjectElement *current = m_firstChild;
    while (current && current != child) {
        previous = current;
        current = current->m_nextSibling;
    }
    if (!current)
        return;
    if (previous)
        previous->m_nextSibling = child->m_nextSibling;
    else
        m_firstChild = child->m_nextSibling;
    if (m_lastChild == child)
        m_lastChild = previous;
    if (child->m_type == Configuration) {
        // The map keeps naming the last remaining configuration of that name, if any.
        const QString name = m_configurationChildren.key(child);
        if (!name.isNull()) {
            m_configurationChildren.remove(name);
            for (ProjectElement *e = m_firstChild; e; e = e->m_nextSibling) {
                if (e->m_type == Configuration && e->m_attributes.value(nameAttribute) == name)
                    m_configurationChildren.insert(name, e);
            }
        }
    }
    child->m_parent = nullptr;
    child->m_nextSibling = nullptr;
    m_modified = true;
}

ProjectElement *ProjectElement::nextInWalk(const ProjectElement *element,
                                           const ProjectElement *boundary, bool descend)
{
    if (descend && element->m_firstChild)
        return element->m_firstChild;
    for (const ProjectElement *e = element; e && e != boundary; e = e->m_parent) {
        if (e->m_nextSibling)
            return e->m_nextSibling;
    }
    return nullptr;
}

ProjectElement *ProjectElement::nearest(int type) const
{
    for (const ProjectElement *e = this; e; e = e->m_parent) {
        if (e->m_type == type)
            return const_cast<ProjectElement *>(e);
    }
    return nullptr;
}

QString ProjectElement::getName()
{
    return m_attributes[nameAttribute];
}

void ProjectElement::setName(const QString &name, bool fromTemplate)
{
    setAttribute(nameAttribute, name, fromTemplate);
}

bool ProjectElement::hasAttribute(const QString &name) const
{
    if (m_pendingRemoved.contains(name))
        return false;
    if (m_pendingSet.contains(name))
        return true;
    return m_attributes.contains(name);
}

QString ProjectElement::attribute(const QString &name) const
{
    if (m_pendingRemoved.contains(name))
        return QString();
    auto pending = m_pendingSet.constFind(name);
    if (pending != m_pendingSet.cend())
        return *pending;
    return m_attributes.value(name);
}

void ProjectElement::setAttribute(const QString &name, const QString &value, bool fromTemplate)
{
    if (m_inTransaction) {
        m_pendingRemoved.remove(name);
        m_pendingSet.insert(name, value);
        return;
    }
    m_attributes.insert(name, value);
    if (fromTemplate)
        m_fromTemplate.insert(name, true);
    else
        m_fromTemplate.remove(name);
    m_modified = true;
    stampModified(name);
}

QDateTime ProjectElement::s_latestModification;

void ProjectElement::stampModified(const QString &name)
{
    const QDateTime now = QDateTime::currentDateTime();
    m_modifiedDates.insert(name, now);
    if (!s_latestModification.isValid() || now > s_latestModification)
        s_latestModification = now;
}

void ProjectElement::removeAttribute(const QString &name)
{
    if (m_inTransaction) {
        if (m_pendingSet.contains(name))
            m_pendingRemoved.insert(name, m_pendingSet.take(name));
        else
            m_pendingRemoved.insert(name, m_attributes.value(name));
        return;
    }
    m_attributes.remove(name);
    m_fromTemplate.remove(name);
    stampModified(name);
    m_modified = true;
}

void ProjectElement::storeAttribute(const QString &name, const QString &value)
{
    m_attributes.insert(name, value);
}

void ProjectElement::eraseAttribute(const QString &name)
{
    m_attributes.remove(name);
}

void ProjectElement::setAttributesFrom(const XMLElement *xml)
{
    // A solution names a few dozen attributes on thousands of elements; each name is held once.
    static QHash<QByteArray, QString> names;
    for (const XMLElement::Attribute &attribute :
         const_cast<XMLElement *>(xml)->getAttributeList()) {
        const QByteArray raw = QByteArray::fromRawData(attribute.first, qstrlen(attribute.first));
        auto name = names.constFind(raw);
        if (name == names.cend())
            name = names.insert(QByteArray(raw.constData(), raw.size()), QString::fromLatin1(raw));
        m_attributes.insert(*name, nonNull(QString::fromLatin1(attribute.second)));
    }
}

void ProjectElement::getAttributesFrom(XMLElement *xml) const
{
    for (auto it = m_attributes.cbegin(); it != m_attributes.cend(); ++it) {
        const QByteArray name = it.key().toLatin1();
        const QByteArray value = it.value().toLatin1();
        xml->setAttribute(XMLNode::mkString(name.constData(), unsigned(name.size())),
                          XMLNode::mkString(value.constData(), unsigned(value.size())));
    }
}

void ProjectElement::startTransaction()
{
    for (ProjectElement *e = this; e; e = nextInWalk(e, this)) {
        e->m_pendingSet.clear();
        e->m_pendingRemoved.clear();
        e->m_inTransaction = true;
    }
}

void ProjectElement::rollbackTransaction()
{
    for (ProjectElement *e = this; e; e = nextInWalk(e, this)) {
        e->m_pendingSet.clear();
        e->m_pendingRemoved.clear();
        e->m_inTransaction = false;
    }
}

void ProjectElement::commitTransaction()
{
    for (ProjectElement *e = this; e; e = nextInWalk(e, this)) {
        e->m_inTransaction = false;
        const QMap<QString, QString> set = std::exchange(e->m_pendingSet, {});
        for (auto it = set.cbegin(); it != set.cend(); ++it)
            e->setAttribute(it.key(), it.value(), false);
        const QMap<QString, QString> removed = std::exchange(e->m_pendingRemoved, {});
        for (auto it = removed.cbegin(); it != removed.cend(); ++it)
            e->removeAttribute(it.key());
    }
}

bool ProjectElement::hasModifiedProperty(const QString &name, QDateTime &out) const
{
    auto it = m_modifiedDates.constFind(name);
    if (it == m_modifiedDates.cend())
        return false;
    out = *it;
    return true;
}

bool ProjectElement::propertyHasChanged(const QString &configuration, const QString &saveName,
                                        const QDateTime &since, bool &changed) const
{
    const ProjectElement *child = getConfigurationElement(configuration);
    if (!child)
        return false;
    auto stamp = child->m_modifiedDates.constFind(saveName);
    if (stamp == child->m_modifiedDates.cend())
        return false;
    changed = *stamp > since;
    if (changed)
        return true;
    // An older stamp decides only while the value it dates is still there.
    return child->hasAttribute(saveName);
}

ProjectElement *ProjectElement::getConfigurationElement(const QString &configuration) const
{
    return m_configurationChildren.value(configuration, nullptr);
}

bool ProjectElement::getProperty(const QString &configuration, const QString &saveName,
                                 QString &result, PropertyInheritanceInformation *trace) const
{
    auto child = m_configurationChildren.constFind(configuration);
    if (child == m_configurationChildren.cend())
        return false;
    const ProjectElement *element = *child;
    QString value;
    if (element->m_pendingSet.isEmpty() && element->m_pendingRemoved.isEmpty()) {
        auto it = element->m_attributes.constFind(saveName);
        if (it == element->m_attributes.cend())
            return false;
        value = *it;
    } else {
        if (!element->hasAttribute(saveName))
            return false;
        value = element->attribute(saveName);
    }
    if (trace)
        trace->append({value, child.key(), const_cast<ProjectElement *>(this)});
    if (result.isEmpty())
        result = nonNull(value);
    else
        result += QLatin1Char(';') + value;
    return true;
}

void ProjectElement::setPath(const QString &path)
{
    m_fileInfoValid = true;
    m_path.setPath(path);
    m_pathStale = false;
    m_filePath = path;
    m_fileInfo.reset();
}

void ProjectElement::doFileStuff(const QFileInfo &info)
{
    ProjectElement *project = nearest(Project);
    if (!project) {
        project = this;
        while (project->m_parent)
            project = project->m_parent;
    }
    // The files of a project come one after another; they share one copy of its directory.
    static QString lastProjectDirectory;
    m_projectDirectory = ProjectSystem::projectDirectoryPath(project);
    if (m_projectDirectory == lastProjectDirectory)
        m_projectDirectory = lastProjectDirectory;
    else
        lastProjectDirectory = m_projectDirectory;
    QString relative;
    bool hasRelativeForm = true;
    if (info.isRelative())
        m_relativePath = info.filePath();
    else if ((hasRelativeForm = Path::relativeDirPath(m_projectDirectory, info.path(), relative)))
        m_relativePath =
            relative.isEmpty() ? info.fileName() : relative + QLatin1Char('/') + info.fileName();
    else
        m_relativePath = info.absoluteFilePath();
    const QString full =
        hasRelativeForm ? m_projectDirectory + QLatin1Char('/') + m_relativePath : m_relativePath;
    m_pathStale = true;
    m_filePath = full;
    m_fileInfo.reset();
    m_fileInfoValid = true;
}

void ProjectElement::checkDoFileStuff()
{
    if (m_fileInfoValid)
        return;
    // Most names hold no macro; those need not see the global set made.
    const QString raw = m_attributes.value(fileNameAttribute);
    doFileStuff(QFileInfo(raw.contains(QLatin1Char('$'))
                              ? macroSystem.replaceMacros(macroSystem.globalMacros(true), raw)
                              : raw));
}

void ProjectElement::setFile(const QString &path, bool fromTemplate)
{
    const QFileInfo info(path);
    doFileStuff(info);
    QString belowBench;
    bool underBench = false;
    if (m_relativePath == info.absoluteFilePath() ||
        m_relativePath.startsWith(QLatin1String(".."))) {
        const QString benchDir = macroSystem.globalMacros(true).value(QStringLiteral("BenchDir"));
        underBench = !benchDir.isEmpty() &&
                     Path::relativeDirPath(benchDir, info.path(), belowBench) &&
                     !belowBench.startsWith(QLatin1String(".."));
    }
    if (underBench)
        storeAttribute(fileNameAttribute,
                       QStringLiteral("$(BenchDir)/") +
                           (belowBench.isEmpty()
                                ? info.fileName()
                                : belowBench + QLatin1Char('/') + info.fileName()));
    else
        storeAttribute(fileNameAttribute, m_relativePath);
    setName(info.fileName(), fromTemplate);
}

void ProjectElement::setFileName(const QString &name, bool fromTemplate)
{
    storeAttribute(fileNameAttribute, name);
    m_fileInfoValid = false;
    checkDoFileStuff();
    setName(QFileInfo(m_filePath).fileName(), fromTemplate);
}

const Path &ProjectElement::path()
{
    checkDoFileStuff();
    return storedPath();
}

const Path &ProjectElement::storedPath() const
{
    if (m_pathStale) {
        m_path.setPath(m_filePath);
        m_pathStale = false;
    }
    return m_path;
}

const QFileInfo &ProjectElement::fileInfo()
{
    checkDoFileStuff();
    if (!m_fileInfo)
        m_fileInfo = std::make_unique<QFileInfo>(m_filePath);
    return *m_fileInfo;
}

QString ProjectElement::filePath()
{
    checkDoFileStuff();
    return m_filePath;
}

QString ProjectElement::projectDirectory()
{
    checkDoFileStuff();
    return m_projectDirectory;
}

QString ProjectElement::relativePath()
{
    checkDoFileStuff();
    return m_relativePath;
}

void ProjectElement::updateInheritenceMap()
{
    m_inheritedConfigurations.clear();
    for (auto it = m_configurationChildren.cbegin(); it != m_configurationChildren.cend(); ++it) {
        const ProjectElement *child = *it;
        if (child->hasAttribute(inheritedConfigurationsAttribute))
            m_inheritedConfigurations.insert(it.key(),
                                             child->attribute(inheritedConfigurationsAttribute)
                                                 .split(QLatin1Char(';'), Qt::SkipEmptyParts));
    }
}
