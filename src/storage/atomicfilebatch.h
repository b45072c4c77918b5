#pragma once

#include "core/result.h"
#include "storage/filestatus.h"
#include "storage/saveoutcome.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace fb::app {

// What a batch expects to find at a target just before it replaces or removes it.
struct TargetExpectation
{
    // The status the target had when the caller read it; nothing when no file may be there.
    std::optional<FileStatus> status;
    // The SHA-1 of the bytes the caller read, empty when there was no file. The journal keeps
    // it so that, after a crash, a target another program changed meanwhile is left alone.
    QByteArray sha1;
};

// Replaces and removes many files as one change. Every new content goes to a temporary file
// beside its target, all of them reach the disk together, and only then are targets replaced
// (renamed over) or removed. Just before that, every target is checked against what the caller
// read: if another program wrote, created or removed one in the meantime, nothing is replaced
// and the commit is refused.
//
// A crash during the renames would leave some files new and some old. So when a batch holds more
// than one operation it first records them in an intent journal in the project folder, and
// recoverInterruptedBatch() finishes the batch at the next open: a change of several files is
// all or nothing across a crash. Flushing the files together rather than one by one is what
// makes a save of thousands of files cost a fraction of a second.
class AtomicFileBatch
{
public:
    AtomicFileBatch() = default;
    ~AtomicFileBatch();

    AtomicFileBatch(const AtomicFileBatch &) = delete;
    AtomicFileBatch &operator=(const AtomicFileBatch &) = delete;

    // Writes the bytes to a temporary file beside path: "Cannot write file: %1" when it cannot
    // be created, "Failed to write file: %1" when writing fails. Without an expectation the
    // target is replaced whatever is there.
    Result<void> stage(const QString &path, const QByteArray &bytes,
                       const std::optional<TargetExpectation> &expected = std::nullopt);
    // Removes path at the commit, provided it is still what the caller read.
    void stageRemoval(const QString &path, const TargetExpectation &expected);

    // Flushes the staged files, checks every target and carries out the operations in staging
    // order. When the batch holds more than one operation and journalFolder is given, the
    // operations are journalled there first. A target that is no longer what the caller read
    // refuses the whole commit, naming it; a rename or removal that fails ends it with "Failed to
    // write file: %1", after completedCount() operations were carried out.
    SaveOutcome commit(const QString &journalFolder = QString());

    qsizetype size() const { return m_operations.size(); }
    qsizetype completedCount() const { return m_completed; }

private:
    struct Operation
    {
        QString target;
        // Empty for a removal.
        QString temporary;
        std::optional<TargetExpectation> expected;
    };
    void discard();
    Result<QString> writeJournal(const QString &journalFolder) const;
    std::optional<QString> firstConflict() const;

    QList<Operation> m_operations;
    qsizetype m_completed = 0;
};

// Removes the temporary files a batch of a process that no longer runs left in the folder and
// its direct subfolders (a crash before the renames); they hold nothing the project needs.
void removeAbandonedTemporaries(const QString &folder);

// Finishes a batch that a crash interrupted, as its journal in the folder records it: each
// staged file still waiting is renamed over its target and each removal carried out, unless
// another program changed that target since (its work is kept, the staged file dropped). Does
// nothing when there is no journal or its process still runs. Run it before reading the folder.
void recoverInterruptedBatch(const QString &folder);

// The SHA-1 of bytes, as the journal records them.
QByteArray journalDigest(const QByteArray &bytes);

} // namespace fb::app
