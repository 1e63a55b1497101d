#include "armtesting.h"

#include "settings/environmentpropertyvalue.h"

TEST_F(ARMTest, CatalogueOfTheARMSettings)
{
    using T = PropertyClass::Type;
    struct Expected
    {
        const char *saveName;
        T type;
        const char *group;
        const char *defaultValue;
        const char *suffix;
    };
    const char *const compiler = "Compiler Options";
    const char *const linker = "Linker Options";
    const char *const target = "Target Options";
    const char *const simulator = "Simulator Options";
    const Expected expected[] = {
        {"arm_instruction_set", T::Enumeration, compiler, "ARM", ""},
        {"arm_architecture", T::Enumeration, compiler, "v4T", ""},
        {"arm_core_type", T::Enumeration, compiler, "None", ""},
        {"arm_fp_format", T::Enumeration, "Debugging Options", "Software VFP", ""},
        {"arm_fpu_type", T::Enumeration, compiler, "None", ""},
        {"arm_fp_abi", T::Enumeration, compiler, "Soft", ""},
        {"arm_endian", T::Enumeration, compiler, "Little", ""},
        {"arm_long_calls", T::Boolean, compiler, "No", ""},
        {"arm_interwork", T::Boolean, compiler, "Yes", ""},
        {"arm_keep_assembly", T::Boolean, compiler, "No", ""},
        {"arm_module_call_vias", T::Boolean, compiler, "No", ""},
        {"arm_library_check_memory_segment_overflow", T::Boolean, linker, "Yes", ""},
        {"arm_use_gcc_libraries", T::Boolean, linker, "Yes", ""},
        {"arm_library_instruction_set", T::Enumeration, linker, "ARM", ""},
        {"target_loader_reset_script", T::String, target, nullptr, ""},
        {"arm_target_debug_interface_type", T::Enumeration, target, "ARM7TDI", ""},
        {"arm_linker_jtag_pad_pre_ir", T::IntegerRange, target, "0", "bits"},
        {"arm_linker_jtag_pad_post_ir", T::IntegerRange, target, "0", "bits"},
        {"arm_linker_jtag_pad_pre_dr", T::IntegerRange, target, "0", "bits"},
        {"arm_linker_jtag_pad_post_dr", T::IntegerRange, target, "0", "bits"},
        {"arm_target_stop_cpu_using_dbgrq", T::Boolean, target, "No", ""},
        {"arm_target_flash_loader_file_path", T::ProjFileName, target, nullptr, ""},
        {"arm_target_flash_loader_type", T::Enumeration, target, "Comms Channel Loader", ""},
        {"arm_target_loader_parameter", T::String, target, nullptr, ""},
        {"arm_target_loader_first_program_section", T::String, target, nullptr, ""},
        {"arm_target_loader_last_program_section", T::String, target, nullptr, ""},
        {"arm_target_loader_reset_after_download", T::Boolean, target, "Yes", ""},
        {"arm_target_debug_handler_file_path", T::ProjFileName, target, nullptr, ""},
        {"arm_target_debug_handler_load_address", T::String, target, nullptr, ""},
        {"arm_simulator_memory_simulation_filename", T::ProjFileName, simulator, nullptr, ""},
        {"arm_simulator_memory_simulation_parameter", T::String, simulator, nullptr, ""},
        {"arm_simulator_run_target_loader", T::Boolean, simulator, "No", ""},
        {"arm_linker_stack_size", T::IntegerRange, linker, "1024", "bytes"},
        {"arm_linker_irq_stack_size", T::IntegerRange, linker, "256", "bytes"},
        {"arm_linker_fiq_stack_size", T::IntegerRange, linker, "256", "bytes"},
        {"arm_linker_svc_stack_size", T::IntegerRange, linker, "0", "bytes"},
        {"arm_linker_abt_stack_size", T::IntegerRange, linker, "0", "bytes"},
        {"arm_linker_und_stack_size", T::IntegerRange, linker, "0", "bytes"},
        {"arm_linker_heap_size", T::IntegerRange, linker, "1024", "bytes"},
        {"arm_linker_treat_warnings_as_errors", T::Boolean, linker, "Yes", ""},
        {"arm_linker_no_warn_on_mismatch", T::Boolean, linker, "No", ""},
    };
    for (const Expected &e : expected) {
        SCOPED_TRACE(e.saveName);
        const PropertyClass *found = system->findPropertyClass(e.saveName);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->type(), e.type);
        EXPECT_EQ(found->group(), e.group);
        EXPECT_EQ(found->defaultValue(), e.defaultValue ? QString(e.defaultValue) : QString());
        EXPECT_EQ(found->suffix(), e.suffix);
    }

    // Spot checks of the texts, limits and file filters.
    EXPECT_EQ(system->armCoreTypeProperty->enumerates().size(), 10);
    EXPECT_EQ(system->armCoreTypeProperty->longDescription(),
              "Specifies the core to generate code for. If this property is set to None then the "
              "architecture value is used");
    EXPECT_EQ(system->armTargetDebugInterfaceTypeProperty->enumerates(),
              QStringList({"ARM7DI", "ARM7TDI", "ARM9TDI", "XScale", "XScale7BitIR", "ADIv5"}));
    EXPECT_EQ(system->armLinkerHeapSizeProperty->shortDescription(), "Heap Size");
    EXPECT_EQ(system->armLinkerStackSizeProperty->maximum(), 2147483647);
    EXPECT_EQ(system->armLinkerJtagPadPreIrProperty->maximum(), 1024);
    EXPECT_EQ(system->armTargetFlashLoaderFilePathProperty->specialValueText(), "Elf (*.elf)");
    EXPECT_EQ(system->armTargetDebugHandlerFilePathProperty->specialValueText(), "Binary (*.bin)");
    EXPECT_EQ(system->armTargetLoaderResetAfterDownloadProperty->longDescription(),
              "Specifies whether the target should be reset after a program has been downloaded "
              "by a loader.");
}

TEST_F(ARMTest, DefaultsTheARMTargetsChange)
{
    EXPECT_EQ(system->propertyGroupsFilePathProperty->defaultValue(), "None");
    EXPECT_EQ(system->linkerOutputFormatProperty->defaultValue(), "None");
    EXPECT_EQ(settings.toolChainRootDirectory()->propertyClass()->defaultValue(),
              "$(BenchDir)/gcc/bin");
    // A project that doesn't name its entry point starts at the reset handler.
    EXPECT_EQ(projects.settingFor(app, system->gccEntryPointProperty, debug), "reset_handler");
    EXPECT_EQ(projects.settingFor(app, system->linkerKeepSymbolsProperty, debug), "_vectors");
    EXPECT_FALSE(system->generate15CommandLine());

    system->setGenerate_1_5_commandLine(true);
    EXPECT_EQ(projects.settingFor(app, system->gccEntryPointProperty, debug), "0");
    EXPECT_TRUE(system->linkerKeepSymbolsProperty->defaultValue().isNull());
    system->setGenerate_1_5_commandLine(false);
    EXPECT_EQ(system->gccEntryPointProperty->defaultValue(), "reset_handler");
    EXPECT_EQ(system->linkerKeepSymbolsProperty->defaultValue(), "_vectors");
}
