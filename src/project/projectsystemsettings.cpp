// Resolving settings through the element tree and the configurations.

#include "project/projectelement.h"
#include "project/projectpropertyvalue.h"
#include "project/projectsystem.h"

#include "engine/builder.h"
#include "foundation/path.h"
#include "foundation/qtx.h"
#include "properties/propertyclass.h"
#include "properties/propertyvaluelist.h"
#include "properties/simplepropertyvalue.h"

namespace {

const QString &common()
{
    return ProjectElement::commonConfiguration();
}

/// The solution above `element`, not `element` itself.
const ProjectElement *enclosingSolution(const ProjectElement *element)
{
    return element->parent() ? element->parent()->nearest(ProjectElement::Solution) : nullptr;
}

/// The inherited list of `configuration` in `solution`, or else in the first enclosing
/// solution that has a non-empty one.
QStringList inheritedListFrom(const ProjectElement *solution, const QString &configuration)
{
    for (; solution; solution = enclosingSolution(solution)) {
        const auto &lists = solution->inheritedConfigurations();
        auto it = lists.constFind(configuration);
        if (it != lists.cend() && !it->isEmpty())
            return *it;
    }
    return QStringList();
}

/// The inherited list of one configuration as seen from each element of an upward walk. The
/// list is worked out once per solution the walk passes, so the walk stays linear in its
/// length.
class InheritedLists
{
public:
    explicit InheritedLists(const QString &configuration) : m_configuration(configuration) {}

    /// The list as seen from `element`, the walk's current element.
    const QStringList &seenFrom(const ProjectElement *element)
    {
        if (!m_valid) {
            m_solution = element->nearest(ProjectElement::Solution);
            m_list = inheritedListFrom(m_solution, m_configuration);
            m_valid = true;
        }
        return m_list;
    }
    /// Tells that the walk leaves `element` for its parent.
    void leaving(const ProjectElement *element)
    {
        if (m_valid && element == m_solution)
            m_valid = false;
    }

private:
    const QString &m_configuration;
    const ProjectElement *m_solution = nullptr;
    QStringList m_list;
    bool m_valid = false;
};

} // namespace

void ProjectSystem::setSettingsSteady(bool steady)
{
    m_settingsSteady = steady;
    m_steadySettings.clear();
    m_steadyDirectories.clear();
}

QString ProjectSystem::settingFor(ProjectElement *element, const PropertyClass *propertyClass,
                                  const QString &configuration,
                                  PropertyInheritanceInformation *trace) const
{
    if (!m_settingsSteady || trace)
        return resolveSetting(element, propertyClass, configuration, trace);
    QString result;
    for (const QString &value :
         steadyValues(settingsOwner(element), propertyClass, configuration)) {
        if (result.isEmpty())
            result = value;
        else
            result += QLatin1Char(';') + value;
    }
    return result.isNull() ? propertyClass->defaultValue() : result;
}

ProjectElement *ProjectSystem::settingsOwner(ProjectElement *element)
{
    while (element && !element->hasConfigurationChildren())
        element = element->parent();
    return element;
}

const QStringList &ProjectSystem::steadyValues(ProjectElement *anchor,
                                               const PropertyClass *propertyClass,
                                               const QString &configuration) const
{
    // The walk of `resolveSetting` skips elements without settings of their own, and what it
    // finds above an element is the same whichever element below it asked; so the values
    // found from each element that has settings are kept, and the thousands of files of a
    // build share their project's.
    static const QStringList none;
    if (!anchor)
        return none;
    const SettingKey key{anchor, propertyClass, configuration};
    auto known = m_steadySettings.constFind(key);
    if (known != m_steadySettings.cend())
        return *known;

    const bool list = propertyClass->type() == PropertyClass::StringList;
    const QString saveName = propertyClass->saveName();
    QStringList values;
    auto take = [&](const QString &name) {
        QString value;
        if (!anchor->getProperty(name, saveName, value, nullptr))
            return false;
        values.append(value);
        return !list;
    };
    bool done = take(configuration);
    if (!done && configuration != common()) {
        for (const QString &name :
             inheritedListFrom(anchor->nearest(ProjectElement::Solution), configuration)) {
            if ((done = take(name)))
                break;
        }
        done = done || take(common());
    }
    if (!done)
        values += steadyValues(settingsOwner(anchor->parent()), propertyClass, configuration);
    // A file with settings of its own is asked about once or twice a build: keeping its
    // answers would only cost memory.
    if (anchor->type() == ProjectElement::File) {
        m_fileValues = values;
        return m_fileValues;
    }
    return *m_steadySettings.insert(key, values);
}

