#include "frontend/processrunner.h"

#include "frontend/interrupts.h"

#include <QByteArray>
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

const int chunkSize = 1024;

// The signed 8-bit exit status, or -1 when the process did not end by exit.
int resultOf(int status)
{
    if (!WIFEXITED(status))
        return -1;
    return static_cast<signed char>(WEXITSTATUS(status));
}

// The child's argv, made before the spawn so that the child touches no Qt object.
struct ChildArguments
{
    explicit ChildArguments(const QStringList &arguments)
    {
        for (const QString &argument : arguments)
            words.push_back(QFile::encodeName(argument));
        for (QByteArray &word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
    }

    std::vector<QByteArray> words;
    std::vector<char *> argv;
};

// The attributes and file actions of one spawn, released with the object. The child starts
// with the default actions of the signals this program handles, and with the signal mask that
// the spawn is given: a signal ends the tool, not the build.
struct SpawnSetup
{
    explicit SpawnSetup(const sigset_t &mask)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        sigset_t handled;
        sigemptyset(&handled);
        sigaddset(&handled, SIGINT);
        sigaddset(&handled, SIGTERM);
        posix_spawnattr_setsigdefault(&attributes, &handled);
        posix_spawnattr_setsigmask(&attributes, &mask);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnSetup()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    Q_DISABLE_COPY(SpawnSetup)

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
};

// A directory that can't be entered, the empty one among them, leaves the child where it is,
// whereas a failed change of directory would fail the whole spawn.
bool canEnter(const QByteArray &directory)
{
    struct stat info;
    return !directory.isEmpty() && stat(directory.constData(), &info) == 0 &&
           S_ISDIR(info.st_mode) && access(directory.constData(), X_OK) == 0;
}

// Where a lookup along PATH finds `program` for a child in `directory` (null: this program's
// own), or an empty array.
QByteArray findProgram(const QByteArray &program, const QByteArray &directory)
{
    auto found = [&](const QByteArray &path) {
        const QByteArray seen =
            path.startsWith('/') || directory.isNull() ? path : directory + '/' + path;
        struct stat info;
        return stat(seen.constData(), &info) == 0 && S_ISREG(info.st_mode) &&
               access(seen.constData(), X_OK) == 0;
    };
    if (program.contains('/'))
        return found(program) ? program : QByteArray();
    const char *path = std::getenv("PATH");
    for (const QByteArray &entry : QByteArray(path ? path : "/bin:/usr/bin").split(':')) {
        const QByteArray candidate = (entry.isEmpty() ? QByteArray(".") : entry) + '/' + program;
        if (found(candidate))
            return candidate;
    }
    return QByteArray();
}

// Spawns `arguments`; a program without an interpreter line runs through the shell, as the
// exec family runs it. Returns 0 or the error number.
int spawn(pid_t &pid, ChildArguments &arguments, const QByteArray &directory, SpawnSetup &setup)
{
    const int error = posix_spawnp(&pid, arguments.argv[0], &setup.actions, &setup.attributes,
                                   arguments.argv.data(), environ);
    if (error != ENOEXEC)
        return error;
    QByteArray script = findProgram(arguments.argv[0], directory);
    if (script.isEmpty())
        return error;
    char shell[] = "/bin/sh";
    std::vector<char *> argv{shell, script.data()};
    argv.insert(argv.end(), arguments.argv.begin() + 1, arguments.argv.end());
    return posix_spawn(&pid, shell, &setup.actions, &setup.attributes, argv.data(), environ);
}

// Two pipes whose ends a tool gets only as its own stdout and stderr, never those of another
// tool that runs beside it.
bool openPipes(int *outPipe, int *errPipe)
{
    if (pipe2(outPipe, O_CLOEXEC) != 0)
        return false;
    if (pipe2(errPipe, O_CLOEXEC) == 0)
        return true;
    close(outPipe[0]);
    close(outPipe[1]);
    return false;
}

// Drains both pipes while the child runs, until its stdout closes and is empty.
void captureOutput(int outFd, int errFd, ProcessBufferList &outBuffers,
                   ProcessBufferList &errBuffers)
{
    pollfd fds[2] = {{outFd, POLLIN, 0}, {errFd, POLLIN, 0}};
    for (;;) {
        if (poll(fds, 2, 100) < 0) {
            // An interrupt is not the end of the child's output.
            if (errno == EINTR)
                continue;
            break;
        }
        if (fds[0].revents & POLLIN)
            readFromProcess(outFd, outBuffers);
        if (fds[1].revents & POLLIN)
            readFromProcess(errFd, errBuffers);
        // A hang-up can come with data still in the pipe: leave only once it is read.
        if ((fds[0].revents & (POLLERR | POLLHUP)) && !(fds[0].revents & POLLIN))
            break;
    }
    // What stderr already holds, without waiting for more.
    pollfd errOnly = {errFd, POLLIN, 0};
    while (poll(&errOnly, 1, 0) > 0 && (errOnly.revents & POLLIN) &&
           readFromProcess(errFd, errBuffers) > 0) {
    }
}

int reap(pid_t pid)
{
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    return resultOf(status);
}

// Gives a child that ends at once about 10 ms to do so; 0 if it is still running.
int pollForChild(pid_t pid)
{
    for (int attempt = 0; attempt < 10; ++attempt) {
        if (attempt > 0)
            usleep(1000);
        int status = 0;
        if (waitpid(pid, &status, WNOHANG) == pid)
            return resultOf(status);
    }
    return 0;
}

} // namespace

