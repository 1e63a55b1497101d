#pragma once

#include "toolchain/gccbuildsystem.h"

#include <memory>
#include <vector>

/// The ARM tool-chain layer: runs the compiler proper, the assembler and the linker itself,
/// and picks every target library by the suffix `$(LibExt)` made of the target settings.
class ARMBuildSystem : public GCCBuildSystem
{
public:
    /// Makes the ARM settings and changes the defaults the ARM targets need; `args` is not
    /// kept.
    explicit ARMBuildSystem(const QStringList &args);
    ~ARMBuildSystem() override;

    /// The generic macro set; for a project also `LibExt` and `LoaderType`.
    QMap<QString, QString> macros(ProjectElement *element, const QString &configuration) override;
    /// Runs the preprocessor alone over `element`'s file; the path of its result, given back
    /// whether the command succeeded or not.
    QString preprocess(ProjectElement *element, const QString &configuration,
                       Builder *builder) override;
    /// Has `builder` run the command sequence of a compile, assembly, link or archive; other
    /// actions do nothing. A failed command ends the sequence with its group left open.
    void createCommandFor(ProjectElement *element, const QString &configuration, BuildAction action,
                          const QString &output, const QString &absoluteOutput,
                          const QStringList &inputs, Builder *builder, bool quiet,
                          bool clean) override;
    /// The GCC layer's settings, then the ARM settings that go into the command of `action`.
    void appendCommandProperties(BuildAction action,
                                 QList<const PropertyClass *> &properties) const override;
    /// The generated linker script, when the link writes one from a memory map.
    void appendGeneratedLinkFiles(ProjectElement *project, const QString &configuration,
                                  const QString &output, QStringList &list) override;

    // The target model.

    /// Appends the core or architecture, instruction set, interworking, byte order and
    /// floating point options that compiler (`forAssembler` false) and assembler share.
    void addARMOptions(ProjectElement *element, const QString &configuration, QStringList &command,
                       bool forAssembler);
    /// The name part of the printf library the link picks, such as "long_nwp".
    QString getPrintfVariant(ProjectElement *element, const QString &configuration);
    /// The name part of the scanf library the link picks, such as "long_cc".
    QString getScanfVariant(ProjectElement *element, const QString &configuration);
    /// Switches the compatibility mode for older compilers and libraries, and with it the
    /// defaults of the kept symbols and the entry point.
    void setGenerate_1_5_commandLine(bool on);
    /// Whether the compatibility mode is on.
    bool generate15CommandLine() const { return generate_1_5_commandLine; }

    // The compile and assemble commands.

    /// Appends the include, predefinition and definition options of `element`; unless
    /// `objectFile` is null also the dependency file and diagnostic options.
    void addPreprocessorOptions(ProjectElement *element, const QString &configuration,
                                const QString &objectFile, QStringList &command);
    /// Appends what decides how a source is read: "-nostdinc", the include directories, the
    /// predefinitions and the user's definitions and undefinitions; editors' tools share them.
    void addIncludeAndDefinitionOptions(ProjectElement *element, const QString &configuration,
                                        QStringList &command);
    /// Appends the assembler's options for assembling `input` into `output`.
    void addAssemblerOptions(ProjectElement *element, const QString &configuration,
                             const QString &input, const QString &output, QStringList &command);
    /// Appends the object copier command that renames the default sections of `objectFile`
    /// in place; leaves `command` alone when every section keeps its standard name.
    void addSectionRenaming(ProjectElement *element, const QString &configuration,
                            const QString &objectFile, const QString &toolRoot,
                            QStringList &command);
    /// Gives the assembly file each `_call_via_` stub that its Thumb long calls use, so that
    /// every module carries its own. A file that can't be read is left as it is.
    static void workaroundCallViaBug(const QString &assemblyFile);

