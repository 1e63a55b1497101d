#pragma once

#include "macros/macrosystem.h"
#include "project/settingexpander.h"
#include "properties/propertyclass.h"

#include <QDateTime>
#include <QDir>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class Builder;
class DiskInterface;
class ProjectElement;

/// Bits of the build type, passed unchanged down every build call.
constexpr int BUILD_CLEAN = 1;      ///< remove an out-of-date output before building it
constexpr int BUILD_FORCE = 2;      ///< treat every output as out of date
constexpr int BUILD_CLEAN_ONLY = 4; ///< run no build command
constexpr int BUILD_QUIET = 8;      ///< no explanations and no "is up to date" lines
constexpr int BUILD_NODE_ONLY = 16; ///< build the given node without its children

/// The record of one project built in one configuration during a run.
struct builtStruct
{
    ProjectElement *element = nullptr; ///< not owned
    QString configuration;
    bool built = false; ///< the project or one of its dependencies reported work
};

/// The head of the build engine: the walk over solutions and projects, the batch loop over
/// configurations, dependency-first order, the macro set of an element, and the services every
/// layer uses. What is done to one project is the subclasses' `platformBuild`.
class BuildSystem : public SettingExpander
{
    Q_DISABLE_COPY(BuildSystem)

public:
    /// Makes the generic part of the property catalogue and registers the build system as the
    /// console builder's host and as the project system's setting expander.
    BuildSystem();
    ~BuildSystem() override;

    // The operations each layer fills in.

    /// The file an include of `file` in `element` refers to.
    virtual QString findIncludeFile(bool quoted, const QString &file, ProjectElement *element,
                                    const QString &configuration) = 0;
    /// The file that building `element` makes, absolute if asked.
    virtual QString output(ProjectElement *element, const QString &configuration,
                           bool absolute) = 0;
    /// Appends the files that `element`'s output depends on.
    virtual void getDependencies(ProjectElement *element, const QString &configuration,
                                 QStringList &dependencies) = 0;
    /// The macro set of `element` in `configuration`: global, project and computed macros.
    /// A layer that adds macros here adds them to projects; a file's macros are its project's
    /// and its own (those of `addMacros` among them), which `replaceMacros` lays over one
    /// another rather than making the whole set for each file.
    QMap<QString, QString> macros(ProjectElement *element, const QString &configuration) override;
    /// Whether `element`'s output can be loaded onto a target.
    virtual bool canLoad(ProjectElement *element, const QString &configuration) = 0;
    /// Whether `element` can be compiled on its own.
    virtual bool canCompile(ProjectElement *element, const QString &configuration) = 0;
    /// Whether a build compiles `element`.
    virtual bool mustCompile(ProjectElement *element, const QString &configuration) = 0;
    /// Runs the preprocessor over `element`; the name of its output, or a null string.
    virtual QString preprocess(ProjectElement *element, const QString &configuration,
                               Builder *builder) = 0;
    /// Builds one project (or node) in one configuration; true if work was done there.
    virtual bool platformBuild(ProjectElement *element, const QString &configuration,
                               Builder *builder, int type) = 0;
    /// Lets a layer add its own computed macros to `macros`; nothing here.
    virtual void addMacros(ProjectElement *element, const QString &configuration,
                           QMap<QString, QString> &macros);

    // The walk.

    /// Builds `element` in `configuration`: 0 nothing built, 1 something built, 2 a command
    /// failed, 3 stopped. `builder` may be null.
    int build(ProjectElement *element, const QString &configuration, Builder *builder, int type,
              bool withDependencies, bool batch);
    /// Builds the projects and nested solutions of `solution` in order; true if any built.
    bool solutionBuild(ProjectElement *solution, const QString &configuration, Builder *builder,
                       int type, bool batch);
    /// Builds `project` after its dependencies, once per configuration in a run; with `batch`
    /// the configurations are its batch list for `batchConfiguration`.
    bool projectBuild(ProjectElement *project, const QString &configuration, Builder *builder,
                      int type, bool batch, const QString &batchConfiguration);
    /// Opens the builder's group for a project build with its "Building ..." line.
    void displayProjectConfiguration(ProjectElement *element, const QString &configuration,
                                     Builder *builder, int type);
    /// Whether `element` was built in `configuration` in this run; if so `builtFlag` says
    /// whether that build did work.
    bool justBuilt(ProjectElement *element, const QString &configuration, bool &builtFlag) const;
    /// What was built in this run, in order.
    const QList<builtStruct> &builtList() const { return built; }

