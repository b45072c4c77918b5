#pragma once

#include "core/enumerations.h"
#include "core/result.h"
#include "core/task.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

namespace fb::core {
class CompositeCommand;
}

namespace fb::app {

class ToolArguments;

// What a create_task or update_task call sets, read and checked before any command is built: a
// refusal anywhere leaves the whole call unapplied. An absent key leaves its aspect alone.
struct TaskFields
{
    std::optional<QString> title;
    std::optional<QString> description;
    std::optional<QString> status;
    std::optional<QString> board;
    std::optional<bool> done;
    std::optional<core::TaskPriority> priority;
    // An invalid date clears the due date.
    std::optional<QDate> due;
    // The whole record, the present submission keys laid over the task's current one.
    std::optional<core::Submission> submission;

    // The names of the aspects the call sets, in their reporting order.
    QStringList aspectNames() const;
};

// Reads the keys both changing tools share, each checked only when present; "new_title" and
// "done" only when `isUpdate`. The submission keys are laid over `currentSubmission`.
Result<TaskFields> readTaskFields(const ToolArguments &arguments,
                                  const core::Submission &currentSubmission, bool isUpdate);

// Appends one command for each aspect the fields set to a value the task does not hold yet, and
// returns the names of those aspects in their reporting order.
QStringList appendTaskChanges(core::Task &task, const TaskFields &fields,
                              core::CompositeCommand &change);

// A calendar date written YYYY-MM-DD; nothing for any other text, an impossible day included.
std::optional<QDate> parseCalendarDate(const QString &text);

} // namespace fb::app
