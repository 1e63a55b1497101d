#include "project/standardprojectsystem.h"

#include "foundation/path.h"
#include "project/projectelement.h"
#include "properties/propertyvaluelist.h"
#include "xml/xmldocument.h"

StandardProjectSystem::StandardProjectSystem() : ProjectSystem(filetypes(), projecttypes()) {}

QStringList StandardProjectSystem::filetypes()
{
    return {QStringLiteral("C"),
            QStringLiteral("C++"),
            QStringLiteral("Basic"),
            QStringLiteral("Assembly"),
            QStringLiteral("Section Placement"),
            QStringLiteral("Memory Map"),
            QStringLiteral("Target Definitions"),
            QStringLiteral("Threads Script"),
            QStringLiteral("Target Script"),
            QStringLiteral("Reset Script"),
            QStringLiteral("Linker Script"),
            QStringLiteral("Executable"),
            QStringLiteral("Library"),
            QStringLiteral("Object file")};
}

QStringList StandardProjectSystem::projecttypes()
{
    return {QStringLiteral("Executable"),  QStringLiteral("Library"),
            QStringLiteral("Object file"), QStringLiteral("Staging"),
            QStringLiteral("Combining"),   QStringLiteral("Externally Built Executable")};
}

PropertyValueList *StandardProjectSystem::applicableSettingsFor(ProjectElement *, const QString &)
{
    // The lists of build settings come with the build system's catalogue.
    return new PropertyValueList(true);
}

namespace {

/// The file type of an XML file, from its document type.
QString xmlFileType(const QString &path)
{
    const char *documentType = XMLDocument::xmlDocumentType(Path::toOsBytes(path).constData());
    const QString type = documentType ? QString::fromLatin1(documentType) : QString();
    if (type == QLatin1String("Board_Memory_Definition_File"))
        return QStringLiteral("Memory Map");
    if (type == QLatin1String("Linker_Placement_File"))
        return QStringLiteral("Section Placement");
    if (type == QLatin1String("Tarnbench_Target_Definition_File"))
        return QStringLiteral("Target Definitions");
    return QString();
}

} // namespace

QString StandardProjectSystem::getFileType(ProjectElement *element)
{
    const QString setting =
        specificSettingFor(element, fileTypeClass, ProjectElement::commonConfiguration());
    if (!setting.isEmpty())
        return setting;
    if (!element->cachedFileType().isEmpty())
        return element->cachedFileType();

    const QString suffix = element->fileInfo().suffix().toLower();
    const QString dotted = QLatin1Char('.') + suffix;
    QString type;
    if (suffix == QLatin1String("c"))
        type = QStringLiteral("C");
    else if (suffix == QLatin1String("cpp") || suffix == QLatin1String("cxx") ||
             suffix == QLatin1String("cc"))
        type = QStringLiteral("C++");
    else if (suffix == QLatin1String("fth") || suffix == QLatin1String("4"))
        type = QStringLiteral("Forth");
    else if (suffix == QLatin1String("bas"))
        type = QStringLiteral("Basic");
    else if (suffix == QLatin1String("asm") || suffix == QLatin1String("s") ||
             dotted == assemblyCodeFileExtension())
        type = QStringLiteral("Assembly");
    else if (suffix == QLatin1String("xml"))
        type = xmlFileType(element->fileInfo().filePath());
    else if (dotted == objectFileExtension())
        type = QStringLiteral("Object file");
    else if (dotted == executableFileExtension())
        type = QStringLiteral("Executable");
    else if (dotted == libraryFileExtension())
        type = QStringLiteral("Library");
    if (!type.isEmpty())
        element->setCachedFileType(type);
    return type;
}

void StandardProjectSystem::appendCCompilerProperties(PropertyClassList *) {}
void StandardProjectSystem::appendCppCompilerProperties(PropertyClassList *) {}
void StandardProjectSystem::appendBasicCompilerProperties(PropertyClassList *) {}
void StandardProjectSystem::appendForthCompilerProperties(PropertyClassList *) {}
void StandardProjectSystem::appendAssemblerProperties(PropertyClassList *) {}
void StandardProjectSystem::appendLinkerProperties(PropertyClassList *) {}
void StandardProjectSystem::appendArchiverProperties(PropertyClassList *) {}
void StandardProjectSystem::appendDefaultProjectValues(PropertyValueList *, const QString &) {}
void StandardProjectSystem::appendProjectProperties(PropertyClassList *, const QString &) {}
void StandardProjectSystem::appendSolutionProperties(PropertyClassList *) {}
void StandardProjectSystem::appendTargetProperties(PropertyClassList *) {}

QString StandardProjectSystem::assemblyCodeFileExtension() const
{
    return QString();
}
