// Finding elements in the loaded tree and reading the settings that locate them.

#include "project/projectelement.h"
#include "project/projectsystem.h"

#include "foundation/path.h"

#include <QDir>

namespace {

const QString nameAttribute = QStringLiteral("Name");
const QString projectDirectorySaveName = QStringLiteral("project_directory");

/// The first element from `start` on, over its subtree and its later siblings with theirs,
/// for which `match` holds.
template <typename Match> ProjectElement *findFrom(ProjectElement *start, Match match)
{
    if (!start)
        return nullptr;
    const ProjectElement *boundary = start->parent();
    for (ProjectElement *e = start; e; e = ProjectElement::nextInWalk(e, boundary)) {
        if (match(e))
            return e;
    }
    return nullptr;
}

/// The first child of `element` of `type` for which `match` holds.
template <typename Match> ProjectElement *childWhere(ProjectElement *element, int type, Match match)
{
    for (ProjectElement *child = element ? element->firstChild() : nullptr; child;
         child = child->nextSibling()) {
        if (child->type() == type && match(child))
            return child;
    }
    return nullptr;
}

/// The "Common" value `saveName` stored on `element` itself, or a null string.
QString commonSetting(ProjectElement *element, const QString &saveName)
{
    QString result;
    if (element)
        element->getProperty(ProjectElement::commonConfiguration(), saveName, result, nullptr);
    return result;
}

} // namespace

ProjectElement *ProjectSystem::findByName(ProjectElement *element, const QString &name)
{
    return findFrom(element, [&](const ProjectElement *e) {
        return e->attributes().value(nameAttribute) == name;
    });
}

ProjectElement *ProjectSystem::findConfiguration(ProjectElement *element, const QString &name)
{
    return childWhere(element, ProjectElement::Configuration, [&](const ProjectElement *e) {
        return e->attributes().value(nameAttribute) == name;
    });
}

ProjectElement *ProjectSystem::findFolder(ProjectElement *element, const QString &name)
{
    return childWhere(element, ProjectElement::Folder, [&](const ProjectElement *e) {
        return e->attributes().value(nameAttribute) == name;
    });
}

ProjectElement *ProjectSystem::findFile(ProjectElement *element, const QString &fileName)
{
    return childWhere(element, ProjectElement::File, [&](const ProjectElement *e) {
        return e->attributes().value(QStringLiteral("file_name")) == fileName;
    });
}

ProjectElement *ProjectSystem::findRelativeFile(ProjectElement *element, const QString &name)
{
    const QString wanted = name.toUpper();
    return findFrom(element, [&](ProjectElement *e) {
        return e->type() == ProjectElement::File && e->relativePath().toUpper() == wanted;
    });
}

ProjectElement *ProjectSystem::findAbsoluteFile(ProjectElement *element, const Path &path)
{
    return findFrom(element, [&](ProjectElement *e) {
        return (e->type() == ProjectElement::File || e->type() == ProjectElement::Solution) &&
               e->path() == path;
    });
}

bool ProjectSystem::containsFile(ProjectElement *element, const Path &path)
{
    for (ProjectElement *e = ProjectElement::nextInWalk(element, element); e;
         e = ProjectElement::nextInWalk(e, element)) {
        if (e->type() == ProjectElement::File && e->path() == path)
            return true;
    }
    return false;
}

ProjectElement *ProjectSystem::findProject(ProjectElement *element, const QString &name)
{
    for (ProjectElement *solution = solutionContaining(element); solution;
         solution = solutionContaining(solution->parent())) {
        auto it = solution->projects().constFind(name);
        if (it != solution->projects().cend())
            return *it;
    }
    return nullptr;
}

QList<ProjectElement *> ProjectSystem::sourceFiles(ProjectElement *element)
{
    QList<ProjectElement *> files;
    for (ProjectElement *e = ProjectElement::nextInWalk(element, element); e;
         e = ProjectElement::nextInWalk(e, element)) {
        if (e->type() == ProjectElement::File)
            files.append(e);
    }
    return files;
}

ProjectElement *ProjectSystem::solutionContaining(const ProjectElement *element)
{
    return element ? element->nearest(ProjectElement::Solution) : nullptr;
}

ProjectElement *ProjectSystem::projectContaining(const ProjectElement *element)
{
    return element ? element->nearest(ProjectElement::Project) : nullptr;
}

int ProjectSystem::numProjects(const ProjectElement *element)
{
    int count = 0;
    for (const ProjectElement *child = element->firstChild(); child; child = child->nextSibling())
        count += child->type() == ProjectElement::Project;
    return count;
}

QMap<QString, ProjectElement *> ProjectSystem::solutionProjects(ProjectElement *solution) const
{
    if (!solution)
        solution = m_rootSolution;
    return solution ? solution->projects() : QMap<QString, ProjectElement *>();
}

QString ProjectSystem::solutionVersion() const
{
    return m_rootSolution ? m_rootSolution->attribute(QStringLiteral("version")) : QString();
}

QString ProjectSystem::solutionFilePath() const
{
    return m_rootSolution ? m_rootSolution->storedPath().osPathQString() : QString();
}

QString ProjectSystem::solutionDirectory() const
{
    return solutionDirectoryOf(m_rootSolution);
}

QString ProjectSystem::solutionDirectoryOf(ProjectElement *solution)
{
    // The stored path is read directly: working it out from "file_name" would ask for the
    // project directory, which is what this answers.
    const QString path = solution ? solution->storedPath().osPathQString() : QString();
    if (path.isEmpty())
        return QString();
    if (!path.startsWith(QLatin1Char('/')))
        return QFileInfo(path).absolutePath();
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash == 0 ? QStringLiteral("/") : path.left(slash);
}

QString ProjectSystem::projectDirectoryPath(ProjectElement *element)
{
    // Asked for every file a build visits; while settings are steady the answer can't change.
    if (projectSystem && projectSystem->m_settingsSteady) {
        auto known = projectSystem->m_steadyDirectories.constFind(element);
        if (known == projectSystem->m_steadyDirectories.cend())
            known = projectSystem->m_steadyDirectories.insert(element, resolveDirectory(element));
        return *known;
    }
    return resolveDirectory(element);
}

QString ProjectSystem::resolveDirectory(ProjectElement *element)
{
    const QString directory = commonSetting(element, projectDirectorySaveName);
    if (!QDir::isRelativePath(directory))
        return directory;
    const QString base = solutionDirectoryOf(solutionContaining(element));
    if (base.isEmpty())
        return directory.isEmpty() ? QString() : QDir::cleanPath(directory);
    return QDir::cleanPath(base + QLatin1Char('/') + directory);
}

QString ProjectSystem::getProjectDirectory(ProjectElement *element)
{
    return commonSetting(element, projectDirectorySaveName);
}

QString ProjectSystem::getProjectType(ProjectElement *element)
{
    return commonSetting(element, QStringLiteral("project_type"));
}

QString ProjectSystem::getFileCodec(ProjectElement *element)
{
    return commonSetting(element, QStringLiteral("file_codec"));
}

QString ProjectSystem::getGlobalProjectName(const ProjectElement *project) const
{
    if (!m_rootSolution)
        return QString();
    return m_rootSolution->projects().key(const_cast<ProjectElement *>(project));
}
