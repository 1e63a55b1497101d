#pragma once

#include "project/gccprojectsystem.h"

/// The project system of the ARM targets; the one the program makes.
class ARMProjectSystem : public GCCProjectSystem
{
    Q_OBJECT

public:
    /// Linked programs get `executableExtension`, by default ".elf".
    explicit ARMProjectSystem(const QString &executableExtension = QStringLiteral(".elf"));

    /// The GCC C list, the ARM assembler list, then the ARM code generation settings.
    void appendCCompilerProperties(PropertyClassList *list) override;
    /// The generic assembler list, then the ARM target settings.
    void appendAssemblerProperties(PropertyClassList *list) override;
    /// The GCC linker list, then the ARM libraries and stack sizes.
    void appendLinkerProperties(PropertyClassList *list) override;
    /// The generic target list, then the ARM debug interface and loader settings.
    void appendTargetProperties(PropertyClassList *list) override;

    /// Upgrades an executable project whose "Startup Code" folder still holds a target
    /// definitions file: its reset scripts and flash loader become settings of the project,
    /// its first target script a file of the folder, and the definitions file goes.
    void munge(ProjectElement *element) override;

private:
    /// Turns the targets of the definitions file `path` into settings of `project` and, for
    /// the first that names a script, a file in `folder`. False if the file can't be read.
    bool applyTargetDefinitions(const QString &path, ProjectElement *project,
                                ProjectElement *folder);
};
