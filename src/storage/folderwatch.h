#pragma once

#include <QHash>
#include <QSet>
#include <QString>

namespace fb::app {

// The kernel's reports of changes inside a folder tree (inotify on Linux). Not available on
// other systems or on network file systems, where other hosts' writes are never reported.
class FolderWatch
{
public:
    // Starts watching every folder of the tree; isValid() says whether that worked.
    explicit FolderWatch(const QString &folder);
    ~FolderWatch();

    FolderWatch(const FolderWatch &) = delete;
    FolderWatch &operator=(const FolderWatch &) = delete;

    bool isValid() const { return m_fd >= 0; }

    struct Changes
    {
        // The reports are incomplete (a folder came or went, the queue overflowed): compare
        // the whole tree.
        bool needsFullScan = false;
        // Files named in the reports, relative to the folder with "/" separators.
        QSet<QString> files;
    };
    // Drains the reports that arrived since the last call.
    Changes takeChanges();

private:
    void watchTree(const QString &folder, const QString &relative);

    int m_fd = -1;
    QHash<int, QString> m_folders; // watch descriptor -> relative folder path ("" or "objects/")
};

} // namespace fb::app
