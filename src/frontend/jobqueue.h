#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

/// `text` as the console prints it at `indent`: that many spaces, the printable characters of
/// the first 256 (tabs and line ends inside dropped), and a newline.
QByteArray consoleLine(int indent, const QString &text);

/// The line that says `program` could not be run: not started, killed, or ended with 255.
QString cannotExecuteLine(const QString &program);

/// One command of a job.
struct JobCommand
{
    QString directory;       ///< where it runs; null for the program's own directory
    QStringList arguments;   ///< element 0 is the program
    QStringList outputFiles; ///< what it makes; removed when it is interrupted
    int indent = 0;          ///< the depth of the lines it prints of its own
};

/// Commands that run one after another, such as the compile, assembly and removal of one file,
/// with the console lines that go with them. What they print is held until the job ends.
class Job
{
public:
    /// Where a job stands.
    enum State {
        Waiting,   ///< not started yet
        Running,   ///< one of its commands runs
        Succeeded, ///< every command ran and succeeded
        Failed,    ///< a command failed; the rest did not run
        Stopped    ///< cut short, or never started, by a failure elsewhere or an interrupt
    };

    /// Adds a line, made by consoleLine, to be printed when the job gets there.
    void addLine(const QByteArray &line);
    /// Adds a command to run after everything added so far.
    void addCommand(const JobCommand &command);
    /// Adds scratch files of the sequence: removed when the job does not succeed, since the
    /// command that removes them may not run.
    void addTemporaryFiles(const QStringList &files);

    State state() const { return m_state; }
    /// The files its commands make.
    QStringList outputFiles() const;
    /// What the job printed, in order, each piece with the stream it is for: 1 for the
    /// console's lines and the tools' stdout, 2 for the tools' stderr.
    const std::vector<std::pair<int, QByteArray>> &printed() const { return m_printed; }

private:
    friend class JobQueue;

    /// A line to print, or a command to run.
    struct Step
    {
        QByteArray line;
        bool isCommand = false;
        JobCommand command;
    };

    void print(int stream, const QByteArray &bytes);

    std::vector<Step> m_steps;
    QStringList m_temporaryFiles;
    std::vector<std::pair<int, QByteArray>> m_printed;
    State m_state = Waiting;
    size_t m_next = 0; ///< the step to take next
    const Step *m_running = nullptr;
    pid_t m_pid = -1;
    int m_pipes[2] = {-1, -1}; ///< the running command's stdout and stderr, -1 once at their end
};

/// Runs jobs, several at once, each one's commands in order, and tells of each job as it ends.
/// A job handed over after a failure or an interrupt is not started, and no job starts another
/// command then: the commands that run finish, and their jobs end there.
class JobQueue
{
public:
    /// Runs up to `maxRunning` jobs at once; `ended` is called with every job handed over, once, as
    /// it ends.
    JobQueue(int maxRunning, std::function<void(Job &)> ended);
    /// Waits for the jobs that still run.
    ~JobQueue();
    Q_DISABLE_COPY(JobQueue)

    /// Starts `job` as soon as fewer than `maxRunning` jobs run, waiting for one to end if need be.
    void submit(std::unique_ptr<Job> job);
    /// Returns once every job handed over has ended.
    void drain();

    /// The most jobs worth running at once here: four for each processor, at most 256.
    static int maxSlots();

private:
    bool stopping() const;
    void advance(Job &job);
    void commandEnded(Job &job, int status);
    void fail(Job &job, const QString &message);
    void end(Job &job, Job::State state);
    void handleEvents(int timeout);
    void readOutput(Job &job, int stream);
    void reportEnded();

    int m_maxRunning;
    std::function<void(Job &)> m_ended;
    std::vector<std::unique_ptr<Job>> m_jobs;
    bool m_failed = false;
};
