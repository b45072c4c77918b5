#pragma once

#include "core/result.h"
#include "storage/filestatus.h"
#include "storage/saveoutcome.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QIODevice;

namespace fb::app {

// A bundle file opened for reading, with the status of the very file opened, so a later check
// can tell whether another program saved the bundle since. Its archive is read from the file
// piece by piece, never whole: a bundle may hold large media.
struct OpenedBundle
{
    std::unique_ptr<QFile> file;
    FileStatus status;
};

// Fails with a sentence for logs when the bundle cannot be opened.
Result<OpenedBundle> openBundleFile(const QString &bundlePath);

// The SHA-256 of a file's whole content as lower-case hexadecimal, read in pieces.
QString sha256HexOf(QFile &file);

// Writes a new bundle: `produce` writes the bytes into a hidden temporary file beside the bundle,
// which is flushed to disk and renamed over the bundle only if the bundle is still the file
// `expected` describes (nothing when no file may be there). Another program's save since is
// refused with a sentence naming the bundle, and nothing is replaced. On success `written`
// receives the status of the new bundle.
SaveOutcome writeBundleFile(const QString &bundlePath,
                            const std::function<bool(QIODevice &out)> &produce,
                            const std::optional<FileStatus> &expected, FileStatus *written);

// Removes hidden temporaries that writers of processes no longer running left beside a bundle.
void removeAbandonedBundleTemporaries(const QString &bundlePath);

// Whether the user or the system keeps this file or folder from being written (no write
// permission, a read-only file system, or no write bit at all, which even an administrator's
// process takes as the writer's intent).
bool isReadOnly(const QString &path);

} // namespace fb::app
