#pragma once

// The commands that change a review comment. They hold the project and the comment's id; a step
// whose comment is gone does nothing.

#include "core/commands/valuecommands.h"
#include "core/comment.h"

namespace fb::core {

// The comment's text and state: everything in its record but the target, which is the aspect of
// SetCommentTargetCommand. The target in the given record is ignored, so the two commands can
// share one step in either order.
class SetCommentCommand final : public LookupSwapCommand<Comment, CommentRecord>
{
public:
    using LookupSwapCommand::LookupSwapCommand;
    QString label() const override;

private:
    CommentRecord get(const Comment &comment) const override;
    void set(Comment &comment, const CommentRecord &record) override;
};

// The object the comment is attached to.
class SetCommentTargetCommand final
    : public LookupMemberSwapCommand<Comment, QUuid, &Comment::targetId, &Comment::setTargetId>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

} // namespace fb::core
