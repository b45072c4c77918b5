#include "storage/workspace.h"

#include "core/commands/undohistory.h"
#include "core/project.h"
#include "storage/atomicfilebatch.h"
#include "storage/bundlefile.h"
#include "storage/foldersnapshot.h"
#include "storage/projectfolder.h"
#include "storage/storagemessages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// How long a call waits for another server on the same project to finish its call.
constexpr std::chrono::seconds lockPatience{30};

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

} // namespace

Workspace::Workspace()
    : m_undo(std::make_unique<core::UndoHistory>())
    , m_writer(std::make_unique<ProjectFolderWriter>())
    , m_snapshot(std::make_unique<FolderSnapshot>())
{}

Workspace::~Workspace() = default;

QString Workspace::displayPath() const
{
    return isBundle() ? m_bundlePath : m_folder;
}

Result<ProjectLock::Hold> Workspace::lockForCall()
{
    if (!m_lock)
        return ProjectLock::Hold();
    return m_lock->acquire(lockPatience);
}

Result<void> Workspace::loadProject()
{
    ProjectFiles files;
    Result<std::unique_ptr<core::Project>> loaded = readSnapshotted(files);
    if (!loaded)
        return makeError(loaded.error());
    m_project = std::move(loaded).value();
    m_writer->assumeOnDisk(*m_project, files);
    loadLibraries();
    return {};
}

Result<std::unique_ptr<core::Project>> Workspace::readSnapshotted(ProjectFiles &files)
{
    // A save that a crash interrupted is finished first, and only then are the temporary files
    // of dead processes cleared: the journal may still need some of them.
    recoverInterruptedBatch(m_folder);
    removeAbandonedTemporaries(m_folder);
    // A bundle's outside changes show on the bundle file itself; only a folder project needs
    // its files watched.
    if (isBundle())
        return readProjectFolder(m_folder, {}, &files);
    // The snapshot of what is on disk comes from the same reading as the model, so the project
    // is read once.
    m_snapshot->beginTake(m_folder);
    Result<std::unique_ptr<core::Project>> loaded = readProjectFolder(
        m_folder,
        [this](const QString &path, const QByteArray &bytes) {
            m_snapshot->noteContents(path, bytes);
        },
        &files);
    m_snapshot->finishTake(m_folder);
    return loaded;
}

void Workspace::loadLibraries()
{
    m_libraries.clear();
    // A relative library path is taken from where the project lives: the folder of a folder
    // project, the folder beside a bundle.
    const QDir base = isBundle() ? QFileInfo(m_bundlePath).dir() : QDir(m_folder);
    for (const core::Mount &mount : m_project->mounts()) {
        const QString path = QDir::cleanPath(base.absoluteFilePath(mount.path));
        // Library content is told apart by its name, so a library always has one.
        const QString name = mount.name.trimmed().isEmpty() ? QFileInfo(path).fileName()
                                                            : mount.name;
        MountedLibrary library{name, mount.path, mount.writable, nullptr, QString()};
        if (!QFileInfo::exists(QDir(path).filePath(u"project.json"_s))) {
            library.loadError = u"The library folder is missing or is not a project: %1"_s.arg(
                native(path));
        } else if (Result<std::unique_ptr<core::Project>> loaded = readProjectFolder(path); loaded) {
            library.project = std::move(loaded).value();
        } else {
            library.loadError = loaded.error();
        }
        m_libraries.push_back(std::move(library));
    }
}

