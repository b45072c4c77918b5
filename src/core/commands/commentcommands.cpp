#include "core/commands/commentcommands.h"

using namespace Qt::StringLiterals;

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
    return u"Edit comment"_s;
}

QString SetCommentTargetCommand::label() const
{
    return u"Move comment"_s;
}

} // namespace fb::core
