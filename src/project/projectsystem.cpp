#include "project/projectsystem.h"

#include "foundation/path.h"
#include "foundation/product.h"
#include "foundation/qtx.h"
#include "project/projectelement.h"
#include "properties/propertyclass.h"

#include <QRegularExpression>

ProjectSystem *projectSystem = nullptr;

namespace {

const QString information = QStringLiteral("(Information)");

QStringList fileCodecs()
{
    return {
        QStringLiteral("Latin1"),      QStringLiteral("ISO8859-1"),  QStringLiteral("ISO8859-2"),
        QStringLiteral("ISO8859-3"),   QStringLiteral("ISO8859-4"),  QStringLiteral("ISO8859-5"),
        QStringLiteral("ISO8859-6"),   QStringLiteral("ISO8859-7"),  QStringLiteral("ISO8859-8"),
        QStringLiteral("ISO8859-8-i"), QStringLiteral("ISO8859-9"),  QStringLiteral("ISO8859-10"),
        QStringLiteral("ISO8859-13"),  QStringLiteral("ISO8859-14"), QStringLiteral("ISO8859-15"),
        QStringLiteral("CP874"),       QStringLiteral("CP1250"),     QStringLiteral("CP1251"),
        QStringLiteral("CP1252"),      QStringLiteral("CP1253"),     QStringLiteral("CP1254"),
        QStringLiteral("CP1255"),      QStringLiteral("CP1256"),     QStringLiteral("CP1257"),
        QStringLiteral("CP1258"),      QStringLiteral("Big5"),       QStringLiteral("Big5-HKSCS"),
        QStringLiteral("eucJP"),       QStringLiteral("eucKR"),      QStringLiteral("GB2312"),
        QStringLiteral("GBK"),         QStringLiteral("GB18030"),    QStringLiteral("JIS7"),
        QStringLiteral("Shift-JIS"),   QStringLiteral("TSCII"),      QStringLiteral("UTF8"),
        QStringLiteral("UTF16"),       QStringLiteral("KOI8-R"),     QStringLiteral("KOI8-U"),
        QStringLiteral("IBM 850"),     QStringLiteral("IBM 866"),    QStringLiteral("Apple Roman"),
        QStringLiteral("TIS-620")};
}

std::unique_ptr<PropertyClass> readOnlyClass(const char *saveName, const char *title,
                                             const char *description)
{
    auto propertyClass = std::make_unique<PropertyClass>(
        QString::fromLatin1(saveName), PropertyClass::String, information,
        QString::fromLatin1(title), QString::fromLatin1(description));
    propertyClass->setReadOnly(true);
    return propertyClass;
}

std::unique_ptr<PropertyClass> notPerConfiguration(std::unique_ptr<PropertyClass> propertyClass)
{
    propertyClass->setPerConfiguration(false);
    return propertyClass;
}

} // namespace

