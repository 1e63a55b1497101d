#pragma once

#include <QString>

/// Asked by the loader when a solution file is missing, so that a front end can offer help.
class ProjectFileNotFoundErrorHandler
{
public:
    virtual ~ProjectFileNotFoundErrorHandler() = default;
    /// True to go on and try to open `path` all the same.
    virtual bool fileNotFound(const QString &path) = 0;
};
