#include "toolchain/armbuildsystem.h"

ARMBuildSystem::ARMBuildSystem(const QStringList &args)
    : GCCBuildSystem(args, nullptr, "$(BenchDir)/gcc/bin", true)
{
}
