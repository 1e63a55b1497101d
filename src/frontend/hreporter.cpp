#include "frontend/hreporter.h"

HReporter *report = nullptr;

HReporter::HReporter(const std::string &name, std::ostream *stream) : name(name), stream(stream) {}

std::ostream &HReporter::error()
{
    ++errors;
    return *stream << name << ": ";
}
