// Loading, saving and indexing solution files.

#include "project/projectelement.h"
#include "project/projectfilenotfounderrorhandler.h"
#include "project/projectfilesaveerrorhandler.h"
#include "project/projectsystem.h"
#include "project/projecttemplates.h"
#include "project/solutionloaderror.h"
#include "project/solutionsaveerror.h"
#include "project/solutionwarnings.h"

#include "foundation/path.h"
#include "macros/macrosystem.h"
#include "xml/xmldocument.h"
#include "xml/xmlelement.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace {

const QString fileNameAttribute = QStringLiteral("file_name");
const QString templateNameAttribute = QStringLiteral("template_name");

/// Solutions may nest, in a file or through imports, this deep. Every nested solution makes
/// the names of the projects below it longer and adds them to one more index, so an
/// unbounded depth would let a small file demand memory without bound.
const int maxSolutionNesting = 32;

/// Makes a pool current for as long as it lives.
class CurrentPool
{
public:
    explicit CurrentPool(Pool *pool) : m_previous(Pool::setCurrentPool(pool)) {}
    ~CurrentPool() { Pool::setCurrentPool(m_previous); }
    CurrentPool(const CurrentPool &) = delete;
    CurrentPool &operator=(const CurrentPool &) = delete;

private:
    Pool *m_previous;
};

const char *poolString(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    return XMLNode::mkString(bytes.constData(), unsigned(bytes.size()));
}

bool isImport(const XMLElement *xml)
{
    return xml->tagName() && qstrcmp(xml->tagName(), "import") == 0;
}

/// Visits the elements of the chain from `first` and, where `visit` asks, their children, in
/// document order and without recursion. `visit(element, context)` is given the context of
/// the element's chain and returns the context for the element's own children, or nothing to
/// pass over them.
template <typename Context, typename Visit>
void walkDown(ProjectElement *first, Context context, Visit visit)
{
    std::vector<std::pair<ProjectElement *, Context>> levels;
    levels.emplace_back(first, std::move(context));
    while (!levels.empty()) {
        const auto [element, current] = levels.back();
        if (!element) {
            levels.pop_back();
            continue;
        }
        levels.back().first = element->nextSibling();
        if (std::optional<Context> below = visit(element, current))
            levels.emplace_back(element->firstChild(), std::move(*below));
    }
}

/// The XML element children of `node`, from `node` on along its siblings.
XMLElement *nextElement(XMLNode *node)
{
    for (; node; node = node->nextSibling) {
        if (auto *element = dynamic_cast<XMLElement *>(node))
            return element;
    }
    return nullptr;
}

} // namespace

// Loading.

ProjectElement *ProjectSystem::loadSolution(const QString &path,
                                            ProjectFileNotFoundErrorHandler *handler)
{
    closeSolution();
    m_pendingTemplates.clear();
    m_skippedElements.clear();
    try {
        m_rootSolution = loadProjectFile(QString(), path, handler);
    } catch (...) {
        m_pendingTemplates.clear();
        m_loadStack.clear();
        throw;
    }
    if (!m_pendingTemplates.isEmpty())
        expandTemplates();
    updateProjectList();
    emit solutionLoaded();
    return m_rootSolution;
}

void ProjectSystem::expandTemplates()
{
    ProjectTemplates templates(this);
    const QList<ProjectElement *> pending = std::exchange(m_pendingTemplates, {});
    for (ProjectElement *element : pending) {
        const QString templateName = element->attribute(templateNameAttribute);
        element->removeAttribute(templateNameAttribute);
        XMLElement *projectTemplate = templates.findTemplate(templateName);
        if (!projectTemplate) {
            closeSolution();
            throw SolutionLoadError(templateName, QStringLiteral(" project template not found"));
        }
        templates.createProjectFromTemplate(solutionContaining(element->parent()), element,
                                            projectTemplate);
    }
    // What the templates filled in is part of the solution as loaded, not a change to save.
    clearModified(m_rootSolution, true, true);
}

