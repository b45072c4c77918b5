#pragma once

#include "server/mcptoolresult.h"

#include <QJsonObject>

namespace fb::app {

class McpChangeLog;
class Workspace;

// The handlers of the overview, search and comment tools; overviewtools.cpp registers them.

McpToolResult getProjectOverview(Workspace &workspace);
McpToolResult searchProject(Workspace &workspace, const QJsonObject &arguments);

McpToolResult addComment(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult listComments(Workspace &workspace, const QJsonObject &arguments);
McpToolResult replyComment(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult resolveComment(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);

} // namespace fb::app
