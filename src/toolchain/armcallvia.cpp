#include "toolchain/armbuildsystem.h"

#include <QFile>
#include <QSaveFile>

namespace {

/// The registers a Thumb long call goes through, in the order their stubs are written.
const char *const callViaRegisters[] = {"fp", "ip", "lr", "r0", "r1", "r2", "r3", "r4",
                                        "r5", "r6", "r7", "r8", "r9", "sl", "sp"};
const int callViaRegisterCount = int(sizeof callViaRegisters / sizeof callViaRegisters[0]);

/// The table index of the register that `line` calls through, or -1.
int calledRegister(const QByteArray &line)
{
    static const QByteArray call("bl _call_via_");
    const QByteArray simplified = line.simplified();
    if (!simplified.startsWith(call))
        return -1;
    const QByteArray name = simplified.mid(call.size());
    for (int i = 0; i < callViaRegisterCount; ++i) {
        if (name == callViaRegisters[i])
            return i;
    }
    return -1;
}

} // namespace

void ARMBuildSystem::workaroundCallViaBug(const QString &assemblyFile)
{
    QFile in(assemblyFile);
    if (!in.open(QIODevice::ReadOnly))
        return;
    const QByteArray text = in.readAll();
    const bool readFailed = in.error() != QFileDevice::NoError;
    in.close();
    // Rewriting what could not be read would lose the compiler's output.
    if (readFailed)
        return;

    QList<QByteArray> lines;
    if (!text.isEmpty()) {
        lines = text.split('\n');
        if (text.endsWith('\n'))
            lines.removeLast();
    }
    bool used[callViaRegisterCount] = {};
    for (const QByteArray &line : std::as_const(lines)) {
        const int index = calledRegister(line);
        if (index >= 0)
            used[index] = true;
    }

    QByteArray rewritten;
    rewritten.reserve(text.size() + 64);
    for (const QByteArray &line : std::as_const(lines))
        rewritten += line + '\n';
    for (int i = 0; i < callViaRegisterCount; ++i) {
        if (!used[i])
            continue;
        const QByteArray name(callViaRegisters[i]);
        rewritten += "  .text\n  .thumb_func\n  .align 2\n_call_via_" + name + ":\n  bx " + name +
                     "\n  nop\n";
    }
    if (rewritten == text)
        return;

    // Written beside the file and renamed over it, so that a failed write leaves it whole.
    QSaveFile out(assemblyFile);
    if (!out.open(QIODevice::WriteOnly))
        return;
    out.write(rewritten);
    out.commit();
}
