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
    // One of each kind: an enumeration, Yes/No with either default, integers with their unit,
    // files and texts without a default.
    const Expected expected[] = {
        {"arm_core_type", T::Enumeration, "Compiler Options", "None", ""},
        {"arm_fp_format", T::Enumeration, "Debugging Options", "Software VFP", ""},
        {"arm_interwork", T::Boolean, "Compiler Options", "Yes", ""},
        {"arm_simulator_run_target_loader", T::Boolean, "Simulator Options", "No", ""},
        {"arm_linker_jtag_pad_post_dr", T::IntegerRange, "Target Options", "0", "bits"},
        {"arm_linker_irq_stack_size", T::IntegerRange, "Linker Options", "256", "bytes"},
        {"arm_target_debug_handler_file_path", T::ProjFileName, "Target Options", nullptr, ""},
        {"target_loader_reset_script", T::String, "Target Options", nullptr, ""},
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

    EXPECT_EQ(system->armTargetDebugInterfaceTypeProperty->enumerates(),
              QStringList({"ARM7DI", "ARM7TDI", "ARM9TDI", "XScale", "XScale7BitIR", "ADIv5"}));
    EXPECT_EQ(system->armLinkerStackSizeProperty->maximum(), 2147483647);
    EXPECT_EQ(system->armLinkerJtagPadPreIrProperty->maximum(), 1024);
    EXPECT_EQ(system->armTargetFlashLoaderFilePathProperty->specialValueText(), "Elf (*.elf)");
    EXPECT_EQ(system->armTargetDebugHandlerFilePathProperty->specialValueText(), "Binary (*.bin)");
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
