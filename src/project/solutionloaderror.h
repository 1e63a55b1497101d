#pragma once

#include <QString>

/// Thrown when a solution file or one of its imports can't be loaded.
class SolutionLoadError
{
public:
    /// The two kinds of failure.
    enum Kind { Plain = 0, BadXML = 1 };

    /// A plain failure: `message` follows the file name when printed.
    SolutionLoadError(const QString &fileName, const QString &message)
        : fileName(fileName), kind(Plain), message(message)
    {
    }
    /// Bad XML: the parser's message and the line it stopped at.
    SolutionLoadError(const QString &fileName, const QString &message, int line)
        : fileName(fileName), kind(BadXML), message(message), line(line)
    {
    }

    QString fileName;
    int kind;
    QString message;
    int line = 0;   ///< bad XML only
    int column = 0; ///< bad XML only; always 0
};
