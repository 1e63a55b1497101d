#include "macros/macrosystem.h"

#include "properties/stringlistcodec.h"

MacroSystem macroSystem;

MacroSystem::MacroSystem()
{
    m_systemMacros.insert(QStringLiteral("Date"), QLatin1String(""));
    m_systemMacros.insert(QStringLiteral("Time"), QLatin1String(""));
}

QString MacroSystem::replaceMacros(const MacroMap &macros, const QString &text) const
{
    return replaceMacros2(macros, text);
}

QString MacroSystem::replaceMacros2(const MacroMap &macros, QString text) const
{
    Q_UNUSED(macros);
    return text;
}

MacroSystem::MacroMap MacroSystem::systemMacros() const
{
    return m_systemMacros;
}

QString MacroSystem::systemMacro(const QString &name) const
{
    return m_systemMacros.value(name);
}

void MacroSystem::setSystemMacro(const QString &name, const QString &value)
{
    m_systemMacros.insert(name, value);
}

MacroSystem::MacroMap MacroSystem::globalMacros(bool withSystemMacros) const
{
    return withSystemMacros ? m_systemMacros : MacroMap();
}

QString MacroSystem::globalMacro(const QString &name) const
{
    return globalMacros(true).value(name, QLatin1String(""));
}

void MacroSystem::setGlobalMacro(const QString &name, const QString &value)
{
    Q_UNUSED(name);
    Q_UNUSED(value);
}

MacroSystem::MacroMap MacroSystem::overwriteMacros(const MacroMap &base, const MacroMap &over) const
{
    MacroMap result = base;
    for (auto it = over.cbegin(); it != over.cend(); ++it)
        result.insert(it.key(), it.value());
    return result;
}

MacroSystem::MacroMap MacroSystem::macrosFromStringList(const QStringList &list) const
{
    Q_UNUSED(list);
    return MacroMap();
}

QStringList MacroSystem::stringListFromMacros(const MacroMap &map) const
{
    Q_UNUSED(map);
    return QStringList();
}

QString MacroSystem::escape(const QString &text)
{
    return escapeListItem(text);
}

QString MacroSystem::stringFromStringList(const QStringList &list)
{
    return joinStringList(list);
}

QStringList MacroSystem::stringListFromString(const QString &text, bool keepEmpty)
{
    return splitStringList(text, keepEmpty);
}

bool MacroSystem::dynamicMacro(const QString &name, QString &value)
{
    Q_UNUSED(name);
    Q_UNUSED(value);
    return false;
}
