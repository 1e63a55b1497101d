#include "project/armprojectsystem.h"

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
