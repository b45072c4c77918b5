#pragma once

#include "server/mcptoolresult.h"

#include <QJsonObject>

namespace fb::app {

class McpChangeLog;
class Workspace;

// The handlers of the manuscript tools; documenttools.cpp registers them.

McpToolResult getManuscriptTree(Workspace &workspace);
McpToolResult getDocument(Workspace &workspace, const QJsonObject &arguments);

McpToolResult createDocument(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult updateDocument(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult appendToDocument(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);

McpToolResult findReplace(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);

McpToolResult listFootnotes(Workspace &workspace, const QJsonObject &arguments);
McpToolResult addFootnote(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult updateFootnote(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);
McpToolResult removeFootnote(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);

McpToolResult getDocumentVersions(Workspace &workspace, const QJsonObject &arguments);
McpToolResult snapshotDocumentVersion(Workspace &workspace, McpChangeLog &log,
                                      const QJsonObject &arguments);
McpToolResult manageVariants(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments);

} // namespace fb::app
