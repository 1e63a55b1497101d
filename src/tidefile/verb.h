#pragma once

#include <QString>
#include <QStringList>

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
