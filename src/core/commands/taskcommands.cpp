#include "core/commands/taskcommands.h"

namespace fb::core {

QString SetTaskTitleCommand::label() const
{
    return QStringLiteral("Rename task");
}

QString SetTaskDescriptionCommand::label() const
{
    return QStringLiteral("Edit task details");
}

QString SetTaskDoneCommand::label() const
{
    return nextValue() ? QStringLiteral("Complete task") : QStringLiteral("Reopen task");
}

QString SetTaskDueDateCommand::label() const
{
    return QStringLiteral("Change task due date");
}

QString SetTaskPriorityCommand::label() const
{
    return QStringLiteral("Change task priority");
}

QString SetTaskStatusCommand::label() const
{
    return QStringLiteral("Change task status");
}

QString SetTaskBoardCommand::label() const
{
    return QStringLiteral("Move task to board");
}

QString SetTaskSubmissionCommand::label() const
{
    return QStringLiteral("Change submission details");
}

QString SetTaskTargetCommand::label() const
{
    return QStringLiteral("Link task");
}

} // namespace fb::core
