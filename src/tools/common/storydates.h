#pragma once

#include "core/result.h"

#include <QString>

namespace fb::core {
struct Calendar;
}

namespace fb::app {

// The refusal of every tool that takes a story date it cannot read; the text is quoted as the
// agent typed it.
QString dateNotUnderstoodMessage(const QString &text);

// A story date typed by the agent, read in the project calendar, or that refusal.
Result<qint64> parseStoryDate(const core::Calendar &calendar, const QString &text);

} // namespace fb::app
