#pragma once

#include "toolchaintesting.h"

#include "macros/macrosystem.h"
#include "project/armprojectsystem.h"
#include "settings/armtarnbenchenvironmentsettings.h"
#include "settings/environmentpropertyvalue.h"
#include "toolchain/armbuildsystem.h"

/// The program's own ARM systems, `$(BenchDir)` at "/bench" and the tools under "/tc",
/// with `appAndLib` loaded.
class ARMTest
    : public SystemsTest<ARMTarnbenchEnvironmentSettings, ARMProjectSystem, ARMBuildSystem>
{
protected:
    ARMTest()
    {
        macroSystem.setGlobalMacro(QStringLiteral("BenchDir"), QStringLiteral("/bench"));
        settings.toolChainRootDirectory()->setPropertyValue(QStringLiteral("/tc"));
        load(appAndLib);
    }
};
