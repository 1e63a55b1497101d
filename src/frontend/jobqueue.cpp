#include "frontend/jobqueue.h"

#include "engine/buildsystem.h"
#include "frontend/interrupts.h"
#include "frontend/processrunner.h"

#include <QFile>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

QByteArray consoleLine(int indent, const QString &text)
{
    QByteArray line(std::max(indent, 0), ' ');
    line.reserve(line.size() + text.size() + 1);
    for (const QChar c : text) {
        const int code = c.unicode() > 0xFF ? 0 : c.unicode();
        if (std::isprint(code))
            line += char(code);
    }
    line += '\n';
    return line;
}

QString cannotExecuteLine(const QString &program)
{
    return QStringLiteral("can't execute command \"") + program + QLatin1Char('"');
}

void Job::addLine(const QByteArray &line)
{
    Step step;
    step.line = line;
    m_steps.push_back(std::move(step));
}

void Job::addCommand(const JobCommand &command)
{
    Step step;
    step.isCommand = true;
    step.command = command;
    m_steps.push_back(std::move(step));
}

void Job::addTemporaryFiles(const QStringList &files)
{
    for (const QString &file : files) {
        if (!m_temporaryFiles.contains(file))
            m_temporaryFiles << file;
    }
}

QStringList Job::outputFiles() const
{
    QStringList files;
    for (const Step &step : m_steps) {
        for (const QString &file : step.command.outputFiles) {
            if (!files.contains(file))
                files << file;
        }
    }
    return files;
}

void Job::print(int stream, const QByteArray &bytes)
{
    if (!m_printed.empty() && m_printed.back().first == stream)
        m_printed.back().second += bytes;
    else
        m_printed.emplace_back(stream, bytes);
}

JobQueue::JobQueue(int maxRunning, std::function<void(Job &)> ended)
    : m_maxRunning(std::max(maxRunning, 1)), m_ended(std::move(ended))
{
}

JobQueue::~JobQueue()
{
    drain();
}

void JobQueue::submit(std::unique_ptr<Job> job)
{
    // What has ended already is told first, so that a failure there keeps this job from
    // starting.
    handleEvents(0);
    while (int(m_jobs.size()) >= m_maxRunning)
        handleEvents(-1);
    Job &added = *job;
    m_jobs.push_back(std::move(job));
    if (stopping())
        end(added, Job::Stopped);
    else
        advance(added);
    reportEnded();
}

void JobQueue::drain()
{
    while (!m_jobs.empty())
        handleEvents(-1);
}

int JobQueue::maxSlots()
{
    const long processors = std::max(sysconf(_SC_NPROCESSORS_ONLN), 1L);
    return int(std::min(4 * processors, long(Interrupts::maxRunningTools)));
}

bool JobQueue::stopping() const
{
    return m_failed || Interrupts::received() ||
           (buildSystem && (buildSystem->errorOccurred || buildSystem->stopRequested));
}

// Takes the job's steps in order until one of its commands runs or it ends. Built-in commands
// are carried out here, between the tools.
void JobQueue::advance(Job &job)
{
    job.m_state = Job::Running;
    while (job.m_next < job.m_steps.size()) {
        if (stopping()) {
            end(job, Job::Stopped);
            return;
        }
        Job::Step &step = job.m_steps[job.m_next++];
        if (!step.isCommand) {
            job.print(1, step.line);
            continue;
        }
        JobCommand &command = step.command;
        job.m_running = &step;
        QString message;
        if (buildSystem &&
            buildSystem->builtinCommand(command.directory, command.arguments, message)) {
            if (!message.isEmpty()) {
                fail(job, message);
                return;
            }
            continue;
        }
        job.m_pid = QTx::startProcess(command.arguments, command.directory, job.m_pipes, true);
        if (job.m_pid < 0)
            fail(job, cannotExecuteLine(command.arguments.value(0)));
        return;
    }
    end(job, Job::Succeeded);
}

void JobQueue::commandEnded(Job &job, int status)
{
    if (Interrupts::received()) {
        // What the interrupted command was making can't be trusted.
        for (const QString &file : job.m_running->command.outputFiles)
            QFile::remove(file);
        end(job, Job::Stopped);
        return;
    }
    if (status == 0) {
        advance(job);
        return;
    }
    // Anything but -1 is the tool's own failure, and the tool has said why.
    fail(job,
         status == -1 ? cannotExecuteLine(job.m_running->command.arguments.value(0)) : QString());
}

void JobQueue::fail(Job &job, const QString &message)
{
    if (!message.isEmpty())
        job.print(1, consoleLine(job.m_running->command.indent, message));
    m_failed = true;
    end(job, Job::Failed);
}

void JobQueue::end(Job &job, Job::State state)
{
    job.m_state = state;
    if (state == Job::Succeeded)
        return;
    for (const QString &file : job.m_temporaryFiles)
        QFile::remove(file);
}

// Waits up to `timeout` milliseconds (-1: without limit) for output of the running commands
// and takes what came; a command has ended once both its streams have.
void JobQueue::handleEvents(int timeout)
{
    std::vector<pollfd> fds;
    std::vector<std::pair<Job *, int>> owners;
    for (const std::unique_ptr<Job> &job : m_jobs) {
        for (int stream = 0; stream < 2; ++stream) {
            if (job->m_pipes[stream] >= 0) {
                fds.push_back({job->m_pipes[stream], POLLIN, 0});
                owners.emplace_back(job.get(), stream);
            }
        }
    }
    // An interrupt ends the wait early; its handler has already passed it on to the tools,
    // whose streams then end.
    if (!fds.empty() && poll(fds.data(), nfds_t(fds.size()), timeout) > 0) {
        for (size_t i = 0; i < fds.size(); ++i) {
            if (fds[i].revents != 0)
                readOutput(*owners[i].first, owners[i].second);
        }
    }
    for (const std::unique_ptr<Job> &job : m_jobs) {
        if (job->m_pid > 0 && job->m_pipes[0] < 0 && job->m_pipes[1] < 0) {
            const pid_t pid = job->m_pid;
            job->m_pid = -1;
            commandEnded(*job, QTx::finishProcess(pid));
        }
    }
    reportEnded();
}

void JobQueue::readOutput(Job &job, int stream)
{
    char buffer[65536];
    const ssize_t count = read(job.m_pipes[stream], buffer, sizeof buffer);
    if (count > 0) {
        job.print(stream + 1, QByteArray(buffer, qsizetype(count)));
        return;
    }
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    close(job.m_pipes[stream]);
    job.m_pipes[stream] = -1;
}

// Tells of the jobs that have ended, in the order they were handed over, and lets them go.
void JobQueue::reportEnded()
{
    for (auto it = m_jobs.begin(); it != m_jobs.end();) {
        if ((*it)->m_state == Job::Running) {
            ++it;
            continue;
        }
        const std::unique_ptr<Job> job = std::move(*it);
        it = m_jobs.erase(it);
        m_ended(*job);
    }
}
