#pragma once

#include "server/mcptoolresult.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace fb::app {

class ToolArguments;
class ToolContext;

// One action of an action-style tool ("manage_variants" with "create", "switch", ...), and the
// handler that carries it out on the subject the tool resolved first (a document, a map, ...).
template<typename Subject>
struct ToolAction
{
    QString name;
    std::function<McpToolResult(ToolContext &, const ToolArguments &, Subject &)> run;
};

template<typename Subject>
using ToolActionTable = std::vector<ToolAction<Subject>>;

// The action names in table order, for the schema's "enum" and for refusals.
template<typename Subject>
QStringList actionNames(const ToolActionTable<Subject> &table)
{
    QStringList names;
    for (const ToolAction<Subject> &action : table)
        names.append(action.name);
    return names;
}

// Runs the action named `requested` (compared trimmed and case-insensitively; an empty name
// runs the table's first action). An unknown name is answered with `unknownAction(requested)`.
template<typename Subject>
McpToolResult runAction(const ToolActionTable<Subject> &table, const QString &requested,
                        ToolContext &context, const ToolArguments &arguments, Subject &subject,
                        const std::function<QString(const QString &requested)> &unknownAction)
{
    const QString wanted = requested.trimmed();
    for (const ToolAction<Subject> &action : table) {
        if (wanted.isEmpty() || action.name.compare(wanted, Qt::CaseInsensitive) == 0)
            return action.run(context, arguments, subject);
    }
    return McpToolResult::failure(unknownAction(requested));
}

} // namespace fb::app
