#include "toolchaintesting.h"

TEST_F(ARMTest, LibraryExtensionAndLoaderTypeOfTheTarget)
{
    auto macro = [&](ProjectElement *project, const Settings &values, const char *name) {
        set(project, values);
        const QString value = system->macros(project, debug).value(name, "<none>");
        unset(project, values);
        return value;
    };
    // Whether the library project is meant instead of the executable, the settings, `LibExt`.
    const std::tuple<bool, Settings, const char *> cases[] = {
        {false, {}, "_v4t_a_le"},
        // v5T shares the libraries of v4T.
        {false, {"arm_architecture=v5T", "arm_interwork=No"}, "_v4_a_le"},
        {false,
         {"arm_architecture=v5TE", "arm_library_instruction_set=Thumb", "arm_endian=Big",
          "link_use_multi_threaded_libraries=Yes"},
         "_v5te_t_be_mt"},
        {false, {"arm_fp_abi=SoftFP"}, "_v4t_vfp_a_le"},
        {false, {"arm_architecture=v6"}, "__a_le"},
        // An executable links with the libraries of its library instruction set.
        {false, {"arm_instruction_set=Thumb"}, "_v4t_a_le"},
        {true, {"arm_instruction_set=Thumb"}, "_v4t_t_le"},
        {true, {"arm_library_instruction_set=Thumb"}, "_v4t_a_le"},
    };
    for (const auto &[library, values, libExt] : cases)
        EXPECT_EQ(macro(library ? lib : app, values, "LibExt"), libExt);

    EXPECT_EQ(macro(app, {}, "LoaderType"), "dcc");
    // Elements other than projects have neither macro; the generic ones stay.
    EXPECT_EQ(macro(mainC, {}, "LoaderType") + macro(mainC, {}, "InputName"), "<none>main");

    // The compatibility mode tells interworking apart in ARM libraries only.
    system->setGenerate_1_5_commandLine(true);
    EXPECT_EQ(macro(app, {}, "LibExt"), "_v4t_a_i_le");
    EXPECT_EQ(macro(app, {"arm_interwork=No", "arm_library_instruction_set=Thumb"}, "LibExt"),
              "_v4_t_le");
}

TEST_F(ARMTest, TargetOptionsOfCompilerAndAssembler)
{
    // The expected text is the compiler's, completed by the defaults unless it has a byte
    // order option; the assembler's differs in that option.
    const char *const tail = "-mthumb-interwork -mlittle-endian -mfpu=vfp -mfloat-abi=soft";
    const std::pair<Settings, const char *> cases[] = {
        {{}, "-march=armv4t"},
        {{"arm_architecture=ARM4T"}, "-march=armv4t"},
        {{"arm_architecture=v6"}, ""},
        {{"arm_core_type=ARM7TDMI-S"}, "-mcpu=arm7tdmi-s"},
        {{"arm_core_type=NONE", "arm_architecture=v7M"}, "-march=armv7m"},
        // The core wins over an architecture that disagrees.
        {{"arm_core_type=Cortex-M3", "arm_architecture=v4T"}, "-mcpu=cortex-m3"},
        {{"arm_instruction_set=THUMB"}, "-march=armv4t -mthumb"},
        {{"arm_interwork=No", "arm_endian=Big", "arm_fp_abi=SoftFP"},
         "-march=armv4t -mbig-endian -mfpu=vfp -mfloat-abi=softfp"},
        {{"arm_fp_abi=Other"}, "-march=armv4t -mthumb-interwork -mlittle-endian -mfpu=vfp"},
    };
    auto options = [&](bool forAssembler) {
        QStringList command;
        system->addARMOptions(mainC, debug, command, forAssembler);
        return command.join(' ');
    };
    for (const auto &[values, text] : cases) {
        SCOPED_TRACE(text);
        set(mainC, values);
        QString expected = QString(text).contains("-endian")
                               ? QString(text)
                               : QString("%1 %2").arg(text, tail).trimmed();
        EXPECT_EQ(options(false), expected);
        EXPECT_EQ(options(true),
                  expected.replace("-mlittle-endian", "-EL").replace("-mbig-endian", "-EB"));
        unset(mainC, values);
    }

    // The user may turn the FPU option off.
    settings.generateFPUOption()->setPropertyValue("No");
    EXPECT_EQ(options(false), "-march=armv4t -mthumb-interwork -mlittle-endian -mfloat-abi=soft");
}
