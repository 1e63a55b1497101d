#include "engine/package.h"

#include "archive/archive2.h"
#include "engine/builder.h"
#include "foundation/qtx.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

#include <cstdio>
#include <memory>

namespace {

std::string encoded(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

/// Opens the archive inside the package `archive`, decompressed to `decompressed`. A package
/// that is missing, not in the compressed format, or whose archive is damaged in any way
/// gives an archive with no members: nothing of it is copied on.
void openPackage(const QString &archive, const QString &decompressed, Archive2 &contents)
{
    const std::string name = encoded(decompressed);
    FILE *file =
        QTx::decompressFile(archive, decompressed) ? std::fopen(name.c_str(), "rb") : nullptr;
    if (contents.open(file, name.c_str()) != 0 || !contents.dataWithinFile())
        contents.open(nullptr, name.c_str());
}

QString memberText(const QString &archive, const QString &member)
{
    return archive + QLatin1Char('(') + member + QLatin1Char(')');
}

QString addingLine(const QString &input, const QString &archive, const QString &member)
{
    return QStringLiteral("adding ") + input + QStringLiteral(" to ") +
           memberText(archive, member) + QLatin1Char('.');
}

} // namespace

void addToRemoveFromArchive(const QString &archive, const QString &member, const QString &input,
                            Builder *builder, bool quiet, bool force, bool dryRun)
{
    // A dry run reads the package through a scratch copy outside the project.
    std::unique_ptr<QTemporaryDir> scratch;
    if (dryRun) {
        scratch = std::make_unique<QTemporaryDir>();
        if (!scratch->isValid())
            return;
    }
    const QString decompressed = dryRun ? scratch->filePath(QStringLiteral("package"))
                                        : archive + QStringLiteral(".decompressed");
    Archive2 current;
    openPackage(archive, decompressed, current);
    const std::string memberName = member.toUtf8().toStdString();
    const std::string inputName = encoded(input);

    if (!force) {
        const ArchiveChunk2 *found = current.findMember(memberName.c_str());
        if (found && found->time != 0) {
            struct stat status;
            const long inputTime = stat(inputName.c_str(), &status) == 0 ? status.st_mtime : 0;
            if (inputTime <= found->time) {
                if (!quiet && builder)
                    builder->success(QLatin1Char('\'') + memberText(archive, member) +
                                     QStringLiteral("' is up to date."));
                // The decompressed copy stays behind; the next run overwrites it.
                current.close();
                return;
            }
            if (!quiet && builder)
                builder->message(input + QStringLiteral(" is newer than ") +
                                 memberText(archive, member) + QLatin1Char('.'));
        } else if (!quiet && builder) {
            builder->message(memberText(archive, member) + QStringLiteral(" does not exist."));
        }
    }

    Archive2 updated;
    updated.open(nullptr, nullptr);
    for (const ArchiveChunk2 &chunk : current.members()) {
        if (chunk.name != memberName)
            updated.addMember(chunk.source, chunk.name, chunk.offset, chunk.size, chunk.writable,
                              chunk.time);
    }
    if (!input.isEmpty() && dryRun) {
        // The copy a dry run did not make would be added.
        if (builder)
            builder->message(addingLine(input, archive, member));
        return;
    }
    if (!input.isEmpty()) {
        FILE *source = std::fopen(inputName.c_str(), "rb");
        if (!source)
            return;
        struct stat status;
        const bool known =
            std::fseek(source, 0, SEEK_END) == 0 && fstat(fileno(source), &status) == 0;
        const long size = std::ftell(source);
        std::fclose(source);
        if (!known || size < 0)
            return;
        updated.addMember(inputName, memberName, 0, size, (status.st_mode & S_IWUSR) != 0,
                          status.st_mtime);
        if (builder)
            builder->message(addingLine(input, archive, member));
    } else if (builder) {
        builder->message(QStringLiteral("removing ") + memberText(archive, member) +
                         QLatin1Char('.'));
    }
    if (dryRun)
        return;

    const QString tmp = QStringLiteral("tmp");
    // A stale "tmp" that can't be replaced must not end up as the package.
    QFile::remove(tmp);
    const bool written = updated.write("tmp") == 0 && QFile::exists(tmp);
    updated.close();
    current.remove();
    // A write that failed halfway leaves the package as it was rather than damaged.
    if (written)
        QTx::compressFile(tmp, archive);
    QFile::remove(tmp);
}
