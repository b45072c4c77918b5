// The workspace's handling of bundles: the working copy, the marker beside it, and saves that
// write the bundle before the working copy.

#include "core/project.h"
#include "storage/backup.h"
#include "storage/bundlefile.h"
#include "storage/folderarchive.h"
#include "storage/projectfolder.h"
#include "storage/sha256.h"
#include "storage/workspace.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipsource.h"
#include "storage/zip/zipwriter.h"

#include <QDir>
#include <QFileInfo>
#include <QIODevice>
#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

constexpr int staleCopyBackupRetention = 15;
constexpr std::chrono::seconds lockPatience{30};

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QString notAProjectFile(const QString &bundlePath, const QString &reason = QString())
{
    QString text = u"Not a valid Fablery project file: %1"_s.arg(native(bundlePath));
    if (!reason.isEmpty())
        text += u". "_s + reason;
    return text;
}

QString cannotUnpack(const QString &bundlePath, const QString &reason)
{
    return u"Could not unpack the project file %1: %2"_s.arg(native(bundlePath), reason);
}

// The bundle opened and its directory checked: a ZIP archive with a "project.json".
struct ReadBundle
{
    OpenedBundle opened;
    std::unique_ptr<ZipSource> source;
    QList<ZipDirectoryEntry> directory;
};

Result<ReadBundle> readProjectBundle(const QString &bundlePath, FileStatus *attempted)
{
    Result<OpenedBundle> opened = openBundleFile(bundlePath);
    if (!opened)
        return makeError(u"Could not open the project file: %1"_s.arg(native(bundlePath)));
    if (attempted)
        *attempted = opened->status;
    auto source = std::make_unique<ZipSource>(opened->file.get());
    Result<QList<ZipDirectoryEntry>> directory = readZipDirectory(*source);
    if (!directory)
        return makeError(notAProjectFile(bundlePath, directory.error()));
    const bool hasProjectFile = std::any_of(directory->cbegin(), directory->cend(),
                                            [](const auto &entry) {
                                                return entry.name == u"project.json";
                                            });
    if (!hasProjectFile)
        return makeError(notAProjectFile(bundlePath));
    return ReadBundle{std::move(opened).value(), std::move(source), std::move(directory).value()};
}

bool isEmptyFolder(const QString &folder)
{
    const QDir dir(folder);
    return !dir.exists()
           || dir.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

// Keeps a working copy that does not match its bundle where the writer can find it: in a backup
// archive, or, when that cannot be written, moved aside under a dated name. It is never simply
// deleted.
Result<void> setStaleCopyAside(const QString &folder, const StoragePaths &paths,
                               const QString &backupName)
{
    const Result<BackupOutcome> backup = writeBackup(folder, paths.backupFolder, backupName,
                                                     paths.timeStamp, staleCopyBackupRetention);
    if (backup) {
        if (!QDir(folder).removeRecursively())
            return makeError(u"Could not clear the stale working copy: %1"_s.arg(native(folder)));
        return {};
    }
    const QString aside = folder + u".stale-"_s + paths.timeStamp;
    if (!QDir().rename(folder, aside))
        return makeError(u"Could not clear the stale working copy: %1"_s.arg(native(folder)));
    return {};
}

} // namespace

Result<std::unique_ptr<Workspace>> Workspace::openBundle(const QString &bundlePath,
                                                         const StoragePaths &paths)
{
    const QString absoluteBundle = QDir::cleanPath(QFileInfo(bundlePath).absoluteFilePath());
    std::unique_ptr<Workspace> workspace(new Workspace);
    const QString copyName = workingCopyName(absoluteBundle);
    workspace->m_bundlePath = absoluteBundle;
    workspace->m_folder = QDir(paths.workingCopiesFolder).filePath(copyName);
    workspace->m_markerPath = QDir(paths.workingCopiesFolder).filePath(copyName + u".json"_s);
    workspace->m_lock = std::make_unique<ProjectLock>(ProjectLock::lockFileFor(absoluteBundle));
    const Result<ProjectLock::Hold> held = workspace->m_lock->acquire(lockPatience);
    if (!held)
        return makeError(held.error());

    if (const Result<void> opened = workspace->openBundleWorkingCopy(paths); !opened)
        return makeError(opened.error());
    if (const Result<void> loaded = workspace->loadProject(); !loaded)
        return makeError(loaded.error());
    return workspace;
}

Result<void> Workspace::openBundleWorkingCopy(const StoragePaths &paths)
{
    FileStatus attempted;
    Result<ReadBundle> bundle = readProjectBundle(m_bundlePath, &attempted);
    if (!bundle)
        return makeError(bundle.error());
    removeAbandonedBundleTemporaries(m_bundlePath);

    // The working copy is used as it is only when it holds exactly what the bundle holds; any
    // other working copy (an older one, one a crash left half-unpacked, one edited by hand) is
    // set aside and the bundle unpacked afresh. Opening never writes the bundle.
    if (!isEmptyFolder(m_folder)) {
        removeAbandonedTemporaries(m_folder);
        Result<FolderImage> image = FolderImage::read(m_folder);
        if (image && image->holdsExactly(bundle->directory)) {
            m_image = std::move(image).value();
        } else if (const Result<void> aside
                   = setStaleCopyAside(m_folder, paths, QFileInfo(m_bundlePath).completeBaseName());
                   !aside) {
            return aside;
        }
    }
    if (!m_image) {
        if (QFileInfo::exists(m_folder) && !QDir(m_folder).removeRecursively())
            return makeError(u"Could not clear the stale working copy: %1"_s.arg(native(m_folder)));
        if (const Result<void> extracted = extractArchive(*bundle->source, m_folder); !extracted)
            return makeError(cannotUnpack(m_bundlePath, extracted.error()));
        Result<FolderImage> image = FolderImage::read(m_folder);
        if (!image)
            return makeError(image.error());
        m_image = std::move(image).value();
    }
    m_bundleStatus = attempted;
    return writeMarker(sha256HexOf(*bundle->opened.file));
}

