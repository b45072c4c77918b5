#pragma once

#include "core/contentobject.h"

#include <QDateTime>

namespace fb::core {

// The whole record of a review comment, which its edit command replaces in one step.
struct CommentRecord
{
    QUuid targetId;
    QUuid parentId; // the comment this one answers; null for the start of a thread
    QString anchor; // a locator inside the target, such as a quoted snippet
    QString author;
    QString body; // Markdown
    QDateTime createdAt;
    QDateTime updatedAt;
    bool resolved = false;

    bool operator==(const CommentRecord &) const = default;
};

// A review comment on another object; replies form threads under one target.
class Comment final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Comment;

    explicit Comment(const QUuid &id = QUuid::createUuid());
    ~Comment() override;

    const CommentRecord &record() const { return m_record; }
    void setRecord(const CommentRecord &record)
    {
        m_record = record;
        markChanged();
    }

    const QUuid &targetId() const { return m_record.targetId; }
    void setTargetId(const QUuid &id)
    {
        m_record.targetId = id;
        markChanged();
    }

    const QUuid &parentId() const { return m_record.parentId; }
    void setParentId(const QUuid &id)
    {
        m_record.parentId = id;
        markChanged();
    }

    const QString &anchor() const { return m_record.anchor; }
    void setAnchor(const QString &anchor)
    {
        m_record.anchor = anchor;
        markChanged();
    }

    const QString &author() const { return m_record.author; }
    void setAuthor(const QString &author)
    {
        m_record.author = author;
        markChanged();
    }

    const QString &body() const { return m_record.body; }
    void setBody(const QString &body)
    {
        m_record.body = body;
        markChanged();
    }

    const QDateTime &createdAt() const { return m_record.createdAt; }
    void setCreatedAt(const QDateTime &time)
    {
        m_record.createdAt = time;
        markChanged();
    }

    const QDateTime &updatedAt() const { return m_record.updatedAt; }
    void setUpdatedAt(const QDateTime &time)
    {
        m_record.updatedAt = time;
        markChanged();
    }

    bool isResolved() const { return m_record.resolved; }
    void setResolved(bool resolved)
    {
        m_record.resolved = resolved;
        markChanged();
    }

private:
    CommentRecord m_record;
};

} // namespace fb::core
