#include "tools/planning/taskfields.h"

#include "core/commands/command.h"
#include "core/commands/taskcommands.h"
#include "tools/common/toolarguments.h"
#include "tools/planning/planninghandlers.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// A date argument: "" clears the date (an invalid date), anything else must be YYYY-MM-DD.
Result<QDate> readDate(const QString &text, const QString &refusal)
{
    if (text.isEmpty())
        return QDate();
    if (const std::optional<QDate> date = parseCalendarDate(text))
        return *date;
    return makeError(refusal.arg(text));
}

// A line of text: trimmed, and refused when it holds a line break, naming the argument.
Result<QString> readLine(const ToolArguments &arguments, const QString &key)
{
    const QString value = arguments.trimmed(key);
    if (const Result<void> line = checkSingleLine(key, value); !line)
        return makeError(line.error());
    return value;
}

Result<core::Submission> readSubmission(const ToolArguments &arguments, core::Submission record)
{
    if (arguments.has(u"submitted_to"_s))
        record.recipient = arguments.trimmed(u"submitted_to"_s);
    if (arguments.has(u"submission_type"_s)) {
        const QString name = arguments.trimmed(u"submission_type"_s);
        const std::optional<core::SubmissionKind> kind = core::enumFromName<core::SubmissionKind>(
            name.toLower());
        if (!kind) {
            return makeError(u"Unknown submission_type '%1'; use agent, publisher, magazine, "
                             "contest, or other."_s.arg(name));
        }
        record.kind = *kind;
    }
    if (arguments.has(u"submitted_on"_s)) {
        const Result<QDate> date = readDate(arguments.trimmed(u"submitted_on"_s),
                                            u"The submitted_on date '%1' was not understood; use "
                                            "YYYY-MM-DD, or \"\" to clear it."_s);
        if (!date)
            return makeError(date.error());
        record.submittedOn = *date;
    }
    if (arguments.has(u"submission_notes"_s))
        record.notes = arguments.trimmed(u"submission_notes"_s);
    return record;
}

bool hasSubmissionKey(const ToolArguments &arguments)
{
    return arguments.has(u"submitted_to"_s) || arguments.has(u"submission_type"_s)
           || arguments.has(u"submitted_on"_s) || arguments.has(u"submission_notes"_s);
}

class TaskFieldReader
{
public:
    TaskFieldReader(const ToolArguments &arguments, bool isUpdate)
        : m_arguments(arguments)
        , m_isUpdate(isUpdate)
    {}

    Result<TaskFields> read(const core::Submission &currentSubmission)
    {
        for (const auto step : {&TaskFieldReader::readTitle, &TaskFieldReader::readTexts,
                                &TaskFieldReader::readState, &TaskFieldReader::readDue}) {
            if (const Result<void> done = (this->*step)(); !done)
                return makeError(done.error());
        }
        if (hasSubmissionKey(m_arguments)) {
            const Result<core::Submission> submission = readSubmission(m_arguments,
                                                                       currentSubmission);
            if (!submission)
                return makeError(submission.error());
            m_fields.submission = *submission;
        }
        return m_fields;
    }

private:
    bool has(const QString &key) const { return m_arguments.has(key); }

    Result<void> readTitle()
    {
        if (!m_isUpdate || !has(u"new_title"_s))
            return {};
        const Result<QString> title = readLine(m_arguments, u"new_title"_s);
        if (!title)
            return makeError(title.error());
        if (title->isEmpty())
            return makeError(nonEmptyNewTitle());
        m_fields.title = *title;
        return {};
    }

    Result<void> readTexts()
    {
        if (has(u"description"_s))
            m_fields.description = m_arguments.trimmed(u"description"_s);
        if (has(u"status"_s)) {
            const Result<QString> status = readLine(m_arguments, u"status"_s);
            if (!status)
                return makeError(status.error());
            if (status->isEmpty())
                return makeError(nonEmptyStatus());
            m_fields.status = *status;
        }
        if (has(u"board"_s)) {
            const Result<QString> board = readLine(m_arguments, u"board"_s);
            if (!board)
                return makeError(board.error());
            m_fields.board = board->isEmpty() ? core::Task::defaultBoard() : *board;
        }
        return {};
    }

