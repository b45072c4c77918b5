#pragma once

#include "core/result.h"
#include "storage/atomicfilebatch.h"
#include "storage/saveoutcome.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

namespace fb::core {
class Project;
}

namespace fb::app {

// Called with every file the reader reads: its path relative to the folder ("/" separators)
// and its bytes.
using FileReadObserver = std::function<void(const QString &relativePath, const QByteArray &bytes)>;

// Where one item of a project was read from, and a digest of the bytes read.
struct StoredFile
{
    QString relativePath;
    quint64 digest = 0;
};

// The files a project was read from, by item: what a writer needs to write each item back to
// its own file (whatever its name) and to notice that another program changed it since.
struct ProjectFiles
{
    QHash<QUuid, StoredFile> objects;
    QHash<QUuid, StoredFile> categories;
    std::optional<StoredFile> settings;
};

// Reads a project folder ("project.json", "objects", "taxonomy") into a new model. Keys the
// model does not know are kept on the objects, categories and project as preserved properties.
// Documents whose parent links form a loop are set free (see repairDocumentParentLoops), so every
// document is reachable. When `files` is given it receives where each item came from.
Result<std::unique_ptr<core::Project>> readProjectFolder(const QString &folder,
                                                         const FileReadObserver &observer = {},
                                                         ProjectFiles *files = nullptr);

// What one write put on disk, as paths relative to the project folder with "/" separators: the
// files committed with their exact bytes, and the files removed.
struct FolderWriteReport
{
    QHash<QString, QByteArray> written;
    QStringList removed;
};

// The files a write will replace, create and remove, worked out and checked before anything is
// written.
struct FolderWritePlan
{
    enum class ItemKind { Object, Category, Settings };
    struct Step
    {
        ItemKind kind = ItemKind::Object;
        QUuid id;
        quint64 revision = 0;
        QString relativePath;
        // Empty for a removal.
        std::optional<QByteArray> bytes;
        TargetExpectation expected;
    };
    QList<Step> steps;

    bool isEmpty() const { return steps.isEmpty(); }
    // What the write will have put on disk once committed.
    FolderWriteReport report() const;
};

// Writes a project into its folder, one file per object and per category and "project.json"
// last. It remembers what it last read or wrote: an item whose revision is already on disk is
// not serialised again, and a file whose bytes would not change is not rewritten.
//
// It never destroys what another program wrote. Each item goes back to the file it was read
// from. Before a file is replaced or removed, its bytes on disk are compared with what the
// writer last read or wrote there: when another program changed, created or removed it, the
// write is refused and nothing is written. And a value the reader could not understand (a title
// that is a number, a date in a form it does not know) is written back exactly as it was found,
// unless the change being saved set that value.
class ProjectFolderWriter
{
public:
    ProjectFolderWriter();
    ~ProjectFolderWriter();

    // Declares that the folder holds exactly this project as it is now, in the files it was just
    // read from, so the next write touches only what changes after this call.
    void assumeOnDisk(const core::Project &project, const ProjectFiles &files);

    // Works out what writing the project would change and checks each of those files on disk.
    // Every failure is a refusal: another program changed a file ("Another program changed
    // ..."), or a file cannot be read. Nothing is written.
    Result<FolderWritePlan> plan(const QString &folder, const core::Project &project);
    // Carries the plan out as one batch, journalled when asked and it holds more than one file,
    // and records what reached the disk, also when the batch failed part way; `done` receives it.
    SaveOutcome commit(const QString &folder, const FolderWritePlan &plan, bool journalled,
                       FolderWriteReport *done = nullptr);
    // Both steps, journalled.
    SaveOutcome write(const QString &folder, const core::Project &project,
                      FolderWriteReport *done = nullptr);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace fb::app
