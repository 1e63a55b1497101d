#pragma once

#include <ostream>
#include <string>

/// Reports command-line errors as "<program>: <message>" and counts them.
class HReporter
{
public:
    /// Makes a reporter that prefixes each message with `name` and writes to `stream`.
    HReporter(const std::string &name, std::ostream *stream);

    /// Counts one error and starts its line; the caller writes the message and std::endl.
    std::ostream &error();

    std::string name;
    std::ostream *stream;
    int errors = 0;
};

/// The program's one reporter, made by main and never destroyed.
extern HReporter *report;
