#pragma once

#include "project/elementkey.h"
#include "project/propertyinheritanceitem.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class Builder;
class Path;
class ProjectElement;
class ProjectFileNotFoundErrorHandler;
class ProjectFileSaveErrorHandler;
class PropertyClass;
class PropertyValueList;
class SettingExpander;
class XMLDocument;
class XMLElement;

/// The owner of the loaded solution tree: loads and saves solution files, builds and
/// searches the tree, resolves settings through configurations and orders projects by their
/// dependencies. Subclasses tell the file and project types of a tool chain.
class ProjectSystem : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ProjectSystem)

public:
    /// A dependency cycle: projects in dependency order, the first one repeated at the end.
    using DependencyCycle = QList<ProjectElement *>;

    /// Makes the catalogue of the model's own settings, offering `fileTypes` and
    /// `projectTypes` as the enumerates of "file_type" and "project_type".
    ProjectSystem(const QStringList &fileTypes, const QStringList &projectTypes);
    ~ProjectSystem() override;

    /// The file extension of solution files.
    static QString solutionFileExtension() { return QStringLiteral(".hdp"); }
    /// The document type of solution files.
    static QString solutionDocumentType();

    // The catalogue of the model's own settings.
    PropertyClass *dateCreatedClass;
    PropertyClass *dateModifiedClass;
    PropertyClass *platformClass;
    PropertyClass *fullPathClass;
    PropertyClass *relativePathClass;
    PropertyClass *nameClass; ///< "(Name)", display only: the name is the attribute "Name"
    PropertyClass *fileNameClass;
    PropertyClass *fileCodecClass;
    PropertyClass *fileTypeClass;
    PropertyClass *filterClass;
    PropertyClass *projectTypeClass;
    PropertyClass *solutionFileNameClass; ///< "name"
    PropertyClass *projectDirectoryClass;
    PropertyClass *fullProjectDirectoryClass;
    PropertyClass *projectDependenciesClass;
    PropertyClass *macrosClass;
    PropertyClass *batchBuildConfigurationsClass;
    PropertyClass *inheritedConfigurationsClass;
    /// The catalogue class saved as `saveName`, or null.
    PropertyClass *findPropertyClass(const QString &saveName) const;

    /// Registers the build system's setting expansion; null to unregister.
    void setSettingExpander(SettingExpander *expander) { m_settingExpander = expander; }
    SettingExpander *settingExpander() const { return m_settingExpander; }

    // Loading and saving.

    /// Closes any solution and loads the solution file `path` with its imports; throws
    /// `SolutionLoadError`, after which no solution is loaded.
    ProjectElement *loadSolution(const QString &path, ProjectFileNotFoundErrorHandler *handler);
    /// Loads one solution file, found as `path` or else below `directory`, and its imports.
    /// The caller owns the result; throws `SolutionLoadError`.
    ProjectElement *loadProjectFile(const QString &directory, const QString &path,
                                    ProjectFileNotFoundErrorHandler *handler);
    /// Builds the element tree of one XML element of a file in `directory`, loading imports.
    /// The caller owns the result; throws `SolutionLoadError`.
    ProjectElement *domToElement(const QString &directory, XMLElement *xml,
                                 ProjectFileNotFoundErrorHandler *handler);
    /// Loads the solution file `path` as an import under `parent`.
    ProjectElement *importSolution(ProjectElement *parent, const QString &path,
                                   ProjectFileNotFoundErrorHandler *handler);
    /// Deletes the loaded tree.
    void closeSolution();
    /// Saves every modified solution file; throws `SolutionSaveError` for one that fails.
    void save(ProjectFileSaveErrorHandler *handler);
    /// Writes the file of the solution `element` (imports as `import` elements).
    bool saveProjectFile(ProjectElement *element);
    /// Writes the solution `element` to `path`, which becomes its file.
    bool saveProjectFile(ProjectElement *element, const QString &path);
    /// The XML form of `element` and what stands in its file below it, made in `document`'s
    /// arena. Null for an element without a tag.
    XMLElement *elementToDom(XMLDocument *document, ProjectElement *element);

    // Creation.

    /// Closes any solution and starts a new one, `directory`/`name`.hdp, not yet written.
    virtual ProjectElement *createSolution(const QString &name, const QString &directory);
    /// Adds a project of `type` with its "Common" configuration under `parent`.
    virtual ProjectElement *createProject(ProjectElement *parent, const QString &name,
                                          const QString &directory, const QString &type);
    /// The folder `name` of `parent`, created with `filter` if there is none.
    ProjectElement *createFolder(ProjectElement *parent, const QString &name, const QString &filter,
                                 bool fromTemplate = false);
    /// Appends a configuration child `name` to `element`.
    ProjectElement *createConfiguration(ProjectElement *element, const QString &name,
                                        bool fromTemplate = false);
    /// Adds the file `path` to `parent`, or to the first folder whose filter takes its
    /// extension.
    ProjectElement *addFile(ProjectElement *parent, const QString &path, bool fromTemplate = false);
    /// A copy of `element` and its subtree: type, attributes and children only.
    ProjectElement *clone(const ProjectElement *element) const;

    // Change.

    /// Renames `element`; projects and solutions are indexed again.
    void renameElement(ProjectElement *element, const QString &name);
    /// Unlinks `element` from its parent and, if `destroy`, deletes it.
    void removeElement(ProjectElement *element, bool destroy);
    /// Removes and deletes every configuration `name` in `element`'s subtree.
    void removeConfiguration(ProjectElement *element, const QString &name);
    /// Stores `value` as the setting `saveName` of `element` in `configuration`.
    void setProperty(ProjectElement *element, const QString &saveName, const QString &configuration,
                     const QString &value, bool fromTemplate = false);
    void setProperty(ProjectElement *element, const PropertyClass *propertyClass,
                     const QString &configuration, const QString &value, bool fromTemplate = false);
    /// Removes the setting `saveName` of `element` in `configuration`.
    void removeProperty(ProjectElement *element, const QString &saveName,
                        const QString &configuration);
    void removeProperty(ProjectElement *element, const PropertyClass *propertyClass,
                        const QString &configuration);

    // Transactions on the whole tree.

    void startTransaction();
    void commitTransaction();
    void rollBackTransaction();

    // Search.

    /// The first element named `name` in a pre-order walk from `element` over it, its
    /// subtree and its later siblings with theirs.
    static ProjectElement *findByName(ProjectElement *element, const QString &name);
    /// The configuration child `name` of `element`, or null.
    static ProjectElement *findConfiguration(ProjectElement *element, const QString &name);
    /// The folder child `name` of `element`, or null.
    static ProjectElement *findFolder(ProjectElement *element, const QString &name);
    /// The file child of `element` whose "file_name" is `fileName`, or null.
    static ProjectElement *findFile(ProjectElement *element, const QString &fileName);
    /// The first file, from `element` on as `findByName` walks, whose path relative to its
    /// project is `name`, ignoring case.
    static ProjectElement *findRelativeFile(ProjectElement *element, const QString &name);
    /// The first file or solution, from `element` on as `findByName` walks, whose file is
    /// `path`.
    static ProjectElement *findAbsoluteFile(ProjectElement *element, const Path &path);
    /// Whether a file below `element` is `path`.
    static bool containsFile(ProjectElement *element, const Path &path);
    /// The project that `name` names as seen from `element`: in the nearest solution, else in
    /// the enclosing ones; null if none.
    static ProjectElement *findProject(ProjectElement *element, const QString &name);
    /// Every file below `element`, in document order.
    static QList<ProjectElement *> sourceFiles(ProjectElement *element);
    /// The nearest solution at or above `element`, or null.
    static ProjectElement *solutionContaining(const ProjectElement *element);
    /// The nearest project at or above `element`, or null.
    static ProjectElement *projectContaining(const ProjectElement *element);
    /// The number of project children of `element`.
    static int numProjects(const ProjectElement *element);
    /// The projects by global name ("App", "App(Sub)"), or of `solution` if one is given.
    QMap<QString, ProjectElement *> solutionProjects(ProjectElement *solution) const;
    /// Every loaded solution by its dotted name ("Sub", "Sub,Deep").
    QMap<QString, ProjectElement *> solutionSolutions() const { return m_solutions; }
    /// The sorted global project names and solution names.
    QStringList projectNames() const { return m_projectNames; }
    QStringList solutionNames() const { return m_solutionNames; }
    /// The root solution, or null.
    ProjectElement *solutionElement() const { return m_rootSolution; }
    /// Whether a solution is loaded.
    bool haveSolution() const { return m_rootSolution != nullptr; }
    /// The root solution's "version" attribute.
    QString solutionVersion() const;
    /// The root solution's file.
    QString solutionFilePath() const;
    /// The absolute directory of the root solution's file.
    QString solutionDirectory() const;
    /// The absolute directory of the solution file `solution` lies in; empty without one.
    static QString solutionDirectoryOf(ProjectElement *solution);
    /// The absolute project directory of `element` from its "project_directory" setting,
    /// relative to the nearest solution's directory.
    static QString projectDirectoryPath(ProjectElement *element);
    /// The raw "project_directory" setting of `element`.
    static QString getProjectDirectory(ProjectElement *element);
    /// The "project_type" of `element`; empty if it has none (no default applies).
    static QString getProjectType(ProjectElement *element);
    /// The "file_codec" of `element`; empty if it has none.
    static QString getFileCodec(ProjectElement *element);
    /// Where new files of `element` go: the directory of its project.
    virtual QString defaultFileLocation(ProjectElement *element);
    /// The key of `project` among the root's projects, or null.
    QString getGlobalProjectName(const ProjectElement *project) const;
    /// The platform name of `element`.
    QString platform(const ProjectElement *element) const;

    // State.

    /// Whether anything in the loaded tree differs from its files.
    bool modified() const;
    /// Whether `element` or a descendant is modified, nested solutions only if
    /// `includeImported`.
    static bool isModified(const ProjectElement *element, bool includeImported);
    /// Clears the modified flags (and with `clearDates` the change times) at and below
    /// `element`, nested solutions only if `includeImported`.
    static void clearModified(ProjectElement *element, bool includeImported, bool clearDates);
    /// Whether any solution file changed on disk since it was loaded or saved.
    bool modifiedOnDisk() const;
    /// Takes the current times of the solution files as their load times.
    void updateLoadDateTime();
    /// Indexes the projects and solutions again; needed after any change of either.
    void updateProjectList();

    // Setting resolution.

    /// The value of a setting for `element` in `configuration`, as the build sees it.
    QString settingFor(ProjectElement *element, const PropertyClass *propertyClass,
                       const QString &configuration,
                       PropertyInheritanceInformation *trace = nullptr) const;
    /// The element whose settings `element` sees first: itself or the nearest element above
    /// it with settings of its own; null when there is none.
    static ProjectElement *settingsOwner(ProjectElement *element);
    /// Tells that settings can't change until told otherwise (a build is under way), so that
    /// `settingFor` may remember its answers; false forgets them.
    void setSettingsSteady(bool steady);
    /// The value stored on `element` itself in `configuration`, or a null string.
    static QString specificSettingFor(ProjectElement *element, const PropertyClass *propertyClass,
                                      const QString &configuration);
    /// The configuration that supplies the setting on `element` itself, or null.
    QString configurationUsedFor(ProjectElement *element, const PropertyClass *propertyClass,
                                 const QString &configuration) const;
    /// The values shown for `element` in `configuration`; the caller owns the list.
    PropertyValueList *settingsFor(ProjectElement *element, const QString &configuration);
    /// The values shown for a file outside any project; the caller owns the list.
    PropertyValueList *settingsFor(const Path &path);
    /// The configurations offered at `element` (the root if null): mode bit 1 adds "Common",
    /// bit 2 hidden configurations, bit 4 the others. Sorted; "Common" if none.
    QStringList configurations(ProjectElement *element, int mode) const;
    /// Adds the configurations of `element` and its ancestors to `list`, as `mode` says.
    static void configurations(const ProjectElement *element, QStringList &list, int mode);
    /// The inherited list of `configuration` in the nearest solution at or above `element`.
    static QStringList getInheritedConfigurations(const ProjectElement *element,
                                                  const QString &configuration);
    /// Stores the inherited list of `configuration` in the nearest solution.
    void setInheritedConfigurations(ProjectElement *element, const QString &configuration,
                                    const QStringList &list);
    /// Whether no change after `since` stands where `settingFor` would find the value.
    bool upToDate1(ProjectElement *element, const PropertyClass *propertyClass,
                   const QString &configuration, const QDateTime &since) const;
    /// `upToDate1`, telling the builder which setting changed unless `quiet`.
    bool upToDate(ProjectElement *element, const PropertyClass *propertyClass,
                  const QString &configuration, const QDateTime &since, Builder *builder,
                  bool quiet) const;

    // Dependencies.

    /// The projects that `project` names in "project_dependencies"; unknown names dropped.
    QList<ProjectElement *> directlyDependsOn(ProjectElement *project,
                                              const QString &configuration) const;
    /// `project` and everything it depends on, in pre-order.
    QList<ProjectElement *> dependsOn(ProjectElement *project, const QString &configuration) const;
    void dependsOn(ProjectElement *project, const QString &configuration,
                   QList<ProjectElement *> &list) const;
    /// The projects to build for `element` (a solution or a project), each after its
    /// dependencies. Each dependency cycle met is cut and, if `cycles` is given, recorded.
    QList<ProjectElement *> buildOrder(ProjectElement *element, const QString &configuration,
                                       QList<DependencyCycle> *cycles = nullptr) const;
    void buildOrder(ProjectElement *project, const QString &configuration,
                    QList<ProjectElement *> &list, QList<DependencyCycle> *cycles = nullptr) const;
    /// The dependency cycles reachable from `element` (a solution or a project), each once.
    QList<DependencyCycle> dependencyCycles(ProjectElement *element,
                                            const QString &configuration) const;
    /// The one-line report of a cycle: project dependency cycle: "A" -> "B" -> "A".
    QString dependencyCycleText(const DependencyCycle &cycle) const;
    /// The configurations a batch build of `element` covers, in the setting's order.
    QStringList getBatchBuildConfigurations(ProjectElement *element,
                                            const QString &configuration) const;
    void setBatchBuildConfigurations(ProjectElement *element, const QString &configuration,
                                     const QStringList &list);

    // What subclasses tell.

    /// The settings that apply to `element`, bound to it; the caller owns the list.
    virtual PropertyValueList *applicableSettingsFor(ProjectElement *element,
                                                     const QString &configuration) = 0;
    /// The file type of a file element.
    virtual QString getFileType(ProjectElement *element) = 0;
    virtual QString objectFileExtension() const = 0;
    virtual QString libraryFileExtension() const = 0;
    virtual QString executableFileExtension() const = 0;
    /// Adapts a freshly loaded solution file; nothing here.
    virtual void munge(ProjectElement *element);

    /// An element of a solution file that the loader didn't understand and passed over.
    struct SkippedElement
    {
        QString file;  ///< the absolute path of the file it stood in
        QString where; ///< the element path of what it would have gone under
        QString tag;
    };
    /// The elements the last load passed over, in file order; for the load's warnings.
    const QList<SkippedElement> &skippedElements() const { return m_skippedElements; }

