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

/// The number of tools that can be named as running at once.
const int maxRunningTools = 256;

/// Names one more tool that an interrupt is passed on to. Name it with signals held; a tool
/// named after an interrupt is asked to end at once. False when as many are named already.
bool addRunningTool(pid_t pid);

/// Forgets the tool `pid`; do so before it is reaped, so that its number, once free for
/// another process, is never signalled.
void removeRunningTool(pid_t pid);

} // namespace Interrupts