ProjectSystem::ProjectSystem(const QStringList &fileTypes, const QStringList &projectTypes)
{
    using P = PropertyClass;
    dateCreatedClass =
        addClass(readOnlyClass("date_created", "Date Created", "The date the file was created."));
    dateModifiedClass = addClass(
        readOnlyClass("date_modified", "Date Modified", "The date the file was last modified."));
    platformClass =
        addClass(readOnlyClass("platform", "Platform", "The platform the project is built for."));
    fullPathClass = addClass(readOnlyClass("full_path", "Full Path", "The full path of the file."));
    relativePathClass = addClass(readOnlyClass("relative_path", "Relative Path",
                                               "The path of the file relative to the project."));
    nameClass = addClass(readOnlyClass("(Name)", "Name", "The name of the element."));
    fileNameClass = addClass(
        readOnlyClass("file_name", "File Name", "The name of the file as stored in the solution."));
    fileCodecClass = addClass(notPerConfiguration(std::make_unique<P>(
        QStringLiteral("file_codec"), P::Enumeration, fileCodecs(), QStringLiteral("File Options"),
        QStringLiteral("File Encoding"), QStringLiteral("The character encoding of the file."),
        QStringLiteral("Latin1"))));
    fileTypeClass = addClass(notPerConfiguration(
        std::make_unique<P>(QStringLiteral("file_type"), P::Enumeration, fileTypes,
                            QStringLiteral("File Options"), QStringLiteral("File Type"),
                            QStringLiteral("The type of file - if not defined then the extension "
                                           "is used to determined the type."))));
    filterClass = addClass(notPerConfiguration(std::make_unique<P>(
        QStringLiteral("filter"), P::StringList, QStringLiteral("Folder Options"),
        QStringLiteral("Filter"),
        QStringLiteral("The file extensions that are placed in this folder when added."))));
    projectTypeClass = addClass(notPerConfiguration(std::make_unique<P>(
        QStringLiteral("project_type"), P::Enumeration, projectTypes,
        QStringLiteral("Build Options"), QStringLiteral("Project Type"),
        QStringLiteral("The type of the project."), QStringLiteral("Executable"))));
    solutionFileNameClass =
        addClass(readOnlyClass("name", "Solution File Name", "The name of the solution file."));
    auto projectDirectory =
        std::make_unique<P>(QStringLiteral("project_directory"), P::String,
                            QStringLiteral("Build Options"), QStringLiteral("Project Directory"),
                            QStringLiteral("Path of the project directory either absolute or "
                                           "relative to the solution directory."));
    projectDirectory->setReadOnly(true);
    projectDirectoryClass = addClass(std::move(projectDirectory));
    fullProjectDirectoryClass =
        addClass(readOnlyClass("full_project_directory", "Full Project Directory",
                               "The absolute path of the project directory."));
    projectDependenciesClass = addClass(std::make_unique<P>(
        QStringLiteral("project_dependencies"), P::StringList, QStringLiteral("Project Options"),
        QStringLiteral("Project Dependencies"),
        QStringLiteral("The projects that must be built before this one.")));
    macrosClass = addClass(std::make_unique<P>(
        QStringLiteral("macros"), P::StringList, QStringLiteral("Build Options"),
        QStringLiteral("Build Macros"),
        QStringLiteral("Specifies macro values for this project element using \"name=value\"")));
    batchBuildConfigurationsClass = addClass(notPerConfiguration(std::make_unique<P>(
        QStringLiteral("batch_build_configurations"), P::StringList,
        QStringLiteral("General Options"), QStringLiteral("Batch Build Configurations"),
        QStringLiteral("The configurations that a batch build builds."))));
    inheritedConfigurationsClass = addClass(std::make_unique<P>(
        QStringLiteral("inherited_configurations"), P::StringList,
        QStringLiteral("General Options"), QStringLiteral("Inherited Configurations"),
        QStringLiteral("The configurations whose settings this configuration takes on.")));
}

ProjectSystem::~ProjectSystem()
{
    closeSolution();
}

PropertyClass *ProjectSystem::addClass(std::unique_ptr<PropertyClass> propertyClass)
{
    m_catalogue.push_back(std::move(propertyClass));
    return m_catalogue.back().get();
}

PropertyClass *ProjectSystem::findPropertyClass(const QString &saveName) const
{
    for (const auto &propertyClass : m_catalogue) {
        if (propertyClass->saveName() == saveName)
            return propertyClass.get();
    }
    return nullptr;
}

QString ProjectSystem::solutionDocumentType()
{
    return QString::fromLatin1(Get_BENCH_NAME()) + QStringLiteral("_Project_File");
}

// Creation.

ProjectElement *ProjectSystem::createSolution(const QString &name, const QString &directory)
{
    closeSolution();
    const QFileInfo file(directory + QLatin1Char('/') + name + solutionFileExtension());
    auto *solution = new ProjectElement(ProjectElement::Solution);
    solution->setName(name);
    solution->setAttribute(QStringLiteral("version"), QStringLiteral("1"));
    solution->setPath(file.absoluteFilePath());
    m_rootSolution = solution;
    QTx::makeDir(file.absolutePath());
    updateProjectList();
    return solution;
}

ProjectElement *ProjectSystem::createProject(ProjectElement *parent, const QString &name,
                                             const QString &directory, const QString &type)
{
    auto *project = new ProjectElement(ProjectElement::Project);
    project->setName(name);
    parent->appendChild(project);
    updateProjectList();
    ProjectElement *common = createConfiguration(project, ProjectElement::commonConfiguration());
    QString relative;
    if (!Path::relativeDirPath(solutionDirectoryOf(solutionContaining(parent)), directory,
                               relative))
        relative = directory;
    common->setAttribute(projectDirectoryClass->saveName(),
                         relative.isNull() ? QStringLiteral("") : relative);
    common->setAttribute(projectTypeClass->saveName(), type);
    return project;
}

