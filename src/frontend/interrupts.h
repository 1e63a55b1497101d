#pragma once

#include <signal.h>
#include <sys/types.h>

/// How the program stops on SIGINT and SIGTERM: the build is asked to stop, the tool it waits
/// for is asked to end (and killed on a second signal), and main leaves with 128 + the signal.
namespace Interrupts {

/// Installs the handlers of SIGINT and SIGTERM.
void install();

/// The first of SIGINT or SIGTERM that arrived, or 0 while none has.
int received();

/// Keeps SIGINT and SIGTERM waiting until `release`, so that a tool can be started and named
/// as the running one before a signal looks for it; returns the mask `release` restores.
sigset_t hold();

/// Lets waiting signals in again under the mask `previous` that `hold` returned.
void release(const sigset_t &previous);

/// In a freshly forked child, before it starts a program: the default actions and the mask
/// `previous` again, so that a signal ends the child instead of reaching the parent's handler.
void resetInChild(const sigset_t &previous);

/// Names the tool the program now waits for, 0 for none. Name one with signals held; a tool
/// named after an interrupt is asked to end at once.
void setRunningTool(pid_t pid);

} // namespace Interrupts
