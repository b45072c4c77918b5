#pragma once

#include "server/mcptoolresult.h"

#include <QJsonObject>

namespace fb::app {

class McpChangeLog;
class Workspace;

// The handlers of the entity tools; entitytools.cpp registers them.

McpToolResult getEntity(Workspace &workspace, const QJsonObject &arguments);

McpToolResult createEntity(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult updateEntity(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);

McpToolResult deleteObject(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult mergeEntities(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult splitEntity(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);

McpToolResult setVisibility(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult setAiExclusion(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);

} // namespace fb::app