    Result<void> readState()
    {
        if (m_isUpdate && has(u"done"_s))
            m_fields.done = m_arguments.boolean(u"done"_s);
        if (has(u"priority"_s)) {
            const QString name = m_arguments.trimmed(u"priority"_s);
            const std::optional<core::TaskPriority> priority
                = core::enumFromName<core::TaskPriority>(name.toLower());
            if (!priority) {
                return makeError(
                    u"Unknown priority '%1'; use low, normal, high, or urgent."_s.arg(name));
            }
            m_fields.priority = *priority;
        }
        return {};
    }

    Result<void> readDue()
    {
        if (!has(u"due"_s))
            return {};
        const Result<QDate> due = readDate(m_arguments.trimmed(u"due"_s),
                                           u"The due date '%1' was not understood; use "
                                           "YYYY-MM-DD, or \"\" to clear it."_s);
        if (!due)
            return makeError(due.error());
        m_fields.due = *due;
        return {};
    }

    const ToolArguments &m_arguments;
    bool m_isUpdate = false;
    TaskFields m_fields;
};

// Appends the command when the task does not hold the value yet.
template<typename Command, typename Value, typename Current>
void appendIfChanged(core::Task &task, const std::optional<Value> &value, const Current &current,
                     const QString &aspect, core::CompositeCommand &change, QStringList &changed)
{
    if (!value || *value == current)
        return;
    change.append(std::make_unique<Command>(task, *value));
    changed.append(aspect);
}

} // namespace

QStringList TaskFields::aspectNames() const
{
    QStringList names;
    const std::pair<bool, QString> aspects[] = {
        {title.has_value(), u"title"_s},   {description.has_value(), u"description"_s},
        {status.has_value(), u"status"_s}, {board.has_value(), u"board"_s},
        {done.has_value(), u"done"_s},     {priority.has_value(), u"priority"_s},
        {due.has_value(), u"due date"_s},  {submission.has_value(), u"submission"_s},
    };
    for (const auto &[isSet, name] : aspects) {
        if (isSet)
            names.append(name);
    }
    return names;
}

std::optional<QDate> parseCalendarDate(const QString &text)
{
    // QDate alone would take "2025-3-1" and other forms; only the zero-padded form is a date
    // here, and an impossible day (2025-02-30) gives an invalid date.
    static const QRegularExpression form(u"^\\d{4}-\\d{2}-\\d{2}$"_s);
    if (!form.match(text).hasMatch())
        return std::nullopt;
    const QDate date = QDate::fromString(text, u"yyyy-MM-dd"_s);
    if (!date.isValid())
        return std::nullopt;
    return date;
}

Result<TaskFields> readTaskFields(const ToolArguments &arguments,
                                  const core::Submission &currentSubmission, bool isUpdate)
{
    return TaskFieldReader(arguments, isUpdate).read(currentSubmission);
}

QStringList appendTaskChanges(core::Task &task, const TaskFields &fields,
                              core::CompositeCommand &change)
{
    QStringList changed;
    appendIfChanged<core::SetTaskTitleCommand>(task, fields.title, task.title(), u"title"_s, change,
                                               changed);
    appendIfChanged<core::SetTaskDescriptionCommand>(task, fields.description, task.description(),
                                                     u"description"_s, change, changed);
    appendIfChanged<core::SetTaskStatusCommand>(task, fields.status, task.status(), u"status"_s,
                                                change, changed);
    appendIfChanged<core::SetTaskBoardCommand>(task, fields.board, task.board(), u"board"_s, change,
                                               changed);
    appendIfChanged<core::SetTaskDoneCommand>(task, fields.done, task.isDone(), u"done"_s, change,
                                              changed);
    appendIfChanged<core::SetTaskPriorityCommand>(task, fields.priority, task.priority(),
                                                  u"priority"_s, change, changed);
    appendIfChanged<core::SetTaskDueDateCommand>(task, fields.due, task.dueDate(), u"due date"_s,
                                                 change, changed);
    appendIfChanged<core::SetTaskSubmissionCommand>(task, fields.submission, task.submission(),
                                                    u"submission"_s, change, changed);
    return changed;
}

} // namespace fb::app
