#pragma once

#include "project/projectsystem.h"

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

    PropertyValueList *applicableSettingsFor(ProjectElement *element,
                                             const QString &configuration) override;
    /// The "file_type" setting, else the type worked out before, else the type of the suffix
    /// (an XML file by its document type).
    QString getFileType(ProjectElement *element) override;

    // The settings of each kind of tool, added to a list.
    virtual void appendCCompilerProperties(PropertyClassList *list);
    virtual void appendCppCompilerProperties(PropertyClassList *list);
    virtual void appendBasicCompilerProperties(PropertyClassList *list);
    virtual void appendForthCompilerProperties(PropertyClassList *list);
    virtual void appendAssemblerProperties(PropertyClassList *list);
    virtual void appendLinkerProperties(PropertyClassList *list);
    virtual void appendArchiverProperties(PropertyClassList *list);
    virtual void appendDefaultProjectValues(PropertyValueList *list, const QString &name);
    virtual void appendProjectProperties(PropertyClassList *list, const QString &projectType);
    virtual void appendSolutionProperties(PropertyClassList *list);
    virtual void appendTargetProperties(PropertyClassList *list);
    /// The extension of the assembly files the compiler writes; none here.
    virtual QString assemblyCodeFileExtension() const;
};
