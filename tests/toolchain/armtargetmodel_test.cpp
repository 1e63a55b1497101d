#include "armtesting.h"

#include "settings/environmentpropertyvalue.h"

namespace {

struct TextCase
{
    ARMSettings settings;
    const char *expected;
};

} // namespace

TEST_F(ARMTest, LibraryExtensionOfEachTargetCombination)
{
    struct Case
    {
        bool library; ///< the library project instead of the executable
        ARMSettings settings;
        const char *libExt;
    };
    const std::vector<Case> cases = {
        {false, {}, "_v4t_a_le"},
        {false, {{"arm_architecture", "ARM4T"}}, "_v4t_a_le"},
        // v5T shares the v4T libraries.
        {false, {{"arm_architecture", "v5T"}}, "_v4t_a_le"},
        {false, {{"arm_interwork", "No"}}, "_v4_a_le"},
        {false, {{"arm_architecture", "v5T"}, {"arm_interwork", "No"}}, "_v4_a_le"},
        {false,
         {{"arm_architecture", "v5TE"},
          {"arm_library_instruction_set", "Thumb"},
          {"arm_endian", "Big"},
          {"link_use_multi_threaded_libraries", "Yes"}},
         "_v5te_t_be_mt"},
        {false,
         {{"arm_architecture", "v7M"}, {"arm_library_instruction_set", "Thumb"}},
         "_v7m_t_le"},
        {false, {{"arm_fp_abi", "SoftFP"}}, "_v4t_vfp_a_le"},
        {false, {{"arm_architecture", "v6"}}, "__a_le"},
        // An executable links with the libraries of its library instruction set.
        {false, {{"arm_instruction_set", "Thumb"}}, "_v4t_a_le"},
        {true, {{"arm_instruction_set", "Thumb"}}, "_v4t_t_le"},
        {true, {{"arm_library_instruction_set", "Thumb"}}, "_v4t_a_le"},
    };
    for (const Case &test : cases) {
        ProjectElement *project = test.library ? lib : app;
        set(project, test.settings);
        EXPECT_EQ(system->macros(project, debug).value("LibExt"), test.libExt);
        unset(project, test.settings);
    }

    // The compatibility mode tells interworking apart in ARM libraries only.
    system->setGenerate_1_5_commandLine(true);
    EXPECT_EQ(system->macros(app, debug).value("LibExt"), "_v4t_a_i_le");
    set(app, {{"arm_interwork", "No"}});
    EXPECT_EQ(system->macros(app, debug).value("LibExt"), "_v4_a_ni_le");
    set(app, {{"arm_library_instruction_set", "Thumb"}});
    EXPECT_EQ(system->macros(app, debug).value("LibExt"), "_v4_t_le");

    // Elements other than projects have neither macro; the generic ones stay.
    const QMap<QString, QString> fileMacros = system->macros(mainC, debug);
    EXPECT_FALSE(fileMacros.contains("LibExt"));
    EXPECT_FALSE(fileMacros.contains("LoaderType"));
    EXPECT_EQ(fileMacros.value("InputName"), "main");
    EXPECT_FALSE(system->macros(nullptr, debug).contains("LibExt"));
}

TEST_F(ARMTest, LoaderTypeOfEachFlashLoader)
{
    const std::vector<std::pair<const char *, const char *>> cases = {
        {"Comms Channel Loader", "dcc"},
        {"Fast Comms Channel Loader", "dcc"},
        {"RAM Loader", "ram"},
        {"FLASHKIT RPC Loader", "rpc"},
        {"Something Else", ""}};
    EXPECT_EQ(system->macros(app, debug).value("LoaderType"), "dcc");
    for (const auto &[loader, type] : cases) {
        set(app, {{"arm_target_flash_loader_type", loader}});
        EXPECT_EQ(system->macros(app, debug).value("LoaderType", "<none>"), type) << loader;
    }
}

