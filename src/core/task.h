#pragma once

#include "core/contentobject.h"

#include <QDate>

namespace fb::core {

// The submission-tracker record of a task (a manuscript sent to an agent, a magazine, ...).
struct Submission
{
    QString recipient;
    SubmissionKind kind = SubmissionKind::Agent;
    QDate submittedOn; // invalid when not submitted
    QString notes;

    bool operator==(const Submission &) const = default;
};

// A to-do item on a kanban board.
class Task final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Task;

    explicit Task(const QUuid &id = QUuid::createUuid());
    explicit Task(const QString &title, const QUuid &id = QUuid::createUuid());
    ~Task() override;

    const QString &title() const { return m_title; }
    void setTitle(const QString &title)
    {
        m_title = title;
        markChanged();
    }

    const QString &description() const { return m_description; }
    void setDescription(const QString &description)
    {
        m_description = description;
        markChanged();
    }

    bool isDone() const { return m_done; }
    void setDone(bool done)
    {
        m_done = done;
        markChanged();
    }

    TaskPriority priority() const { return m_priority; }
    void setPriority(TaskPriority priority)
    {
        m_priority = priority;
        markChanged();
    }

    // Invalid when the task has no due date.
    const QDate &dueDate() const { return m_dueDate; }
    void setDueDate(const QDate &date)
    {
        m_dueDate = date;
        markChanged();
    }

    const QString &board() const { return m_board; }
    void setBoard(const QString &board)
    {
        m_board = board;
        markChanged();
    }

    // The board column.
    const QString &status() const { return m_status; }
    void setStatus(const QString &status)
    {
        m_status = status;
        markChanged();
    }

    // The object the task is linked to; null when none.
    const QUuid &targetId() const { return m_targetId; }
    void setTargetId(const QUuid &id)
    {
        m_targetId = id;
        markChanged();
    }

    qint32 sortIndex() const { return m_sortIndex; }
    void setSortIndex(qint32 sortIndex)
    {
        m_sortIndex = sortIndex;
        markChanged();
    }

    const Submission &submission() const { return m_submission; }
    void setSubmission(const Submission &submission)
    {
        m_submission = submission;
        markChanged();
    }

    // The board a task is filed on when none is named.
    static QString defaultBoard();
    static QString defaultStatus();

private:
    QString m_title;
    QString m_description;
    bool m_done = false;
    TaskPriority m_priority = TaskPriority::Normal;
    QDate m_dueDate;
    QString m_board;
    QString m_status;
    QUuid m_targetId;
    qint32 m_sortIndex = 0;
    Submission m_submission;
};

} // namespace fb::core
