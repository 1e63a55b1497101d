#include "macros/macrosystem.h"

#include "properties/stringlistcodec.h"
#include "settings/environmentpropertyvalue.h"
#include "settings/environmentsettings.h"

#include <QDate>
#include <QTime>
#include <vector>

MacroSystem macroSystem;

namespace {
// Values may hold references that a further pass expands, so a text can keep changing (two
// macros that refer to each other) or grow without end. A legitimate text settles in a few
// passes and grows far less than this by expansion.
const int maxPasses = 100;
const qsizetype maxGrowth = qsizetype(1) << 20;

/// The index of the ")" that closes a "(" standing before `from`, or -1 if none does.
qsizetype closingParenthesis(const QString &text, qsizetype from)
{
    qsizetype depth = 1;
    for (qsizetype i = from; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('('))
            ++depth;
        else if (text.at(i) == QLatin1Char(')') && --depth == 0)
            return i;
    }
    return -1;
}

/// For each "(" in `text`, the index of the ")" that closes it, or -1 if none does.
std::vector<qsizetype> closingParentheses(const QString &text)
{
    std::vector<qsizetype> closing(size_t(text.size()), -1);
    std::vector<qsizetype> open;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('(')) {
            open.push_back(i);
        } else if (text.at(i) == QLatin1Char(')') && !open.empty()) {
            closing[size_t(open.back())] = i;
            open.pop_back();
        }
    }
    return closing;
}

/// A set of macros as an overlay.
class MapSource : public MacroSource
{
public:
    explicit MapSource(const MacroSystem::MacroMap &map) : m_map(map) {}
    const QString *macro(const QString &name) override
    {
        const auto found = m_map.constFind(name);
        return found == m_map.cend() ? nullptr : &found.value();
    }

private:
    const MacroSystem::MacroMap &m_map;
};

/// The value of a macro in an overlay over a set, or null when neither has it.
const QString *findMacro(MacroSource &overlay, const MacroSystem::MacroMap *base,
                         const QString &name, bool *overlayUsed)
{
    if (const QString *own = overlay.macro(name)) {
        if (overlayUsed)
            *overlayUsed = true;
        return own;
    }
    if (base) {
        const auto found = base->constFind(name);
        if (found != base->cend())
            return &found.value();
    }
    return nullptr;
}

/// One pass over `text` with the macros of `overlay` and then `base`. Sets `nested` if a
/// reference holds a "$", and `*overlayUsed` if the pass took a value from `overlay` or the
/// clock. False if the result grew beyond `maxLength`, which abandons the pass.
bool expandOnce(MacroSource &overlay, const MacroSystem::MacroMap *base,
                const QString &text, qsizetype maxLength, QString &result, bool &nested,
                bool *overlayUsed)
{
    const QStringView view(text);
    const qsizetype length = text.size();
    // Scanning each reference on its own is quadratic once one is unclosed, as every later
    // one may scan to the end too; from then on all closing positions come from one sweep.
    std::vector<qsizetype> closing;
    const qsizetype lastDollar = text.lastIndexOf(QLatin1Char('$'));
    result.reserve(length);
    qsizetype i = 0;
    while (i < length) {
        const qsizetype dollar = text.indexOf(QLatin1Char('$'), i);
        if (dollar < 0) {
            result += view.mid(i);
            break;
        }
        result += view.mid(i, dollar - i);
        i = dollar;
        if (i + 1 >= length || text.at(i + 1) != QLatin1Char('(')) {
            result += QLatin1Char('$');
            ++i;
            continue;
        }
        qsizetype close = -1;
        if (!closing.empty()) {
            close = closing[size_t(i + 1)];
        } else {
            close = closingParenthesis(text, i + 2);
            if (close < 0)
                closing = closingParentheses(text);
        }
        if (close < 0) {
            // Unclosed: the "$" is dropped and the scan, which ran to the end, saw any later "$".
            if (lastDollar > i + 1)
                nested = true;
            ++i;
            continue;
        }
        const QStringView token = view.mid(i + 2, close - i - 2);
        if (token.contains(QLatin1Char('$')))
            nested = true;
        const qsizetype colon = token.indexOf(QLatin1Char(':'));
        // The name is looked up in place: a text names a few macros, each of thousands.
        const QStringView nameView = colon < 0 ? token : token.left(colon);
        const QString name = QString::fromRawData(nameView.data(), nameView.size());
        const QString *found = findMacro(overlay, base, name, overlayUsed);
        QString dynamicValue;
        if (!found) {
            result += colon < 0 ? view.mid(i, close + 1 - i) : token.mid(colon + 1);
        } else if (MacroSystem::dynamicMacro(name, dynamicValue)) {
            if (overlayUsed)
                *overlayUsed = true;
            result += dynamicValue;
        } else
            result += *found;
        if (result.size() > maxLength)
            return false;
        i = close + 1;
    }
    return true;
}
} // namespace

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
    MapSource source(macros);
    return expand(source, nullptr, std::move(text), nullptr);
}

