#include "project/projecttemplates.h"

#include "foundation/path.h"
#include "macros/macrosystem.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "project/propertyvaluegroups.h"
#include "project/propertyvaluegroupvalue.h"
#include "project/settingexpander.h"
#include "project/xmlchildren.h"
#include "properties/propertyclass.h"
#include "xml/xmlelement.h"

#include <QFileInfo>
#include <QSet>
#include <QtDebug>

#include <cstring>
#include <utility>
#include <vector>

namespace {

const QString &common()
{
    return ProjectElement::commonConfiguration();
}

bool hasTag(const XMLElement *element, const char *tag)
{
    return element->tagName() && std::strcmp(element->tagName(), tag) == 0;
}

/// The first element from `node` on along its siblings, or null.
XMLElement *elementFrom(XMLNode *node)
{
    for (; node; node = node->nextSibling) {
        if (auto *element = dynamic_cast<XMLElement *>(node))
            return element;
    }
    return nullptr;
}

XMLElement *firstChildElement(const XMLElement *element)
{
    return elementFrom(element->firstChild);
}

XMLElement *nextSiblingElement(const XMLElement *element)
{
    return elementFrom(element->nextSibling);
}

/// An item's "configuration", "Common" when it names none.
QString configurationOf(const XMLElement *item)
{
    const QString configuration = attributeText(item, "configuration");
    return configuration.isEmpty() ? common() : configuration;
}

/// Whether the attribute `name` of `item` says `word`, whatever its case.
bool says(const XMLElement *item, const char *name, const char *word)
{
    return attributeText(item, name).toLower() == QLatin1String(word);
}

/// A value to store: an absent attribute is stored as empty, as a file would give it back.
QString stored(const QString &text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

} // namespace

ProjectTemplates::ProjectTemplates(ProjectSystem *system)
    : m_system(system ? system : projectSystem)
{
    const QString path =
        macroSystem.replaceMacros(macroSystem.systemMacros(), QStringLiteral("$(BenchDir)")) +
        QStringLiteral("/targets/project_templates.xml");
    // Templates take no macros and leave "$" in attributes for the projects they fill.
    if (!load(Path::toOsBytes(path).constData(), "", false)) {
        // Without an installation there is simply no template; a file that is there but
        // can't be read is worth saying why.
        if (QFileInfo::exists(path))
            warning(path + QLatin1Char(':') + QString::number(errorLine) + QStringLiteral(": ") +
                    QString::fromLatin1(errorMessage()));
        return;
    }
    if (auto *rootElement = dynamic_cast<XMLElement *>(root))
        enterDefinitions(rootElement);
}

void ProjectTemplates::enterDefinitions(XMLElement *rootElement)
{
    // A pre-order walk without recursion. A `configurations` element enters its definitions
    // on the way back up, after any found below it; of two of a name the one entered last wins.
    struct Level
    {
        XMLElement *element;
        XMLElement *nextChild;
    };
    std::vector<Level> levels;
    auto enter = [&](XMLElement *element) {
        if (hasTag(element, "project") && element->hasAttribute("template_name"))
            m_templates.insert(attributeText(element, "template_name"), element);
        levels.push_back({element, firstChildElement(element)});
    };
    enter(rootElement);
    while (!levels.empty()) {
        Level &level = levels.back();
        if (XMLElement *child = level.nextChild) {
            level.nextChild = nextSiblingElement(child);
            enter(child);
            continue;
        }
        if (hasTag(level.element, "configurations")) {
            for (XMLElement *definition = firstChildElement(level.element); definition;
                 definition = nextSiblingElement(definition)) {
                if (definition->hasAttribute("name"))
                    m_configurations.insert(attributeText(definition, "name"), definition);
            }
        }
        levels.pop_back();
    }
}

XMLElement *ProjectTemplates::findTemplate(const QString &name) const
{
    return m_templates.value(name, nullptr);
}

XMLElement *ProjectTemplates::findConfiguration(const QString &name) const
{
    return m_configurations.value(name, nullptr);
}

void ProjectTemplates::createProjectFromTemplate(ProjectElement *solution, ProjectElement *project,
                                                 XMLElement *projectTemplate)
{
    m_solution = solution;
    m_project = project;
    m_system->setProperty(project, m_system->projectTypeClass, common(),
                          stored(attributeText(projectTemplate, "type")), false);
    createFromTemplate(project, firstChildElement(projectTemplate));
}

void ProjectTemplates::createFromTemplate(ProjectElement *element, XMLElement *xml)
{
    // Items nest inside folders and files as deep as the file does, so the walk keeps its
    // own stack: for each level, the element filled and its next item.
    std::vector<std::pair<ProjectElement *, XMLElement *>> levels{{element, xml}};
    while (!levels.empty()) {
        const auto [target, item] = levels.back();
        if (!item) {
            levels.pop_back();
            continue;
        }
        levels.back().second = nextSiblingElement(item);
        if (ProjectElement *child = createItem(target, item))
            levels.emplace_back(child, firstChildElement(item));
    }
}

ProjectElement *ProjectTemplates::createItem(ProjectElement *element, XMLElement *item)
{
    if (hasTag(item, "folder")) {
        if (!item->hasAttribute("name"))
            return nullptr;
        const QString name = attributeText(item, "name");
        const QString filter = attributeText(item, "filter");
        ProjectElement *folder = ProjectSystem::findFolder(element, name);
        if (!folder)
            return m_system->createFolder(element, name, filter, true);
        QString existing;
        const QString filterName = m_system->filterClass->saveName();
        if (!filter.isEmpty() && !folder->getProperty(common(), filterName, existing, nullptr))
            m_system->setProperty(folder, filterName, common(), filter, true);
        return folder;
    }
    if (hasTag(item, "file")) {
        if (!item->hasAttribute("name"))
            return nullptr;
        // A file with a source is one the template would copy; nothing is added for it.
        if (item->hasAttribute("source"))
            return nullptr;
        QString name = attributeText(item, "name");
        if (!says(item, "expand", "no"))
            name = expandMacros(element, name);
        if (ProjectElement *file = ProjectSystem::findFile(element, name))
            return file;
        return m_system->addFile(element, name, true);
    }
    if (hasTag(item, "property"))
        createProperty(element, item);
    else if (hasTag(item, "propertygroup"))
        createPropertyGroup(element, item);
    else if (hasTag(item, "configuration") && item->hasAttribute("name"))
        createConfiguration(m_solution, m_project, attributeText(item, "name"));
    return nullptr;
}

void ProjectTemplates::createProperty(ProjectElement *element, XMLElement *item)
{
    if (!item->hasAttribute("name") || !item->hasAttribute("value"))
        return;
    const QString name = attributeText(item, "name");
    const QString configuration = configurationOf(item);
    QString existing;
    // What the solution file says wins over the template.
    if (element->getProperty(configuration, name, existing, nullptr))
        return;
    QString value = attributeText(item, "value");
    if (says(item, "expand", "yes"))
        value = expandMacros(element, value);
    m_system->setProperty(element, name, configuration, value, true);
}

void ProjectTemplates::createPropertyGroup(ProjectElement *element, XMLElement *item)
{
    if (!item->hasAttribute("name") || !item->hasAttribute("value"))
        return;
    if (SettingExpander *expander = m_system->settingExpander()) {
        const PropertyClass *pathClass =
            expander->findPropertyClass(QStringLiteral("property_groups_file_path"));
        const QString path =
            pathClass ? expander->settingForExpanded(element, pathClass, common()) : QString();
        if (!path.isEmpty())
            propertyValueGroups.setGroupFile(path);
    }
    const QString name = attributeText(item, "name");
    const QString configuration = configurationOf(item);
    QString existing;
    if (element->getProperty(configuration, name, existing, nullptr))
        return;
    if (PropertyValueGroupClass *groupClass = propertyValueGroups.getGroupClass(name))
        PropertyValueGroupValue(groupClass, element, configuration)
            .setPropertyValue(attributeText(item, "value"), true);
}

void ProjectTemplates::createConfiguration(ProjectElement *solution, ProjectElement *project,
                                           const QString &name)
{
    // Definitions inherit definitions, so making one makes others first; the walk keeps its
    // own stack. A definition already being made is not begun again from within itself: a
    // cycle among "inherited_configurations" records every list and applies each definition
    // once.
    struct Level
    {
        QString name;
        ProjectElement *configuration;
        XMLElement *nextChild;
        QStringList inherited; ///< those of the last inherited list not yet made
    };
    if (!solution)
        return;
    std::vector<Level> levels;
    QSet<QString> underWay;
    auto begin = [&](const QString &definitionName) {
        XMLElement *definition = findConfiguration(definitionName);
        if (!definition || underWay.contains(definitionName))
            return;
        // The child that resolution reads, found without a walk over the solution's children.
        ProjectElement *configuration = solution->getConfigurationElement(definitionName);
        if (!configuration)
            configuration = m_system->createConfiguration(solution, definitionName, true);
        underWay.insert(definitionName);
        levels.push_back({definitionName, configuration, firstChildElement(definition), {}});
    };

    const QString inheritedName = QStringLiteral("inherited_configurations");
    begin(name);
    while (!levels.empty()) {
        Level &level = levels.back();
        if (!level.inherited.isEmpty()) {
            begin(level.inherited.takeFirst());
            continue;
        }
        XMLElement *child = level.nextChild;
        if (!child) {
            underWay.remove(level.name);
            levels.pop_back();
            continue;
        }
        level.nextChild = nextSiblingElement(child);
        const QString n = attributeText(child, "name");
        const QString v = attributeText(child, "value");
        if (n.isEmpty() || v.isEmpty())
            continue;
        ProjectElement *configuration = level.configuration;
        if (n == inheritedName) {
            configuration->setAttribute(n, v, true);
            level.inherited = v.split(QLatin1Char(';'));
        } else if (!configuration->hasAttribute(n)) {
            configuration->setAttribute(n, v, true);
        } else if (configuration->attribute(n) != v) {
            // The solution's value stays for the other projects; this one takes its own.
            m_system->setProperty(project, n, level.name, v, true);
        }
    }
    solution->updateInheritenceMap();
}

QString ProjectTemplates::expandMacros(ProjectElement *element, const QString &text) const
{
    SettingExpander *expander = m_system->settingExpander();
    const QMap<QString, QString> macros =
        expander ? expander->macros(element, common()) : macroSystem.globalMacros(true);
    return macroSystem.replaceMacros(macros, text);
}

void ProjectTemplates::warning(const QString &message)
{
    qWarning("%s", qPrintable(message));
}
