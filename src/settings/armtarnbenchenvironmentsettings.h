#pragma once

#include "settings/tarnbenchenvironmentsettings.h"

/// The settings of the ARM tool chain on top of the product's own.
class ARMTarnbenchEnvironmentSettings : public TarnbenchEnvironmentSettings
{
    Q_OBJECT

public:
    void createEntries() override;

    /// "ARM/Build/Generate 1 5 Command Line": build in the 1.5 compatibility mode.
    EnvironmentPropertyValue *generate15CommandLine() const { return m_generate15CommandLine; }
    /// "ARM/Build/1 5 Install Directory": where the 1.5 installation lies.
    EnvironmentPropertyValue *installDirectory15() const { return m_installDirectory15; }
    /// "ARM/Build/GenerateFPUOption": whether compiles get "-mfpu=vfp".
    EnvironmentPropertyValue *generateFPUOption() const { return m_generateFPUOption; }

private:
    EnvironmentPropertyValue *m_generate15CommandLine = nullptr;
    EnvironmentPropertyValue *m_installDirectory15 = nullptr;
    EnvironmentPropertyValue *m_generateFPUOption = nullptr;
};