Result<void> Workspace::refreshWorkingCopy()
{
    FileStatus attempted;
    Result<ReadBundle> bundle = readProjectBundle(m_bundlePath, &attempted);
    // The same unreadable bundle is not read again until it changes.
    m_bundleStatus = fileStatus(m_bundlePath);
    if (!bundle) {
        // The desktop application may be in the middle of writing the bundle; the working copy is
        // only replaced by a bundle that reads as a whole project.
        m_unreadableReason = bundle.error();
        return makeError(u"The project file is not readable right now; try again."_s);
    }
    m_bundleStatus = attempted;
    if (m_image && m_image->holdsExactly(bundle->directory))
        return writeMarker(sha256HexOf(*bundle->opened.file));

    // Unpacked beside the working copy and swapped in only when complete, so a failure leaves the
    // working copy as it was.
    const QString incoming = m_folder + u".incoming-"_s + QString::number(::getpid());
    const QString previous = m_folder + u".previous-"_s + QString::number(::getpid());
    QDir(incoming).removeRecursively();
    QDir(previous).removeRecursively();
    if (const Result<void> extracted = extractArchive(*bundle->source, incoming); !extracted) {
        QDir(incoming).removeRecursively();
        m_unreadableReason = cannotUnpack(m_bundlePath, extracted.error());
        return makeError(m_unreadableReason);
    }
    Result<FolderImage> image = FolderImage::read(incoming);
    const bool swapped = image
                         && (!QFileInfo::exists(m_folder) || QDir().rename(m_folder, previous))
                         && QDir().rename(incoming, m_folder);
    if (!swapped) {
        if (!QFileInfo::exists(m_folder))
            QDir().rename(previous, m_folder);
        QDir(incoming).removeRecursively();
        m_unreadableReason = u"Could not refresh the project's working folder: %1"_s.arg(
            native(m_folder));
        return makeError(m_unreadableReason);
    }
    QDir(previous).removeRecursively();
    m_image = std::move(image).value();
    return writeMarker(sha256HexOf(*bundle->opened.file));
}

Result<void> Workspace::writeMarker(const QString &bundleSha256Hex)
{
    const QJsonObject marker{{"bundlePath"_L1, m_bundlePath}, {"bundleSha256"_L1, bundleSha256Hex}};
    QDir().mkpath(QFileInfo(m_markerPath).path());
    // Replaced whole by a rename, but not forced to the disk: a marker lost to a power cut only
    // costs a comparison of the working copy with its bundle at the next open.
    const QString temporary = m_markerPath + u".%1.saving"_s.arg(::getpid());
    QFile file(temporary);
    const QByteArray bytes = QJsonDocument(marker).toJson(QJsonDocument::Indented);
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate)
                         && file.write(bytes) == bytes.size();
    file.close();
    if (!written || !QDir().rename(temporary, m_markerPath)) {
        QFile::remove(m_markerPath);
        if (!written || !QDir().rename(temporary, m_markerPath)) {
            QFile::remove(temporary);
            return makeError(u"Could not write a project file: %1"_s.arg(native(m_markerPath)));
        }
    }
    return {};
}

SaveOutcome Workspace::saveBundle(const FolderWritePlan &plan)
{
    if (plan.isEmpty())
        return SaveOutcome::saved();
    if (!m_image) {
        Result<FolderImage> image = FolderImage::read(m_folder);
        if (!image)
            return SaveOutcome::failed(
                u"Could not write the project file: %1"_s.arg(native(m_bundlePath)));
        m_image = std::move(image).value();
    }
    // The bundle is the project: it is written first, and only then the working copy, so the
    // working copy never runs ahead of it.
    const FolderWriteReport pending = plan.report();
    if (!QDir().mkpath(QFileInfo(m_bundlePath).path()))
        return SaveOutcome::failed(
            u"Could not create the folder for: %1"_s.arg(native(m_bundlePath)));
    FileStatus written;
    QByteArray digest;
    SaveOutcome outcome = writeBundleFile(
        m_bundlePath,
        [&](QIODevice &out) {
            ZipStreamWriter writer(&out);
            if (!m_image->writeTo(writer, pending) || !writer.finish())
                return false;
            digest = writer.sha256();
            return true;
        },
        m_bundleStatus, &written);
    if (!outcome.isSaved())
        return outcome;
    m_bundleStatus = written;
    m_image->apply(pending);

    // The bundle holds the change now. Should the working copy fail to follow, it is behind its
    // bundle, and the next call unpacks the bundle afresh.
    if (!m_writer->commit(m_folder, plan, false).isSaved()) {
        m_image.reset();
        m_mustReload = true;
    }
    // The marker only tells which bundle the working copy was last in step with; failing to
    // write it costs nothing but a comparison at the next open.
    (void)writeMarker(QString::fromLatin1(digest.toHex()));
    return SaveOutcome::saved();
}

} // namespace fb::app
