#include "toolchain/gccbuildsystem.h"

GCCBuildSystem::GCCBuildSystem(const QStringList &args, const char *toolPrefix,
                               const char *defaultToolChainRoot, bool linkerStartGroup)
    : StandardBuildSystem(args), toolPrefix(QString::fromLatin1(toolPrefix)),
      linkerStartGroup(linkerStartGroup)
{
    // The tool chain root's default and this layer's own settings come with its commands.
    (void)defaultToolChainRoot;
}

QString GCCBuildSystem::preprocess(ProjectElement *, const QString &, Builder *)
{
    return QString();
}
