#pragma once

#include "server/mcptoolresult.h"
#include "tools/common/toolactions.h"

namespace fb::core {
class Document;
}

namespace fb::app {

class ToolArguments;
class ToolContext;

// The handlers of the manuscript tools; documenttools.cpp registers them.

McpToolResult getManuscriptTree(ToolContext &context, const ToolArguments &arguments);
McpToolResult getDocument(ToolContext &context, const ToolArguments &arguments);

McpToolResult createDocument(ToolContext &context, const ToolArguments &arguments);
McpToolResult updateDocument(ToolContext &context, const ToolArguments &arguments);
// Said when "word_count_target" is negative or not a whole number.
QString badWordCountTarget();
McpToolResult appendToDocument(ToolContext &context, const ToolArguments &arguments);

McpToolResult findReplace(ToolContext &context, const ToolArguments &arguments);

McpToolResult listFootnotes(ToolContext &context, const ToolArguments &arguments);
McpToolResult addFootnote(ToolContext &context, const ToolArguments &arguments);
McpToolResult updateFootnote(ToolContext &context, const ToolArguments &arguments);
McpToolResult removeFootnote(ToolContext &context, const ToolArguments &arguments);

McpToolResult getDocumentVersions(ToolContext &context, const ToolArguments &arguments);
McpToolResult snapshotDocumentVersion(ToolContext &context, const ToolArguments &arguments);
McpToolResult manageVariants(ToolContext &context, const ToolArguments &arguments);
// The actions of manage_variants, "list" first.
const ToolActionTable<core::Document> &variantActions();

} // namespace fb::app
