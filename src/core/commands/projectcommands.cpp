#include "core/commands/projectcommands.h"

using namespace Qt::StringLiterals;

namespace fb::core {

QString SetPlotThreadsCommand::label() const
{
    return u"Edit plot threads"_s;
}

QString SetBeatSheetCommand::label() const
{
    return u"Edit beat sheet"_s;
}

QString SetCalendarCommand::label() const
{
    return u"Set calendar"_s;
}

QString SetContinuityRulesCommand::label() const
{
    return u"Set continuity rules"_s;
}

QString SetTimelineErasCommand::label() const
{
    return u"Set timeline eras"_s;
}

} // namespace fb::core
