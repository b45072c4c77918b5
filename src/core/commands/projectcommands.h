#pragma once

// The commands that replace one project-wide collection whole. Each holds the project and is
// constructed as (Project &, new value).

#include "core/commands/valuecommands.h"

namespace fb::core {

template<typename Value, auto Getter, auto Setter>
using ProjectSwapCommand = MemberSwapCommand<Project, Value, Getter, Setter>;

class SetPlotThreadsCommand final
    : public ProjectSwapCommand<QList<PlotThread>, &Project::plotThreads, &Project::setPlotThreads>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The applied template and every beat assignment.
class SetBeatSheetCommand final
    : public ProjectSwapCommand<BeatSheet, &Project::beatSheet, &Project::setBeatSheet>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The story calendar. Stored instants are not touched: they are read in the new calendar.
class SetCalendarCommand final
    : public ProjectSwapCommand<Calendar, &Project::calendar, &Project::setCalendar>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetContinuityRulesCommand final
    : public ProjectSwapCommand<QList<ContinuityRule>, &Project::continuityRules,
                                &Project::setContinuityRules>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The named bands of story time that every timeline shows.
class SetTimelineErasCommand final
    : public ProjectSwapCommand<QList<TimelineEra>, &Project::timelineEras, &Project::setTimelineEras>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

} // namespace fb::core
