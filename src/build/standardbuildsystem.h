#pragma once

#include "build/buildaction.h"
#include "build/buildsystem.h"

#include <QDateTime>

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
    QString output(ProjectElement *element, const QString &configuration, bool absolute) override;
    void getDependencies(ProjectElement *element, const QString &configuration,
                         QStringList &dependencies) override;
    bool canLoad(ProjectElement *element, const QString &configuration) override;
    bool canCompile(ProjectElement *element, const QString &configuration) override;
    bool mustCompile(ProjectElement *element, const QString &configuration) override;
    bool platformBuild(ProjectElement *element, const QString &configuration, Builder *builder,
                       int type) override;

    /// Has `builder` run the tool commands of `action` on `element`: `output` as the settings
    /// name it (the commands run in the project directory), `absoluteOutput` the same file
    /// made absolute, `inputs` the sources, or the objects and libraries of a link or archive.
    virtual void createCommandFor(ProjectElement *element, const QString &configuration,
                                  BuildAction action, const QString &output,
                                  const QString &absoluteOutput, const QStringList &inputs,
                                  Builder *builder, bool quiet, bool clean);
    /// Whether no property that goes into the command of `action` changed after
    /// `targetModified`; tool-chain layers extend the list.
    virtual bool commandUpToDate(ProjectElement *element, const QString &configuration,
                                 QDateTime targetModified, BuildAction action, Builder *builder,
                                 bool quiet);
    /// The files the object file `objectPath` was last compiled from, as the compiler listed
    /// them; empty when that is unknown.
    virtual QStringList getObjectFileDependencies(const QString &projectDirectory,
                                                  const QString &input, const QString &objectPath);

    /// The directory of the project being built; relative names are resolved against it.
    QString buildDirectory;
    /// The dependency lists of object files known to be up to date, by absolute object path.
    QMap<QString, QStringList> dependencyCache;

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
    void makeBuildAndCompilerClasses();
    void makeLinkerClasses();
    void makePreprocessorAndSectionClasses();
    void makePrintfScanfClasses();
    void makeExternalTargetAndDebugClasses();
};

/// The process-wide build system seen as its generic layer; set by its constructor.
extern StandardBuildSystem *standardBuildSystem;
