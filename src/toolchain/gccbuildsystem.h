#pragma once

#include "engine/standardbuildsystem.h"

#include <QString>
#include <QStringList>

/// The generic GNU tool-chain layer, driven through its driver programs (`gcc`, `g++`, `ar`,
/// `ranlib`, `objcopy`) found under the tool chain root.
class GCCBuildSystem : public StandardBuildSystem
{
public:
    /// `toolPrefix` stands between the tool chain root and each tool's name (null for none);
    /// `defaultToolChainRoot` becomes the default of the tool chain root setting;
    /// `linkerStartGroup` opens a linker group in front of the link inputs.
    GCCBuildSystem(const QStringList &args, const char *toolPrefix,
                   const char *defaultToolChainRoot, bool linkerStartGroup);

    /// The generic layer has no preprocess command: a null string.
    QString preprocess(ProjectElement *element, const QString &configuration,
                       Builder *builder) override;
    /// Has `builder` run the driver commands of a compile, link or archive; other actions do
    /// nothing. Every command of a sequence is issued, whether an earlier one failed or not.
    void createCommandFor(ProjectElement *element, const QString &configuration, BuildAction action,
                          const QString &output, const QString &absoluteOutput,
                          const QStringList &inputs, Builder *builder, bool quiet,
                          bool clean) override;
    /// The generic settings, then this layer's own settings of `action`.
    void appendCommandProperties(BuildAction action,
                                 QList<const PropertyClass *> &properties) const override;
    /// The tool chain root.
    QStringList toolSignature() override;
    /// What the compiler's dependency file beside `objectPath` lists; `input` is not read.
    QStringList getObjectFileDependencies(const QString &projectDirectory, const QString &input,
                                          const QString &objectPath) override;

    /// Appends the include, definition, dependency-file and diagnostic options of `element` to
    /// `command`; the dependency file's target is `objectFile`.
    void addPreprocessorOptions(ProjectElement *element, const QString &configuration,
                                const QString &objectFile, QStringList &command);
    /// Appends each item of the ";"-list `value` to `list` as one argument behind `prefix`;
    /// empty items are dropped.
    static void appendSplitItems(QStringList &list, const QString &prefix, const QString &value);

    PropertyClass *gccOptimizationLevelProperty;
    PropertyClass *gccEntryPointProperty;
    PropertyClass *gccOmitFramePointerProperty;
    /// Put between the tool chain root and each tool's name.
    QString toolPrefix;
    /// Whether the link line carries "-Wl,--start-group" before its inputs.
    bool linkerStartGroup;

protected:
    /// The compiler option of an optimisation level; anything unknown optimises for size.
    static QString optimizationOption(const QString &level);
    /// The object copier's option that selects the output `format`.
    static QString objcopyFormatOption(const QString &format);
    /// The expanded tool chain root setting; empty without a settings object.
    QString toolChainRoot() const;
    /// Whether the setting of `element` is exactly "Yes".
    bool isOn(ProjectElement *element, const PropertyClass *propertyClass,
              const QString &configuration) const;

private:
    void compileCommand(ProjectElement *element, const QString &configuration, BuildAction action,
                        const QString &output, const QString &absoluteOutput, const QString &input,
                        const QString &tools, Builder *builder);
    void linkCommands(ProjectElement *element, const QString &configuration, const QString &output,
                      const QString &absoluteOutput, const QStringList &inputs,
                      const QString &tools, Builder *builder);
    void archiveCommands(ProjectElement *element, const QString &output,
                         const QString &absoluteOutput, const QStringList &inputs,
                         const QString &tools, Builder *builder);
};