int QTx::spawnProcess(const QStringList &arguments, bool wait, const QString &directory, bool,
                      QStringList *output, QStringList *errors)
{
    const bool capture = output && errors;
    int pipes[2] = {-1, -1};
    // Unwritten output would otherwise come out after the child's.
    std::fflush(nullptr);
    const pid_t pid = startProcess(arguments, directory, capture ? pipes : nullptr, wait);
    if (pid < 0)
        return -1;
    if (capture) {
        ProcessBufferList outBuffers;
        ProcessBufferList errBuffers;
        captureOutput(pipes[0], pipes[1], outBuffers, errBuffers);
        bufferListToQStringList(outBuffers, output);
        bufferListToQStringList(errBuffers, errors);
        close(pipes[0]);
        close(pipes[1]);
    }
    if (!wait)
        return pollForChild(pid);
    return finishProcess(pid);
}

pid_t QTx::startProcess(const QStringList &arguments, const QString &directory, int *capture,
                        bool interruptible)
{
    if (arguments.isEmpty())
        return -1;
    int outPipe[2] = {-1, -1};
    int errPipe[2] = {-1, -1};
    if (capture && !openPipes(outPipe, errPipe))
        return -1;

    ChildArguments childArguments(arguments);
    const QByteArray childDirectory =
        directory.isNull() ? QByteArray() : QFile::encodeName(directory);
    const QByteArray entered = canEnter(childDirectory) ? childDirectory : QByteArray();
    // An interrupt must find the child it is to end, so signals wait until it is named; the
    // child gets the mask from before.
    const sigset_t signalMask = Interrupts::hold();
    SpawnSetup setup(signalMask);
    if (capture) {
        posix_spawn_file_actions_adddup2(&setup.actions, outPipe[1], 1);
        posix_spawn_file_actions_adddup2(&setup.actions, errPipe[1], 2);
    }
    if (!entered.isNull())
        posix_spawn_file_actions_addchdir_np(&setup.actions, entered.constData());
    pid_t pid = -1;
    if (spawn(pid, childArguments, entered, setup) != 0)
        pid = -1;
    else if (interruptible)
        Interrupts::addRunningTool(pid);
    Interrupts::release(signalMask);

    if (capture) {
        close(outPipe[1]);
        close(errPipe[1]);
        if (pid < 0) {
            close(outPipe[0]);
            close(errPipe[0]);
            outPipe[0] = errPipe[0] = -1;
        }
        capture[0] = outPipe[0];
        capture[1] = errPipe[0];
    }
    return pid;
}

int QTx::finishProcess(pid_t pid)
{
    // Waited for without reaping: its number stays taken until it is no longer named as a tool.
    siginfo_t info;
    while (waitid(P_PID, id_t(pid), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
    }
    Interrupts::removeRunningTool(pid);
    return reap(pid);
}

int readFromProcess(int fd, ProcessBufferList &buffers)
{
    unsigned char buffer[chunkSize];
    const ssize_t count = read(fd, buffer, sizeof buffer);
    if (count < 0)
        return 0;
    std::unique_ptr<unsigned char[]> data(new unsigned char[count]);
    std::memcpy(data.get(), buffer, size_t(count));
    buffers.emplace_back(static_cast<unsigned int>(count), std::move(data));
    return int(count);
}

void bufferListToQStringList(ProcessBufferList &buffers, QStringList *lines)
{
    qsizetype total = 0;
    for (const auto &chunk : buffers)
        total += qsizetype(chunk.first);
    QByteArray all;
    all.reserve(total);
    for (const auto &chunk : buffers)
        all.append(reinterpret_cast<const char *>(chunk.second.get()), qsizetype(chunk.first));
    buffers.clear();

    qsizetype start = 0;
    qsizetype i = 0;
    while (i < total) {
        const char c = all.at(i);
        if (c != '\n' && c != '\r') {
            ++i;
            continue;
        }
        lines->append(i == start ? QString()
                                 : QString::fromLatin1(all.constData() + start, i - start));
        // A CR is taken as the start of a CR LF pair, whatever follows it.
        i += c == '\r' ? 2 : 1;
        start = i;
    }
    if (total - start > 1)
        lines->append(QString::fromLatin1(all.constData() + start, total - start));
}
