#include "core/commands/taskcommands.h"

using namespace Qt::StringLiterals;

namespace fb::core {

QString SetTaskTitleCommand::label() const
{
    return u"Rename task"_s;
}

QString SetTaskDescriptionCommand::label() const
{
    return u"Edit task details"_s;
}

QString SetTaskDoneCommand::label() const
{
    return nextValue() ? u"Complete task"_s : u"Reopen task"_s;
}

QString SetTaskDueDateCommand::label() const
{
    return u"Change task due date"_s;
}

QString SetTaskPriorityCommand::label() const
{
    return u"Change task priority"_s;
}

QString SetTaskStatusCommand::label() const
{
    return u"Change task status"_s;
}

QString SetTaskBoardCommand::label() const
{
    return u"Move task to board"_s;
}

QString SetTaskSubmissionCommand::label() const
{
    return u"Change submission details"_s;
}

QString SetTaskTargetCommand::label() const
{
    return u"Link task"_s;
}

} // namespace fb::core
