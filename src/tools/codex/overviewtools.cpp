#include "tools/codex/codexfamily.h"

#include "server/mcpserver.h"
#include "tools/codex/overviewhandlers.h"

namespace fb::app {

namespace {

const QString authorDescription = QStringLiteral("The display author; defaults to \"Claude\".");
const QString commentIdDescription =
    QStringLiteral("The comment's id, as list_comments prints it.");
const QString targetIdDescription =
    QStringLiteral("The target's id, when its name is ambiguous.");

McpToolDescriptor projectOverviewTool()
{
    return toolDescriptor(
        QStringLiteral("get_project_overview"),
        QStringLiteral("The project at a glance: object counts per content type, the category "
                       "tree with entity counts, the calendar, the audience registry, and the "
                       "mounted libraries with their permissions."));
}

McpToolDescriptor searchTool()
{
    return toolDescriptor(
        QStringLiteral("search"),
        QStringLiteral("Searches every content type by title/name and entity aliases, plus "
                       "document body text, across the project and its mounted libraries. Returns "
                       "up to 50 matches with one-line context and says so honestly when capped."),
        ToolSchema()
            .string(QStringLiteral("query"),
                    QStringLiteral("What to find; matched case-insensitively."))
            .required());
}

McpToolDescriptor addCommentTool()
{
    return toolDescriptor(
        QStringLiteral("add_comment"),
        QStringLiteral("Adds a review comment on a named object (Markdown body permitted)."),
        ToolSchema()
            .string(QStringLiteral("target"),
                    QStringLiteral("The title or name (or an entity's alias) of the object to "
                                   "comment on."))
            .string(QStringLiteral("target_id"), targetIdDescription)
            .string(QStringLiteral("body"), QStringLiteral("The comment text (Markdown)."))
            .required()
            .string(QStringLiteral("author"), authorDescription)
            .string(QStringLiteral("anchor"),
                    QStringLiteral("An optional locator within the target (e.g. a quoted "
                                   "snippet).")));
}

McpToolDescriptor listCommentsTool()
{
    return toolDescriptor(
        QStringLiteral("list_comments"),
        QStringLiteral("Lists comment threads: for one target, or grouped by target across the "
                       "whole project. Only threads with open work unless include_resolved is "
                       "true."),
        ToolSchema()
            .string(QStringLiteral("target"),
                    QStringLiteral("The title or name of one object whose threads to list; omit "
                                   "for the whole project."))
            .string(QStringLiteral("target_id"), targetIdDescription)
            .boolean(QStringLiteral("include_resolved"),
                     QStringLiteral("Also list threads whose comments are all resolved (default "
                                    "false).")));
}

McpToolDescriptor replyCommentTool()
{
    return toolDescriptor(
        QStringLiteral("reply_comment"),
        QStringLiteral("Posts a threaded reply to an existing comment (address it by the id "
                       "list_comments prints). The reply shares the original's target and joins "
                       "its thread."),
        ToolSchema()
            .string(QStringLiteral("comment"), commentIdDescription)
            .required()
            .string(QStringLiteral("body"), QStringLiteral("The reply text (Markdown)."))
            .required()
            .string(QStringLiteral("author"), authorDescription));
}

McpToolDescriptor resolveCommentTool()
{
    return toolDescriptor(
        QStringLiteral("resolve_comment"),
        QStringLiteral("Marks a comment resolved (or reopens it with resolved: false). Address it "
                       "by the id list_comments prints."),
        ToolSchema()
            .string(QStringLiteral("comment"), commentIdDescription)
            .required()
            .boolean(QStringLiteral("resolved"),
                     QStringLiteral("true (the default) to resolve the comment, false to reopen "
                                    "it.")));
}

} // namespace

void registerOverviewTools(McpServer &server, Workspace &workspace, McpChangeLog &log)
{
    using Args = const QJsonObject &;
    server.addTool(projectOverviewTool(), [&](Args) { return getProjectOverview(workspace); });
    server.addTool(searchTool(), [&](Args a) { return searchProject(workspace, a); });
    server.addTool(addCommentTool(), [&](Args a) { return addComment(workspace, log, a); });
    server.addTool(listCommentsTool(), [&](Args a) { return listComments(workspace, a); });
    server.addTool(replyCommentTool(), [&](Args a) { return replyComment(workspace, log, a); });
    server.addTool(resolveCommentTool(), [&](Args a) { return resolveComment(workspace, log, a); });
}

} // namespace fb::app
