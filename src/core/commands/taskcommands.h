#pragma once

// The commands that change one aspect of a task. Each holds the live Task and is constructed as
// (Task &, new value); the previous value is read at every redo.

#include "core/commands/valuecommands.h"
#include "core/task.h"

namespace fb::core {

template<typename Value, auto Getter, auto Setter>
using TaskSwapCommand = MemberSwapCommand<Task, Value, Getter, Setter>;

class SetTaskTitleCommand final : public TaskSwapCommand<QString, &Task::title, &Task::setTitle>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetTaskDescriptionCommand final
    : public TaskSwapCommand<QString, &Task::description, &Task::setDescription>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// Labelled after the state it sets: "Complete task" or "Reopen task".
class SetTaskDoneCommand final : public TaskSwapCommand<bool, &Task::isDone, &Task::setDone>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// An invalid date clears the due date.
class SetTaskDueDateCommand final : public TaskSwapCommand<QDate, &Task::dueDate, &Task::setDueDate>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetTaskPriorityCommand final
    : public TaskSwapCommand<TaskPriority, &Task::priority, &Task::setPriority>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The board column.
class SetTaskStatusCommand final : public TaskSwapCommand<QString, &Task::status, &Task::setStatus>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetTaskBoardCommand final : public TaskSwapCommand<QString, &Task::board, &Task::setBoard>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The whole submission record: recipient, kind, date and notes.
class SetTaskSubmissionCommand final
    : public TaskSwapCommand<Submission, &Task::submission, &Task::setSubmission>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The object the task is linked to; the null id unlinks it.
class SetTaskTargetCommand final
    : public TaskSwapCommand<QUuid, &Task::targetId, &Task::setTargetId>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

} // namespace fb::core
