#include "examplefirmware.h"

#include <tuple>

namespace {

/// The example solution whose projects come from the installation's templates.
class TemplatedFirmware : public ExampleFirmware
{
};

/// The lines of a first build and run in `configuration`; `extra` is what only that board's
/// firmware prints.
QString expected(const QString &configuration, const QString &board, const QString &extra)
{
    const QString building = "  Building \"%1\" in configuration \"" + configuration + "\"\n";
    return building.arg("mathlib") +
           "    Compiling statistics.c\n    Compiling crc32.c\n    Archiving mathlib.a\n" +
           building.arg("app") +
           "    Compiling main.c\n    Compiling shapes.cpp\n    Assembling startup.s\n"
           "  Generating linker script\n    Linking app.elf\n"
           "Hello from " +
           board + "\nsum 31, mean 3.875, maximum 9\n" + extra +
           "crc32 cbf43926\ntriangle has area 15\nsquare has area 16\nall checks passed\n";
}

} // namespace

TEST_F(TemplatedFirmware, BuildsAndRunsOnBothBoardsFromTheKitsTemplates)
{
    for (const auto &[configuration, board, machine, extra] :
         {std::tuple{"versatilepb Debug", "versatilepb", versatilepb, "mean as a double 3.875\n"},
          std::tuple{"lm3s6965evb Release", "lm3s6965evb", lm3s6965evb, ""}}) {
        const QString built = build(configuration, {}, "templated.hdp");
        EXPECT_EQ(built + runFirmware(configuration, machine),
                  expected(configuration, board, extra));
    }
}