    // Macros and settings.

    /// `text` with the macros of `element` in `configuration` replaced.
    QString replaceMacros(ProjectElement *element, const QString &text,
                          const QString &configuration);
    /// The setting of `element` in `configuration` with its macros replaced.
    QString settingForExpanded(ProjectElement *element, const PropertyClass *propertyClass,
                               const QString &configuration) override;

    // Services.

    /// Resolves `file` against `directory` into `path`; true if it exists, with its time in
    /// `modified`. A missing file is told to the builder unless `quiet`.
    bool exists(QString directory, const QString &file, QString &path, QDateTime &modified,
                Builder *builder, bool quiet);
    /// Whether every one of `dependencies` (resolved against `directory`) exists and is not
    /// newer than `targetModified`; the first that fails is told unless `quiet`.
    bool upToDate(QString directory, const QString &target, const QDateTime &targetModified,
                  const QStringList &dependencies, Builder *builder, bool quiet);
    /// `path` if it is absolute, else `directory`, "/" and `path`.
    static QString getAbsPath(const QString &directory, const QString &path);
    /// Makes `dir` and its missing parents; the result is that of the last creation.
    bool recursiveMkdir(const QDir &dir);
    /// Makes the directory that `filePath` lies in.
    bool ensureDirExists(const QString &filePath);
    /// A fresh temporary file name in the intermediate directory of `element`'s project; the
    /// file is not created.
    QString createTmpFile(ProjectElement *element, const QString &configuration);
    /// `text`, or "." when it is empty.
    QString dotify(const QString &text) const;
    /// Carries out `command` if it is one of the program's own; false if it is to be run.
    virtual bool builtinCommand(const QString &directory, QStringList &command, QString &errorText);

    /// The file system as the engine sees it.
    DiskInterface &disk() { return *m_disk; }
    /// Replaces the file system the engine sees; for tests and measurements.
    void setDisk(std::unique_ptr<DiskInterface> disk);

    // The property catalogue.

    /// Enters `propertyClass` under its save name, replacing a class of the same name.
    void addPropertyClass(PropertyClass *propertyClass);
    /// The class saved as `saveName`, or null.
    PropertyClass *findPropertyClass(const QString &saveName) const override;
    /// The whole catalogue by save name; for the reference of settings.
    const QMap<QString, PropertyClass *> &propertyClasses() const { return m_propertyClasses; }

    bool errorOccurred = false; ///< a command failed: every further step is skipped
    /// The build is to stop: an interrupt asked for it. Written from a signal handler, so
    /// only ever set to true there and read between steps.
    volatile bool stopRequested = false;
    /// A dry run (-show): every line is printed as in a real build, but nothing on disk
    /// changes (no removals, scripts, records or directories).
    bool dryRun = false;

    PropertyClass *buildTreatWarningsAsErrorsProperty;
    PropertyClass *buildSuppressWarningsProperty;
    PropertyClass *buildIntermediateDirectoryProperty;
    PropertyClass *buildOutputDirectoryProperty;
    PropertyClass *buildObjectFileNameProperty;
    PropertyClass *linkerOutputFileNameProperty;  ///< "build_output_file_name" of executables
    PropertyClass *libraryOutputFileNameProperty; ///< "build_output_file_name" of libraries
    PropertyClass *buildQuietlyProperty;
    PropertyClass *buildActionProperty;
    PropertyClass *buildDebugInformationProperty;
    PropertyClass *buildExcludeFromBuildProperty;
    PropertyClass *stageOutputFilePathProperty;
    PropertyClass *stagePackageFilePathProperty;
    PropertyClass *stagePackageMemberNameProperty;
    PropertyClass *stageCommandProperty;
    PropertyClass *stageSetReadOnlyProperty;
    PropertyClass *combineOutputFilePathProperty;
    PropertyClass *combineCommandProperty;
    PropertyClass *combineSetReadOnlyProperty;

protected:
    /// Makes a class that lives as long as the build system and enters it in the catalogue;
    /// a null default is no default.
    PropertyClass *makePropertyClass(const char *saveName, PropertyClass::Type type,
                                     const char *group, const char *shortDescription,
                                     const QString &longDescription,
                                     const char *defaultValue = nullptr);
    /// Makes an enumeration class with its allowed values, as `makePropertyClass` does.
    PropertyClass *makeEnumerationClass(const char *saveName, const QStringList &values,
                                        const char *group, const char *shortDescription,
                                        const char *longDescription,
                                        const char *defaultValue = nullptr);

