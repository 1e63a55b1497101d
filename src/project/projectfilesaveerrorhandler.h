#pragma once

class ProjectElement;

/// Asked when a solution file can't be written, so that a front end can let the user retry.
class ProjectFileSaveErrorHandler
{
public:
    virtual ~ProjectFileSaveErrorHandler() = default;
    /// True to try saving `solution` once more.
    virtual bool saveFailed(ProjectElement *solution) = 0;
};
