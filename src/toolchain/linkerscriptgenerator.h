#pragma once

#include <QString>

class Builder;
class ProjectElement;

/// Brings the generated ld script of a link up to date and returns its path: project
/// directory, "/", the expanded intermediate directory, "/", the complete base name of
/// `output`, ".ld". The script is written afresh when it is older than the memory map file,
/// the section placement file or one of the stack, heap and overflow settings, or when
/// `clean` is set; otherwise the existing script is returned untouched.
///
/// `project` and `configuration` are the link's; `output` is the link output as the settings
/// name it; `memoryMapPath` is the (existing) file that `useMemoryMapFileForLink` gave;
/// `sectionPlacementPath` is the file that `useSectionPlacementFileForLink` gave, or a null
/// string when it gave none. "Generating linker script" goes to `builder->message`.
///
/// On failure throws the error text as a QString (for the link step to hand to
/// `builder->error` before ending the link); no script, complete or partial, is then left at
/// the script path. Needs the global `projectSystem` and `buildSystem`.
QString generateLinkerScript(ProjectElement *project, const QString &configuration,
                             const QString &output, const QString &projectDirectory,
                             const QString &memoryMapPath, const QString &sectionPlacementPath,
                             Builder *builder, bool clean);