ProjectElement *ProjectSystem::loadProjectFile(const QString &directory, const QString &path,
                                               ProjectFileNotFoundErrorHandler *handler)
{
    return loadProjectFileAt(directory, path, handler, 0);
}

ProjectElement *ProjectSystem::loadProjectFileAt(const QString &directory, const QString &path,
                                                 ProjectFileNotFoundErrorHandler *handler,
                                                 int solutionDepth)
{
    QString name = path;
    if (!QFileInfo::exists(name) && !directory.isEmpty())
        name = directory + QLatin1Char('/') + path;
    if (!QFileInfo::exists(name) && !(handler && handler->fileNotFound(name)))
        throw SolutionLoadError(name, QStringLiteral(" does not exist"));
    const QFileInfo info(name);
    {
        QFile file(name);
        if (info.isDir() || !file.open(QIODevice::ReadOnly))
            throw SolutionLoadError(name, QStringLiteral(" cannot access"));
    }
    const QString absolute = info.absoluteFilePath();
    if (m_loadStack.contains(absolute))
        throw SolutionLoadError(absolute, QStringLiteral(" solution already loaded"));

    XMLDocument document;
    if (!document.load(Path::toOsBytes(name).constData()))
        throw SolutionLoadError(name, QString::fromLatin1(document.error), document.errorLine);
    auto *root = dynamic_cast<XMLElement *>(document.root);
    if (!document.docType || QString::fromLatin1(document.docType) != solutionDocumentType() ||
        !root || !root->tagName() || qstrcmp(root->tagName(), "solution") != 0)
        throw SolutionLoadError(name, QStringLiteral(" not a solution file"));

    m_loadStack.append(absolute);
    std::unique_ptr<ProjectElement> element;
    try {
        element.reset(domToElementAt(info.absolutePath(), root, handler, solutionDepth));
    } catch (...) {
        m_loadStack.removeLast();
        throw;
    }
    element->setPath(absolute);
    element->setLoadDate(info.lastModified());
    m_loadStack.removeLast();
    munge(element.get());
    return element.release();
}

ProjectElement *ProjectSystem::domToElement(const QString &directory, XMLElement *xml,
                                            ProjectFileNotFoundErrorHandler *handler)
{
    return domToElementAt(directory, xml, handler, 0);
}

ProjectElement *ProjectSystem::domToElementAt(const QString &directory, XMLElement *xml,
                                              ProjectFileNotFoundErrorHandler *handler,
                                              int solutionDepth)
{
    if (isImport(xml))
        return loadImport(directory, xml, handler, solutionDepth);

    const qsizetype pendingBefore = m_pendingTemplates.size();
    // Makes the element of `xml`, or null for a tag the format doesn't know.
    auto makeElement = [&](const XMLElement *from, int depth) -> ProjectElement * {
        auto *element = new ProjectElement(QString::fromLatin1(from->tagName()));
        if (element->type() == ProjectElement::NoType) {
            delete element;
            return nullptr;
        }
        if (element->type() == ProjectElement::Solution && depth >= maxSolutionNesting) {
            delete element;
            throw SolutionLoadError(m_loadStack.isEmpty() ? QString() : m_loadStack.last(),
                                    QStringLiteral(" solutions nested too deeply"));
        }
        element->setAttributesFrom(from);
        if (from->hasAttribute("template_name"))
            m_pendingTemplates.append(element);
        return element;
    };
    auto depthBelow = [](const ProjectElement *element, int depth) {
        return element->type() == ProjectElement::Solution ? depth + 1 : depth;
    };

    try {
        std::unique_ptr<ProjectElement> top(makeElement(xml, solutionDepth));
        if (!top)
            return nullptr;
        // One entry per element whose children are being read: the next XML child to read,
        // the element it goes under and the number of solutions at or above that element.
        struct Level
        {
            XMLElement *next;
            ProjectElement *parent;
            int depth;
        };
        std::vector<Level> levels{
            {nextElement(xml->firstChild), top.get(), depthBelow(top.get(), solutionDepth)}};
        while (!levels.empty()) {
            const Level level = levels.back();
            if (!level.next) {
                levels.pop_back();
                continue;
            }
            levels.back().next = nextElement(level.next->nextSibling);
            ProjectElement *child = isImport(level.next)
                                        ? loadImport(directory, level.next, handler, level.depth)
                                        : makeElement(level.next, level.depth);
            if (!child) {
                m_skippedElements.append({m_loadStack.last(), SolutionWarnings::where(level.parent),
                                          QString::fromLatin1(level.next->tagName())});
                continue;
            }
            level.parent->appendChild(child);
            level.parent->setModified(false);
            if (!child->imported())
                levels.push_back(
                    {nextElement(level.next->firstChild), child, depthBelow(child, level.depth)});
        }
        return top.release();
    } catch (...) {
        m_pendingTemplates.resize(pendingBefore);
        throw;
    }
}

