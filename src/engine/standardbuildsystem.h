#pragma once

#include "engine/buildaction.h"
#include "engine/buildrecord.h"
#include "engine/buildsystem.h"
#include "engine/dependencycache.h"
#include "project/elementkey.h"

#include <QDateTime>
#include <QHash>

#include <QMap>
#include <QString>
#include <QStringList>

/// The build engine of every tool chain: the full generic property catalogue, and what each
/// element means to a build. The command lines themselves are the tool-chain layers'.
class StandardBuildSystem : public BuildSystem
{
public:
    /// Makes the rest of the generic catalogue and publishes itself as `standardBuildSystem`;
    /// `args` is not kept.
    explicit StandardBuildSystem(const QStringList &args);
    ~StandardBuildSystem() override;

    QString findIncludeFile(bool quoted, const QString &file, ProjectElement *element,
                            const QString &configuration) override;
    /// The first of `directories` under which `file` exists and is readable, tried against the
    /// project directory, as given, and against `fileDirectory`; a null string if none.
    QString findIncludeFile(const QString &projectDirectory, const QString &fileDirectory,
                            const QString &file, const QStringList &directories);
    QString output(ProjectElement *element, const QString &configuration, bool absolute) override;
    /// The file that `action` makes of `element`, macros replaced; made absolute against the
    /// project directory if asked. A null string for actions that make nothing.
    QString output(BuildAction action, ProjectElement *element, const QString &configuration,
                   bool absolute);
    void getDependencies(ProjectElement *element, const QString &configuration,
                         QStringList &dependencies) override;
    bool canLoad(ProjectElement *element, const QString &configuration) override;
    bool canCompile(ProjectElement *element, const QString &configuration) override;
    bool mustCompile(ProjectElement *element, const QString &configuration) override;
    bool platformBuild(ProjectElement *element, const QString &configuration, Builder *builder,
                       int type) override;
    /// The walk of `platformBuild`: children before their parent, each by the flow of its
    /// action. True if work was done at `element` or beneath it.
    bool platformBuild1(ProjectElement *element, const QString &configuration, Builder *builder,
                        int type);

    // What elements mean to a build.

    /// What a build does to `element` in `configuration`.
    BuildAction buildAction(ProjectElement *element, const QString &configuration);
    /// Appends the outputs of `first`, its later siblings and all their descendants, in tree
    /// order, parents before children.
    void findOutputs(ProjectElement *first, const QString &configuration, QStringList &list,
                     bool absolute);
    /// Appends the stored relative paths of the files from `first` on that are not excluded.
    void findRelativeInputs(ProjectElement *first, const QString &configuration, QStringList &list);
    /// The first file at or below `element`, depth first, of `fileType` and not excluded.
    ProjectElement *findFileOfType(ProjectElement *element, const QString &configuration,
                                   const QString &fileType);
    /// Whether a link of `project` uses a memory map file, and which, in `path`.
    bool useMemoryMapFileForLink(ProjectElement *project, const QString &configuration,
                                 QString &path);
    /// Whether a link of `project` uses a section placement file, and which, in `path`.
    bool useSectionPlacementFileForLink(ProjectElement *project, const QString &configuration,
                                        QString &path);
    /// Whether `project` holds a linker script of its own, and which, in `path`.
    bool useLinkerScriptFileForLink(ProjectElement *project, const QString &configuration,
                                    QString &path);
    /// Appends the project's linker script, or else its memory map and section placement files
    /// (the placement file first if asked), each one the link uses.
    void appendLinkControlFiles(ProjectElement *project, const QString &configuration,
                                QStringList &list, bool placementFirst);
    /// Removes `path`, telling the builder of it unless `quiet`; false if it could not.
    bool cleanFile(const QString &path, bool quiet, Builder *builder);
    /// A command line as a list of words: double quotes group words and are dropped.
    static QStringList splitCommand(const QString &command);

    // Up-to-date decisions.

