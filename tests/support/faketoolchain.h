#pragma once

#include "support/testsupport.h"

#include <QList>
#include <QString>
#include <QStringList>

/// An installation whose tools (cc1, cc1plus, as, ld, ar, objcopy under gcc/bin) are shell
/// scripts that append their name and arguments to a log, make the files they are asked to
/// make (after "-o", "-MD", "-Map"; the archive or image named second for ar and objcopy),
/// and fail when their name is in $FAKE_TOOL_FAIL.
class FakeToolChain
{
public:
    /// Writes the tools into `scratch` under `directory`, which becomes the installation.
    FakeToolChain(const ScratchDir &scratch, const QString &directory = QStringLiteral("bench"));
    /// The installation directory, for -BenchDir.
    QString benchDir() const { return m_benchDir; }
    /// The environment the tools need: where they log, and which fail.
    QStringList environment(const QString &failing = QString()) const;
    /// The tool runs since the last call, one line each ("cc1 -quiet … main.c -o TMP"), with
    /// the scratch directory shown as "@"; the log starts anew.
    QStringList take();

    /// One tool run with its times, in nanoseconds since the epoch.
    struct Run
    {
        qint64 start;
        qint64 end;
        QString line; ///< as take() shows it
    };
    /// The environment of `environment`, for tools that each take `delay` seconds and log when
    /// they start and end.
    QStringList timedEnvironment(const QString &failing, const QString &delay) const;
    /// The timed runs since the last call, in the order they ended; the log starts anew.
    QList<Run> takeRuns();

private:
    QStringList takeLog(const QString &name);

    const ScratchDir &m_scratch;
    QString m_benchDir;
};