ProjectElement *ProjectSystem::loadImport(const QString &directory, const XMLElement *xml,
                                          ProjectFileNotFoundErrorHandler *handler,
                                          int solutionDepth)
{
    const QString fileName = QString::fromLatin1(xml->attribute("file_name"));
    const QString expanded = macroSystem.replaceMacros(macroSystem.globalMacros(true), fileName);
    ProjectElement *solution = loadProjectFileAt(directory, expanded, handler, solutionDepth);
    solution->storeAttribute(fileNameAttribute, fileName.isNull() ? QStringLiteral("") : fileName);
    solution->setImported(true);
    solution->setModified(false);
    return solution;
}

ProjectElement *ProjectSystem::importSolution(ProjectElement *parent, const QString &path,
                                              ProjectFileNotFoundErrorHandler *handler)
{
    m_loadStack.clear();
    int solutionDepth = 0;
    for (ProjectElement *e = parent; e; e = e->parent()) {
        if (e->type() == ProjectElement::Solution) {
            m_loadStack.append(e->path().osPathQString());
            ++solutionDepth;
        }
    }
    const QString directory = solutionDirectoryOf(solutionContaining(parent));
    const QString relative = Path::relativeFilePath(directory, path);
    ProjectElement *solution = nullptr;
    try {
        solution = loadProjectFileAt(directory, relative, handler, solutionDepth);
    } catch (...) {
        m_loadStack.clear();
        throw;
    }
    m_loadStack.clear();
    solution->storeAttribute(fileNameAttribute, relative);
    solution->setImported(true);
    solution->setModified(false);
    parent->appendChild(solution);
    updateProjectList();
    return solution;
}

void ProjectSystem::closeSolution()
{
    m_projectNames.clear();
    m_solutionNames.clear();
    m_solutions.clear();
    m_loadStack.clear();
    m_pendingTemplates.clear();
    delete m_rootSolution;
    m_rootSolution = nullptr;
}

// Saving.

void ProjectSystem::save(ProjectFileSaveErrorHandler *handler)
{
    for (ProjectElement *solution : std::as_const(m_solutions)) {
        if (!hasOwnFile(solution) || !isModified(solution, false))
            continue;
        bool saved = saveProjectFile(solution);
        if (!saved && handler && handler->saveFailed(solution))
            saved = saveProjectFile(solution);
        if (!saved)
            throw SolutionSaveError(solution);
    }
}

bool ProjectSystem::saveProjectFile(ProjectElement *element, const QString &path)
{
    element->setPath(QFileInfo(path).absoluteFilePath());
    return saveProjectFile(element);
}