    /// Has `builder` run the tool commands of `action` on `element`: `output` as the settings
    /// name it (the commands run in the project directory), `absoluteOutput` the same file
    /// made absolute, `inputs` the sources, or the objects and libraries of a link or archive.
    virtual void createCommandFor(ProjectElement *element, const QString &configuration,
                                  BuildAction action, const QString &output,
                                  const QString &absoluteOutput, const QStringList &inputs,
                                  Builder *builder, bool quiet, bool clean) = 0;
    /// Whether no property that goes into the command of `action` changed after
    /// `targetModified`; tool-chain layers extend the list.
    virtual bool commandUpToDate(ProjectElement *element, const QString &configuration,
                                 QDateTime targetModified, BuildAction action, Builder *builder,
                                 bool quiet);
    /// The files the object file `objectPath` was last compiled from, as the compiler listed
    /// them; empty when that is unknown.
    virtual QStringList getObjectFileDependencies(const QString &projectDirectory,
                                                  const QString &input,
                                                  const QString &objectPath) = 0;
    /// Whether the additional output format's file beside the link output `output` exists, or
    /// none is asked for.
    bool additionalOutputFileUpToDate(ProjectElement *element, const QString &configuration,
                                      const QString &output, const QStringList &dependencies,
                                      Builder *builder, bool quiet);
    /// The properties whose values make the command of `action`, worked out once. A change
    /// of any of them makes the command's output out of date.
    QList<const PropertyClass *> commandProperties(BuildAction action) const;
    /// Appends the properties of `action` to `list`; tool-chain layers extend it.
    virtual void appendCommandProperties(BuildAction action,
                                         QList<const PropertyClass *> &list) const;
    /// Files the link of `output` reads that the tool layer makes itself (a generated linker
    /// script), appended to `list`; a missing one relinks.
    virtual void appendGeneratedLinkFiles(ProjectElement *project, const QString &configuration,
                                          const QString &output, QStringList &list);
    /// What the tools are, beyond the settings of a command: "key=value" entries that go into
    /// every output's record (the tool chain root).
    virtual QStringList toolSignature();

    // Records across runs.

    /// What the command of `action` makes `output` from: the values of its properties, the
    /// tools, and its `inputs` (and, for a link, the link control files).
    BuildSignature commandSignature(ProjectElement *element, const QString &configuration,
                                    BuildAction action, const QStringList &inputs);
    /// Whether the record of the project says `output` was made from what would make it now;
    /// says why not unless `quiet`. Without any record of the project, as after an upgrade,
    /// the times alone decide and `output` is recorded as it stands.
    bool recordUpToDate(const QString &output, const BuildSignature &signature, Builder *builder,
                        bool quiet);
    /// Records `signature` for `output` after its command ran, or forgets `output` when the
    /// command failed or was interrupted.
    void recordCommand(const QString &output, const BuildSignature &signature);
    /// Forgets what the record of the project being built says of `absoluteOutputs`: a builder
    /// that runs commands after handing them over learnt late that they failed or never ran.
    void forgetOutputs(const QStringList &absoluteOutputs);
    /// The record of the project being built.
    BuildRecord &currentRecord() { return m_record; }

    /// Whether the map file beside the link output `output` exists, or none is asked for.
    bool mapOutputFileUpToDate(ProjectElement *element, const QString &configuration,
                               const QString &output, const QStringList &dependencies,
                               Builder *builder, bool quiet);

    // Built-in commands.

    /// Carries out "cp", "chmod" and "rm" here (true; a non-empty `errorText` is a failure);
    /// points "xmlcp" and "mkhdr" at the installation's programs (false: run `command`).
    bool builtinCommand(const QString &directory, QStringList &command,
                        QString &errorText) override;
    /// A shell command doing what the built-in `command` does; null for the installation's
    /// programs. False for a command that is not built in.
    bool getExportableBuiltinCommand(const QString &directory, const QStringList &command,
                                     QString &text);
    /// Copies `from` to `to` (relative to `directory`), replacing a read-only `to`.
    bool cp(const QString &directory, const QString &from, const QString &to, QString &errorText);
    /// Makes `file` writable, or read-only unless `writable`.
    bool chmod(const QString &directory, bool writable, const QString &file, QString &errorText);
    /// Removes `file`.
    bool rm(const QString &directory, const QString &file, QString &errorText);

