#pragma once

#include <QString>
#include <QStringList>

#include <sys/types.h>

#include <list>
#include <memory>
#include <utility>

namespace QTx {

/// Runs the program `arguments[0]`, looked up along PATH, with `arguments` as its argv, in
/// `directory` unless that is null. With `wait`, waits for it; otherwise polls briefly. When
/// both `output` and `errors` are given, its stdout and stderr lines are captured into them.
/// Returns the exit status as a signed 8-bit value, -1 if it could not be started, was killed
/// or exited with 255, and 0 if it is still running without `wait`. The fourth argument is unused.
/// While it is waited for, the program is the tool that an interrupt is passed on to.
int spawnProcess(const QStringList &arguments, bool wait, const QString &directory, bool,
                 QStringList *output, QStringList *errors);

/// Starts `arguments` as spawnProcess does, without waiting. With `capture`, the program's
/// stdout and stderr go into two new pipes whose read ends are left in capture[0] and capture[1]
/// for the caller to drain and close. With `interruptible`, an interrupt is passed on to it
/// until finishProcess. Returns its process id, or -1 when it could not be started.
pid_t startProcess(const QStringList &arguments, const QString &directory, int *capture,
                   bool interruptible);

/// Waits for the end of `pid`, started by startProcess, and reaps it. Returns the exit status
/// as a signed 8-bit value, or -1 if it did not end by exit.
int finishProcess(pid_t pid);

} // namespace QTx

/// Captured output as chunks of at most 1024 bytes, in the order they were read.
typedef std::list<std::pair<unsigned int, std::unique_ptr<unsigned char[]>>> ProcessBufferList;

/// Reads once, at most 1024 bytes, from `fd` and appends what came as a chunk of `buffers`.
/// Returns the number of bytes read, 0 at the end of the data or on an error.
int readFromProcess(int fd, ProcessBufferList &buffers);

/// Joins the chunks of `buffers`, emptying it, and appends the lines they hold to `lines`.
/// A line ends at LF or CR (a CR takes the character after it along); an empty line is a
/// null string; a last unterminated piece counts only if it is longer than one character.
void bufferListToQStringList(ProcessBufferList &buffers, QStringList *lines);
