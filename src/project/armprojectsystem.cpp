#include "project/armprojectsystem.h"

#include "project/projectelement.h"

#include <QDomDocument>
#include <QDomElement>
#include <QFile>
#include <QFileInfo>

ARMProjectSystem::ARMProjectSystem(const QString &executableExtension)
    : GCCProjectSystem(executableExtension)
{
}

void ARMProjectSystem::appendCCompilerProperties(PropertyClassList *list)
{
    GCCProjectSystem::appendCCompilerProperties(list);
    appendAssemblerProperties(list);
    appendClasses(list, {"arm_long_calls", "arm_module_call_vias", "build_remove_unused_symbols",
                         "arm_keep_assembly"});
}

void ARMProjectSystem::appendAssemblerProperties(PropertyClassList *list)
{
    GCCProjectSystem::appendAssemblerProperties(list);
    appendClasses(list, {"arm_instruction_set", "arm_architecture", "arm_core_type", "arm_fpu_type",
                         "arm_fp_abi", "arm_endian", "arm_interwork", "arm_keep_assembly"});
}

void ARMProjectSystem::appendLinkerProperties(PropertyClassList *list)
{
    GCCProjectSystem::appendLinkerProperties(list);
    appendClasses(list,
                  {"arm_library_instruction_set", "arm_library_check_memory_segment_overflow",
                   "build_remove_unused_symbols", "arm_use_gcc_libraries", "arm_linker_stack_size",
                   "arm_linker_irq_stack_size", "arm_linker_fiq_stack_size",
                   "arm_linker_svc_stack_size", "arm_linker_abt_stack_size",
                   "arm_linker_und_stack_size", "arm_linker_heap_size",
                   "arm_linker_treat_warnings_as_errors", "arm_linker_no_warn_on_mismatch"});
}

void ARMProjectSystem::appendTargetProperties(PropertyClassList *list)
{
    GCCProjectSystem::appendTargetProperties(list);
    appendClasses(list, {"arm_linker_jtag_pad_pre_ir",
                         "arm_linker_jtag_pad_post_ir",
                         "arm_linker_jtag_pad_pre_dr",
                         "arm_linker_jtag_pad_post_dr",
                         "target_loader_reset_script",
                         "arm_target_debug_interface_type",
                         "arm_target_stop_cpu_using_dbgrq",
                         "arm_target_flash_loader_file_path",
                         "arm_target_flash_loader_type",
                         "arm_target_loader_parameter",
                         "arm_target_loader_first_program_section",
                         "arm_target_loader_last_program_section",
                         "arm_target_loader_reset_after_download",
                         "arm_target_debug_handler_file_path",
                         "arm_target_debug_handler_load_address",
                         "arm_simulator_memory_simulation_filename",
                         "arm_simulator_memory_simulation_parameter",
                         "arm_simulator_run_target_loader",
                         "arm_architecture",
                         "arm_endian",
                         "arm_core_type",
                         "arm_fpu_type",
                         "arm_fp_format"});
}

void ARMProjectSystem::munge(ProjectElement *element)
{
    if (element->type() == ProjectElement::Solution) {
        for (ProjectElement *child = element->firstChild(); child; child = child->nextSibling())
            munge(child);
        return;
    }
    if (element->type() != ProjectElement::Project ||
        getProjectType(element) != QLatin1String("Executable"))
        return;
    ProjectElement *folder = findByName(element, QStringLiteral("Startup Code"));
    if (!folder || !folder->firstChild())
        return;
    ProjectElement *definitions = folder->firstChild();
    while (definitions && (definitions->type() != ProjectElement::File ||
                           getFileType(definitions) != QLatin1String("Target Definitions")))
        definitions = definitions->nextSibling();
    if (!definitions)
        return;
    // The file's content now lives in settings, so it goes even if it can't be read.
    applyTargetDefinitions(definitions->path().osPathQString(), element, folder);
    removeElement(definitions, true);
}

bool ARMProjectSystem::applyTargetDefinitions(const QString &path, ProjectElement *project,
                                              ProjectElement *folder)
{
    QFile file(path);
    QDomDocument document;
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly) || !document.setContent(&file))
        return false;
    const QDomElement root = document.documentElement();
    if (root.tagName() != QLatin1String("objects"))
        return true;

    const QString resetScript = QStringLiteral("target_reset_script");
    const QString ram = QStringLiteral("RAM");
    const QString flash = QStringLiteral("Flash");
    bool folderUsed = false;
    for (QDomElement target = root.firstChildElement(); !target.isNull();
         target = target.nextSiblingElement()) {
        if (!folderUsed && target.hasAttribute(QStringLiteral("targetScriptFilePath"))) {
            ProjectElement *script =
                addFile(folder, target.attribute(QStringLiteral("targetScriptFilePath")), false);
            setProperty(script, fileTypeClass, ProjectElement::commonConfiguration(),
                        QStringLiteral("Reset Script"), false);
            folderUsed = true;
        }
        const bool hasScript = target.hasAttribute(QStringLiteral("resetScript"));
        // An absent script is stored as an empty one, never as a null value.
        const QString script = target.attribute(QStringLiteral("resetScript"), QStringLiteral(""));
        const QString name = target.attribute(QStringLiteral("name"));
        if (hasScript && target.hasAttribute(QStringLiteral("name")) && name.endsWith(ram)) {
            setProperty(project, resetScript, ram, script, false);
            continue;
        }
        if (!name.endsWith(QLatin1String("FLASH")))
            continue;
        setProperty(project, resetScript, flash, script, false);
        if (target.hasAttribute(QStringLiteral("loaderPath")))
            setProperty(project, QStringLiteral("arm_target_flash_loader_file_path"), flash,
                        target.attribute(QStringLiteral("loaderPath")), false);
        if (target.hasAttribute(QStringLiteral("loaderType")))
            setProperty(project, QStringLiteral("arm_target_flash_loader_type"), flash,
                        QStringLiteral("RAM Loader"), false);
    }
    return true;
}