    /// The directory of the project being built; relative names are resolved against it.
    QString buildDirectory;
    /// The dependency lists of object files known to be up to date, by absolute object path,
    /// kept across runs beside the objects.
    DependencyCache dependencyCache;

    PropertyClass *propertyGroupsFilePathProperty;
    PropertyClass *buildRemoveUnusedSymbolsProperty;
    PropertyClass *cEnforceAnsiCheckingProperty;
    PropertyClass *cAdditionalOptionsProperty;
    PropertyClass *cppEnableExceptionsProperty;
    PropertyClass *cppEnableRttiProperty;
    PropertyClass *linkIncludeStandardLibrariesProperty;
    PropertyClass *linkStandardLibrariesDirectoryProperty;
    PropertyClass *linkUseMultiThreadedLibrariesProperty;
    PropertyClass *linkIOLibraryNameProperty;
    PropertyClass *linkSymbolDefinitionsProperty;
    PropertyClass *linkerAdditionalFilesProperty;
    PropertyClass *linkerAdditionalOptionsProperty;
    PropertyClass *linkerMemoryMapFileProperty;
    PropertyClass *linkerSectionPlacementFileProperty;
    PropertyClass *linkerOutputFormatProperty;
    PropertyClass *linkerMapFileProperty;
    PropertyClass *linkerPostBuildCommandProperty;
    PropertyClass *linkerKeepSymbolsProperty;
    PropertyClass *cUndefineAllPreprocessorDefinitionsProperty;
    PropertyClass *cPreprocessorDefinitionsProperty;
    PropertyClass *cPreprocessorUndefinitionsProperty;
    PropertyClass *cIgnoreIncludesProperty;
    PropertyClass *cSystemIncludeDirectoriesProperty;
    PropertyClass *cUserIncludeDirectoriesProperty;
    PropertyClass *asmAdditionalOptionsProperty;
    PropertyClass *defaultCodeSectionProperty;
    PropertyClass *defaultDataSectionProperty;
    PropertyClass *defaultZeroedSectionProperty;
    PropertyClass *defaultConstSectionProperty;
    PropertyClass *defaultVectorSectionProperty;
    PropertyClass *linkerPrintfFmtLevelProperty;
    PropertyClass *linkerPrintfWidthPrecisionSupportedProperty;
    PropertyClass *linkerPrintfFpEnabledProperty;
    PropertyClass *linkerScanfFmtLevelProperty;
    PropertyClass *linkerScanfFpEnabledProperty;
    PropertyClass *linkerScanfCharacterGroupMatchingEnabledProperty;
    PropertyClass *externalBuildFileNameProperty;
    PropertyClass *externalBuildCommandProperty;
    PropertyClass *externalCleanCommandProperty;
    PropertyClass *externalStartAddressProperty;
    PropertyClass *externalLoadAddressProperty;
    PropertyClass *externalLoadFileTypeProperty;
    PropertyClass *targetResetScriptProperty;
    PropertyClass *targetAttachScriptProperty;
    PropertyClass *targetGoScriptProperty;
    PropertyClass *targetStopScriptProperty;
    PropertyClass *targetConnectScriptProperty;
    PropertyClass *targetDisconnectScriptProperty;
    PropertyClass *debugWorkingDirectoryProperty;
    PropertyClass *debugCommandArgumentsProperty;

private:
    /// The flow of `action` on one element whose children are done; `force` says they did
    /// work or the build type forces it.
    bool buildElement(ProjectElement *element, const QString &configuration, Builder *builder,
                      int type, BuildAction action, bool force);
    bool compileStep(ProjectElement *file, const QString &configuration, Builder *builder, int type,
                     BuildAction action, bool force);
    bool linkStep(ProjectElement *project, const QString &configuration, Builder *builder, int type,
                  bool force);
    bool archiveStep(ProjectElement *project, const QString &configuration, Builder *builder,
                     int type, bool force);
    bool externalStep(ProjectElement *project, const QString &configuration, Builder *builder,
                      int type, BuildAction action, bool force);
    /// Runs `command` in `directory` making `absolute`, then makes that file read-only or
    /// writable as `readOnlyProperty` says, recording `output`'s signature; false when the
    /// command failed or the build is to stop.
    bool runAndSetWritable(ProjectElement *element, const QString &configuration,
                           const QString &directory, const QStringList &command,
                           const QString &absolute, const PropertyClass *readOnlyProperty,
                           const QString &output, const BuildSignature &signature,
                           Builder *builder);
    /// Copies one file of a "Staging" project and keeps its package member current.
    bool stageStep(ProjectElement *file, const QString &configuration, Builder *builder, int type,
                   bool force);
    /// Runs the command of a "Combining" project once over all its files.
    bool combineStep(ProjectElement *project, const QString &configuration, Builder *builder,
                     int type, bool force);
    /// Runs the link's post-build command, if it has one.
    void postBuildStep(ProjectElement *project, const QString &configuration, Builder *builder);
    /// Runs the whole `command` text as one command in a group headed by `heading`.
    void runGroupCommand(ProjectElement *project, const QString &heading,
                         const QStringList &command, Builder *builder,
                         const QStringList *outputFiles = nullptr);
    /// Whether the side file of `output` with `extension` exists; says so unless `quiet`.
    bool sideFileExists(const QString &output, const QString &extension, Builder *builder,
                        bool quiet);
    /// `findFileOfType` for the link, else the expanded `setting` found as given or below the
    /// project directory.
    bool useFileForLink(ProjectElement *project, const QString &configuration,
                        const QString &fileType, const PropertyClass *setting, QString &path);

