#include "support/faketoolchain.h"

#include <QFile>
#include <QRegularExpression>

namespace {

const QByteArray fakeTool = R"(#!/bin/sh
tool=${0##*/}
[ -n "$FAKE_TOOL_TIMES" ] && start=$(date +%s%N)
echo "$tool $*" >> "$FAKE_TOOL_LOG"
prev=
for arg in "$@"; do
  case "$prev" in -o|-MD|-Map) : > "$arg" ;; esac
  prev=$arg
done
case "$tool" in ar|objcopy) : > "$2" ;; esac
[ -n "$FAKE_TOOL_DELAY" ] && sleep "$FAKE_TOOL_DELAY"
[ -n "$FAKE_TOOL_TIMES" ] && echo "$start $(date +%s%N) $tool $*" >> "$FAKE_TOOL_TIMES"
case " $FAKE_TOOL_FAIL " in *" $tool "*) exit 1 ;; esac
exit 0
)";

} // namespace

FakeToolChain::FakeToolChain(const ScratchDir &scratch, const QString &directory)
    : m_scratch(scratch), m_benchDir(scratch.file(directory))
{
    for (const char *tool : {"cc1", "cc1plus", "as", "ld", "ar", "objcopy"}) {
        const QString path =
            scratch.write(directory + QStringLiteral("/gcc/bin/") + tool, fakeTool);
        QFile::setPermissions(path, QFile::permissions(path) | QFileDevice::ExeOwner);
    }
}

QStringList FakeToolChain::environment(const QString &failing) const
{
    return {QStringLiteral("FAKE_TOOL_LOG=") + m_scratch.file(QStringLiteral("tools.log")),
            QStringLiteral("FAKE_TOOL_FAIL=") + failing};
}

QStringList FakeToolChain::timedEnvironment(const QString &failing, const QString &delay) const
{
    return environment(failing) << QStringLiteral("FAKE_TOOL_TIMES=") +
                                       m_scratch.file(QStringLiteral("times.log"))
                                << QStringLiteral("FAKE_TOOL_DELAY=") + delay;
}

QStringList FakeToolChain::take()
{
    return takeLog(QStringLiteral("tools.log"));
}

QList<FakeToolChain::Run> FakeToolChain::takeRuns()
{
    QList<Run> runs;
    for (const QString &line : takeLog(QStringLiteral("times.log")))
        runs.append({line.section(' ', 0, 0).toLongLong(), line.section(' ', 1, 1).toLongLong(),
                     line.section(' ', 2)});
    return runs;
}

QStringList FakeToolChain::takeLog(const QString &name)
{
    QString log = QString::fromLocal8Bit(m_scratch.read(name));
    QFile::remove(m_scratch.file(name));
    log.replace(m_scratch.path(), QStringLiteral("@"));
    // Scratch files have a fresh random name each run.
    log.replace(QRegularExpression(QStringLiteral("\\S*/tmp/file\\w{6}")), QStringLiteral("TMP"));
    return log.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}