    PropertyClass *armInstructionSetProperty;
    PropertyClass *armArchitectureProperty;
    PropertyClass *armCoreTypeProperty;
    PropertyClass *armFpFormatProperty;
    PropertyClass *armFpuTypeProperty;
    PropertyClass *armFpAbiProperty;
    PropertyClass *armEndianProperty;
    PropertyClass *armLongCallsProperty;
    PropertyClass *armInterworkProperty;
    PropertyClass *armKeepAssemblyProperty;
    PropertyClass *armModuleCallViasProperty;
    PropertyClass *armLibraryCheckMemorySegmentOverflowProperty;
    PropertyClass *armUseGccLibrariesProperty;
    PropertyClass *armLibraryInstructionSetProperty;
    PropertyClass *targetLoaderResetScriptProperty;
    PropertyClass *armTargetDebugInterfaceTypeProperty;
    PropertyClass *armLinkerJtagPadPreIrProperty;
    PropertyClass *armLinkerJtagPadPostIrProperty;
    PropertyClass *armLinkerJtagPadPreDrProperty;
    PropertyClass *armLinkerJtagPadPostDrProperty;
    PropertyClass *armTargetStopCpuUsingDbgrqProperty;
    PropertyClass *armTargetFlashLoaderFilePathProperty;
    PropertyClass *armTargetFlashLoaderTypeProperty;
    PropertyClass *armTargetLoaderParameterProperty;
    PropertyClass *armTargetLoaderFirstProgramSectionProperty;
    PropertyClass *armTargetLoaderLastProgramSectionProperty;
    PropertyClass *armTargetLoaderResetAfterDownloadProperty;
    PropertyClass *armTargetDebugHandlerFilePathProperty;
    PropertyClass *armTargetDebugHandlerLoadAddressProperty;
    PropertyClass *armSimulatorMemorySimulationFilenameProperty;
    PropertyClass *armSimulatorMemorySimulationParameterProperty;
    PropertyClass *armSimulatorRunTargetLoaderProperty;
    PropertyClass *armLinkerStackSizeProperty;
    PropertyClass *armLinkerIrqStackSizeProperty;
    PropertyClass *armLinkerFiqStackSizeProperty;
    PropertyClass *armLinkerSvcStackSizeProperty;
    PropertyClass *armLinkerAbtStackSizeProperty;
    PropertyClass *armLinkerUndStackSizeProperty;
    PropertyClass *armLinkerHeapSizeProperty;
    PropertyClass *armLinkerTreatWarningsAsErrorsProperty;
    PropertyClass *armLinkerNoWarnOnMismatchProperty;

private:
    /// Makes an integer class with its limits, owned here and entered in the catalogue.
    PropertyClass *makeIntegerClass(const char *saveName, int maximum, const char *group,
                                    const char *shortDescription, const char *longDescription,
                                    int defaultValue, const char *suffix);
    void makeCodeGenerationClasses();
    void makeTargetClasses();
    void makeLinkerClasses();

    /// The version an `arm_architecture` value names ("4T", "5T", "5TE", "7M"), or a null
    /// string for an unknown one.
    static QString architectureVersion(const QString &architecture);
    /// The `LibExt` suffix of `project`.
    QString libraryExtension(ProjectElement *project, const QString &configuration);
    /// The setting of `element`, as the project system resolves it.
    QString setting(ProjectElement *element, const PropertyClass *propertyClass,
                    const QString &configuration) const;
    /// Appends the definitions that `cdefine` items of the chosen property group entries
    /// make.
    void addGroupDefinitions(ProjectElement *element, const QString &configuration,
                             QStringList &command);

    /// What the commands that make one object file share.
    struct ObjectJob
    {
        ProjectElement *element;
        QString configuration;
        QString output; ///< as the settings name it; the commands run in the project directory
        QString absoluteOutput;
        QString toolRoot;
        Builder *builder;
    };
    void compileCommands(const ObjectJob &job, BuildAction action, const QString &source);
    void assembleCommands(const ObjectJob &job, const QString &source);
    /// Assembles `input` into the object, `trailingOptions` last; removes `input` if it is
    /// `scratch`; then, unless a command failed, renames sections and ends the group.
    void assembleObject(const ObjectJob &job, const QString &input,
                        const QStringList &trailingOptions, bool scratch);
    void archiveCommands(ProjectElement *element, const QString &output,
                         const QString &absoluteOutput, const QStringList &inputs,
                         const QString &projectDirectory, const QString &toolRoot,
                         Builder *builder);
    void linkCommands(ProjectElement *project, const QString &configuration, const QString &output,
                      const QString &absoluteOutput, const QStringList &inputs,
                      const QString &projectDirectory, const QString &toolRoot, Builder *builder,
                      bool clean);
    /// The objects of a link followed by the target libraries its settings pick.
    QStringList linkInputs(ProjectElement *project, const QString &configuration,
                           const QStringList &inputs);
    /// The script of a link: the project's own, or one written from its memory map, which
    /// `generated` then tells. False, with the builder told why, when there is none.
    bool linkerScript(ProjectElement *project, const QString &configuration, const QString &output,
                      const QString &projectDirectory, Builder *builder, bool clean,
                      QString &script, bool &generated);
    /// Whether a command failed or a stop was asked for.
    bool mustStop() const { return errorOccurred || stopRequested; }

    bool generate_1_5_commandLine = false;
    std::vector<std::unique_ptr<PropertyClass>> m_integerClasses;
};
