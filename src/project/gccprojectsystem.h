#pragma once

#include "project/standardprojectsystem.h"

/// The project system of the GNU tool chain: its file extensions and the settings its
/// compiler and linker add.
class GCCProjectSystem : public StandardProjectSystem
{
    Q_OBJECT

public:
    /// `executableExtension` is the extension of linked programs, such as ".elf".
    explicit GCCProjectSystem(const QString &executableExtension);

    QString objectFileExtension() const override { return QStringLiteral(".o"); }
    QString libraryFileExtension() const override { return QStringLiteral(".a"); }
    QString executableFileExtension() const override { return m_executableExtension; }
    QString assemblyCodeFileExtension() const override { return QStringLiteral(".s"); }

    /// The generic C list, the generic assembler list, then the optimisation settings.
    void appendCCompilerProperties(PropertyClassList *list) override;
    /// The generic linker list, then the entry point.
    void appendLinkerProperties(PropertyClassList *list) override;

private:
    QString m_executableExtension;
};
