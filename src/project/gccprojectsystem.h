#pragma once

#include "project/standardprojectsystem.h"

/// The project system of the GNU tool chain: its file extensions.
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

private:
    QString m_executableExtension;
};