ProjectElement *ProjectSystem::createFolder(ProjectElement *parent, const QString &name,
                                            const QString &filter, bool fromTemplate)
{
    if (ProjectElement *existing = findFolder(parent, name))
        return existing;
    auto *folder = new ProjectElement(ProjectElement::Folder);
    folder->setName(name, fromTemplate);
    parent->appendChild(folder);
    if (!filter.isEmpty())
        createConfiguration(folder, ProjectElement::commonConfiguration(), fromTemplate)
            ->setAttribute(filterClass->saveName(), filter, fromTemplate);
    return folder;
}

ProjectElement *ProjectSystem::createConfiguration(ProjectElement *element, const QString &name,
                                                   bool fromTemplate)
{
    auto *configuration = new ProjectElement(ProjectElement::Configuration);
    configuration->setName(name, fromTemplate);
    element->appendChild(configuration);
    return configuration;
}

ProjectElement *ProjectSystem::addFile(ProjectElement *parent, const QString &path,
                                       bool fromTemplate)
{
    ProjectElement *target = parent;
    if (parent->type() != ProjectElement::Folder) {
        static const QRegularExpression separators(QStringLiteral("[,;]"));
        const QString extension = QFileInfo(path).suffix().toLower();
        for (ProjectElement *child = parent->firstChild(); child; child = child->nextSibling()) {
            if (child->type() != ProjectElement::Folder)
                continue;
            QString filter = child->attribute(filterClass->saveName());
            if (filter.isNull())
                filter = settingFor(child, filterClass, ProjectElement::commonConfiguration());
            if (filter.split(separators, Qt::SkipEmptyParts).contains(extension)) {
                target = child;
                break;
            }
        }
    }
    auto *file = new ProjectElement(ProjectElement::File);
    target->appendChild(file);
    if (path.contains(QLatin1Char('$')))
        file->setFileName(path, fromTemplate);
    else
        file->setFile(path, fromTemplate);
    return file;
}

ProjectElement *ProjectSystem::clone(const ProjectElement *element) const
{
    auto *copy = new ProjectElement(element);
    std::vector<std::pair<const ProjectElement *, ProjectElement *>> work{{element, copy}};
    while (!work.empty()) {
        const auto [original, duplicate] = work.back();
        work.pop_back();
        for (const ProjectElement *child = original->firstChild(); child;
             child = child->nextSibling()) {
            auto *childCopy = new ProjectElement(child);
            duplicate->appendChild(childCopy);
            work.emplace_back(child, childCopy);
        }
    }
    return copy;
}

// Change.

namespace {

bool isIndexed(int type)
{
    return type == ProjectElement::Project || type == ProjectElement::Solution;
}

} // namespace

void ProjectSystem::renameElement(ProjectElement *element, const QString &name)
{
    element->setName(name);
    if (isIndexed(element->type()))
        updateProjectList();
}

void ProjectSystem::removeElement(ProjectElement *element, bool destroy)
{
    const int type = element->type();
    if (ProjectElement *parent = element->parent())
        parent->removeChild(element);
    else if (element == m_rootSolution)
        m_rootSolution = nullptr;
    // An element removed while its file loads may hold elements that named a template.
    if (!m_pendingTemplates.isEmpty()) {
        m_pendingTemplates.removeIf([element](const ProjectElement *pending) {
            for (const ProjectElement *e = pending; e; e = e->parent()) {
                if (e == element)
                    return true;
            }
            return false;
        });
    }
    if (destroy)
        delete element;
    if (isIndexed(type))
        updateProjectList();
}

void ProjectSystem::removeConfiguration(ProjectElement *element, const QString &name)
{
    QList<ProjectElement *> doomed;
    ProjectElement *e = ProjectElement::nextInWalk(element, element);
    while (e) {
        const bool match = e->type() == ProjectElement::Configuration &&
                           e->attributes().value(QStringLiteral("Name")) == name;
        if (match)
            doomed.append(e);
        // What lies below a doomed configuration goes with it.
        e = ProjectElement::nextInWalk(e, element, !match);
    }
    for (ProjectElement *configuration : std::as_const(doomed)) {
        configuration->parent()->removeChild(configuration);
        delete configuration;
    }
}