TEST_F(ARMTest, PrintfAndScanfVariants)
{
    const std::vector<TextCase> printfCases = {
        {{}, "long"},
        {{{"linker_printf_fmt_level", "long long"}}, "long_long"},
        {{{"linker_printf_width_precision_supported", "No"}}, "long_nwp"},
        {{{"linker_printf_fmt_level", "short"}, {"linker_printf_width_precision_supported", "No"}},
         "_nwp"},
        // Floating point support brings everything, width and precision included.
        {{{"linker_printf_fp_enabled", "Yes"}, {"linker_printf_width_precision_supported", "No"}},
         "double_long_long"},
    };
    for (const TextCase &test : printfCases) {
        set(app, test.settings);
        EXPECT_EQ(system->getPrintfVariant(app, debug), test.expected);
        unset(app, test.settings);
    }
    const std::vector<TextCase> scanfCases = {
        {{}, "long"},
        {{{"linker_scanf_fmt_level", "long long"}}, "long_long"},
        {{{"linker_scanf_fmt_level", "long"},
          {"linker_scanf_character_group_matching_enabled", "Yes"}},
         "long_cc"},
        {{{"linker_scanf_fp_enabled", "Yes"}}, "double_long_long"},
        {{{"linker_scanf_fp_enabled", "Yes"},
          {"linker_scanf_character_group_matching_enabled", "Yes"}},
         "double_long_long_cc"},
    };
    for (const TextCase &test : scanfCases) {
        set(app, test.settings);
        EXPECT_EQ(system->getScanfVariant(app, debug), test.expected);
        unset(app, test.settings);
    }
}

TEST_F(ARMTest, TargetOptionsOfCompilerAndAssembler)
{
    // The expected text is the compiler's, completed by the defaults unless it has a byte
    // order option; the assembler's differs in that option.
    const char *const tail = "-mthumb-interwork -mlittle-endian -mfpu=vfp -mfloat-abi=soft";
    const std::vector<TextCase> cases = {
        {{}, "-march=armv4t"},
        {{{"arm_architecture", "ARM4T"}}, "-march=armv4t"},
        {{{"arm_architecture", "v5T"}}, "-march=armv5t"},
        {{{"arm_architecture", "v5TE"}}, "-march=armv5te"},
        {{{"arm_architecture", "v7M"}}, "-march=armv7m"},
        {{{"arm_architecture", "v6"}}, ""},
        {{{"arm_core_type", "ARM7TDMI-S"}}, "-mcpu=arm7tdmi-s"},
        {{{"arm_core_type", "NONE"}, {"arm_architecture", "v5TE"}}, "-march=armv5te"},
        // The core wins over an architecture that disagrees.
        {{{"arm_core_type", "Cortex-M3"}, {"arm_architecture", "v4T"}}, "-mcpu=cortex-m3"},
        {{{"arm_instruction_set", "Thumb"}}, "-march=armv4t -mthumb"},
        {{{"arm_instruction_set", "THUMB"}}, "-march=armv4t -mthumb"},
        {{{"arm_interwork", "No"}, {"arm_endian", "Big"}, {"arm_fp_abi", "SoftFP"}},
         "-march=armv4t -mbig-endian -mfpu=vfp -mfloat-abi=softfp"},
        {{{"arm_fp_abi", "Hard"}},
         "-march=armv4t -mthumb-interwork -mlittle-endian -mfpu=vfp "
         "-mfloat-abi=hard"},
        {{{"arm_fp_abi", "Other"}}, "-march=armv4t -mthumb-interwork -mlittle-endian -mfpu=vfp"},
        // The FPU type gives no option of its own.
        {{{"arm_fpu_type", "VFP9"}}, "-march=armv4t"},
    };
    for (const TextCase &test : cases) {
        SCOPED_TRACE(test.expected);
        set(mainC, test.settings);
        QString expected = QString(test.expected).contains("-endian")
                               ? QString(test.expected)
                               : QString("%1 %2").arg(test.expected, tail).trimmed();
        QStringList compiler;
        system->addARMOptions(mainC, debug, compiler, false);
        EXPECT_EQ(compiler.join(' '), expected);
        QStringList assembler;
        system->addARMOptions(mainC, debug, assembler, true);
        EXPECT_EQ(assembler.join(' '),
                  expected.replace("-mlittle-endian", "-EL").replace("-mbig-endian", "-EB"));
        unset(mainC, test.settings);
    }

    // The user may turn the FPU option off; the compatibility mode drops all that follows the
    // byte order, and a core along with it.
    settings.generateFPUOption()->setPropertyValue("No");
    QStringList command;
    system->addARMOptions(mainC, debug, command, false);
    EXPECT_EQ(command.join(' '),
              "-march=armv4t -mthumb-interwork -mlittle-endian -mfloat-abi=soft");
    system->setGenerate_1_5_commandLine(true);
    set(mainC, {{"arm_core_type", "ARM920T"}, {"arm_architecture", "v5TE"}});
    command.clear();
    system->addARMOptions(mainC, debug, command, true);
    EXPECT_EQ(command.join(' '), "-march=armv5te -mthumb-interwork -EL");
}