QString ProjectSystem::resolveSetting(ProjectElement *element, const PropertyClass *propertyClass,
                                      const QString &configuration,
                                      PropertyInheritanceInformation *trace) const
{
    QString result;
    const bool list = propertyClass->type() == PropertyClass::StringList;
    const QString saveName = propertyClass->saveName();
    const bool isCommon = configuration == common();
    InheritedLists inherited(configuration);
    for (ProjectElement *e = element; e; e = e->parent()) {
        if (e->hasConfigurationChildren()) {
            if (e->getProperty(configuration, saveName, result, trace) && !list)
                return result;
            if (!isCommon) {
                for (const QString &name : inherited.seenFrom(e)) {
                    if (e->getProperty(name, saveName, result, trace) && !list)
                        return result;
                }
                if (e->getProperty(common(), saveName, result, nullptr) && !list)
                    return result;
            }
        }
        inherited.leaving(e);
    }
    // A find is never null, so a null result means nothing was found anywhere.
    if (!result.isNull())
        return result;
    if (trace)
        trace->append({propertyClass->defaultValue(), QString(), nullptr});
    return propertyClass->defaultValue();
}

QString ProjectSystem::specificSettingFor(ProjectElement *element,
                                          const PropertyClass *propertyClass,
                                          const QString &configuration)
{
    QString result;
    if (element)
        element->getProperty(configuration, propertyClass->saveName(), result, nullptr);
    return result;
}

QString ProjectSystem::configurationUsedFor(ProjectElement *element,
                                            const PropertyClass *propertyClass,
                                            const QString &configuration) const
{
    if (!element || !element->hasConfigurationChildren())
        return QString();
    const QString saveName = propertyClass->saveName();
    auto holds = [&](const QString &name) {
        const ProjectElement *child = element->getConfigurationElement(name);
        return child && child->hasAttribute(saveName);
    };
    if (holds(configuration))
        return configuration;
    if (configuration == common())
        return QString();
    const QStringList inherited =
        inheritedListFrom(element->nearest(ProjectElement::Solution), configuration);
    for (const QString &name : inherited) {
        if (holds(name))
            return name;
    }
    return holds(common()) ? common() : QString();
}

QStringList ProjectSystem::configurations(ProjectElement *element, int mode) const
{
    QStringList list;
    if (mode & 1)
        list.append(common());
    const ProjectElement *solution = element ? solutionContaining(element) : m_rootSolution;
    if (solution)
        configurations(solution, list, mode);
    list.sort();
    if (list.isEmpty())
        list.append(common());
    return list;
}

void ProjectSystem::configurations(const ProjectElement *element, QStringList &list, int mode)
{
    for (const ProjectElement *e = element; e; e = e->parent()) {
        const auto &children = e->configurationChildren();
        for (auto it = children.cbegin(); it != children.cend(); ++it) {
            if (list.contains(it.key()))
                continue;
            if ((*it)->hasAttribute(QStringLiteral("hidden"))) {
                if (mode & 2)
                    list.append(it.key());
            } else if ((mode & 4) && it.key() != common()) {
                list.append(it.key());
            }
        }
    }
}

QStringList ProjectSystem::getInheritedConfigurations(const ProjectElement *element,
                                                      const QString &configuration)
{
    const ProjectElement *solution = solutionContaining(element);
    return solution ? solution->inheritedConfigurations().value(configuration) : QStringList();
}

void ProjectSystem::setInheritedConfigurations(ProjectElement *element,
                                               const QString &configuration,
                                               const QStringList &list)
{
    ProjectElement *solution = solutionContaining(element);
    if (!solution)
        return;
    setProperty(solution, inheritedConfigurationsClass, configuration, list.join(QLatin1Char(';')));
    solution->updateInheritenceMap();
}

