#include "core/commands/commentcommands.h"

namespace fb::core {

CommentRecord SetCommentCommand::get(const Comment &comment) const
{
    return comment.record();
}

void SetCommentCommand::set(Comment &comment, const CommentRecord &record)
{
    CommentRecord kept = record;
    kept.targetId = comment.targetId();
    comment.setRecord(kept);
}

QString SetCommentCommand::label() const
{
    return QStringLiteral("Edit comment");
}

QString SetCommentTargetCommand::label() const
{
    return QStringLiteral("Move comment");
}

} // namespace fb::core
