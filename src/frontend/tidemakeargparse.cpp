#include "frontend/tidemakeargparse.h"

#include "foundation/product.h"
#include "macros/macrosystem.h"

#include <QFile>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>

namespace {

const char *const usageText[] = {
    "\n",
    "Usage: tidemake [option] <project>.hdp\n",
    "\n",
    "  -batch            batch build\n",
    "  -config 'name'    build in 'name' configuration\n",
    "  -clean            remove output files as build occurs\n",
    "  -D macro=value    set the value of a macro\n",
    "  -echo             show command lines as they are executed\n",
    "  -project 'name'   build/batch build 'name' project\n",
    "  -rebuild          always do the build step\n",
    "  -show             show command lines but don't execute them\n",
    "  -BenchDir 'name' set $(BenchDir) to 'name'\n",
    "  -solution 'name'  build/batch build 'name' solution\n",
    "  -verbose          show build information\n",
    "  -exitstatus       exit with status 2 if the build fails\n",
    "  -j N              run up to N commands at once\n",
    "  -compdb           write compile_commands.json instead of building\n",
    nullptr,
};

// Option words are decoded as file names are, so that a name given here opens that file.
QString fromWord(const char *word)
{
    return QFile::decodeName(word);
}

template <typename Handler> OptionHandler handler(Handler member)
{
    return static_cast<OptionHandler>(member);
}

} // namespace

TidemakeArgParse::TidemakeArgParse(HReporter *reporter) : ArgParse(reporter)
{
    addFlag("-batch", &batch);
    addFlag("-clean", &clean);
    addHandler("-config", 1, handler(&TidemakeArgParse::onConfig));
    addHandler("-D", 1, handler(&TidemakeArgParse::onDefineMacro));
    addFlag("-echo", &echo);
    addHandler("-help", 0, handler(&TidemakeArgParse::onHelp));
    addHandler("-project", 1, handler(&TidemakeArgParse::onProject));
    addFlag("-rebuild", &rebuild);
    addFlag("-show", &show);
    addHandler("-solution", 1, handler(&TidemakeArgParse::onSolution));
    addHandler("-BenchDir", 1, handler(&TidemakeArgParse::onBenchDir));
    addFlag("-verbose", &verbose);
    addFlag("-exitstatus", &exitStatus);
    addHandler("-j", 3, handler(&TidemakeArgParse::onJobs));
    addFlag("-compdb", &compdb);
}

void TidemakeArgParse::onArgument(const char *argument)
{
    hdpFile = fromWord(argument);
}

void TidemakeArgParse::onHelp(const char *, const char *)
{
    std::fprintf(stderr, "%s tidemake   Release %s\n", Get_PRODUCT_GENERIC_NAME(),
                 Get_SOFTWARE_RELEASE());
    std::fprintf(stderr, "%s\n\n", Get_COPYRIGHT());
    for (const char *const *line = usageText; *line; ++line)
        std::fputs(*line, stderr);
    std::exit(0);
}

void TidemakeArgParse::onConfig(const char *, const char *value)
{
    config = fromWord(value);
}

void TidemakeArgParse::onDefineMacro(const char *, const char *value)
{
    const char *equals = std::strchr(value, '=');
    const QString name =
        equals ? QFile::decodeName(QByteArray(value, equals - value)) : fromWord(value);
    const QString macroValue = equals ? fromWord(equals + 1) : QString();
    macroSystem.setGlobalMacro(name, macroValue);
}

void TidemakeArgParse::onProject(const char *, const char *value)
{
    project = fromWord(value);
}

void TidemakeArgParse::onSolution(const char *, const char *value)
{
    solution = fromWord(value);
}

void TidemakeArgParse::onBenchDir(const char *, const char *value)
{
    benchDir = fromWord(value);
}

void TidemakeArgParse::onJobs(const char *option, const char *value)
{
    // Digits only; a number too large for an int asks for as many as there can be.
    long long count = 0;
    const char *digit = value;
    for (; *digit >= '0' && *digit <= '9'; ++digit)
        count = std::min(count * 10 + (*digit - '0'), (long long)INT_MAX);
    if (*digit != '\0' || digit == value || count == 0) {
        error() << option << " needs a number of commands of 1 or more, not '" << value << "'"
                << std::endl;
        return;
    }
    jobs = int(count);
}
