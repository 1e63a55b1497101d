#pragma once

#include "project/projectsystem.h"

#include <initializer_list>

class PropertyClassList;

/// The project system of a compiled-language tool chain: its file and project types, the
/// file type of each file, and the lists of settings that apply where.
class StandardProjectSystem : public ProjectSystem
{
    Q_OBJECT

public:
    StandardProjectSystem();

    /// The file types that "file_type" offers, in order.
    static QStringList filetypes();
    /// The project types that "project_type" offers, in order.
    static QStringList projecttypes();

    /// The settings of `element` by its kind, its project's type and its file type, then the
    /// property groups of a solution or an executable project.
    PropertyValueList *applicableSettingsFor(ProjectElement *element,
                                             const QString &configuration) override;
    /// The "file_type" setting, else the type worked out before, else the type of the suffix
    /// (an XML file by its document type).
    QString getFileType(ProjectElement *element) override;

    // The settings of each kind of tool, added to a list once each.
    virtual void appendCCompilerProperties(PropertyClassList *list);
    virtual void appendCppCompilerProperties(PropertyClassList *list);
    virtual void appendBasicCompilerProperties(PropertyClassList *list);
    virtual void appendForthCompilerProperties(PropertyClassList *list);
    virtual void appendAssemblerProperties(PropertyClassList *list);
    virtual void appendLinkerProperties(PropertyClassList *list);
    virtual void appendArchiverProperties(PropertyClassList *list);
    /// Adds the values a new project named `name` starts with; none here.
    virtual void appendDefaultProjectValues(PropertyValueList *list, const QString &name);
    /// The settings of a project of `projectType`; none for an unknown or empty type.
    virtual void appendProjectProperties(PropertyClassList *list, const QString &projectType);
    virtual void appendSolutionProperties(PropertyClassList *list);
    virtual void appendTargetProperties(PropertyClassList *list);
    /// The extension of the assembly files the compiler writes; none here.
    virtual QString assemblyCodeFileExtension() const;

    /// The class saved as `saveName` in the model's own catalogue or else in the build
    /// system's; null if neither has it.
    PropertyClass *catalogueClass(const QString &saveName) const;

protected:
    /// Adds the classes saved under `saveNames`, in order, skipping names no catalogue has:
    /// a tool chain's classes may not all exist in every build system.
    void appendClasses(PropertyClassList *list, std::initializer_list<const char *> saveNames);
    /// The settings every compiler and assembler shares.
    void appendCompilerProperties(PropertyClassList *list);

private:
    /// The classes that apply to `element`, in order.
    void appendApplicableClasses(ProjectElement *element, const QString &configuration,
                                 PropertyClassList *list);
    void appendFolderClasses(ProjectElement *folder, PropertyClassList *list);
    void appendFileClasses(ProjectElement *file, PropertyClassList *list);
    /// Adds a value for each group of the element's property group file, if it has one.
    void appendGroupValues(ProjectElement *element, const QString &configuration,
                           PropertyValueList *values);
};
