#pragma once

#include "settings/environmentsettings.h"

/// The settings of the product's environment: adds the build settings that only the
/// interactive environment uses, so a shared store keeps its keys.
class TarnbenchEnvironmentSettings : public EnvironmentSettings
{
    Q_OBJECT

public:
    void createEntries() override;
};
