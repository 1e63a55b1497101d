#include "engine/filemacros.h"

#include "project/projectelement.h"

namespace {
const char *const names[] = {"ProjectNodeName", "InputDir",  "InputName",
                             "InputFileName",   "InputExt",  "InputPath",
                             "RelInputPath",    "IntDir",    "OutDir"};
} // namespace

BuildSystem::FileMacros::FileMacros(BuildSystem &system, ProjectElement *element,
                                    const QString &configuration,
                                    const QMap<QString, QString> &base)
    : m_system(system), m_element(element), m_configuration(configuration), m_base(base),
      m_isFile(element && element->type() == ProjectElement::File)
{
}

const QString *BuildSystem::FileMacros::macro(const QString &name)
{
    if (m_visible == Everything) {
        if (!m_added) {
            // What a layer adds wins over the computed macros.
            m_added.emplace();
            m_system.addMacros(m_element, m_configuration, *m_added);
        }
        const auto added = m_added->constFind(name);
        if (added != m_added->cend())
            return &added.value();
    }
    for (int which = 0; which < NameCount; ++which) {
        if (name == QLatin1String(names[which]))
            return fixed(Name(which));
    }
    return nullptr;
}

const QString *BuildSystem::FileMacros::fixed(Name which)
{
    if ((which >= InputDir && which <= RelInputPath && !m_isFile) ||
        (which == IntDir && m_visible < UpToIntDir) || (which == OutDir && m_visible < Everything))
        return nullptr;
    const unsigned bit = 1u << which;
    if (!(m_known & bit)) {
        m_values[which] = compute(which);
        m_known |= bit;
    }
    return &m_values[which];
}

QString BuildSystem::FileMacros::compute(Name which)
{
    switch (which) {
    case ProjectNodeName:
        return m_element ? m_element->attributes().value(QStringLiteral("Name")) : QString();
    case InputDir:
        return input().path();
    case InputName:
        return input().baseName();
    case InputFileName:
        return input().fileName();
    case InputExt:
        return input().completeSuffix();
    case InputPath:
        return input().absoluteFilePath();
    case RelInputPath:
        return m_element->relativePath();
    case IntDir:
    case OutDir: {
        const Visible visible = m_visible;
        m_visible = which == IntDir ? UpToInput : UpToIntDir;
        const QString directory = m_system.directoryMacro(
            *this, m_base,
            which == IntDir ? m_system.buildIntermediateDirectoryProperty
                            : m_system.buildOutputDirectoryProperty,
            m_element, m_configuration);
        m_visible = visible;
        return directory;
    }
    case NameCount:
        break;
    }
    return QString();
}

const QFileInfo &BuildSystem::FileMacros::input()
{
    if (!m_input)
        m_input.emplace(m_element->filePath());
    return *m_input;
}

QMap<QString, QString> BuildSystem::FileMacros::all()
{
    QMap<QString, QString> own;
    for (int which = 0; which < NameCount; ++which) {
        if (const QString *value = fixed(Name(which)))
            own.insert(QLatin1String(names[which]), *value);
    }
    m_system.addMacros(m_element, m_configuration, own);
    return own;
}
