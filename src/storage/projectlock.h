#pragma once

#include "core/result.h"

#include <QString>

#include <chrono>
#include <utility>

namespace fb::app {

// An advisory lock that every server on one project holds while it opens the project and while
// it runs a tool call, from adopting outside changes to saving. Two servers started on the same
// project (two AI applications open at once) therefore take turns: each call sees the other's
// saves before it changes anything, and no save overwrites another's. The kernel releases the
// lock when its process ends, however it ends.
//
// The lock lives in the per-user data folder, named after the project's path, so it is never
// written into the writer's project. Where no lock file can be made there (a read-only data
// folder), calls go on without it.
class ProjectLock
{
public:
    explicit ProjectLock(QString lockFilePath);
    ~ProjectLock();

    ProjectLock(const ProjectLock &) = delete;
    ProjectLock &operator=(const ProjectLock &) = delete;

    // Held until the Hold is destroyed.
    class [[nodiscard]] Hold
    {
    public:
        Hold() = default;
        explicit Hold(ProjectLock *lock)
            : m_lock(lock)
        {}
        Hold(Hold &&other) noexcept
            : m_lock(std::exchange(other.m_lock, nullptr))
        {}
        Hold &operator=(Hold &&other) noexcept;
        ~Hold();

    private:
        ProjectLock *m_lock = nullptr;
    };

    // Waits up to `patience` for the lock. Fails with a sentence saying another server is busy
    // with the project.
    Result<Hold> acquire(std::chrono::milliseconds patience);

    // The lock file of a project (a folder or a bundle path).
    static QString lockFileFor(const QString &projectPath);

private:
    void release();

    QString m_path;
    int m_fd = -1;
    int m_depth = 0;
};

} // namespace fb::app
