#pragma once

#include <QString>

namespace fb::app {

// What every tool handler returns: whether the tool did what was asked, and the whole answer
// for the agent (the content on success, the reason on failure).
struct McpToolResult
{
    bool ok = false;
    QString text;

    static McpToolResult success(QString text) { return {true, std::move(text)}; }
    static McpToolResult failure(QString message) { return {false, std::move(message)}; }
};

} // namespace fb::app
