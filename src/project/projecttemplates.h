#pragma once

#include "xml/xmlpp2.h"

#include <QMap>
#include <QString>

class ProjectElement;
class ProjectSystem;
class XMLElement;

/// The project templates of the installation, `$(BenchDir)/targets/project_templates.xml`,
/// read through the XML preprocessor, and the filling of a project from one of them. It lives
/// for one solution load.
class ProjectTemplates : public XMLPP2
{
public:
    /// Loads the templates file; one that can't be loaded leaves no template and no
    /// configuration definition. Projects are filled through `system`, by default the
    /// process-wide project system.
    explicit ProjectTemplates(ProjectSystem *system = nullptr);

    /// The template called `name`, or null.
    XMLElement *findTemplate(const QString &name) const;
    /// The configuration definition called `name`, or null.
    XMLElement *findConfiguration(const QString &name) const;

    /// Fills `project` of `solution` from `projectTemplate`: its project type, then its items.
    void createProjectFromTemplate(ProjectElement *solution, ProjectElement *project,
                                   XMLElement *projectTemplate);
    /// Applies the template item `xml` and the items that follow it to `element`; what the
    /// solution file already says stays.
    void createFromTemplate(ProjectElement *element, XMLElement *xml);
    /// Makes the configuration `name` of `solution` from its definition, and the configurations
    /// it inherits; a value differing from the solution's goes to `project`'s own configuration.
    void createConfiguration(ProjectElement *solution, ProjectElement *project,
                             const QString &name);

    /// Reports a problem found while reading the templates file.
    void warning(const QString &message);
    void error(const QString &message) override { warning(message); }

private:
    /// Enters the templates and configuration definitions found at any depth below `root`.
    void enterDefinitions(XMLElement *root);
    /// Applies one item to `element`; the folder or file whose items follow, or null.
    ProjectElement *createItem(ProjectElement *element, XMLElement *item);
    void createProperty(ProjectElement *element, XMLElement *item);
    void createPropertyGroup(ProjectElement *element, XMLElement *item);
    /// `text` with the build macros of `element` in "Common" replaced.
    QString expandMacros(ProjectElement *element, const QString &text) const;

    ProjectSystem *m_system;
    QMap<QString, XMLElement *> m_templates;
    QMap<QString, XMLElement *> m_configurations;
    ProjectElement *m_solution = nullptr;
    ProjectElement *m_project = nullptr;
};
