#include "frontend/interrupts.h"

#include "engine/buildsystem.h"

#include <cerrno>
#include <signal.h>

namespace {

volatile sig_atomic_t firstSignal = 0;
volatile sig_atomic_t signalCount = 0;
// The tools an interrupt is passed on to; 0 marks a free place.
volatile sig_atomic_t runningTools[Interrupts::maxRunningTools] = {};

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
    for (int i = 0; i < Interrupts::maxRunningTools; ++i) {
        const pid_t tool = runningTools[i];
        if (tool > 0)
            kill(tool, signalCount > 1 ? SIGKILL : SIGTERM);
    }
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

bool Interrupts::addRunningTool(pid_t pid)
{
    for (int i = 0; i < maxRunningTools; ++i) {
        if (runningTools[i] == 0) {
            runningTools[i] = pid;
            if (firstSignal != 0)
                kill(pid, SIGTERM);
            return true;
        }
    }
    return false;
}

void Interrupts::removeRunningTool(pid_t pid)
{
    for (int i = 0; i < maxRunningTools; ++i) {
        if (runningTools[i] == pid)
            runningTools[i] = 0;
    }
}
