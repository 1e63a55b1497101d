#include "project/gccprojectsystem.h"

GCCProjectSystem::GCCProjectSystem(const QString &executableExtension)
    : m_executableExtension(executableExtension)
{
}
