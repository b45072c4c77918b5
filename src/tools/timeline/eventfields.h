#pragma once

#include "core/result.h"

#include <QList>
#include <QString>
#include <QUuid>

namespace fb::app {

class ToolArguments;
class ToolContext;

// The arguments that describe an event, read alike by "create_timeline_event" and
// "update_timeline_event": dates in the project calendar, entities by name or alias.

// A date argument as the agent typed it, read in the project calendar.
Result<qint64> dateArgument(ToolContext &context, const ToolArguments &arguments,
                            const QString &key);

// The minutes from start to an end that does not lie before it, or the refusal of a span too
// long to store.
Result<qint64> storableDuration(ToolContext &context, qint64 start, qint64 end);

// "participants": every name resolved, in order.
Result<QList<QUuid>> participantsArgument(ToolContext &context, const ToolArguments &arguments);

// "location": the entity it names, or the null id when it is empty.
Result<QUuid> locationArgument(ToolContext &context, const ToolArguments &arguments);

} // namespace fb::app