    /// `output` before it is made absolute, as the settings give it.
    QString outputOf(BuildAction action, ProjectElement *element, const QString &configuration);
    /// What `output` made of an element for an action in a configuration.
    using OutputKey = ElementKey<int>;
    /// The outputs worked out in the build `m_outputsSerial`: the link asks again for every
    /// object the compile steps named.
    QHash<OutputKey, QString> m_outputs;
    /// The actions worked out in that build, under the action -1.
    QHash<OutputKey, BuildAction> m_actions;
    quint64 m_outputsSerial = 0;
    /// Empties both when a build other than the one they were worked out in is under way.
    void forgetEarlierBuilds();
    /// `buildAction` worked out afresh.
    BuildAction actionOf(ProjectElement *element, const QString &configuration);

    /// Reads the record of the project of `element` unless it is the one held; writes the
    /// held one first if it changed.
    void openRecord(ProjectElement *element, const QString &configuration, Builder *builder,
                    bool quiet);
    /// Writes the held record if it changed, unless this is a dry run.
    void saveRecord(Builder *builder, bool quiet);
    /// Why `output` is not as its record says, for -verbose.
    QString recordDifference(const QString &output, const QString &key) const;

    BuildRecord m_record;
    QStringList m_toolSignature; ///< `toolSignature` of this build
    /// The settings entries of each action, by the element they are found on, for one build
    /// and configuration.
    QHash<const ProjectElement *, QHash<int, QStringList>> m_settingsSignatures;
    /// The settings part of the signature of `action` for the elements whose settings
    /// `owner` gives.
    QStringList settingsSignature(ProjectElement *owner, const QString &configuration,
                                  BuildAction action);
    quint64 m_signatureSerial = 0; ///< the build the two above belong to
    QString m_signatureConfiguration;
    quint64 m_recordLoadedSerial = 0;   ///< the build `m_record` was read in
    bool m_recordWriteReported = false; ///< a failed write was reported in this build
    mutable QHash<int, QList<const PropertyClass *>> m_commandProperties;

    void makeBuildAndCompilerClasses();
    void makeLinkerClasses();
    void makePreprocessorAndSectionClasses();
    void makePrintfScanfClasses();
    void makeExternalTargetAndDebugClasses();
};

/// The process-wide build system seen as its generic layer; set by its constructor.
extern StandardBuildSystem *standardBuildSystem;