void ProjectSystem::setProperty(ProjectElement *element, const QString &saveName,
                                const QString &configuration, const QString &value,
                                bool fromTemplate)
{
    ProjectElement *child = element->getConfigurationElement(configuration);
    if (!child)
        child = createConfiguration(element, configuration, fromTemplate);
    child->setAttribute(saveName, value, fromTemplate);
    refreshInheritance(element, saveName);
}

void ProjectSystem::setProperty(ProjectElement *element, const PropertyClass *propertyClass,
                                const QString &configuration, const QString &value,
                                bool fromTemplate)
{
    setProperty(element, propertyClass->saveName(), configuration, value, fromTemplate);
}

void ProjectSystem::removeProperty(ProjectElement *element, const QString &saveName,
                                   const QString &configuration)
{
    if (ProjectElement *child = element->getConfigurationElement(configuration)) {
        child->removeAttribute(saveName);
        refreshInheritance(element, saveName);
    }
}

void ProjectSystem::refreshInheritance(ProjectElement *element, const QString &saveName)
{
    // Resolution reads the parsed lists, so a change of the text must reach them at once.
    if (element->type() == ProjectElement::Solution &&
        saveName == inheritedConfigurationsClass->saveName())
        element->updateInheritenceMap();
}

void ProjectSystem::removeProperty(ProjectElement *element, const PropertyClass *propertyClass,
                                   const QString &configuration)
{
    removeProperty(element, propertyClass->saveName(), configuration);
}

// Transactions.

void ProjectSystem::startTransaction()
{
    if (m_rootSolution)
        m_rootSolution->startTransaction();
}

void ProjectSystem::commitTransaction()
{
    if (m_rootSolution)
        m_rootSolution->commitTransaction();
}

void ProjectSystem::rollBackTransaction()
{
    if (m_rootSolution)
        m_rootSolution->rollbackTransaction();
}

// State.

namespace {

/// The next element of a walk below `root` that passes over imported solutions unless
/// `includeImported`: they are saved to files of their own.
ProjectElement *nextForModified(const ProjectElement *element, const ProjectElement *root,
                                bool includeImported)
{
    ProjectElement *next = ProjectElement::nextInWalk(element, root);
    while (next && !includeImported && next->type() == ProjectElement::Solution && next->imported())
        next = ProjectElement::nextInWalk(next, root, false);
    return next;
}

} // namespace

bool ProjectSystem::modified() const
{
    return m_rootSolution && isModified(m_rootSolution, true);
}

bool ProjectSystem::isModified(const ProjectElement *element, bool includeImported)
{
    for (const ProjectElement *e = element; e; e = nextForModified(e, element, includeImported)) {
        if (e->modified())
            return true;
    }
    return false;
}

void ProjectSystem::clearModified(ProjectElement *element, bool includeImported, bool clearDates)
{
    for (ProjectElement *e = element; e; e = nextForModified(e, element, includeImported)) {
        e->setModified(false);
        if (clearDates)
            e->clearModifiedDates();
    }
}

bool ProjectSystem::modifiedOnDisk() const
{
    for (ProjectElement *solution : m_solutions) {
        if (hasOwnFile(solution) &&
            QFileInfo(solution->path().osPathQString()).lastModified() != solution->loadDate())
            return true;
    }
    return false;
}

void ProjectSystem::updateLoadDateTime()
{
    for (ProjectElement *solution : std::as_const(m_solutions)) {
        if (hasOwnFile(solution))
            solution->setLoadDate(QFileInfo(solution->path().osPathQString()).lastModified());
    }
}

bool ProjectSystem::hasOwnFile(const ProjectElement *solution) const
{
    return solution && (solution == m_rootSolution || solution->imported());
}

QString ProjectSystem::defaultFileLocation(ProjectElement *element)
{
    if (!element)
        return QString();
    ProjectElement *project = projectContaining(element);
    return projectDirectoryPath(project ? project : element);
}

QString ProjectSystem::platform(const ProjectElement *) const
{
    return QString::fromLatin1(Get_PLATFORM());
}

void ProjectSystem::munge(ProjectElement *) {}
