// Writes a generated solution for benchmarks and scale tests, and on request a build.ninja
// that makes the same libraries, for comparisons.

#include "solutiongenerator.h"

#include <QDir>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

[[noreturn]] void usage()
{
    std::fputs("usage: gensolution [-name NAME] [-projects N] [-files M] [-headers K]\n"
               "                   [-includes J] [-deps D] [-imports I] [-folder-size F]\n"
               "                   [-libraries] [-sources] [-depfiles] [-ninja BENCHDIR]\n"
               "                   DIRECTORY\n",
               stderr);
    std::exit(2);
}

int number(const char *text)
{
    char *end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (*text == '\0' || *end != '\0' || value < 0 || value > 1000000)
        usage();
    return int(value);
}

} // namespace

int main(int argc, char **argv)
{
    SolutionShape shape;
    QString directory;
    QString ninjaBenchDirectory;
    for (int i = 1; i < argc; ++i) {
        const char *word = argv[i];
        const bool hasValue = i + 1 < argc;
        if (std::strcmp(word, "-sources") == 0)
            shape.writeSources = true;
        else if (std::strcmp(word, "-depfiles") == 0)
            shape.writeDependencyFiles = true;
        else if (std::strcmp(word, "-libraries") == 0)
            shape.librariesOnly = true;
        else if (std::strcmp(word, "-ninja") == 0 && hasValue)
            ninjaBenchDirectory = QString::fromLocal8Bit(argv[++i]);
        else if (std::strcmp(word, "-name") == 0 && hasValue)
            shape.name = QString::fromLocal8Bit(argv[++i]);
        else if (std::strcmp(word, "-projects") == 0 && hasValue)
            shape.projects = number(argv[++i]);
        else if (std::strcmp(word, "-files") == 0 && hasValue)
            shape.filesPerProject = number(argv[++i]);
        else if (std::strcmp(word, "-headers") == 0 && hasValue)
            shape.headersPerProject = number(argv[++i]);
        else if (std::strcmp(word, "-includes") == 0 && hasValue)
            shape.headersPerSource = number(argv[++i]);
        else if (std::strcmp(word, "-deps") == 0 && hasValue)
            shape.dependenciesPerProject = number(argv[++i]);
        else if (std::strcmp(word, "-imports") == 0 && hasValue)
            shape.importedSolutions = number(argv[++i]);
        else if (std::strcmp(word, "-folder-size") == 0 && hasValue)
            shape.filesPerFolder = number(argv[++i]);
        else if (word[0] != '-' && directory.isEmpty())
            directory = QString::fromLocal8Bit(word);
        else
            usage();
    }
    if (directory.isEmpty())
        usage();

    QString error;
    if (!QDir().mkpath(directory)) {
        std::fprintf(stderr, "gensolution: cannot make %s\n", argv[argc - 1]);
        return 1;
    }
    const QString absolute = QDir(directory).absolutePath();
    const QString root = generateSolution(absolute, shape, &error);
    if (root.isNull() ||
        (!ninjaBenchDirectory.isEmpty() &&
         generateNinjaFile(absolute, shape, QDir(ninjaBenchDirectory).absolutePath(), &error)
             .isNull())) {
        std::fprintf(stderr, "gensolution: %s\n", error.toLocal8Bit().constData());
        return 1;
    }
    std::puts(root.toLocal8Bit().constData());
    return 0;
}
