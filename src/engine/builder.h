#pragma once

#include <QString>
#include <QStringList>

class ProjectElement;

/// The interface through which the build engine reports progress and has commands run:
/// it fills in a directory, a command and file lists, then calls doit().
class Builder
{
public:
    /// Opens a group of lines for `element`, headed by `text`.
    virtual void beginGroup(ProjectElement *element, const QString &text, bool flag) = 0;
    /// Closes the group opened last for `element`.
    virtual void endGroup(ProjectElement *element) = 0;
    /// Forgets the directory, command and environment of the last command.
    virtual void init() = 0;
    /// The working directory of the next command; null for the program's own.
    virtual void setDirectory(const QString &directory) = 0;
    /// The next command; element 0 is the program.
    virtual void setCommand(const QStringList &command) = 0;
    /// The environment of the next command.
    virtual void setEnvironment(const QStringList &environment) = 0;
    /// The files the next command makes.
    virtual void setOutputFiles(const QStringList &files) = 0;
    /// The scratch files the next command makes.
    virtual void setTemporaryFiles(const QStringList &files) = 0;
    /// Runs the command; a failure is recorded as the build system's error, not returned.
    virtual void doit() = 0;
    /// Reports a failure.
    virtual void error(const QString &text) = 0;
    /// Reports a side effect, such as a removal.
    virtual void note(const QString &text);
    /// Reports that something is up to date.
    virtual void success(const QString &text);
    /// Explains what the build does.
    virtual void message(const QString &text);
    /// Called while the build waits, so that an interactive host can stay responsive.
    virtual void idle();
    /// Returns once every command handed over so far has finished, its failure recorded as
    /// doit's is. Only a builder that runs commands after doit returns has anything to do.
    virtual void wait() {}
    virtual ~Builder();

    /// `command` as one display string, with the program as a native path and words
    /// holding spaces in double quotes.
    static QString commandLine(const QStringList &command);
};
