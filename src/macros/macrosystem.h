#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/// Macros whose values are worked out only when a text names them.
class MacroSource
{
public:
    virtual ~MacroSource() = default;
    /// The value of the macro `name`, or null if this source has none; valid until the next
    /// call.
    virtual const QString *macro(const QString &name) = 0;
};

/// The one service that knows the `$(Name)` and `$(Name:default)` syntax, the list encodings,
/// and the two process-wide macro sets: system macros (set by the program) and global macros
/// (kept by the user in the environment settings).
class MacroSystem
{
public:
    /// A set of macros, name to value.
    using MacroMap = QMap<QString, QString>;

    /// Starts with the system macros "Date" and "Time", so that every set built on the
    /// system macros expands them.
    MacroSystem();

    /// Returns `text` with the references to `macros` expanded.
    QString replaceMacros(const MacroMap &macros, const QString &text) const;
    /// The expansion itself: passes over `text` until one finds no reference within a reference
    /// or leaves the text unchanged.
    QString replaceMacros2(const MacroMap &macros, QString text) const;
    /// `replaceMacros` with the macros of `overlay` laid over those of `base`, as if the two
    /// were one set in which `overlay` wins; neither is copied. Sets `*overlayUsed` when the
    /// result took a value from `overlay` (or the clock), so that one that didn't can be kept
    /// for the same `base`.
    QString replaceMacros(const MacroMap &overlay, const MacroMap &base, const QString &text,
                          bool *overlayUsed = nullptr) const;
    /// The same with an overlay that works its values out as they are named.
    QString replaceMacros(MacroSource &overlay, const MacroMap &base, const QString &text,
                          bool *overlayUsed = nullptr) const;

    /// The system macros.
    MacroMap systemMacros() const;
    /// The value of the system macro `name`, or a null string if there is none.
    QString systemMacro(const QString &name) const;
    /// Adds or replaces the system macro `name`.
    void setSystemMacro(const QString &name, const QString &value);

    /// The global macros from the settings; with `withSystemMacros`, laid over the system
    /// macros, so that a global macro wins over a system macro of the same name.
    MacroMap globalMacros(bool withSystemMacros) const;
    /// The global or system macro `name`; an empty string if there is none.
    QString globalMacro(const QString &name) const;
    /// Sets the global macro `name` to `value` in the settings store, or removes it if `value`
    /// is empty. The change lasts beyond this run.
    void setGlobalMacro(const QString &name, const QString &value);

    /// A copy of `base` with each entry of `over` set in it.
    MacroMap overwriteMacros(const MacroMap &base, const MacroMap &over) const;
    /// A set from entries "name=value"; an entry without "=" has an empty value, and the later
    /// of two entries of one name wins.
    MacroMap macrosFromStringList(const QStringList &list) const;
    /// One entry "name=value" per macro, in the set's order, the name trimmed.
    QStringList stringListFromMacros(const MacroMap &map) const;

    /// Puts a backslash in front of each ";" and each backslash.
    static QString escape(const QString &text);
    /// The items of `list` escaped and joined by ";"; an empty list gives a null string.
    static QString stringFromStringList(const QStringList &list);
    /// The items of a list made by `stringFromStringList`; empty items only with `keepEmpty`.
    static QStringList stringListFromString(const QString &text, bool keepEmpty = false);
    /// True for the macros whose value is computed when used ("Date", "Time"), with `value`
    /// set to it.
    static bool dynamicMacro(const QString &name, QString &value);

private:
    QString expand(MacroSource &overlay, const MacroMap *base, QString text,
                   bool *overlayUsed) const;

    MacroMap m_systemMacros;
};

/// The process-wide macro system; it exists from program start.
extern MacroSystem macroSystem;
