#include "settings/armtarnbenchenvironmentsettings.h"

#include "properties/propertyclass.h"

void ARMTarnbenchEnvironmentSettings::createEntries()
{
    TarnbenchEnvironmentSettings::createEntries();
    const QString category = QStringLiteral("Building");
    const QString group = QStringLiteral("Compatibility Options");
    const QStringList noYes = {QStringLiteral("No"), QStringLiteral("Yes")};
    m_generate15CommandLine = addEntry(
        category, new PropertyClass(QStringLiteral("ARM/Build/Generate 1 5 Command Line"), group,
                                    QStringLiteral("Build with Halden for ARM 1.5"),
                                    QStringLiteral("Build with compilers, source files and "
                                                   "libraries shipped with Halden for ARM 1.5."),
                                    false, noYes));
    m_installDirectory15 = addEntry(
        category,
        new PropertyClass(
            QStringLiteral("ARM/Build/1 5 Install Directory"), PropertyClass::DirPath, group,
            QStringLiteral("Halden for ARM 1.5 Installation Directory"),
            QStringLiteral("Specifies where to find the Halden for ARM 1.5 installation."),
            QStringLiteral("c:/Program Files/Kelmore Associates Limited/Halden for ARM 1.5")));
    m_generateFPUOption = addEntry(
        category, new PropertyClass(QStringLiteral("ARM/Build/GenerateFPUOption"), group,
                                    QStringLiteral("Generate -mfpu compiler option"),
                                    QStringLiteral("Specifies whether to generate the -mfpu "
                                                   "compiler option."),
                                    true, noYes));
}
