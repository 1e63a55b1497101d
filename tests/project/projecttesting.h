#pragma once

#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "project/solutionloaderror.h"
#include "properties/propertyclass.h"
#include "support/recordingbuilder.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>
#include <optional>

/// A test with its own project system installed as the global one, and a scratch directory.
class ProjectTest : public ::testing::Test
{
protected:
    using E = ProjectElement;

    ProjectTest() { projectSystem = &system; }
    ~ProjectTest() override { projectSystem = nullptr; }

    /// A new element of `type` named `name` under `parent`.
    static ProjectElement *add(ProjectElement *parent, int type, const QString &name)
    {
        auto *element = new ProjectElement(type);
        element->setName(name);
        if (parent)
            parent->appendChild(element);
        return element;
    }
    /// Sets `saveName` of `element` in `configuration`.
    void set(ProjectElement *element, const QString &configuration, const QString &saveName,
             const QString &value)
    {
        system.setProperty(element, saveName, configuration, value);
    }
    /// Writes a solution file of `body` with the right document type.
    QString writeSolution(const QString &relative, const QByteArray &body)
    {
        return scratch.write(relative, "<!DOCTYPE Tarnbench_Project_File>\n" + body);
    }
    /// The error of type `Error` that `call` throws, if it throws one.
    template <typename Error, typename Call> static std::optional<Error> thrown(Call call)
    {
        try {
            call();
        } catch (const Error &error) {
            return error;
        }
        return std::nullopt;
    }
    /// The error that loading `path` throws, if it throws one.
    std::optional<SolutionLoadError> loadError(const QString &path)
    {
        return thrown<SolutionLoadError>([&] { system.loadSolution(path, nullptr); });
    }

    ARMProjectSystem system;
    ScratchDir scratch;
};
