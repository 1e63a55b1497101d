#pragma once

#include "engine/builder.h"

/// A builder that does nothing at all; tests override what they want to see.
class NullBuilder : public Builder
{
public:
    void beginGroup(ProjectElement *, const QString &, bool) override {}
    void endGroup(ProjectElement *) override {}
    void init() override {}
    void setDirectory(const QString &) override {}
    void setCommand(const QStringList &) override {}
    void setEnvironment(const QStringList &) override {}
    void setOutputFiles(const QStringList &) override {}
    void setTemporaryFiles(const QStringList &) override {}
    void doit() override {}
    void error(const QString &) override {}
};