signals:
    void solutionLoaded();
    void fileSaved(const Path &path);

private:
    PropertyClass *addClass(std::unique_ptr<PropertyClass> propertyClass);
    /// Whether `solution` is saved to a file of its own: the root and imported solutions.
    /// A solution written inline in its parent's file goes with that file.
    bool hasOwnFile(const ProjectElement *solution) const;
    /// Parses a solution's inherited lists again if `saveName` is where they are kept.
    void refreshInheritance(ProjectElement *element, const QString &saveName);
    /// Loads a file's element tree; `solutionDepth` counts the solutions above it.
    ProjectElement *domToElementAt(const QString &directory, XMLElement *xml,
                                   ProjectFileNotFoundErrorHandler *handler, int solutionDepth);
    ProjectElement *loadProjectFileAt(const QString &directory, const QString &path,
                                      ProjectFileNotFoundErrorHandler *handler, int solutionDepth);
    /// Fills each element that named a template from it, in load order; throws
    /// `SolutionLoadError` for a name that isn't a template, after which no solution is loaded.
    void expandTemplates();
    /// Loads the file of an `import` element as a solution element marked imported.
    ProjectElement *loadImport(const QString &directory, const XMLElement *xml,
                               ProjectFileNotFoundErrorHandler *handler, int solutionDepth);
    /// The post-order walk of `buildOrder`, with `done` mirroring `list`.
    void buildOrderFrom(ProjectElement *project, const QString &configuration,
                        QList<ProjectElement *> &list, QSet<ProjectElement *> &done,
                        QList<DependencyCycle> *cycles) const;

    /// What `settingFor` answered while settings were steady, by the element its walk first
    /// finds settings on (elements without any of their own pass the question up unchanged).
    using SettingKey = ElementKey<const PropertyClass *>;
    /// `settingFor` worked out by walking the tree.
    QString resolveSetting(ProjectElement *element, const PropertyClass *propertyClass,
                           const QString &configuration,
                           PropertyInheritanceInformation *trace) const;
    /// The values that the walk from `anchor` finds, in order (one at most for a setting that
    /// isn't a list), kept while settings are steady.
    const QStringList &steadyValues(ProjectElement *anchor, const PropertyClass *propertyClass,
                                    const QString &configuration) const;
    mutable QHash<SettingKey, QStringList> m_steadySettings;
    /// The values last found from a file, which are not kept.
    mutable QStringList m_fileValues;
    /// `projectDirectoryPath` while settings are steady, by element.
    QHash<const ProjectElement *, QString> m_steadyDirectories;
    /// `projectDirectoryPath` worked out afresh.
    static QString resolveDirectory(ProjectElement *element);
    bool m_settingsSteady = false;

    std::vector<std::unique_ptr<PropertyClass>> m_catalogue;
    ProjectElement *m_rootSolution = nullptr;
    QStringList m_projectNames;
    QStringList m_solutionNames;
    QMap<QString, ProjectElement *> m_solutions;
    QStringList m_loadStack;
    QList<ProjectElement *> m_pendingTemplates;
    QList<SkippedElement> m_skippedElements;
    SettingExpander *m_settingExpander = nullptr;
};

/// The process-wide project system; made by the build request, never destroyed.
extern ProjectSystem *projectSystem;