Result<std::unique_ptr<Workspace>> Workspace::openFolder(const QString &path)
{
    if (path.endsWith(u".fablery"_s, Qt::CaseInsensitive))
        return openBundle(path, StoragePaths::forBundle(path, u"workingcopies"_s));

    QFileInfo info(path);
    // The project file itself names its folder.
    if (info.isFile() && info.fileName() == u"project.json")
        info = QFileInfo(info.absolutePath());
    if (info.exists() && !info.isDir())
        return makeError(
            u"The project path is a file, not a project folder: %1"_s.arg(native(path)));
    if (!info.isDir())
        return makeError(u"The project folder does not exist: %1"_s.arg(native(path)));
    const QString folder = QDir::cleanPath(info.absoluteFilePath());
    const QString projectFile = QDir(folder).filePath(u"project.json"_s);
    if (!QFileInfo::exists(projectFile)) {
        return makeError(
            u"The folder is not an Fablery project (no project.json): %1"_s.arg(native(folder)));
    }
    if (!QFile(projectFile).open(QIODevice::ReadOnly))
        return makeError(u"Could not read a project file: %1"_s.arg(native(projectFile)));

    std::unique_ptr<Workspace> workspace(new Workspace);
    workspace->m_folder = folder;
    workspace->m_lock = std::make_unique<ProjectLock>(ProjectLock::lockFileFor(workspace->m_folder));
    const Result<ProjectLock::Hold> held = workspace->m_lock->acquire(lockPatience);
    if (!held)
        return makeError(held.error());
    if (const Result<void> loaded = workspace->loadProject(); !loaded)
        return makeError(loaded.error());
    return workspace;
}

std::optional<QString> Workspace::firstReadOnlyPath() const
{
    QStringList paths;
    if (isBundle()) {
        paths = {QFileInfo(m_bundlePath).absolutePath(), m_bundlePath};
    } else {
        const QDir root(m_folder);
        paths = {m_folder, root.filePath(u"objects"_s), root.filePath(u"taxonomy"_s),
                 root.filePath(u"project.json"_s)};
    }
    for (const QString &path : std::as_const(paths)) {
        if (isReadOnly(path))
            return path;
    }
    return std::nullopt;
}

Result<void> Workspace::checkWritable() const
{
    if (!m_unreadableReason.isEmpty())
        return makeError(projectUnreadableMessage(m_unreadableReason));
    if (const std::optional<QString> readOnly = firstReadOnlyPath())
        return makeError(projectReadOnlyMessage(*readOnly));
    return {};
}

SaveOutcome Workspace::save()
{
    if (m_folder.isEmpty())
        return SaveOutcome::failed(u"This project has no save location yet; use saveAs()."_s);
    if (const Result<void> writable = checkWritable(); !writable)
        return SaveOutcome::refused(writable.error());
    const Result<FolderWritePlan> plan = m_writer->plan(m_folder, *m_project);
    if (!plan) {
        m_mustReload = true;
        return SaveOutcome::refused(plan.error());
    }
    SaveOutcome outcome = isBundle() ? saveBundle(*plan) : saveFolder(*plan);
    if (outcome.isRefused())
        m_mustReload = true;
    if (outcome.isSaved())
        m_undo->markSaved();
    return outcome;
}

SaveOutcome Workspace::saveFolder(const FolderWritePlan &plan)
{
    FolderWriteReport done;
    SaveOutcome outcome = m_writer->commit(m_folder, plan, true, &done);
    m_snapshot->update(m_folder, done);
    return outcome;
}

bool Workspace::hasExternalChange()
{
    if (m_folder.isEmpty())
        return false;
    if (m_mustReload)
        return true;
    if (isBundle())
        return fileStatus(m_bundlePath) != m_bundleStatus;
    return m_snapshot->hasChanged(m_folder);
}

Result<void> Workspace::reload()
{
    if (m_folder.isEmpty())
        return makeError(u"This project has no save location to reload from."_s);
    m_mustReload = false;
    if (isBundle()) {
        if (const Result<void> refreshed = refreshWorkingCopy(); !refreshed)
            return refreshed;
    }

    ProjectFiles files;
    Result<std::unique_ptr<core::Project>> loaded = readSnapshotted(files);
    if (!loaded) {
        // The old model stays readable; changes wait until the project reads again.
        m_unreadableReason = loaded.error();
        return makeError(loaded.error());
    }
    m_unreadableReason.clear();
    m_undo->clear();
    m_project = std::move(loaded).value();
    m_writer->assumeOnDisk(*m_project, files);
    loadLibraries();
    return {};
}

} // namespace fb::app
