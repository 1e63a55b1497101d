#include "project/solutionwarnings.h"

#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "project/propertyvaluegroupfile.h"
#include "project/propertyvaluegroups.h"
#include "project/settingexpander.h"
#include "properties/propertyclass.h"
#include "properties/propertyvalue.h"
#include "properties/propertyvaluelist.h"

#include <QDir>

#include <memory>

namespace {

/// Attributes of a configuration element that describe the configuration itself.
bool isStructural(const QString &name)
{
    return name == QLatin1String("Name") || name == QLatin1String("hidden") ||
           name == QLatin1String("inherited_configurations");
}

/// Whether `element` is the solution at the top of a file of its own.
bool startsFile(const ProjectElement *element)
{
    return element->type() == ProjectElement::Solution &&
           (element->imported() || !element->parent());
}

QString label(const ProjectElement *element)
{
    const QString name = element->type() == ProjectElement::File
                             ? element->attribute(QStringLiteral("file_name"))
                             : element->attribute(QStringLiteral("Name"));
    return element->getTagName() + QLatin1String(" \"") + name + QLatin1Char('"');
}

/// `path` as the user most likely named it: relative to the working directory when it lies
/// below it.
QString shownPath(const QString &path)
{
    const QString relative = QDir::current().relativeFilePath(path);
    return relative.startsWith(QLatin1String("..")) ? path : relative;
}

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

} // namespace

SolutionWarnings::SolutionWarnings(ProjectSystem *system) : m_system(system) {}

void SolutionWarnings::checkLoadedSolution()
{
    for (const ProjectSystem::SkippedElement &skipped : m_system->skippedElements())
        add(skipped.file, skipped.where,
            QLatin1String("element <") + skipped.tag +
                QLatin1String("> is not understood and is skipped"));
    ProjectElement *root = m_system->solutionElement();
    for (ProjectElement *element = root; element;
         element = ProjectElement::nextInWalk(element, root)) {
        if (element->type() == ProjectElement::Configuration)
            checkConfiguration(element);
    }
}

void SolutionWarnings::checkConfiguration(ProjectElement *configuration)
{
    ProjectElement *owner = configuration->parent();
    if (!owner)
        return;
    const SettingExpander *buildSide = m_system->settingExpander();
    const QMap<QString, QString> &attributes = configuration->attributes();
    for (auto attribute = attributes.cbegin(); attribute != attributes.cend(); ++attribute) {
        const QString &name = attribute.key();
        if (isStructural(name))
            continue;
        const PropertyClass *propertyClass = m_system->findPropertyClass(name);
        if (!propertyClass && buildSide)
            propertyClass = buildSide->findPropertyClass(name);
        if (!propertyClass) {
            if (!isPropertyGroup(owner, configuration->attribute(QStringLiteral("Name")), name))
                warn(configuration, quoted(name) + QLatin1String(" is not a setting"));
            continue;
        }
        const QString &value = attribute.value();
        if (propertyClass->type() == PropertyClass::Enumeration && !value.isEmpty() &&
            !value.contains(QLatin1String("$(")) && !propertyClass->enumerates().contains(value)) {
            warn(configuration,
                 quoted(value) + QLatin1String(" is not a value of ") + name +
                     QLatin1String("; it takes ") +
                     quoted(propertyClass->enumerates().join(QLatin1String("\", \""))));
        } else if (propertyClass == m_system->projectDependenciesClass) {
            for (const QString &dependency : value.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
                if (!dependency.contains(QLatin1String("$(")) &&
                    !ProjectSystem::findProject(owner, dependency))
                    warn(configuration, QLatin1String("project_dependencies names ") +
                                            quoted(dependency) +
                                            QLatin1String(", which is no project"));
            }
        }
    }
}

bool SolutionWarnings::isPropertyGroup(ProjectElement *owner, const QString &configuration,
                                       const QString &saveName)
{
    // Groups are offered to a project or a solution, and a value set below one reaches it.
    for (ProjectElement *groupOwner :
         {ProjectSystem::projectContaining(owner), ProjectSystem::solutionContaining(owner)}) {
        if (!groupOwner)
            continue;
        const auto key = qMakePair(groupOwner, configuration);
        auto names = m_groupNames.find(key);
        if (names == m_groupNames.end()) {
            names = m_groupNames.insert(key, {});
            // Asking makes the owner's group file current; the build must find the one it
            // would have found without the check.
            const PropertyValueGroupFile *current = propertyValueGroups.currentFile();
            const QString currentPath = current ? current->path() : QStringLiteral("None");
            const std::unique_ptr<PropertyValueList> values(
                m_system->applicableSettingsFor(groupOwner, configuration));
            propertyValueGroups.setGroupFile(currentPath);
            for (const PropertyValue *value : std::as_const(*values)) {
                if (value->propertyClass())
                    names->insert(value->propertyClass()->saveName());
            }
        }
        if (names->contains(saveName))
            return true;
    }
    return false;
}

void SolutionWarnings::warn(const ProjectElement *element, const QString &text)
{
    if (!hasRoom()) {
        ++m_omitted;
        return;
    }
    const ProjectElement *file = element;
    while (file && !startsFile(file))
        file = file->parent();
    // path() refreshes cached file data, so it isn't const; the element isn't changed.
    const QString path = file ? const_cast<ProjectElement *>(file)->path().filePath() : QString();
    add(path, where(element), text);
}

void SolutionWarnings::add(const QString &file, const QString &where, const QString &text)
{
    if (!hasRoom()) {
        ++m_omitted;
        return;
    }
    m_lines.append(QLatin1String("warning: ") + shownPath(file) + QLatin1String(": ") + where +
                   QLatin1String(": ") + text);
}

void SolutionWarnings::write(std::FILE *stream) const
{
    for (const QString &line : m_lines)
        std::fprintf(stream, "%s\n", line.toLocal8Bit().constData());
    if (m_omitted > 0)
        std::fprintf(stream, "warning: %d more warnings not shown\n", m_omitted);
}

QString SolutionWarnings::where(const ProjectElement *element)
{
    QStringList labels;
    for (; element && !startsFile(element); element = element->parent())
        labels.prepend(label(element));
    if (labels.isEmpty() && element)
        labels.append(label(element));
    return labels.join(QLatin1String(", "));
}
