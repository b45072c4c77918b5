#pragma once

#include "storage/filestatus.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>

#include <memory>

namespace fb::app {

struct FolderWriteReport;
class FolderWatch;

// Remembers the "json" and "yaml" files of a project folder as they were at the last load or
// save, so that an edit by another program is noticed before the next tool call.
//
// Comparing every file's text on every call would re-read the whole project each time, so each
// file is remembered by what the file system says of it (size, modification and change times,
// inode) together with a digest of its bytes. A file whose status is unchanged is taken as
// unchanged, except while its modification time is so recent that a second write within the
// same clock tick could have left the status as it was: such a file is compared by content.
// A file whose status changed is read, and counts as changed only when its bytes did.
//
// On a local file system the kernel reports every change in the folder (inotify), so a call
// looks only at the files named in those reports and costs nothing when there are none. Where
// no such reports can be had (another system, a network share, a full event queue) the whole
// folder is compared.
class FolderSnapshot
{
public:
    // How changes are found: from the kernel's reports where it gives them, or always by
    // comparing the whole folder (the fallback, also chosen by tests to exercise it).
    enum class Detection { KernelReports, FullScan };

    explicit FolderSnapshot(Detection detection = Detection::KernelReports);
    ~FolderSnapshot();

    // Records every json and yaml file under the folder.
    void take(const QString &folder);
    // The same in two steps around a reading of the folder: files read in between are noted
    // with their bytes, so they need not be read a second time. The kernel's reports start at
    // beginTake, so a file changed after it was read is still caught.
    void beginTake(const QString &folder);
    void noteContents(const QString &relativePath, const QByteArray &bytes);
    void finishTake(const QString &folder);
    // Records the files this process just wrote or removed, without rescanning the folder.
    void update(const QString &folder, const FolderWriteReport &report);
    // Whether a json or yaml file was added, removed or changed since the last take or update.
    bool hasChanged(const QString &folder);

private:
    struct Entry
    {
        FileStatus status;
        quint64 digest = 0;
        qint64 recordedNs = 0;
    };

    bool isRacy(const Entry &entry) const;
    bool scanWholeFolder(const QString &folder);
    bool hasFileChanged(const QString &folder, const QString &relative);

    Detection m_detection;
    QHash<QString, Entry> m_entries;
    QHash<QString, quint64> m_noted;
    std::unique_ptr<FolderWatch> m_watch;
};

// Whether a file name has one of the suffixes the snapshot watches ("json", "yaml", any case).
bool isWatchedProjectFile(const QString &fileName);

} // namespace fb::app
