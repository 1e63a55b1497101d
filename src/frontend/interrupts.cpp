#include "frontend/interrupts.h"

#include "engine/buildsystem.h"

#include <cerrno>
#include <signal.h>

namespace {

volatile sig_atomic_t firstSignal = 0;
volatile sig_atomic_t signalCount = 0;
volatile sig_atomic_t runningTool = 0;

sigset_t interruptSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

// Only flags and kill(): the program may be anywhere, inside malloc or stdio among others.
extern "C" void onInterrupt(int signal)
{
    const int savedErrno = errno;
    if (firstSignal == 0)
        firstSignal = signal;
    signalCount = signalCount + 1;
    if (buildSystem)
        buildSystem->stopRequested = true;
    // A terminal's Ctrl-C reaches the tool by itself; a signal sent to this program alone
    // does not, so it is passed on. A tool that outlives the first request is killed.
    const pid_t tool = runningTool;
    if (tool > 0)
        kill(tool, signalCount > 1 ? SIGKILL : SIGTERM);
    errno = savedErrno;
}

} // namespace

void Interrupts::install()
{
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    // Both signals wait while the handler runs, so that it never runs twice at once.
    action.sa_mask = interruptSignals();
    // Reads and writes elsewhere carry on; the process runner's own waits cope with EINTR.
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int Interrupts::received()
{
    return firstSignal;
}

sigset_t Interrupts::hold()
{
    const sigset_t held = interruptSignals();
    sigset_t previous;
    sigprocmask(SIG_BLOCK, &held, &previous);
    return previous;
}

void Interrupts::release(const sigset_t &previous)
{
    sigprocmask(SIG_SETMASK, &previous, nullptr);
}

void Interrupts::resetInChild(const sigset_t &previous)
{
    signal(SIGINT, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    release(previous);
}

void Interrupts::setRunningTool(pid_t pid)
{
    runningTool = pid;
    if (pid > 0 && firstSignal != 0)
        kill(pid, SIGTERM);
}
