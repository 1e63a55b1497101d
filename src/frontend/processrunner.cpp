#include "frontend/processrunner.h"

#include "frontend/interrupts.h"

#include <QByteArray>
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <poll.h>
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

// The child's argv, made before fork so that the child touches no Qt object.
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

[[noreturn]] void runChild(ChildArguments &arguments, const char *directory, const int *outPipe,
                           const int *errPipe)
{
    if (outPipe) {
        close(outPipe[0]);
        close(errPipe[0]);
        dup2(outPipe[1], 1);
        dup2(errPipe[1], 2);
        close(outPipe[1]);
        close(errPipe[1]);
    }
    if (directory) {
        // A directory that can't be entered, the empty one among them, leaves the child where
        // it is.
        const int entered = chdir(directory);
        (void)entered;
    }
    execvp(arguments.argv[0], arguments.argv.data());
    // Never return into the caller's copy of the program: exit status 255 reads as -1.
    _exit(255);
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

int waitForChild(pid_t pid)
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
    if (arguments.isEmpty())
        return -1;
    const bool capture = output && errors;
    int outPipe[2] = {-1, -1};
    int errPipe[2] = {-1, -1};
    if (capture) {
        if (pipe(outPipe) != 0)
            return -1;
        if (pipe(errPipe) != 0) {
            close(outPipe[0]);
            close(outPipe[1]);
            return -1;
        }
    }

    ChildArguments childArguments(arguments);
    const QByteArray childDirectory = QFile::encodeName(directory);
    // Unwritten output would otherwise come out after the child's, or twice.
    std::fflush(nullptr);
    // An interrupt must find the child it is to end, so signals wait until it is named.
    const sigset_t signalMask = Interrupts::hold();
    const pid_t pid = fork();
    if (pid == 0) {
        Interrupts::resetInChild(signalMask);
        runChild(childArguments, directory.isNull() ? nullptr : childDirectory.constData(),
                 capture ? outPipe : nullptr, capture ? errPipe : nullptr);
    }
    if (wait && pid > 0)
        Interrupts::setRunningTool(pid);
    Interrupts::release(signalMask);

    if (capture) {
        close(outPipe[1]);
        close(errPipe[1]);
        if (pid > 0) {
            ProcessBufferList outBuffers;
            ProcessBufferList errBuffers;
            captureOutput(outPipe[0], errPipe[0], outBuffers, errBuffers);
            bufferListToQStringList(outBuffers, output);
            bufferListToQStringList(errBuffers, errors);
        }
        close(outPipe[0]);
        close(errPipe[0]);
    }
    if (pid < 0)
        return -1;
    if (!wait)
        return pollForChild(pid);
    const int result = waitForChild(pid);
    Interrupts::setRunningTool(0);
    return result;
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