bool ProjectSystem::saveProjectFile(ProjectElement *element)
{
    // An imported solution writes its own content; "file_name" belongs to the importing file.
    const bool imported = element->imported();
    const QString importName = element->attributes().value(fileNameAttribute);
    if (imported) {
        element->eraseAttribute(fileNameAttribute);
        element->setImported(false);
    }
    XMLDocument document;
    {
        CurrentPool current(&document.pool);
        document.root = elementToDom(&document, element);
        document.docType = poolString(solutionDocumentType());
    }
    if (imported) {
        element->setImported(true);
        element->storeAttribute(fileNameAttribute, importName);
    }
    const Path &path = element->path();
    if (!document.save(path.osPath(), 2))
        return false;
    element->setLoadDate(QFileInfo(path.osPathQString()).lastModified());
    clearModified(element, false, false);
    emit fileSaved(path);
    return true;
}

XMLElement *ProjectSystem::elementToDom(XMLDocument *document, ProjectElement *element)
{
    CurrentPool current(&document->pool);
    // Makes the XML element of `e` alone; null for an element without a tag.
    auto makeXML = [document](ProjectElement *e) -> XMLElement * {
        if (e->imported()) {
            XMLElement *xml = document->mkXMLElement(poolString(QStringLiteral("import")));
            xml->setAttribute(poolString(fileNameAttribute),
                              poolString(e->attributes().value(fileNameAttribute)));
            return xml;
        }
        const QString tag = e->getTagName();
        if (tag.isNull())
            return nullptr;
        XMLElement *xml = document->mkXMLElement(poolString(tag));
        e->getAttributesFrom(xml);
        return xml;
    };

    XMLElement *top = makeXML(element);
    if (!top || element->imported())
        return top;
    walkDown(element->firstChild(), top,
             [&](ProjectElement *child, XMLElement *parentXML) -> std::optional<XMLElement *> {
                 XMLElement *xml = makeXML(child);
                 if (!xml)
                     return std::nullopt;
                 parentXML->appendChild(xml);
                 if (child->imported())
                     return std::nullopt;
                 return xml;
             });
    return top;
}

// Indexing.

void ProjectSystem::updateProjectList()
{
    m_solutions.clear();
    m_projectNames.clear();
    m_solutionNames.clear();
    if (!m_rootSolution)
        return;

    // Every solution reached through solutions alone, in document order.
    QList<ProjectElement *> solutions;
    std::vector<ProjectElement *> pending{m_rootSolution};
    while (!pending.empty()) {
        ProjectElement *solution = pending.back();
        pending.pop_back();
        solutions.append(solution);
        const size_t firstChild = pending.size();
        for (ProjectElement *child = solution->firstChild(); child; child = child->nextSibling()) {
            if (child->type() == ProjectElement::Solution)
                pending.push_back(child);
        }
        std::reverse(pending.begin() + qsizetype(firstChild), pending.end());
    }

    // Each solution indexes the projects and solutions below it by their names as seen from
    // it: "App" of its own, "App(Sub)" and "App(Sub,Deep)" of nested ones; "Sub,Deep" for a
    // solution. A later key replaces an earlier one.
    for (ProjectElement *solution : std::as_const(solutions)) {
        QMap<QString, ProjectElement *> &projects = solution->projects();
        projects.clear();
        walkDown(solution->firstChild(), QString(),
                 [&](ProjectElement *child, const QString &prefix) -> std::optional<QString> {
                     if (child->type() == ProjectElement::Project) {
                         const QString name = child->getName();
                         projects.insert(prefix.isEmpty()
                                             ? name
                                             : name + QLatin1Char('(') + prefix + QLatin1Char(')'),
                                         child);
                     } else if (child->type() == ProjectElement::Solution) {
                         const QString name = child->getName();
                         const QString fullName =
                             prefix.isEmpty() ? name : prefix + QLatin1Char(',') + name;
                         m_solutions.insert(fullName, child);
                         return fullName;
                     }
                     return std::nullopt;
                 });
        solution->updateInheritenceMap();
    }
    m_solutions.insert(m_rootSolution->getName(), m_rootSolution);

    m_projectNames = m_rootSolution->projects().keys();
    m_projectNames.sort();
    m_solutionNames = m_solutions.keys();
    m_solutionNames.sort();
}