bool ProjectSystem::upToDate1(ProjectElement *element, const PropertyClass *propertyClass,
                              const QString &configuration, const QDateTime &since) const
{
    // Only a change stamped after `since` can make the answer false: when there is none
    // anywhere, which is every console build, the walk is not needed.
    if (!ProjectElement::changedAfter(since))
        return true;
    const bool list = propertyClass->type() == PropertyClass::StringList;
    const QString saveName = propertyClass->saveName();
    QStringList inherited;
    if (configuration != common())
        inherited = getInheritedConfigurations(element, configuration);
    for (ProjectElement *e = element; e; e = e->parent()) {
        if (!e->hasConfigurationChildren())
            continue;
        // -1: this configuration doesn't decide; 0: changed; 1: unchanged.
        auto verdict = [&](const QString &name) {
            bool changed = false;
            if (!e->propertyHasChanged(name, saveName, since, changed))
                return -1;
            if (!list)
                return changed ? 0 : 1;
            return changed ? 0 : -1;
        };
        int answer = verdict(configuration);
        for (qsizetype i = 0; answer < 0 && i < inherited.size(); ++i)
            answer = verdict(inherited.at(i));
        if (answer < 0)
            answer = verdict(common());
        if (answer >= 0)
            return answer == 1;
    }
    return true;
}

bool ProjectSystem::upToDate(ProjectElement *element, const PropertyClass *propertyClass,
                             const QString &configuration, const QDateTime &since, Builder *builder,
                             bool quiet) const
{
    const bool answer = upToDate1(element, propertyClass, configuration, since);
    if (!answer && !quiet && builder)
        builder->message(propertyClass->shortDescription() +
                         QStringLiteral(" property has changed."));
    return answer;
}

namespace {

/// Adds `value` to `list` unless a value of its class is there already, in which case it
/// is deleted: a list that refuses a value doesn't own it.
void addValue(PropertyValueList *list, PropertyValue *value)
{
    if (list->find(value->propertyClass()))
        delete value;
    else
        list->appendUnique(value);
}

} // namespace

PropertyValueList *ProjectSystem::settingsFor(ProjectElement *element, const QString &configuration)
{
    PropertyValueList *values = applicableSettingsFor(element, configuration);
    auto simple = [values](PropertyClass *propertyClass, const QString &value) {
        addValue(values, new SimplePropertyValue(propertyClass, value));
    };
    auto bound = [values, element](PropertyClass *propertyClass, const QString &configuration) {
        addValue(values, new ProjectPropertyValue(propertyClass, configuration, element));
    };
    auto dates = [&](const Path &path) {
        simple(dateCreatedClass, QTx::friendlyDate(path.created()));
        simple(dateModifiedClass, QTx::friendlyDate(path.lastModified()));
    };
    switch (element->type()) {
    case ProjectElement::File:
        simple(nameClass, element->getName());
        simple(fullPathClass, element->path().canonicalPathQString());
        simple(fileNameClass, element->attributes().value(QStringLiteral("file_name")));
        simple(relativePathClass, element->relativePath());
        dates(element->path());
        break;
    case ProjectElement::Folder:
        simple(nameClass, element->getName());
        bound(filterClass, common());
        break;
    case ProjectElement::Project:
        simple(nameClass, element->getName());
        simple(platformClass, platform(element));
        bound(projectTypeClass, configuration);
        bound(projectDirectoryClass, configuration);
        simple(fullProjectDirectoryClass, projectDirectoryPath(element));
        bound(macrosClass, configuration);
        break;
    case ProjectElement::Solution:
        simple(nameClass, element->getName());
        simple(solutionFileNameClass, element->storedPath().osPathQString());
        dates(element->storedPath());
        bound(macrosClass, configuration);
        break;
    default:
        break;
    }
    return values;
}

PropertyValueList *ProjectSystem::settingsFor(const Path &path)
{
    auto *values = new PropertyValueList(true);
    values->appendUnique(new SimplePropertyValue(fullPathClass, path.canonicalPathQString()));
    values->appendUnique(
        new SimplePropertyValue(dateCreatedClass, QTx::friendlyDate(path.created())));
    values->appendUnique(
        new SimplePropertyValue(dateModifiedClass, QTx::friendlyDate(path.lastModified())));
    return values;
}
