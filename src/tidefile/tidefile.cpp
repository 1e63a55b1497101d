// tidefile: looks into and converts the files a build makes or a target is loaded from.

#include "tidefile/loadverb.h"
#include "tidefile/packageverb.h"
#include "tidefile/verb.h"

#include <QString>
#include <QStringList>

#include <cstdio>

namespace {

const Verb verbs[] = {
    {"load", loadUsage, runLoad},
    {"package", packageUsage, runPackage},
};

void printUsage()
{
    const char *lead = "usage: ";
    for (const Verb &verb : verbs) {
        for (const QString &line : QString::fromLatin1(verb.usage).split('\n')) {
            std::fprintf(stderr, "%s%s\n", lead, line.toLatin1().constData());
            lead = "       ";
        }
    }
}

const Verb *findVerb(const QString &name)
{
    for (const Verb &verb : verbs) {
        if (name == QLatin1String(verb.name))
            return &verb;
    }
    return nullptr;
}

} // namespace

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    try {
        if (arguments.isEmpty())
            throw UsageError{};
        const Verb *verb = findVerb(arguments.first());
        if (!verb)
            throw UsageError{QStringLiteral("unknown verb ") + arguments.first()};
        return verb->run(arguments.mid(1));
    } catch (const UsageError &error) {
        if (!error.message.isEmpty())
            std::fprintf(stderr, "tidefile: %s\n", error.message.toLocal8Bit().constData());
        printUsage();
        return 2;
    }
}
