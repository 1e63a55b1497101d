#include "engine/standardbuildsystem.h"

#include "engine/builder.h"
#include "engine/diskinterface.h"
#include "macros/macrosystem.h"
#include "project/projectelement.h"
#include "project/projectsystem.h"
#include "properties/propertyclass.h"

namespace {

QString entry(const QString &key, const QString &value)
{
    return key + QLatin1Char('=') + value;
}

} // namespace

QStringList StandardBuildSystem::toolSignature()
{
    // Settings may name global macros, and -D changes them between runs.
    QStringList signature;
    const MacroSystem::MacroMap globals = macroSystem.globalMacros(false);
    for (auto it = globals.cbegin(); it != globals.cend(); ++it)
        signature << QStringLiteral("global macro ") + it.key() + QLatin1Char('=') + it.value();
    return signature;
}

void StandardBuildSystem::appendGeneratedLinkFiles(ProjectElement *, const QString &,
                                                   const QString &, QStringList &)
{
}

BuildSignature StandardBuildSystem::commandSignature(ProjectElement *element,
                                                     const QString &configuration,
                                                     BuildAction action, const QStringList &inputs)
{
    if (m_signatureSerial != buildSerial() || m_signatureConfiguration != configuration) {
        // The tools can't change within a build; asking once keeps the settings store off
        // the path that every file takes.
        m_toolSignature = toolSignature();
        m_settingsSignatures.clear();
        m_signatureSerial = buildSerial();
        m_signatureConfiguration = configuration;
    }
    ProjectElement *owner = ProjectSystem::settingsOwner(element);
    const QStringList settings = settingsSignature(owner ? owner : element, configuration, action);
    BuildSignature signature{settings, {}};
    for (const QString &input : inputs)
        signature.extras << entry(QStringLiteral("input"), input);
    if (action == ActionLink) {
        QStringList controlFiles;
        appendLinkControlFiles(element, configuration, controlFiles, false);
        for (const QString &file : controlFiles)
            signature.extras << entry(QStringLiteral("control"), file);
    }
    return signature;
}

QStringList StandardBuildSystem::settingsSignature(ProjectElement *owner,
                                                   const QString &configuration, BuildAction action)
{
    // Settings are found on the elements that have configurations of their own, so every
    // element below the same one has the same values, and shares one list of them.
    const QList<const PropertyClass *> properties = commandProperties(action);
    // Whether `owner` holds the setting in any of its configurations: when it doesn't, the
    // element above gives it.
    auto holds = [owner](const PropertyClass *property) {
        const QString saveName = property->saveName();
        for (const ProjectElement *child : owner->configurationChildren()) {
            if (child->hasAttribute(saveName))
                return true;
        }
        return false;
    };
    auto listOf = [&](const QStringList *above) {
        QStringList settings;
        settings.reserve(properties.size() + m_toolSignature.size());
        for (qsizetype i = 0; i < properties.size(); ++i) {
            const PropertyClass *property = properties.at(i);
            if (above && !holds(property))
                settings << above->at(i);
            else
                settings << entry(property->saveName(),
                                  projectSystem->settingFor(owner, property, configuration));
        }
        return settings + m_toolSignature;
    };
    if (owner->type() != ProjectElement::File) {
        QStringList &kept = m_settingsSignatures[owner][int(action)];
        if (kept.isEmpty())
            kept = listOf(nullptr);
        return kept;
    }
    // A file with settings of its own is the only one with its list, which isn't kept; it
    // differs from the list above it only in the settings the file holds.
    ProjectElement *above = ProjectSystem::settingsOwner(owner->parent());
    if (!above)
        return listOf(nullptr);
    const QStringList aboveList = settingsSignature(above, configuration, action);
    return listOf(&aboveList);
}

bool StandardBuildSystem::recordUpToDate(const QString &output, const BuildSignature &signature,
                                         Builder *builder, bool quiet)
{
    if (!m_record.present()) {
        m_record.set(output, signature);
        return true;
    }
    const BuildSignature *recorded = m_record.find(output);
    const QString difference =
        recorded ? m_record.firstDifference(*recorded, signature) : QStringLiteral("*");
    if (difference.isNull())
        return true;
    if (!quiet && builder)
        builder->message(recorded ? recordDifference(output, difference)
                                  : QLatin1Char('\'') + output +
                                        QStringLiteral("' has no record of how it was made."));
    return false;
}

QString StandardBuildSystem::recordDifference(const QString &output, const QString &key) const
{
    if (key == QLatin1String("input"))
        return QStringLiteral("The input files of '") + output + QStringLiteral("' have changed.");
    if (key == QLatin1String("control"))
        return QStringLiteral("The linker control files of '") + output +
               QStringLiteral("' have changed.");
    if (key.startsWith(QLatin1String("global macro ")))
        return QStringLiteral("The ") + key + QStringLiteral(" has changed.");
    if (const PropertyClass *property = findPropertyClass(key))
        return property->shortDescription() + QStringLiteral(" property has changed.");
    if (const PropertyClass *property = projectSystem->findPropertyClass(key))
        return property->shortDescription() + QStringLiteral(" property has changed.");
    if (key == QLatin1String("*"))
        return QLatin1Char('\'') + output + QStringLiteral("' was made with other settings.");
    return QStringLiteral("The ") + key + QStringLiteral(" has changed.");
}

void StandardBuildSystem::recordCommand(const QString &output, const BuildSignature &signature)
{
    if (errorOccurred || stopRequested)
        m_record.remove(output);
    else
        m_record.set(output, signature);
}

void StandardBuildSystem::forgetOutputs(const QStringList &absoluteOutputs)
{
    // An output is recorded by its name as its setting gives it, which is mostly relative to
    // the project directory that the absolute name was made from.
    const QString projectPrefix = buildDirectory + QLatin1Char('/');
    for (const QString &output : absoluteOutputs) {
        m_record.remove(output);
        if (output.startsWith(projectPrefix))
            m_record.remove(output.mid(projectPrefix.size()));
    }
}

void StandardBuildSystem::openRecord(ProjectElement *element, const QString &configuration,
                                     Builder *builder, bool quiet)
{
    ProjectElement *project = ProjectSystem::projectContaining(element);
    if (!project)
        return;
    const QString name = project->attribute(QStringLiteral("Name"));
    const QString path = buildRecordPath(
        buildDirectory + QLatin1Char('/') +
            settingForExpanded(project, buildIntermediateDirectoryProperty, configuration),
        name, configuration);
    if (path == m_record.path() && m_recordLoadedSerial == buildSerial())
        return;
    saveRecord(builder, quiet);
    if (m_recordLoadedSerial != buildSerial())
        m_recordWriteReported = false;
    m_record.load(disk(), path, name, configuration);
    m_recordLoadedSerial = buildSerial();
}

void StandardBuildSystem::saveRecord(Builder *builder, bool quiet)
{
    if (!m_record.changed() || dryRun)
        return;
    if (m_record.save(disk()) || m_recordWriteReported)
        return;
    m_recordWriteReported = true;
    if (!quiet && builder)
        builder->message(QStringLiteral("cannot write the build record ") + m_record.path() +
                         QStringLiteral(": changed settings will not be seen by later builds."));
}
