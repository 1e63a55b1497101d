#include "settings/armtarnbenchenvironmentsettings.h"

#include "properties/propertyclass.h"

void ARMTarnbenchEnvironmentSettings::createEntries()
{
    TarnbenchEnvironmentSettings::createEntries();
    const QString category = QStringLiteral("Building");
    const QString group = QStringLiteral("Compatibility Options");
    const auto addYesNo = [&](const char *saveName, const char *title, const char *description,
                              bool on) {
        return addEntry(category, new PropertyClass(QString::fromLatin1(saveName), group,
                                                    QString::fromLatin1(title),
                                                    QString::fromLatin1(description), on,
                                                    {QStringLiteral("No"), QStringLiteral("Yes")}));
    };
    m_generate15CommandLine = addYesNo(
        "ARM/Build/Generate 1 5 Command Line", "Build with Halden for ARM 1.5",
        "Build with compilers, source files and libraries shipped with Halden for ARM 1.5.", false);
    m_installDirectory15 = addEntry(
        category,
        new PropertyClass(
            QStringLiteral("ARM/Build/1 5 Install Directory"), PropertyClass::DirPath, group,
            QStringLiteral("Halden for ARM 1.5 Installation Directory"),
            QStringLiteral("Specifies where to find the Halden for ARM 1.5 installation."),
            QStringLiteral("c:/Program Files/Kelmore Associates Limited/Halden for ARM 1.5")));
    m_generateFPUOption =
        addYesNo("ARM/Build/GenerateFPUOption", "Generate -mfpu compiler option",
                 "Specifies whether to generate the -mfpu compiler option.", true);
}
