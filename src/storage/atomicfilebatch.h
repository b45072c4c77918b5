#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace fb::app {

// Replaces many files at once, each one atomically: every new content goes to a temporary file
// beside its target, all of them reach the disk together, and only then are they renamed over
// their targets. A crash leaves each file either old or new, never half-written, and a failure
// before the renames leaves every target as it was. Flushing the files together rather than one
// by one is what makes a save of thousands of files (a replacement across the manuscript) cost
// a fraction of a second instead of seconds.
class AtomicFileBatch
{
public:
    AtomicFileBatch() = default;
    ~AtomicFileBatch();

    AtomicFileBatch(const AtomicFileBatch &) = delete;
    AtomicFileBatch &operator=(const AtomicFileBatch &) = delete;

    // Writes the bytes to a temporary file beside path: "Cannot write file: %1" when it cannot
    // be created, "Failed to write file: %1" when writing fails.
    Result<void> stage(const QString &path, const QByteArray &bytes);
    // Flushes every staged file to disk and renames each over its target, in staging order;
    // "Failed to write file: %1" names the first target that could not be replaced.
    Result<void> commit();

    qsizetype size() const { return m_staged.size(); }

private:
    struct Staged
    {
        QString target;
        QString temporary;
    };
    void discard();

    QList<Staged> m_staged;
};

// Removes the temporary files a batch of a process that no longer runs left in the folder and
// its direct subfolders (a crash before the renames); they hold nothing the project needs.
void removeAbandonedTemporaries(const QString &folder);

} // namespace fb::app
