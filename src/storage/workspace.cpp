#include "storage/workspace.h"

#include "core/commands/undohistory.h"
#include "core/project.h"
#include "storage/atomicfilebatch.h"
#include "storage/backup.h"
#include "storage/folderarchive.h"
#include "storage/folderimage.h"
#include "storage/foldersnapshot.h"
#include "storage/projectfolder.h"
#include "storage/sha256.h"
#include "storage/zip/zipreader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace fb::app {

namespace {

constexpr int staleCopyBackupRetention = 15;

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

Result<QByteArray> readWholeFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return makeError(file.errorString());
    return file.readAll();
}

bool isProjectArchive(const QByteArray &bytes)
{
    const auto directory = readZipDirectory(bytes);
    return directory && std::any_of(directory->cbegin(), directory->cend(), [](const auto &entry) {
               return entry.name == u"project.json";
           });
}

// Writes bytes over a file through an atomic save file, so a crash leaves the old or the new
// file, never half of one.
bool writeAtomically(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

enum class WorkingCopyState { None, Clean, Dirty, Unreadable };

struct WorkingCopy
{
    WorkingCopyState state = WorkingCopyState::None;
    // What the working copy holds, when it could be read, and those files packed as a save
    // would pack them.
    std::optional<FolderImage> image;
    QByteArray packed;
};

WorkingCopy classifyWorkingCopy(const QString &folder, const QByteArray &bundleBytes)
{
    const QDir dir(folder);
    if (!dir.exists() || dir.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
        return {};
    Result<FolderImage> image = FolderImage::read(folder);
    if (!image)
        return {WorkingCopyState::Unreadable, std::nullopt, {}};
    QByteArray packed = image->pack();
    const WorkingCopyState state =
        packed == bundleBytes ? WorkingCopyState::Clean : WorkingCopyState::Dirty;
    return {state, std::move(image).value(), std::move(packed)};
}

QString markerBundleHash(const QString &markerPath)
{
    QFile file(markerPath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll())
        .object()
        .value(QStringLiteral("bundleSha256"))
        .toString();
}

} // namespace

Workspace::Workspace()
    : m_undo(std::make_unique<core::UndoHistory>())
    , m_writer(std::make_unique<ProjectFolderWriter>())
    , m_snapshot(std::make_unique<FolderSnapshot>())
{
}

Workspace::~Workspace() = default;

QString Workspace::displayPath() const
{
    return m_bundlePath.isEmpty() ? m_folder : m_bundlePath;
}

Result<void> Workspace::loadFromFolder()
{
    Result<std::unique_ptr<core::Project>> loaded = readSnapshotted();
    if (!loaded)
        return makeError(loaded.error());
    m_project = std::move(loaded).value();
    m_writer->assumeOnDisk(*m_project);
    loadLibraries();
    return {};
}

Result<std::unique_ptr<core::Project>> Workspace::readSnapshotted()
{
    removeAbandonedTemporaries(m_folder);
    // A bundle's outside changes show on the bundle file itself; only a folder project needs
    // its files watched.
    if (!m_bundlePath.isEmpty())
        return readProjectFolder(m_folder);
    // The snapshot of what is on disk comes from the same reading as the model, so the project
    // is read once.
    m_snapshot->beginTake(m_folder);
    Result<std::unique_ptr<core::Project>> loaded =
        readProjectFolder(m_folder, [this](const QString &path, const QByteArray &bytes) {
            m_snapshot->noteContents(path, bytes);
        });
    m_snapshot->finishTake(m_folder);
    return loaded;
}

void Workspace::loadLibraries()
{
    m_libraries.clear();
    // A relative library path is taken from where the project lives: the folder of a folder
    // project, the folder beside a bundle.
    const QDir base = m_bundlePath.isEmpty() ? QDir(m_folder) : QFileInfo(m_bundlePath).dir();
    for (const core::Mount &mount : m_project->mounts()) {
        const QString path = QDir::cleanPath(base.absoluteFilePath(mount.path));
        // Library content is told apart by its name, so a library always has one.
        const QString name = mount.name.trimmed().isEmpty() ? QFileInfo(path).fileName() : mount.name;
        MountedLibrary library{name, mount.path, mount.writable, nullptr, QString()};
        if (!QFileInfo::exists(QDir(path).filePath(QStringLiteral("project.json")))) {
            library.loadError =
                QStringLiteral("The library folder is missing or is not a project: %1").arg(native(path));
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
    if (path.endsWith(QStringLiteral(".fablery"), Qt::CaseInsensitive))
        return openBundle(path, StoragePaths::forBundle(path, QStringLiteral("workingcopies")));

    const QFileInfo info(path);
    if (!info.isDir())
        return makeError(QStringLiteral("The project folder does not exist: %1").arg(native(path)));
    const QString projectFile = QDir(path).filePath(QStringLiteral("project.json"));
    if (!QFileInfo::exists(projectFile)) {
        return makeError(QStringLiteral("The folder is not an Fablery project (no project.json): %1")
                             .arg(native(path)));
    }
    if (!QFile(projectFile).open(QIODevice::ReadOnly))
        return makeError(QStringLiteral("Could not read a project file: %1").arg(native(projectFile)));

    std::unique_ptr<Workspace> workspace(new Workspace);
    workspace->m_folder = info.absoluteFilePath();
    const Result<void> loaded = workspace->loadFromFolder();
    if (!loaded)
        return makeError(loaded.error());
    return workspace;
}

Result<std::unique_ptr<Workspace>> Workspace::openBundle(const QString &bundlePath,
                                                         const StoragePaths &paths)
{
    const QString absoluteBundle = QFileInfo(bundlePath).absoluteFilePath();
    const Result<QByteArray> bytes = readWholeFile(absoluteBundle);
    if (!bytes)
        return makeError(QStringLiteral("Could not open the project file: %1").arg(native(bundlePath)));
    if (!isProjectArchive(*bytes))
        return makeError(QStringLiteral("Not a valid Fablery project file: %1").arg(native(bundlePath)));

    std::unique_ptr<Workspace> workspace(new Workspace);
    const QString copyName = workingCopyName(absoluteBundle);
    workspace->m_bundlePath = absoluteBundle;
    workspace->m_folder = QDir(paths.workingCopiesFolder).filePath(copyName);
    workspace->m_markerPath =
        QDir(paths.workingCopiesFolder).filePath(copyName + QStringLiteral(".json"));
    const QString &folder = workspace->m_folder;

    // A save interrupted before its renames leaves temporary files that are no part of the
    // project; they must not make the working copy look edited.
    if (QFileInfo(folder).isDir())
        removeAbandonedTemporaries(folder);
    WorkingCopy copy = classifyWorkingCopy(folder, *bytes);
    const bool bundleUnchanged = markerBundleHash(workspace->m_markerPath) == sha256Hex(*bytes);
    QByteArray bundleOnDisk = *bytes;

    if (copy.state == WorkingCopyState::Dirty && bundleUnchanged) {
        // The working copy holds edits that never reached the bundle: a save was interrupted
        // between the folder and the bundle. Finish it.
        if (!writeAtomically(absoluteBundle, copy.packed)) {
            return makeError(QStringLiteral("Could not restore unsaved changes into the project file: %1")
                                 .arg(native(bundlePath)));
        }
        bundleOnDisk = copy.packed;
    } else if (copy.state != WorkingCopyState::Clean) {
        if (copy.state != WorkingCopyState::None) {
            // The bundle moved on without this copy: keep the copy as a backup, then start afresh.
            writeBackup(folder, paths.backupFolder, QFileInfo(absoluteBundle).completeBaseName(),
                        paths.timeStamp, staleCopyBackupRetention);
            if (!QDir(folder).removeRecursively())
                return makeError(QStringLiteral("Could not clear the stale working copy: %1").arg(native(folder)));
        }
        if (const Result<void> extracted = extractArchive(*bytes, folder); !extracted)
            return makeError(extracted.error());
        copy.image.reset();
    }
    workspace->m_image = std::move(copy.image);

    if (const Result<void> marked = workspace->writeMarker(bundleOnDisk); !marked)
        return makeError(marked.error());
    if (const Result<void> loaded = workspace->loadFromFolder(); !loaded)
        return makeError(loaded.error());
    workspace->recordBundleStatus();
    return workspace;
}

Result<void> Workspace::writeMarker(const QByteArray &bundleBytes)
{
    const QJsonObject marker{{QStringLiteral("bundlePath"), m_bundlePath},
                             {QStringLiteral("bundleSha256"), sha256Hex(bundleBytes)}};
    QDir().mkpath(QFileInfo(m_markerPath).path());
    if (!writeAtomically(m_markerPath, QJsonDocument(marker).toJson(QJsonDocument::Indented)))
        return makeError(QStringLiteral("Could not write a project file: %1").arg(native(m_markerPath)));
    return {};
}

void Workspace::recordBundleStatus()
{
    const QFileInfo info(m_bundlePath);
    m_bundleSize = info.size();
    m_bundleModified = info.lastModified();
}

Result<void> Workspace::writeBundle(const FolderWriteReport &written)
{
    // The image of the working copy takes in what the save wrote; only when it is missing
    // (the working copy could not be read when it was opened) is the whole folder read again.
    if (m_image)
        m_image->apply(written);
    else if (Result<FolderImage> image = FolderImage::read(m_folder); image)
        m_image = std::move(image).value();
    const Result<QByteArray> packed =
        m_image ? Result<QByteArray>(m_image->pack()) : Result<QByteArray>(Error{QString()});
    if (!packed)
        return makeError(QStringLiteral("Could not write the project file: %1").arg(native(m_bundlePath)));
    if (!QDir().mkpath(QFileInfo(m_bundlePath).path()))
        return makeError(QStringLiteral("Could not create the folder for: %1").arg(native(m_bundlePath)));
    if (!writeAtomically(m_bundlePath, *packed))
        return makeError(QStringLiteral("Could not write the project file: %1").arg(native(m_bundlePath)));
    if (const Result<void> marked = writeMarker(*packed); !marked)
        return marked;
    recordBundleStatus();
    return {};
}

Result<void> Workspace::save()
{
    if (m_folder.isEmpty())
        return makeError(QStringLiteral("This project has no save location yet; use saveAs()."));
    const Result<FolderWriteReport> written = m_writer->write(m_folder, *m_project);
    if (!written)
        return makeError(written.error());
    if (m_bundlePath.isEmpty())
        m_snapshot->update(m_folder, *written);
    if (!m_bundlePath.isEmpty()) {
        if (const Result<void> bundled = writeBundle(*written); !bundled)
            return bundled;
    }
    m_undo->markSaved();
    return {};
}

bool Workspace::hasExternalChange()
{
    if (m_folder.isEmpty())
        return false;
    if (m_bundlePath.isEmpty())
        return m_snapshot->hasChanged(m_folder);
    const QFileInfo info(m_bundlePath);
    return info.size() != m_bundleSize || info.lastModified() != m_bundleModified;
}

Result<void> Workspace::reload()
{
    if (m_folder.isEmpty())
        return makeError(QStringLiteral("This project has no save location to reload from."));
    if (!m_bundlePath.isEmpty()) {
        if (const Result<void> refreshed = refreshWorkingCopy(); !refreshed)
            return refreshed;
    }

    Result<std::unique_ptr<core::Project>> loaded = readSnapshotted();
    if (!loaded) {
        // The folder no longer matches what the writer last put there.
        m_writer->forget();
        return makeError(loaded.error());
    }
    m_undo->clear();
    m_project = std::move(loaded).value();
    m_writer->assumeOnDisk(*m_project);
    loadLibraries();
    if (!m_bundlePath.isEmpty())
        recordBundleStatus();
    return {};
}

Result<void> Workspace::refreshWorkingCopy()
{
    const Result<QByteArray> bytes = readWholeFile(m_bundlePath);
    // The desktop application may be in the middle of writing the bundle; the working copy is
    // only replaced by a bundle that reads as a whole project.
    if (!bytes || !isProjectArchive(*bytes))
        return makeError(QStringLiteral("The project file is not readable right now; try again."));

    // Extract beside the working copy first and swap afterwards, so a failed extraction leaves
    // the working copy as it was.
    const QString incoming = m_folder + QStringLiteral(".incoming");
    QDir(incoming).removeRecursively();
    if (const Result<void> extracted = extractArchive(*bytes, incoming); !extracted) {
        QDir(incoming).removeRecursively();
        return extracted;
    }
    if (QDir(m_folder).exists() && !QDir(m_folder).removeRecursively()) {
        QDir(incoming).removeRecursively();
        m_writer->forget();
        return makeError(QStringLiteral("Could not refresh the project's working folder: %1")
                             .arg(native(m_folder)));
    }
    if (!QDir().rename(incoming, m_folder)) {
        m_writer->forget();
        return makeError(QStringLiteral("Could not refresh the project's working folder: %1")
                             .arg(native(m_folder)));
    }
    m_image.reset();
    return writeMarker(*bytes);
}

} // namespace fb::app
