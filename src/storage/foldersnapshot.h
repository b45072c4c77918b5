#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace fb::app {

struct FolderWriteReport;

// Remembers the "json" and "yaml" files of a project folder as they were at the last load or
// save, so that an edit by another program is noticed before the next tool call.
//
// Comparing every file's text on every call would re-read the whole project each time, so each
// file is remembered by what the file system says of it (size, modification and change times,
// inode) together with a digest of its bytes. A file whose status is unchanged is taken as
// unchanged, except while its modification time is so recent that a second write within the
// same clock tick could have left the status as it was: such a file is compared by content.
// A file whose status changed is read, and counts as changed only when its bytes did.
class FolderSnapshot
{
public:
    // Records every json and yaml file under the folder.
    void take(const QString &folder);
    // Records the files this process just wrote or removed, without rescanning the folder.
    void update(const QString &folder, const FolderWriteReport &report);
    // Whether a json or yaml file was added, removed or changed since the last take or update.
    bool hasChanged(const QString &folder);
    void clear() { m_entries.clear(); }

    struct FileStatus
    {
        qint64 size = -1;
        qint64 modifiedNs = 0;
        qint64 changedNs = 0;
        quint64 inode = 0;

        bool operator==(const FileStatus &) const = default;
    };

private:
    struct Entry
    {
        FileStatus status;
        QByteArray digest;
        qint64 recordedNs = 0;
    };

    bool isRacy(const Entry &entry) const;

    QHash<QString, Entry> m_entries;
};

// Whether a file name has one of the suffixes the snapshot watches ("json", "yaml", any case).
bool isWatchedProjectFile(const QString &fileName);

} // namespace fb::app
