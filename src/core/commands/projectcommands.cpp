#include "core/commands/projectcommands.h"

namespace fb::core {

QString SetPlotThreadsCommand::label() const
{
    return QStringLiteral("Edit plot threads");
}

QString SetBeatSheetCommand::label() const
{
    return QStringLiteral("Edit beat sheet");
}

QString SetCalendarCommand::label() const
{
    return QStringLiteral("Set calendar");
}

QString SetContinuityRulesCommand::label() const
{
    return QStringLiteral("Set continuity rules");
}

QString SetTimelineErasCommand::label() const
{
    return QStringLiteral("Set timeline eras");
}

} // namespace fb::core
