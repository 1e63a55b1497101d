#pragma once

#include "project/gccprojectsystem.h"

/// The project system of the ARM targets; the one the program makes.
class ARMProjectSystem : public GCCProjectSystem
{
    Q_OBJECT

public:
    /// Linked programs get `executableExtension`, by default ".elf".
    explicit ARMProjectSystem(const QString &executableExtension = QStringLiteral(".elf"));
};
