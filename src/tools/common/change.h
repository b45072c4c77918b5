#pragma once

#include "server/mcptoolresult.h"

#include <QString>

#include <functional>
#include <memory>

namespace fb::core {
class CompositeCommand;
}

namespace fb::app {

class ToolContext;

// Every change a tool makes goes through here, so each call is one undo step, saved at once and
// written in the session's change log.

// Runs a mutating tool's body as one undo step, saves the project at once and logs the success
// text. Nothing is tried while the project cannot be written (it cannot be read on disk, or is
// read-only). A body that fails after pushing commands is rolled back, so a failing call
// changes nothing; so is a change whose save is refused (another program changed a file it
// would replace): nothing reaches the disk and the refusal is the result. A save that fails
// while writing leaves the change applied and undoable but unlogged.
McpToolResult applyLogSave(ToolContext &context, const QString &label,
                           const std::function<McpToolResult()> &body);

// The usual case: one labelled composite built by a handler after all validation, with the text
// to report once it is saved.
McpToolResult applyChange(ToolContext &context, std::unique_ptr<core::CompositeCommand> change,
                          const QString &successText);

// Undoes the newest step of this session and saves, logging "Undid the last change.".
McpToolResult undoAndSave(ToolContext &context);

} // namespace fb::app
