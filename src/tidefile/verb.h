#pragma once

#include <QString>
#include <QStringList>

#include <initializer_list>
#include <utility>

/// A command line that fits none of a verb's forms: `main` prints the message, if any, and
/// the usage text, and ends with status 2.
struct UsageError
{
    QString message;
};

/// One verb of tidefile, a row of `main`'s table.
struct Verb
{
    /// The word that selects the verb.
    const char *name;
    /// The verb's forms for the usage text, one a line, each starting "tidefile ".
    const char *usage;
    /// Runs the verb on the arguments behind its name and gives the exit status; throws
    /// `UsageError` for a command line that doesn't fit.
    int (*run)(const QStringList &arguments);
};

/// Reads a verb's `arguments`: each of `options` takes the next word as its value, into the
/// string it points at; the one other word is the file, which is returned. Throws `UsageError`
/// for an unknown option, an option without its value, no file or a second one.
QString readVerbArguments(const QStringList &arguments,
                          std::initializer_list<std::pair<const char *, QString *>> options);
