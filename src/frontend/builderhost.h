#pragma once

#include <QString>
#include <QStringList>

/// What the console builder needs of the build system; the build system implements and
/// registers it, so that the front end does not depend on the engine.
class BuilderHost
{
public:
    virtual ~BuilderHost();
    /// Carries out `command` if it is a built-in one and returns true; `message` is then
    /// empty on success, otherwise the text of the failure. False: `command`, which may have
    /// been rewritten, is to be run.
    virtual bool builtinCommand(const QString &directory, QStringList &command,
                                QString &message) = 0;
    /// Records that a command failed, which stops the build.
    virtual void setErrorOccurred() = 0;
    /// Makes the directory that `fileName` lies in, with its parents.
    virtual void ensureDirExists(const QString &fileName) = 0;
};

/// The registered host, or null when none is registered.
BuilderHost *builderHost();
/// Registers `host` (not owned); null unregisters.
void setBuilderHost(BuilderHost *host);
