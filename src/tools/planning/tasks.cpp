#include "core/commands/command.h"
#include "core/commands/structuralcommands.h"
#include "core/ids.h"
#include "core/project.h"
#include "core/task.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"
#include "tools/planning/planninghandlers.h"
#include "tools/planning/taskfields.h"

#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// Boards are listed with the default board first, then the others by name, ignoring case (exact
// spelling breaks ties), so the order is the same at every call whatever order the tasks were
// created in. Within a board, tasks follow their stored position, then their title in the same
// way, then their id, which keeps two tasks of the same title apart.
bool precedesBoard(const QString &a, const QString &b)
{
    const QString defaultBoard = core::Task::defaultBoard();
    if ((a == defaultBoard) != (b == defaultBoard))
        return a == defaultBoard;
    if (const int folded = a.compare(b, Qt::CaseInsensitive); folded != 0)
        return folded < 0;
    return a < b;
}

bool precedesTask(const core::Task *a, const core::Task *b)
{
    if (a->sortIndex() != b->sortIndex())
        return a->sortIndex() < b->sortIndex();
    if (const int folded = a->title().compare(b->title(), Qt::CaseInsensitive); folded != 0)
        return folded < 0;
    if (a->title() != b->title())
        return a->title() < b->title();
    return core::compareIds(a->id(), b->id()) < 0;
}

QString taskLine(const core::Task &task)
{
    QString line = u"- [%1] **%2** -- %3"_s.arg(task.isDone() ? u"x"_s : u" "_s, task.title(),
                                                task.status());
    if (task.priority() != core::TaskPriority::Normal)
        line += u", %1 priority"_s.arg(core::enumName(task.priority()));
    if (task.dueDate().isValid())
        line += u", due %1"_s.arg(task.dueDate().toString(u"yyyy-MM-dd"_s));
    return line;
}

// Every task keeps a title of its own, so update_task can address it. Titles compare as the
// lookup compares them (trimmed, ignoring case); tasks excluded from AI hold their titles too,
// since an excluded task may be included again. `renamed` is the task taking the title.
bool isTaskTitleTaken(const core::Project &project, const QString &title,
                      const core::Task *renamed = nullptr)
{
    const QString key = title.trimmed();
    const std::vector<const core::Task *> tasks = project.objectsOfType<core::Task>();
    return std::any_of(tasks.cbegin(), tasks.cend(), [&](const core::Task *task) {
        return task != renamed && task->title().trimmed().compare(key, Qt::CaseInsensitive) == 0;
    });
}

QString titleTakenMessage(const QString &title)
{
    return u"A task titled '%1' already exists; choose a distinct title so each task stays "
           "addressable."_s.arg(title);
}

// A new task goes to the end of its board.
qint32 nextSortIndex(const core::Project &project, const QString &board)
{
    qint32 next = 0;
    for (const core::Task *task : project.objectsOfType<core::Task>()) {
        if (task->board() == board)
            next = std::max(next, task->sortIndex() + 1);
    }
    return next;
}

} // namespace

QString createTaskNeedsTitle()
{
    return u"create_task needs a non-empty \"title\"."_s;
}

QString updateTaskNeedsTask()
{
    return u"update_task needs \"task\" (the task's title)."_s;
}

QString nonEmptyNewTitle()
{
    return u"\"new_title\" must be a non-empty string."_s;
}

QString nonEmptyStatus()
{
    return u"\"status\" must be a non-empty string (a board column)."_s;
}

QString doneMustBeBoolean()
{
    return u"\"done\" must be true or false."_s;
}

