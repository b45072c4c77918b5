#pragma once

#include "server/mcptoolresult.h"

#include <QString>

#include <functional>
#include <memory>

namespace fb::core {
class CompositeCommand;
}

namespace fb::app {

class McpChangeLog;
class Workspace;

// Runs a mutating tool's body as one undo step, saves the project at once and logs the success
// text. A body that fails after pushing commands is rolled back, so a failing call changes
// nothing. So is a change whose save is refused (another program changed a file it would
// replace): nothing reaches the disk and the refusal is the result. A save that fails while
// writing leaves the change applied and undoable but unlogged.
McpToolResult applyLogSave(Workspace &workspace, McpChangeLog &log, const QString &label,
                           const std::function<McpToolResult()> &body);

// The usual case: one labelled composite built by a handler after all validation, with the text
// to report once it is saved.
McpToolResult applyChange(Workspace &workspace, McpChangeLog &log,
                          std::unique_ptr<core::CompositeCommand> change, const QString &successText);

} // namespace fb::app
