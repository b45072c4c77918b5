#pragma once

#include "core/result.h"
#include "storage/filestatus.h"
#include "storage/folderimage.h"
#include "storage/projectlock.h"
#include "storage/saveoutcome.h"
#include "storage/storagepaths.h"

#include <QByteArray>
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
struct FolderWritePlan;
struct ProjectFiles;
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

// The one open project: the model, its undo history and where it lives on disk.
//
// A folder project is edited in place. A bundle is never edited in place: the workspace works
// in an unpacked working copy, and a save writes the bundle first and the working copy after
// it, so the working copy never holds anything the bundle lacks. A working copy that does not
// match its bundle is therefore never written into it: it is backed up and unpacked afresh.
//
// Other programs may change the project at any moment. Before each tool call the workspace can
// tell whether they did and adopt the change. A save writes only what changed and never
// replaces or removes a file that changed on disk since the workspace last read or wrote it:
// such a save is refused and the next call reads the project afresh. While the project on disk
// cannot be read (a file half-written by another program), the last good model stays readable
// and every change is refused, naming the file.
class Workspace
{
public:
    ~Workspace();

    // Both take the project's lock while they open it.
    static Result<std::unique_ptr<Workspace>> openFolder(const QString &path);
    static Result<std::unique_ptr<Workspace>> openBundle(const QString &bundlePath,
                                                         const StoragePaths &paths);

    // Writes what changed since the last load or save.
    SaveOutcome save();
    // Whether a change may be made now; otherwise the refusal, naming why (the project on disk
    // cannot be read, or cannot be written).
    Result<void> checkWritable() const;
    bool hasExternalChange();
    // A reload replaces the model and clears the undo history: steps of the old model cannot be
    // undone on the new one. When it fails, the old model stays and changes are refused until a
    // later reload succeeds.
    Result<void> reload();
    // The project's lock, held for the duration of one tool call.
    Result<ProjectLock::Hold> lockForCall();

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

    bool isBundle() const { return !m_bundlePath.isEmpty(); }
    Result<void> loadProject();
    Result<std::unique_ptr<core::Project>> readSnapshotted(ProjectFiles &files);
    void loadLibraries();
    std::optional<QString> firstReadOnlyPath() const;

    SaveOutcome saveFolder(const FolderWritePlan &plan);
    SaveOutcome saveBundle(const FolderWritePlan &plan);
    Result<void> openBundleWorkingCopy(const StoragePaths &paths);
    Result<void> refreshWorkingCopy();
    Result<void> writeMarker(const QString &bundleSha256Hex);

    std::unique_ptr<core::Project> m_project;
    std::unique_ptr<core::UndoHistory> m_undo;
    std::unique_ptr<ProjectFolderWriter> m_writer;
    std::unique_ptr<FolderSnapshot> m_snapshot;
    std::unique_ptr<ProjectLock> m_lock;
    std::vector<MountedLibrary> m_libraries;
    // A bundle's working copy in memory, so a save packs only what changed.
    std::optional<FolderImage> m_image;
    QString m_folder;
    QString m_bundlePath;
    QString m_markerPath;
    // The bundle file as it was when last read (even when reading it failed) or written.
    std::optional<FileStatus> m_bundleStatus;
    // Why the project on disk could not be read at the last reload; empty while it reads.
    QString m_unreadableReason;
    // A save found another program's change: the next call reads the project afresh.
    bool m_mustReload = false;
};

} // namespace fb::app
