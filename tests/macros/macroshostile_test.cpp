// Macro sets and texts meant to make expansion run away: each must end with a bounded result.

#include "macros/macrosystem.h"

#include <gtest/gtest.h>

TEST(MacroHostile, SelfReferencesEndWithinBounds)
{
    // Changes back and forth on every pass.
    const QString swung = macroSystem.replaceMacros({{"A", "$(Z:$(A))"}}, "$(A)$(Z:$(A))");
    EXPECT_TRUE(swung == "$(A)$(Z:$(A))" || swung == "$(Z:$(A))$(A)") << swung.toStdString();

    // Grows by one character on every pass: stopped by the number of passes.
    const QString growing = macroSystem.replaceMacros({{"A", "x$(Z:$(A))"}}, "$(A)$(Z:$(A))");
    EXPECT_GT(growing.size(), 100);
    EXPECT_LT(growing.size(), 1000);

    // Grows by a factor on every pass: stopped by length long before memory runs out.
    const QString exploding = macroSystem.replaceMacros({{"A", "$(A)$(Z:$(A))"}}, "$(A)$(Z:$(A))");
    EXPECT_GT(exploding.size(), 1000);
    EXPECT_LT(exploding.size(), 64 << 20);
}

TEST(MacroHostile, HugeTexts)
{
    // One huge value referenced many times in a single pass is refused whole...
    const QString many = QString("$(H)").repeated(1 << 10);
    EXPECT_EQ(macroSystem.replaceMacros({{"H", QString(1 << 20, 'h')}}, many), many);
    // ...but the bound is on growth: a large text of its own still expands.
    const QString large(2 << 20, QLatin1Char('x'));
    EXPECT_EQ(macroSystem.replaceMacros({{"A", "1"}}, large + "$(A)"), large + "1");

    // Many unclosed references must not make the scan quadratic.
    const QString unclosed = QString("$(").repeated(200000);
    EXPECT_EQ(macroSystem.replaceMacros({}, unclosed), QString("(").repeated(200000));
}
