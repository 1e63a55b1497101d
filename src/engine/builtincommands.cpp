#include "engine/standardbuildsystem.h"

#include "engine/diskinterface.h"
#include "foundation/path.h"
#include "foundation/qtx.h"

namespace {

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// The lists come from project settings, so a word may be missing; that is told, not assumed.
bool missingArguments(const QStringList &command, int count, QString &errorText)
{
    if (command.size() > count)
        return false;
    errorText =
        command.first() + QStringLiteral(" failed: expected ") + QString::number(count) +
        (count == 1 ? QStringLiteral(" argument, got ") : QStringLiteral(" arguments, got ")) +
        QString::number(command.size() - 1);
    return true;
}

} // namespace

bool StandardBuildSystem::builtinCommand(const QString &directory, QStringList &command,
                                         QString &errorText)
{
    const QString word = command.value(0);
    if (word == QLatin1String("cp")) {
        if (!missingArguments(command, 2, errorText))
            cp(directory, command[1], command[2], errorText);
        return true;
    }
    if (word == QLatin1String("chmod")) {
        if (!missingArguments(command, 2, errorText))
            chmod(directory, command[1] == QLatin1String("+w"), command[2], errorText);
        return true;
    }
    if (word == QLatin1String("rm")) {
        if (!missingArguments(command, 1, errorText))
            rm(directory, command[1], errorText);
        return true;
    }
    if (word == QLatin1String("xmlcp") || word == QLatin1String("mkhdr"))
        command[0] = QTx::rootDirectory() + QStringLiteral("/bin/") + word;
    return false;
}

bool StandardBuildSystem::getExportableBuiltinCommand(const QString &directory,
                                                      const QStringList &command, QString &text)
{
    const QString word = command.value(0);
    const auto native = [&](int index) {
        return Path::toOsPath(getAbsPath(directory, command.value(index)));
    };
    if (word == QLatin1String("cp")) {
        text = QStringLiteral("cp -f ") + quoted(native(1)) + QLatin1Char(' ') + quoted(native(2));
        return true;
    }
    if (word == QLatin1String("rm")) {
        text = QStringLiteral("rm -f ") + quoted(native(1));
        return true;
    }
    if (word == QLatin1String("xmlcp") || word == QLatin1String("mkhdr")) {
        text = QString();
        return true;
    }
    return false;
}

bool StandardBuildSystem::cp(const QString &directory, const QString &from, const QString &to,
                             QString &errorText)
{
    const QString source = getAbsPath(directory, from);
    const QString destination = getAbsPath(directory, to);
    // A read-only copy from an earlier build is no obstacle.
    QTx::removeFile(destination);
    disk().invalidate(destination);
    if (QTx::copyFile(source, destination))
        return true;
    errorText = QStringLiteral("cp failed: can't copy ") + quoted(source) + QStringLiteral(" to ") +
                quoted(destination);
    return false;
}

bool StandardBuildSystem::chmod(const QString &directory, bool writable, const QString &file,
                                QString &errorText)
{
    const QString path = getAbsPath(directory, file);
    if (QTx::setWriteable(path, writable))
        return true;
    errorText =
        QStringLiteral("chmod failed: can't make ") + quoted(path) + QStringLiteral(" writable");
    return false;
}

bool StandardBuildSystem::rm(const QString &directory, const QString &file, QString &errorText)
{
    const QString path = getAbsPath(directory, file);
    disk().invalidate(path);
    if (QTx::removeFile(path))
        return true;
    errorText =
        QStringLiteral("rm failed: can't remove ") + quoted(path) + QStringLiteral(" writable");
    return false;
}
