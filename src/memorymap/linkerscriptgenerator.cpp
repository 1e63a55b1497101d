#include "memorymap/linkerscriptgenerator.h"

QString generateLinkerScript(ProjectElement *project, const QString &configuration,
                             const QString &output, const QString &projectDirectory,
                             const QString &memoryMapPath, const QString &sectionPlacementPath,
                             Builder *builder, bool clean)
{
    Q_UNUSED(project);
    Q_UNUSED(configuration);
    Q_UNUSED(output);
    Q_UNUSED(projectDirectory);
    Q_UNUSED(sectionPlacementPath);
    Q_UNUSED(builder);
    Q_UNUSED(clean);
    throw QStringLiteral("cannot load memory map file: ") + memoryMapPath;
}