    /// A number of its own for the build under way, 0 outside a build: what is remembered for
    /// one build is kept under it, as settings don't change while a build runs.
    quint64 buildSerial() const { return m_buildSerial; }

    QList<builtStruct> built;

private:
    /// The macro set of `element`; within a build the last one asked for is remembered, since
    /// one element is often asked about several times in a row.
    const QMap<QString, QString> &macroSet(ProjectElement *element, const QString &configuration);
    /// The part of `projectBuild` for one configuration that isn't built yet.
    bool projectBuildConfiguration(ProjectElement *project, const QString &configuration,
                                   Builder *builder, int type, bool batch,
                                   const QString &batchConfiguration);
    /// The global macros, then `projectMacros` (the element's macros setting), then those
    /// that the project and solution of `element` and `configuration` define.
    QMap<QString, QString> projectLevelMacros(ProjectElement *element, const QString &configuration,
                                              const QString &projectMacros,
                                              const QString &platform);
    /// The place of `project` in `configuration` among the builds under way, or -1.
    qsizetype inProgressIndex(const ProjectElement *project, const QString &configuration) const;
    /// Says, once per build, that the builds under way from `start` on form a cycle.
    void reportCycle(qsizetype start, Builder *builder);

    /// A project build that has started in a configuration and not yet finished.
    struct InProgress
    {
        ProjectElement *project;
        QString configuration;
    };

    QMap<QString, PropertyClass *> m_propertyClasses;
    std::vector<std::unique_ptr<PropertyClass>> m_ownedClasses;
    QList<InProgress> m_inProgress;
    QSet<QList<ProjectElement *>> m_reportedCycles;
    QSet<QString> m_tmpNames;
    std::unique_ptr<DiskInterface> m_disk;
    quint64 m_buildSerial = 0;
    quint64 m_lastBuildSerial = 0;
    quint64 m_macroSetSerial = 0;
    ProjectElement *m_macroSetElement = nullptr;
    QString m_macroSetConfiguration;
    QMap<QString, QString> m_macroSet;
    /// The macros a project gives its elements, kept during a build for the project last
    /// asked about.
    struct ProjectMacros
    {
        quint64 serial = 0;
        ProjectElement *project = nullptr;
        QString configuration;
        QString settings;
        QString platform;
        QMap<QString, QString> map;
        /// IntDir and OutDir by the setting they come from, where that used none of the macros
        /// of a file.
        QHash<QString, QString> directories;
    };
    ProjectMacros m_projectMacros;
    /// The macros of the element last expanded for during a build, over its project's.
    class FileMacros;
    std::unique_ptr<FileMacros> m_fileMacros;
    quint64 m_fileMacrosSerial = 0;
    /// The macros that `element`'s project gives it (`projectLevelMacros`), kept during a
    /// build for the project last asked about.
    const QMap<QString, QString> &projectMacroBase(ProjectElement *element,
                                                   const QString &configuration);
    /// The directory `propertyClass` gives `element` (IntDir, OutDir), expanded with `own`
    /// over `base`.
    QString directoryMacro(MacroSource &own, const QMap<QString, QString> &base,
                           const PropertyClass *propertyClass, ProjectElement *element,
                           const QString &configuration);
};

/// The process-wide build system; made by the build request, never destroyed.
extern BuildSystem *buildSystem;
