#include "targets/fuzzentries.h"

#include "engine/dependencycache.h"
#include "engine/dependencyfile.h"
#include "macros/macrosystem.h"

#include <cstdlib>

namespace {

/// Macros that refer to themselves, to each other, double on every pass, carry defaults and
/// hold list separators: what users' settings manage to write.
MacroSystem::MacroMap fixedMacros()
{
    MacroSystem::MacroMap macros;
    macros.insert(QStringLiteral("Self"), QStringLiteral("$(Self)"));
    macros.insert(QStringLiteral("Ping"), QStringLiteral("<$(Pong)>"));
    macros.insert(QStringLiteral("Pong"), QStringLiteral("[$(Ping)]"));
    macros.insert(QStringLiteral("Twice"), QStringLiteral("$(Twice)$(Twice)"));
    macros.insert(QStringLiteral("Nested"), QStringLiteral("$($(Name))"));
    macros.insert(QStringLiteral("Name"), QStringLiteral("Dir"));
    macros.insert(QStringLiteral("Dir"), QStringLiteral("/work/$(Name:none)"));
    macros.insert(QStringLiteral("List"), QStringLiteral("a;b\\;c;\\\\d"));
    macros.insert(QStringLiteral("Empty"), QString());
    macros.insert(QStringLiteral("Open"), QStringLiteral("$("));
    return macros;
}

} // namespace

int fuzzMacros(const uint8_t *data, size_t size)
{
    static const MacroSystem::MacroMap macros = fixedMacros();
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    macroSystem.replaceMacros2(macros, text);

    // A list of items that aren't empty comes back whole from its encoding.
    const QStringList items = MacroSystem::stringListFromString(text);
    if (MacroSystem::stringListFromString(MacroSystem::stringFromStringList(items)) != items)
        std::abort();
    MacroSystem::stringListFromString(text, true);
    macroSystem.macrosFromStringList(items);
    return 0;
}

int fuzzDependencyFile(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    parseDependencyFile(bytes, QStringLiteral("/project"));
    // The same bytes as the file in which a build keeps such lists: what it reads, it must
    // write back in a form it reads again.
    DependencyCache cache;
    const QString directory = QStringLiteral("/project/Debug");
    if (cache.parse(directory, bytes) &&
        !DependencyCache().parse(directory, cache.serialize(directory)))
        abort();
    return 0;
}
