#include "toolchain/compilationdatabase.h"

#include "engine/buildaction.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "project/propertyvaluegroups.h"
#include "toolchain/armbuildsystem.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace {

/// Whether clang takes `option` of the compiler's target options as it stands; the
/// interworking switch means nothing to it and only draws a warning.
bool clangTakesTargetOption(const QString &option)
{
    static const char *const prefixes[] = {"-mcpu=", "-march=", "-mfpu=", "-mfloat-abi="};
    for (const char *prefix : prefixes) {
        if (option.startsWith(QLatin1String(prefix)))
            return true;
    }
    return option == QLatin1String("-mthumb") || option == QLatin1String("-mlittle-endian") ||
           option == QLatin1String("-mbig-endian");
}

/// The directories of the C++ library's headers that the installation's C++ compiler puts
/// before the system include directories: for each of those that has a "c++" directory, that
/// directory, the one of the multilib the target options select and the "backward" one.
QStringList cppLibraryIncludes(const QStringList &targetOptions, const QStringList &options)
{
    QString multilib = QStringLiteral(".");
    for (const QString &option : targetOptions) {
        if (option == QLatin1String("-march=armv7m") || option == QLatin1String("-march=armv7-m") ||
            option == QLatin1String("-mcpu=cortex-m3"))
            multilib = QStringLiteral("thumb/v7-m/nofp");
        else if (option == QLatin1String("-mthumb") && multilib == QLatin1String("."))
            multilib = QStringLiteral("thumb/nofp");
    }
    const QString isystem = QStringLiteral("-isystem");
    QStringList includes;
    for (const QString &option : options) {
        if (!option.startsWith(isystem))
            continue;
        const QString library = option.mid(isystem.size()) + QStringLiteral("/c++");
        if (!QFileInfo(library).isDir())
            continue;
        const QString target = library + QStringLiteral("/arm-none-eabi");
        const QString configured = target + QLatin1Char('/') + multilib;
        includes << isystem + library
                 << isystem + (QFileInfo(configured).isDir() ? configured : target + "/.")
                 << isystem + library + QStringLiteral("/backward");
    }
    return includes;
}

bool isSetting(ProjectElement *element, const PropertyClass *propertyClass,
               const QString &configuration, const char *value)
{
    return projectSystem->settingFor(element, propertyClass, configuration) == QLatin1String(value);
}

} // namespace

namespace CompilationDatabase {

QStringList arguments(ARMBuildSystem *system, ProjectElement *file, const QString &configuration,
                      bool cpp, const QString &source, const QString &output)
{
    QStringList command{QStringLiteral("clang"), QStringLiteral("--target=arm-none-eabi")};
    QStringList targetOptions;
    system->addARMOptions(file, configuration, targetOptions, false);
    for (const QString &option : std::as_const(targetOptions)) {
        if (clangTakesTargetOption(option))
            command << option;
    }
    // What changes the language a source is read in, as the compiler's own line has it.
    if (cpp) {
        if (isSetting(file, system->cppEnableExceptionsProperty, configuration, "No"))
            command << QStringLiteral("-fno-exceptions");
        if (isSetting(file, system->cppEnableRttiProperty, configuration, "No"))
            command << QStringLiteral("-fno-rtti");
    }
    if (isSetting(file, system->cEnforceAnsiCheckingProperty, configuration, "Yes"))
        command << (cpp ? QStringLiteral("-std=c++98") : QStringLiteral("-std=c99"));
    QStringList options;
    system->addIncludeAndDefinitionOptions(file, configuration, options);
    if (cpp)
        command << cppLibraryIncludes(targetOptions, options);
    command << options;
    command << QStringLiteral("-x") << (cpp ? QStringLiteral("c++") : QStringLiteral("c"))
            << QStringLiteral("-c") << source << QStringLiteral("-o") << output;
    return command;
}

QList<CompilationEntry> entries(ARMBuildSystem *system, ProjectElement *element,
                                const QString &configuration)
{
    QList<CompilationEntry> result;
    for (ProjectElement *project : projectSystem->buildOrder(element, configuration)) {
        if (system->buildAction(project, configuration) == ActionExternal)
            continue;
        const QString directory = ProjectSystem::projectDirectoryPath(project);
        // Group definitions come from the group file the build of the project reads.
        const QString groupFile = system->settingForExpanded(
            project, system->propertyGroupsFilePathProperty, configuration);
        if (!groupFile.isEmpty())
            propertyValueGroups.setGroupFile(groupFile);
        for (ProjectElement *file = project; file;
             file = ProjectElement::nextInWalk(file, project)) {
            const BuildAction action = system->buildAction(file, configuration);
            if (action != ActionCompileC && action != ActionCompileCpp)
                continue;
            CompilationEntry entry;
            entry.directory = directory;
            entry.file = QFileInfo(BuildSystem::getAbsPath(directory, file->relativePath()))
                             .absoluteFilePath();
            entry.output = system->output(file, configuration, true);
            entry.arguments = arguments(system, file, configuration, action == ActionCompileCpp,
                                        entry.file, entry.output);
            result.append(entry);
        }
    }
    return result;
}

QByteArray toJson(const QList<CompilationEntry> &entries)
{
    QJsonArray array;
    for (const CompilationEntry &entry : entries) {
        array.append(QJsonObject{
            {QStringLiteral("directory"), entry.directory},
            {QStringLiteral("file"), entry.file},
            {QStringLiteral("output"), entry.output},
            {QStringLiteral("arguments"), QJsonArray::fromStringList(entry.arguments)}});
    }
    return QJsonDocument(array).toJson(QJsonDocument::Indented);
}

bool write(const QString &path, const QList<CompilationEntry> &entries, QString &error)
{
    // A whole file or none: an editor may be reading the old one while this one is written.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(toJson(entries)) < 0 || !file.commit()) {
        error = file.errorString();
        return false;
    }
    return true;
}

} // namespace CompilationDatabase
