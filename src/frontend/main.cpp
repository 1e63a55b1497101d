#include "foundation/hexception.h"
#include "foundation/qtx.h"
#include "frontend/buildrequest.h"
#include "frontend/hreporter.h"
#include "frontend/interrupts.h"
#include "frontend/tidemakeargparse.h"
#include "project/solutionloaderror.h"
#include "settings/armtarnbenchenvironmentsettings.h"
#include "settings/environmentsettings.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>

namespace {

// Reports a refused command line and ends the program with status 1.
[[noreturn]] void refuse(const char *message)
{
    report->error() << message << std::endl;
    std::exit(1);
}

void checkOptions(const TidemakeArgParse &parser)
{
    if (report->errors != 0)
        std::exit(1);
    // An empty word counts as given here.
    if (!parser.solution.isNull() && !parser.project.isNull())
        refuse("-solution and -project are exclusive.");
    if (parser.hdpFile.isEmpty())
        refuse(".hdp file must be specified.");
    if (parser.config.isEmpty())
        refuse("-config must be specified.");
}

} // namespace

int main(int argc, char **argv)
{
    std::unique_ptr<QCoreApplication> application(new QCoreApplication(argc, argv));
    report = new HReporter(argv[0], &std::cerr);
    std::unique_ptr<TidemakeArgParse> parser(new TidemakeArgParse(report));
    Interrupts::install();
    bool failed = false;
    try {
        if (argc <= 1)
            parser->onHelp(nullptr, nullptr);
        // Before parsing, since -D writes to the settings.
        environment = new ARMTarnbenchEnvironmentSettings;
        environment->createEntries();
        // Before parsing, so that -BenchDir overrides it.
        parser->benchDir = QTx::getBenchDir(argv[0]);
        parser->parse(argc - 1, argv + 1);
        checkOptions(*parser);
        failed = !runBuildRequest(*parser);
    } catch (const SolutionLoadError &error) {
        failed = true;
        if (error.kind == SolutionLoadError::BadXML)
            std::fprintf(stderr, "load error: bad XML file - %s\n",
                         error.message.toLocal8Bit().constData());
        else
            std::fprintf(stderr, "load error: %s%s\n", error.fileName.toLocal8Bit().constData(),
                         error.message.toLocal8Bit().constData());
    } catch (const HException &exception) {
        failed = true;
        std::fprintf(stderr, "error: %s\n", exception.what());
    } catch (...) {
        failed = true;
        std::fprintf(stderr, "Internal error detected\n");
    }
    const bool statusForFailure = parser->exitStatus;
    parser.reset();
    application.reset();
    if (const int interrupt = Interrupts::received()) {
        std::puts("interrupted");
        // The shell's convention for a program ended by a signal.
        return 128 + interrupt;
    }
    return failed && statusForFailure ? 2 : 0;
}
