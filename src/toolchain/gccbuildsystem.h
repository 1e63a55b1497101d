#pragma once

#include "build/standardbuildsystem.h"

/// The generic GNU tool-chain layer, driven through its driver programs.
class GCCBuildSystem : public StandardBuildSystem
{
public:
    /// `toolPrefix` stands between the tool chain root and each tool's name (null for none);
    /// `linkerStartGroup` puts the link inputs in a linker group.
    GCCBuildSystem(const QStringList &args, const char *toolPrefix,
                   const char *defaultToolChainRoot, bool linkerStartGroup);

    /// The generic layer has no preprocess command: a null string.
    QString preprocess(ProjectElement *element, const QString &configuration,
                       Builder *builder) override;

    QString toolPrefix;
    bool linkerStartGroup;
};
