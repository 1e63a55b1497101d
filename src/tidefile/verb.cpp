#include "tidefile/verb.h"

#include <algorithm>

QString readVerbArguments(const QStringList &arguments,
                          std::initializer_list<std::pair<const char *, QString *>> options)
{
    QString file;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        const auto option = std::find_if(options.begin(), options.end(),
                                         [&](const auto &o) { return argument == o.first; });
        if (option != options.end()) {
            if (i + 1 == arguments.size())
                throw UsageError{argument + QStringLiteral(" needs a value")};
            *option->second = arguments.at(++i);
        } else if (argument.size() > 1 && argument.startsWith(QLatin1Char('-'))) {
            throw UsageError{QStringLiteral("unknown option ") + argument};
        } else if (!file.isNull()) {
            throw UsageError{QStringLiteral("one file at a time")};
        } else {
            file = argument;
        }
    }
    if (file.isNull())
        throw UsageError{QStringLiteral("no file given")};
    return file;
}
