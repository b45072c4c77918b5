#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace fb::core {
class Project;
}

namespace fb::app {

// Called with every file the reader reads: its path relative to the folder ("/" separators)
// and its bytes.
using FileReadObserver = std::function<void(const QString &relativePath, const QByteArray &bytes)>;

// Reads a project folder ("project.json", "objects", "taxonomy") into a new model. Keys the
// model does not know are kept on the objects, categories and project as preserved properties.
Result<std::unique_ptr<core::Project>> readProjectFolder(const QString &folder,
                                                         const FileReadObserver &observer = {});

// What one write put on disk, as paths relative to the project folder with "/" separators: the
// files committed with their exact bytes, and the files removed.
struct FolderWriteReport
{
    QHash<QString, QByteArray> written;
    QStringList removed;
};

// Writes a project into its folder, one file per object and per category and "project.json"
// last, each through an atomic save file. It remembers what is already on disk: an object,
// category or the project settings whose revision it already wrote (or that was read at that
// revision, see assumeOnDisk) is not serialised again, and a file whose bytes would not change
// is not rewritten. Files of objects and categories that left the model are removed.
class ProjectFolderWriter
{
public:
    ProjectFolderWriter();
    ~ProjectFolderWriter();

    // Declares that the folder holds exactly this project as it is now (just read or written),
    // so the next write touches only what changes after this call.
    void assumeOnDisk(const core::Project &project);
    // Forgets everything, so the next write writes every file and sweeps the folders.
    void forget();

    Result<FolderWriteReport> write(const QString &folder, const core::Project &project);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace fb::app
