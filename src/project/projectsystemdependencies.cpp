// Project dependencies, build order and batch configurations. The dependency graph comes from
// the files, so it may hold cycles: every walk here keeps its own stack and ends on any graph.

#include "project/projectelement.h"
#include "project/projectsystem.h"

#include <QHash>

#include <vector>

QList<ProjectElement *> ProjectSystem::directlyDependsOn(ProjectElement *project,
                                                         const QString &configuration) const
{
    QList<ProjectElement *> result;
    const QStringList names = settingFor(project, projectDependenciesClass, configuration)
                                  .split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &name : names) {
        if (ProjectElement *dependency = findProject(project, name))
            result.append(dependency);
    }
    return result;
}

QList<ProjectElement *> ProjectSystem::dependsOn(ProjectElement *project,
                                                 const QString &configuration) const
{
    QList<ProjectElement *> list;
    dependsOn(project, configuration, list);
    return list;
}

void ProjectSystem::dependsOn(ProjectElement *project, const QString &configuration,
                              QList<ProjectElement *> &list) const
{
    if (list.contains(project))
        return;
    QSet<ProjectElement *> listed(list.cbegin(), list.cend());
    // Pre-order: a project enters the list when first reached.
    struct Frame
    {
        QList<ProjectElement *> dependencies;
        qsizetype next;
    };
    list.append(project);
    listed.insert(project);
    std::vector<Frame> stack{{directlyDependsOn(project, configuration), 0}};
    while (!stack.empty()) {
        Frame &frame = stack.back();
        if (frame.next == frame.dependencies.size()) {
            stack.pop_back();
            continue;
        }
        ProjectElement *dependency = frame.dependencies.at(frame.next++);
        if (listed.contains(dependency))
            continue;
        list.append(dependency);
        listed.insert(dependency);
        stack.push_back({directlyDependsOn(dependency, configuration), 0});
    }
}

QList<ProjectElement *> ProjectSystem::buildOrder(ProjectElement *element,
                                                  const QString &configuration,
                                                  QList<DependencyCycle> *cycles) const
{
    QList<ProjectElement *> list;
    QSet<ProjectElement *> done;
    if (element && element->type() == ProjectElement::Solution) {
        for (ProjectElement *project : std::as_const(element->projects()))
            buildOrderFrom(project, configuration, list, done, cycles);
    } else if (element && element->type() == ProjectElement::Project) {
        buildOrderFrom(element, configuration, list, done, cycles);
    }
    return list;
}

void ProjectSystem::buildOrder(ProjectElement *project, const QString &configuration,
                               QList<ProjectElement *> &list, QList<DependencyCycle> *cycles) const
{
    QSet<ProjectElement *> done(list.cbegin(), list.cend());
    buildOrderFrom(project, configuration, list, done, cycles);
}

void ProjectSystem::buildOrderFrom(ProjectElement *project, const QString &configuration,
                                   QList<ProjectElement *> &list, QSet<ProjectElement *> &done,
                                   QList<DependencyCycle> *cycles) const
{
    if (done.contains(project))
        return;
    // Post-order: a project enters the list when all it depends on has. A dependency that is
    // still on the stack closes a cycle; that edge is cut, so the walk ends.
    struct Frame
    {
        ProjectElement *project;
        QList<ProjectElement *> dependencies;
        qsizetype next;
    };
    std::vector<Frame> stack;
    QHash<ProjectElement *, size_t> onStack;
    auto enter = [&](ProjectElement *p) {
        onStack.insert(p, stack.size());
        stack.push_back({p, directlyDependsOn(p, configuration), 0});
    };
    enter(project);
    while (!stack.empty()) {
        Frame &frame = stack.back();
        if (frame.next < frame.dependencies.size()) {
            ProjectElement *dependency = frame.dependencies.at(frame.next++);
            if (done.contains(dependency))
                continue;
            auto open = onStack.constFind(dependency);
            if (open == onStack.cend()) {
                enter(dependency);
                continue;
            }
            if (cycles) {
                DependencyCycle cycle;
                for (size_t i = *open; i < stack.size(); ++i)
                    cycle.append(stack[i].project);
                cycle.append(dependency);
                if (!cycles->contains(cycle))
                    cycles->append(cycle);
            }
            continue;
        }
        ProjectElement *finished = frame.project;
        stack.pop_back();
        onStack.remove(finished);
        list.append(finished);
        done.insert(finished);
    }
}

QList<ProjectSystem::DependencyCycle>
ProjectSystem::dependencyCycles(ProjectElement *element, const QString &configuration) const
{
    QList<DependencyCycle> cycles;
    buildOrder(element, configuration, &cycles);
    return cycles;
}

QString ProjectSystem::dependencyCycleText(const DependencyCycle &cycle) const
{
    QStringList names;
    for (const ProjectElement *project : cycle) {
        QString name = getGlobalProjectName(project);
        if (name.isNull())
            name = project->attributes().value(QStringLiteral("Name"));
        names.append(QLatin1Char('"') + name + QLatin1Char('"'));
    }
    return QStringLiteral("project dependency cycle: ") + names.join(QStringLiteral(" -> "));
}

QStringList ProjectSystem::getBatchBuildConfigurations(ProjectElement *element,
                                                       const QString &configuration) const
{
    const QStringList items = settingFor(element, batchBuildConfigurationsClass, configuration)
                                  .split(QLatin1Char(';'), Qt::SkipEmptyParts);
    const bool commonAlone =
        items.size() == 1 && items.first() == ProjectElement::commonConfiguration();
    const QStringList candidates = configurations(element, commonAlone ? 5 : 4);
    QStringList upperCandidates;
    for (const QString &candidate : candidates)
        upperCandidates.append(candidate.toUpper());
    QStringList result;
    for (const QString &item : items) {
        const qsizetype match = upperCandidates.indexOf(item.toUpper());
        if (match >= 0)
            result.append(candidates.at(match));
    }
    return result;
}

void ProjectSystem::setBatchBuildConfigurations(ProjectElement *element,
                                                const QString &configuration,
                                                const QStringList &list)
{
    setProperty(element, batchBuildConfigurationsClass, configuration, list.join(QLatin1Char(';')),
                false);
}
