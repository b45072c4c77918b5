#pragma once

#include "core/result.h"
#include "storage/folderimage.h"
#include "storage/storagepaths.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace fb::core {
class Project;
class UndoHistory;
} // namespace fb::core

namespace fb::app {

class FolderSnapshot;
struct FolderWriteReport;
class ProjectFolderWriter;

// Another project attached to the open one and loaded read-only: its objects are found,
// searched and shown, marked with the library's name, but never changed by this server.
struct MountedLibrary
{
    QString name;
    QString path;
    bool writable = false;
    // Null when the library could not be loaded; the reason is then in loadError.
    std::shared_ptr<core::Project> project;
    QString loadError;
};

// The one open project: the model, its undo history and where it lives on disk. A bundle is
// never edited in place; the workspace works in an unpacked working copy and packs it back into
// the bundle on every save. Before each tool call it can tell whether another program changed
// the project on disk, and adopt that change.
class Workspace
{
public:
    ~Workspace();

    static Result<std::unique_ptr<Workspace>> openFolder(const QString &path);
    static Result<std::unique_ptr<Workspace>> openBundle(const QString &bundlePath,
                                                         const StoragePaths &paths);

    Result<void> save();
    bool hasExternalChange();
    // A reload replaces the model and clears the undo history: steps of the old model cannot be
    // undone on the new one.
    Result<void> reload();

    core::Project &project() { return *m_project; }
    const core::Project &project() const { return *m_project; }
    core::UndoHistory &undoHistory() { return *m_undo; }
    // The project's mounted libraries in their fixed order, loaded when the project is opened
    // or reloaded. A library that cannot be loaded stays in the list with its error.
    const std::vector<MountedLibrary> &libraries() const { return m_libraries; }
    const QString &folder() const { return m_folder; }
    const QString &bundlePath() const { return m_bundlePath; }
    QString displayPath() const;

private:
    Workspace();

    Result<void> loadFromFolder();
    Result<std::unique_ptr<core::Project>> readSnapshotted();
    Result<void> writeBundle(const FolderWriteReport &written);
    Result<void> refreshWorkingCopy();
    Result<void> writeMarker(const QByteArray &bundleBytes);
    void recordBundleStatus();
    void loadLibraries();

    std::unique_ptr<core::Project> m_project;
    std::unique_ptr<core::UndoHistory> m_undo;
    std::unique_ptr<ProjectFolderWriter> m_writer;
    std::unique_ptr<FolderSnapshot> m_snapshot;
    std::vector<MountedLibrary> m_libraries;
    // A bundle's working copy in memory, so a save packs only what changed.
    std::optional<FolderImage> m_image;
    QString m_folder;
    QString m_bundlePath;
    QString m_markerPath;
    qint64 m_bundleSize = -1;
    QDateTime m_bundleModified;
};

} // namespace fb::app
