#include "engine/builder.h"

#include "foundation/path.h"

void Builder::note(const QString &) {}

void Builder::success(const QString &) {}

void Builder::message(const QString &) {}

void Builder::idle() {}

Builder::~Builder() = default;

namespace {
QString quotedIfSpaced(const QString &word)
{
    return word.contains(QLatin1Char(' ')) ? QLatin1Char('"') + word + QLatin1Char('"') : word;
}
} // namespace

QString Builder::commandLine(const QStringList &command)
{
    if (command.isEmpty())
        return QString();
    QString line = quotedIfSpaced(Path::toOsPath(command.first()));
    for (int i = 1; i < command.size(); ++i)
        line += QLatin1Char(' ') + quotedIfSpaced(command.at(i));
    return line;
}
