#include "core/commands/command.h"
#include "core/commands/projectcommands.h"
#include "core/project.h"
#include "core/storytime.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/storydates.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/timeline/timelinehandlers.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

QString noEraNamed(const QString &name)
{
    return u"No era named '%1' exists."_s.arg(name);
}

QString eraNameTaken(const QString &name)
{
    return u"An era named '%1' already exists."_s.arg(name);
}

// Era names compare as codex names do: trimmed, without regard to letter case, and whole.
bool sameEraName(const QString &a, const QString &b)
{
    return a.trimmed().compare(b.trimmed(), Qt::CaseInsensitive) == 0;
}

// The position of the era with this name, other than `except`; -1 when there is none. The tools
// keep names unique; should a project file hold two alike, the first is the one meant.
qsizetype eraNamed(const QList<core::TimelineEra> &eras, const QString &name, qsizetype except = -1)
{
    for (qsizetype i = 0; i < eras.size(); ++i) {
        if (i != except && sameEraName(eras.at(i).name, name))
            return i;
    }
    return -1;
}

bool isColor(const QString &text)
{
    static const QRegularExpression pattern(u"^#[0-9A-Fa-f]{6}$"_s);
    return pattern.match(text).hasMatch();
}

// Every era action replaces the project's era list as one whole, in one undo step labelled by
// what it did ("MCP: add era", "MCP: remove era", "MCP: rename era"), so the history reads as
// the writer would describe the changes.
McpToolResult applyEras(ToolContext &context, core::Project &project,
                        const QList<core::TimelineEra> &eras, const QString &label,
                        const QString &text)
{
    auto change = std::make_unique<core::CompositeCommand>(label);
    change->append(std::make_unique<core::SetTimelineErasCommand>(project, eras));
    return applyChange(context, std::move(change), text);
}

// A new era goes at the end of the list; "get_timeline" shows eras in story order whatever
// their order here.
McpToolResult addEra(ToolContext &context, const ToolArguments &arguments, core::Project &project)
{
    const QString name = arguments.trimmed(u"name"_s);
    if (const Result<void> line = checkSingleLine(u"name"_s, name); !line)
        return McpToolResult::failure(line.error());
    if (arguments.trimmed(u"start"_s).isEmpty() || arguments.trimmed(u"end"_s).isEmpty())
        return McpToolResult::failure(u"Adding an era needs \"start\" and \"end\" dates."_s);
    const core::Calendar &calendar = project.calendar();
    const Result<qint64> start = parseStoryDate(calendar, arguments.text(u"start"_s));
    if (!start)
        return McpToolResult::failure(start.error());
    const Result<qint64> end = parseStoryDate(calendar, arguments.text(u"end"_s));
    if (!end)
        return McpToolResult::failure(end.error());
    const QString startText = core::formatInstant(calendar, *start);
    const QString endText = core::formatInstant(calendar, *end);
    // The dates are quoted as the calendar read them, which shows why the end comes first.
    if (*end < *start) {
        return McpToolResult::failure(
            u"The era's end '%1' is before its start '%2'."_s.arg(endText, startText));
    }
    QList<core::TimelineEra> eras = project.timelineEras();
    if (eraNamed(eras, name) >= 0)
        return McpToolResult::failure(eraNameTaken(name));
    const QString color = arguments.trimmed(u"color"_s);
    if (!color.isEmpty() && !isColor(color)) {
        return McpToolResult::failure(
            u"\"color\" must be written \"#RRGGBB\" (for example \"#336699\")."_s);
    }
    eras.append({name, color, *start, *end});
    return applyEras(context, project, eras, u"MCP: add era"_s,
                     u"Added the era '%1' (%2 to %3)."_s.arg(name, startText, endText));
}

McpToolResult removeEra(ToolContext &context, const ToolArguments &arguments, core::Project &project)
{
    const QString name = arguments.trimmed(u"name"_s);
    QList<core::TimelineEra> eras = project.timelineEras();
    const qsizetype index = eraNamed(eras, name);
    if (index < 0)
        return McpToolResult::failure(noEraNamed(name));
    const core::TimelineEra removed = eras.takeAt(index);
    return applyEras(context, project, eras, u"MCP: remove era"_s,
                     u"Removed the era '%1'."_s.arg(removed.name));
}

McpToolResult renameEra(ToolContext &context, const ToolArguments &arguments, core::Project &project)
{
    const QString name = arguments.trimmed(u"name"_s);
    QList<core::TimelineEra> eras = project.timelineEras();
    const qsizetype index = eraNamed(eras, name);
    if (index < 0)
        return McpToolResult::failure(noEraNamed(name));
    const QString newName = arguments.trimmed(u"new_name"_s);
    if (newName.isEmpty())
        return McpToolResult::failure(u"Renaming an era needs a non-empty \"new_name\"."_s);
    if (const Result<void> line = checkSingleLine(u"new_name"_s, newName); !line)
        return McpToolResult::failure(line.error());
    // The era itself does not hold the name it is given: a rename may change only letter case.
    if (eraNamed(eras, newName, index) >= 0)
        return McpToolResult::failure(eraNameTaken(newName));
    const QString oldName = eras.at(index).name;
    if (oldName == newName) {
        return McpToolResult::success(
            u"The era '%1' already has that name; nothing changed."_s.arg(oldName));
    }
    eras[index].name = newName;
    return applyEras(context, project, eras, u"MCP: rename era"_s,
                     u"Renamed the era '%1' to '%2'."_s.arg(oldName, newName));
}

} // namespace

const ToolActionTable<core::Project> &eraActions()
{
    // "add" comes first: a call without an action that names an era with its dates adds it,
    // and one without dates is told what adding needs.
    static const ToolActionTable<core::Project> actions{
        {u"add"_s, addEra},
        {u"remove"_s, removeEra},
        {u"rename"_s, renameEra},
    };
    return actions;
}

McpToolResult manageEras(ToolContext &context, const ToolArguments &arguments)
{
    if (arguments.trimmed(u"name"_s).isEmpty())
        return McpToolResult::failure(u"manage_eras needs \"name\" (the era's name)."_s);
    return runAction(eraActions(), arguments.text(u"action"_s), context, arguments,
                     context.workspace().project(), [](const QString &requested) {
                         return u"Unknown action '%1' (use add, remove, or rename)."_s.arg(
                             requested.trimmed());
                     });
}

} // namespace fb::app
