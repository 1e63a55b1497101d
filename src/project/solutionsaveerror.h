#pragma once

class ProjectElement;

/// Thrown when a modified solution can't be written back to its file.
class SolutionSaveError
{
public:
    explicit SolutionSaveError(ProjectElement *solution) : solution(solution) {}

    /// The solution element whose file couldn't be written.
    ProjectElement *solution;
};
