#include "project/gccprojectsystem.h"

GCCProjectSystem::GCCProjectSystem(const QString &executableExtension)
    : m_executableExtension(executableExtension)
{
}

void GCCProjectSystem::appendCCompilerProperties(PropertyClassList *list)
{
    StandardProjectSystem::appendCCompilerProperties(list);
    // The compiler runs its own assembler, so C files take the assembler's settings too.
    StandardProjectSystem::appendAssemblerProperties(list);
    appendClasses(list, {"gcc_optimization_level", "gcc_omit_frame_pointer"});
}

void GCCProjectSystem::appendLinkerProperties(PropertyClassList *list)
{
    StandardProjectSystem::appendLinkerProperties(list);
    appendClasses(list, {"gcc_entry_point"});
}
