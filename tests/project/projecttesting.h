#pragma once

#include "engine/builder.h"
#include "project/armprojectsystem.h"
#include "project/projectelement.h"
#include "project/solutionloaderror.h"
#include "properties/propertyclass.h"
#include "support/recordingbuilder.h"
#include "support/testsupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

/// A test with its own project system installed as the global one, and a scratch directory.
class ProjectTest : public ::testing::Test
{
protected:
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
    /// The error that loading `path` throws, if it throws one.
    std::optional<SolutionLoadError> loadError(const QString &path)
    {
        try {
            system.loadSolution(path, nullptr);
        } catch (const SolutionLoadError &error) {
            return error;
        }
        return std::nullopt;
    }

    ARMProjectSystem system;
    ScratchDir scratch;
};
