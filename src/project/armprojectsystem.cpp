#include "project/armprojectsystem.h"

ARMProjectSystem::ARMProjectSystem(const QString &executableExtension)
    : GCCProjectSystem(executableExtension)
{
}
