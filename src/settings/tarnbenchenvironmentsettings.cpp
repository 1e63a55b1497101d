#include "settings/tarnbenchenvironmentsettings.h"

#include "properties/propertyclass.h"

namespace {
/// A yes/no setting of the interactive environment's build window.
struct InteractiveBuildSetting
{
    const char *saveName;
    const char *title;
    const char *description;
    const char *defaultValue;
};

// The command-line program reads none of these; they exist so that a store shared with the
// interactive environment keeps them under the keys that environment uses.
const InteractiveBuildSetting interactiveBuildSettings[] = {
    {"Environment/Build/Show Command Lines", "Show Build Command Lines",
     "Show the command lines of a build in the output window.", "No"},
    {"Environment/Build/Show Build Information", "Show Build Information",
     "Show what a build is doing in the output window.", "Yes"},
    {"Environment/Build/Show Unparsed Error Output", "Show Unparsed Error Output",
     "Show tool output that isn't recognised as an error or a warning.", "No"},
    {"Environment/Build/Save Project File On Build", "Save Project File On Build",
     "Save the solution before building it.", "Yes"},
    {"Environment/Build/Build Before Debug", "Build Before Debug",
     "Build the active project before debugging it.", "Yes"},
    {"Environment/Build/Find Error After Build", "Find Error After Build",
     "Show the first error in the editor after a failed build.", "No"},
    {"Environment/Build/Inhibit Debugger Stop Dialog", "Inhibit Debugger Stop Dialog",
     "Don't ask before stopping the debugger to build.", "No"},
};
} // namespace

void TarnbenchEnvironmentSettings::createEntries()
{
    EnvironmentSettings::createEntries();
    for (const InteractiveBuildSetting &setting : interactiveBuildSettings) {
        addEntry(QStringLiteral("Environment"),
                 new PropertyClass(QString::fromLatin1(setting.saveName), PropertyClass::Boolean,
                                   QStringLiteral("Build Options"),
                                   QString::fromLatin1(setting.title),
                                   QString::fromLatin1(setting.description),
                                   QString::fromLatin1(setting.defaultValue)));
    }
}
