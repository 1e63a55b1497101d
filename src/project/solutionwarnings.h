#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <cstdio>

class ProjectElement;
class ProjectSystem;

/// Finds what a loaded solution says that the program doesn't understand: attributes of
/// configurations that are no setting, enumeration values that aren't allowed, dependencies
/// on projects that don't exist and elements the loader passed over. Nothing here changes
/// what a build does; the findings are only told.
class SolutionWarnings
{
public:
    /// The most warning lines one run prints; the rest are only counted.
    static constexpr int maximumLines = 50;

    /// Checks against the catalogue of `system` and of the build side it knows.
    explicit SolutionWarnings(ProjectSystem *system);

    /// Checks the tree loaded last, with the elements its load passed over.
    void checkLoadedSolution();

    /// The warning lines kept, at most `maximumLines`, each "warning: FILE: WHERE: TEXT".
    const QStringList &lines() const { return m_lines; }
    /// The number of warnings found beyond those kept.
    int omitted() const { return m_omitted; }
    /// Writes the kept lines and, if some weren't kept, one line counting them, to `stream`.
    void write(std::FILE *stream) const;

    /// How a warning names `element` inside its file: its ancestors below the file's own
    /// solution, such as `project "app", configuration "Release"`.
    static QString where(const ProjectElement *element);

private:
    /// Checks the attributes of one configuration element.
    void checkConfiguration(ProjectElement *configuration);
    /// Whether `saveName` is a property group of the group file that applies to `owner`.
    bool isPropertyGroup(ProjectElement *owner, const QString &configuration,
                         const QString &saveName);
    /// Keeps a warning about `element`, or only counts it once the cap is reached.
    void warn(const ProjectElement *element, const QString &text);
    /// Keeps a warning line, or only counts it once the cap is reached.
    void add(const QString &file, const QString &where, const QString &text);
    /// Whether another warning would still be kept.
    bool hasRoom() const { return m_lines.size() < maximumLines; }

    ProjectSystem *m_system;
    QStringList m_lines;
    int m_omitted = 0;
    /// The group names of each owner and configuration asked about, as group files are read
    /// only for attributes the catalogue doesn't know.
    QHash<QPair<ProjectElement *, QString>, QSet<QString>> m_groupNames;
};
