#pragma once

#include "core/result.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <memory>

namespace fb::core {
class Project;
class UndoHistory;
} // namespace fb::core

namespace fb::app {

// Where a bundle's working copy and the backups live, computed before the bundle is opened.
struct StoragePaths
{
    QString workingCopiesFolder;
    QString backupFolder;
    QString timeStamp;

    static StoragePaths forBundle(const QString &bundlePath, const QString &workingCopiesName);
};

// The one open project: the model, its undo history and where it lives on disk. A bundle is
// never edited in place; the workspace works in an unpacked working copy and packs it back into
// the bundle on every save.
class Workspace
{
public:
    ~Workspace();

    static Result<std::unique_ptr<Workspace>> openFolder(const QString &path);
    static Result<std::unique_ptr<Workspace>> openBundle(const QString &bundlePath,
                                                         const StoragePaths &paths);

    Result<void> save();
    bool hasExternalChange();
    Result<void> reload();

    const QString &folder() const { return m_folder; }
    const QString &bundlePath() const { return m_bundlePath; }
    QString displayPath() const;

private:
    Workspace();

    QString m_folder;
    QString m_bundlePath;
};

} // namespace fb::app