McpToolResult listTasks(ToolContext &context, const ToolArguments &arguments)
{
    const bool filtered = arguments.has(u"board"_s);
    QString board = arguments.trimmed(u"board"_s);
    if (filtered && board.isEmpty())
        board = core::Task::defaultBoard();
    const bool includeDone = arguments.boolean(u"include_done"_s, true);

    const Visibility &visibility = context.visibility();
    QMap<QString, std::vector<const core::Task *>> byBoard;
    for (const core::Task *task : context.workspace().project().objectsOfType<core::Task>()) {
        if (!visibility.isVisible(*task) || (filtered && task->board() != board)
            || (!includeDone && task->isDone()))
            continue;
        byBoard[task->board()].push_back(task);
    }
    if (byBoard.isEmpty()) {
        return McpToolResult::success(filtered ? u"No tasks on the board '%1'."_s.arg(board)
                                               : u"No tasks yet."_s);
    }

    QStringList boards = byBoard.keys();
    std::sort(boards.begin(), boards.end(), precedesBoard);
    QStringList groups;
    for (const QString &name : boards) {
        std::vector<const core::Task *> &tasks = byBoard[name];
        std::sort(tasks.begin(), tasks.end(), precedesTask);
        QStringList lines{u"## Board: %1"_s.arg(name)};
        for (const core::Task *task : tasks)
            lines.append(taskLine(*task));
        groups.append(lines.join(u'\n'));
    }
    return McpToolResult::success(groups.join(u"\n\n"_s));
}

McpToolResult createTask(ToolContext &context, const ToolArguments &arguments)
{
    const QString title = arguments.trimmed(u"title"_s);
    if (title.isEmpty())
        return McpToolResult::failure(createTaskNeedsTitle());
    if (const Result<void> line = checkSingleLine(u"title"_s, title); !line)
        return McpToolResult::failure(line.error());
    core::Project &project = context.workspace().project();
    if (isTaskTitleTaken(project, title))
        return McpToolResult::failure(titleTakenMessage(title));
    const Result<TaskFields> fields = readTaskFields(arguments, core::Submission(), false);
    if (!fields)
        return McpToolResult::failure(fields.error());

    // The task is made with its defaults and added, then each given field is set by its own
    // command on the same instance, which the add command keeps alive across undo and redo.
    auto task = std::make_unique<core::Task>(title);
    core::Task &created = *task;
    created.setSortIndex(nextSortIndex(project, fields->board.value_or(created.board())));
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: create task"_s);
    change->append(std::make_unique<core::AddObjectCommand>(project, std::move(task)));
    // Only what differs from a new task's defaults counts as set.
    const QStringList set = appendTaskChanges(created, *fields, *change);
    QString text = u"Created the task '%1' on the %2 board."_s.arg(title, fields->board.value_or(
                                                                              created.board()));
    if (!set.isEmpty())
        text += u" Also set: %1."_s.arg(set.join(u", "_s));
    return applyChange(context, std::move(change), text);
}

McpToolResult updateTask(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(u"task"_s);
    if (name.isEmpty())
        return McpToolResult::failure(updateTaskNeedsTask());
    const Result<core::Task *> found = findPlanningObject<core::Task>(context, name, u"task"_s,
                                                                      true);
    if (!found)
        return McpToolResult::failure(found.error());
    core::Task &task = **found;
    const Result<TaskFields> fields = readTaskFields(arguments, task.submission(), true);
    if (!fields)
        return McpToolResult::failure(fields.error());
    const QStringList aspects = fields->aspectNames();
    if (aspects.isEmpty()) {
        return McpToolResult::failure(
            u"update_task changed nothing; provide at least one of new_title, description, "
            "status, board, done, priority, due, submitted_to, submission_type, submitted_on, or "
            "submission_notes."_s);
    }
    if (fields->title && isTaskTitleTaken(context.workspace().project(), *fields->title, &task))
        return McpToolResult::failure(titleTakenMessage(*fields->title));

    const QString text = u"Updated the task '%1' (%2)."_s.arg(fields->title.value_or(task.title()),
                                                              aspects.join(u", "_s));
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: update task"_s);
    appendTaskChanges(task, *fields, *change);
    // Values the task already holds change nothing: the call succeeds, and no step is recorded.
    if (change->isEmpty())
        return McpToolResult::success(text);
    return applyChange(context, std::move(change), text);
}

} // namespace fb::app
