#include "engine/standardbuildsystem.h"

#include "engine/builder.h"
#include "engine/diskinterface.h"
#include "engine/package.h"
#include "foundation/path.h"
#include "macros/macrosystem.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"

#include <QDir>

namespace {

bool isYes(const QString &value)
{
    return value == QLatin1String("Yes");
}

QString upToDateLine(const QString &output)
{
    return QLatin1Char('\'') + output + QStringLiteral("' is up to date");
}

} // namespace

bool StandardBuildSystem::stageStep(ProjectElement *file, const QString &configuration,
                                    Builder *builder, int type, bool force)
{
    const bool quiet = type & BUILD_QUIET;
    // Cleaned, as the file system resolves a ".." step only after a directory that exists.
    const QString stageOutput = QDir::cleanPath(output(ActionStage, file, configuration, false));
    const QString projectDirectory =
        ProjectSystem::projectDirectoryPath(ProjectSystem::projectContaining(file));
    const QString input = getAbsPath(projectDirectory, file->relativePath());
    QString absolute;
    QDateTime modified;
    const bool present = exists(buildDirectory, stageOutput, absolute, modified, builder, quiet);

    // Names only the staging of this one file knows, put in after the usual expansion.
    const QString benchDir =
        macroSystem.replaceMacros(macroSystem.globalMacros(true), QStringLiteral("$(BenchDir)"));
    const QMap<QString, QString> local = {{QStringLiteral("StageOutputFilePath"), absolute},
                                          {QStringLiteral("StageBenchDirRelativeOutputFilePath"),
                                           Path::relativeFilePath(benchDir, absolute)}};
    const QString packagePath =
        settingForExpanded(file, stagePackageFilePathProperty, configuration);
    const QString member = macroSystem.replaceMacros(
        local, settingForExpanded(file, stagePackageMemberNameProperty, configuration));
    const bool packaged = !packagePath.isEmpty() && !member.isEmpty();

    const auto signature =
        commandSignature(file, configuration, ActionStage, {file->relativePath()});
    if (present && !force &&
        upToDate(buildDirectory, stageOutput, modified, {input}, builder, quiet) &&
        commandUpToDate(file, configuration, modified, ActionStage, builder, quiet) &&
        recordUpToDate(stageOutput, signature, builder, quiet)) {
        if (!quiet && builder)
            builder->success(upToDateLine(stageOutput) + QLatin1Char('.'));
        // The package can still lack a copy that is current.
        if (packaged)
            addToRemoveFromArchive(packagePath, member, absolute, builder, quiet, false, dryRun);
        return false;
    }
    if (type & BUILD_CLEAN)
        cleanFile(absolute, quiet, builder);
    if ((type & BUILD_CLEAN_ONLY) || !builder)
        return false;

    const QStringList command = splitCommand(macroSystem.replaceMacros(
        local, settingForExpanded(file, stageCommandProperty, configuration)));
    builder->beginGroup(file, QStringLiteral("Copying ") + file->attribute(QStringLiteral("Name")),
                        false);
    if (!runAndSetWritable(file, configuration, projectDirectory, command, absolute,
                           stageSetReadOnlyProperty, stageOutput, signature, builder))
        return false;
    // The package takes the copy, which a command run beside the build may still be making.
    if (packaged)
        builder->wait();
    if (packaged && !errorOccurred && !stopRequested)
        addToRemoveFromArchive(packagePath, member, absolute, builder, quiet, true, dryRun);
    builder->endGroup(file);
    return false;
}

bool StandardBuildSystem::runAndSetWritable(ProjectElement *element, const QString &configuration,
                                            const QString &directory, const QStringList &command,
                                            const QString &absolute,
                                            const PropertyClass *readOnlyProperty,
                                            const QString &output, const BuildSignature &signature,
                                            Builder *builder)
{
    builder->init();
    builder->setDirectory(directory);
    builder->setCommand(command);
    builder->setOutputFiles({absolute});
    builder->doit();
    disk().invalidateAll();
    if (errorOccurred || stopRequested) {
        recordCommand(output, signature);
        return false;
    }
    // Both ways: a "No" makes a copy of a read-only file writable.
    const bool readOnly =
        isYes(projectSystem->settingFor(element, readOnlyProperty, configuration));
    builder->setCommand({QStringLiteral("chmod"),
                         readOnly ? QStringLiteral("-w") : QStringLiteral("+w"), absolute});
    builder->doit();
    recordCommand(output, signature);
    return true;
}

bool StandardBuildSystem::combineStep(ProjectElement *project, const QString &configuration,
                                      Builder *builder, int type, bool force)
{
    const bool quiet = type & BUILD_QUIET;
    const QString combined = QDir::cleanPath(output(ActionCombine, project, configuration, false));
    QStringList inputs;
    findRelativeInputs(project->firstChild(), configuration, inputs);
    QString absolute;
    QDateTime modified;
    const bool present = exists(buildDirectory, combined, absolute, modified, builder, quiet);
    const auto signature = commandSignature(project, configuration, ActionCombine, inputs);
    if (present && !force && upToDate(buildDirectory, combined, modified, inputs, builder, quiet) &&
        commandUpToDate(project, configuration, modified, ActionCombine, builder, quiet) &&
        recordUpToDate(combined, signature, builder, quiet)) {
        if (!quiet && builder)
            builder->success(upToDateLine(combined));
        return false;
    }
    if (type & BUILD_CLEAN)
        cleanFile(absolute, quiet, builder);
    if ((type & BUILD_CLEAN_ONLY) || !builder)
        return false;

    const QMap<QString, QString> local = {
        {QStringLiteral("CombiningOutputFilePath"), absolute},
        {QStringLiteral("CombiningRelInputPaths"), inputs.join(QLatin1Char(' '))}};
    const QStringList command = splitCommand(macroSystem.replaceMacros(
        local, settingForExpanded(project, combineCommandProperty, configuration)));
    builder->beginGroup(
        project, QStringLiteral("Combining ") + project->attribute(QStringLiteral("Name")), false);
    if (runAndSetWritable(project, configuration, ProjectSystem::projectDirectoryPath(project),
                          command, absolute, combineSetReadOnlyProperty, combined, signature,
                          builder))
        builder->endGroup(project);
    return false;
}