QString MacroSystem::replaceMacros(const MacroMap &overlay, const MacroMap &base,
                                   const QString &text, bool *overlayUsed) const
{
    MapSource source(overlay);
    return expand(source, &base, text, overlayUsed);
}

QString MacroSystem::replaceMacros(MacroSource &overlay, const MacroMap &base, const QString &text,
                                   bool *overlayUsed) const
{
    return expand(overlay, &base, text, overlayUsed);
}

QString MacroSystem::expand(MacroSource &overlay, const MacroMap *base, QString text,
                            bool *overlayUsed) const
{
    if (!text.contains(QLatin1Char('$')))
        return text;
    const qsizetype maxLength = text.size() + maxGrowth;
    for (int pass = 1;; ++pass) {
        QString result(QLatin1String(""));
        bool nested = false;
        if (!expandOnce(overlay, base, text, maxLength, result, nested, overlayUsed))
            return text;
        if (!nested || result.isEmpty() || result == text || pass >= maxPasses)
            return result;
        text = result;
    }
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

/// The setting that holds the global macros, or null before the settings exist.
static EnvironmentPropertyValue *globalMacrosSetting()
{
    return environment ? environment->globalMacros() : nullptr;
}

MacroSystem::MacroMap MacroSystem::globalMacros(bool withSystemMacros) const
{
    const MacroMap base = withSystemMacros ? m_systemMacros : MacroMap();
    const EnvironmentPropertyValue *setting = globalMacrosSetting();
    if (!setting)
        return base;
    return overwriteMacros(base, macrosFromStringList(setting->toStringList()));
}

QString MacroSystem::globalMacro(const QString &name) const
{
    return globalMacros(true).value(name, QLatin1String(""));
}

void MacroSystem::setGlobalMacro(const QString &name, const QString &value)
{
    EnvironmentPropertyValue *setting = globalMacrosSetting();
    if (!setting)
        return;
    MacroMap macros = macrosFromStringList(setting->toStringList());
    if (value.isEmpty())
        macros.remove(name);
    else
        macros.insert(name, value);
    setting->setValue(stringListFromMacros(macros));
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
    MacroMap macros;
    for (const QString &entry : list) {
        const qsizetype equals = entry.indexOf(QLatin1Char('='));
        if (equals < 0)
            macros.insert(entry, QLatin1String(""));
        else
            macros.insert(entry.left(equals), entry.mid(equals + 1));
    }
    return macros;
}

QStringList MacroSystem::stringListFromMacros(const MacroMap &map) const
{
    QStringList list;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        list.append(it.key().trimmed() + QLatin1Char('=') + it.value());
    return list;
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
    if (name == QLatin1String("Date")) {
        value = QDate::currentDate().toString(QStringLiteral("d MMMM yyyy"));
        return true;
    }
    if (name == QLatin1String("Time")) {
        value = QTime::currentTime().toString(QStringLiteral("hh:mm:ss"));
        return true;
    }
    return false;
}
