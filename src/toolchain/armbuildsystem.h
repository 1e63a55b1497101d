#pragma once

#include "toolchain/gccbuildsystem.h"

/// The ARM tool-chain layer: runs the compiler proper, the assembler and the linker itself.
class ARMBuildSystem : public GCCBuildSystem
{
public:
    /// `args` is not kept.
    explicit ARMBuildSystem(const QStringList &args);
};
