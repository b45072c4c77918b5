#include "tools/registration.h"
#include "tools/timeline/timelinehandlers.h"
#include "tools/world/worldfamily.h"

using namespace Qt::StringLiterals;

namespace fb::app {

// Timelines and eras: reading every timeline, creating and changing dated events, and the named
// bands of story time; then the continuity checks over them.
std::vector<ToolDefinition> timelineTools()
{
    std::vector<ToolDefinition> tools{
        {u"get_timeline"_s,
         u"Reads the project's timeline(s): every event with its date(s) in the project "
         "calendar, participants and location by name, plus the named eras. Pass "
         "\"timeline\" to read one timeline; omit it for all."_s,
         {optionalText(u"timeline"_s, u"The title of the timeline to read; omit it to read every "
                                      "timeline."_s)},
         getTimeline},
        {u"create_timeline_event"_s,
         u"Creates a timeline event dated in the project calendar. Participants and the "
         "location are entity names (or aliases); unknown names fail rather than being "
         "dropped. \"timeline\" picks (or creates) a named timeline; omitted, the project's "
         "first timeline is used."_s,
         {requiredText(u"title"_s, u"The event's title."_s),
          requiredText(u"when"_s, u"When it happens, in the project calendar (e.g. \"25 "
                                  "Harvestmoon 1250\", optionally with a time \"14:30\")."_s),
          optionalText(u"until"_s, u"When it ends, for an event that lasts; omit it for a "
                                   "moment in time."_s),
          optionalText(u"description"_s, u"What happens."_s),
          optionalTextList(u"participants"_s,
                           u"The entities taking part, by name or alias (or by id when a name "
                           "is ambiguous)."_s),
          optionalText(u"location"_s, u"The entity where it happens, by name or alias (or id)."_s),
          optionalText(u"timeline"_s, u"The title of the timeline to add it to, created when no "
                                      "timeline has it; omit it for the first timeline."_s)},
         createTimelineEvent},
        {u"update_timeline_event"_s,
         u"Updates an existing timeline event, addressed by its title. Sparse: only the "
         "keys you provide change (new_title, when, until, description, participants, "
         "location); an empty \"until\"/\"location\"/\"description\" clears that field."_s,
         {requiredText(u"event"_s, u"The event's current title."_s),
          optionalText(u"new_title"_s, u"Rename the event to this title."_s),
          optionalText(u"when"_s, u"Move the event to this start date; an event that lasts "
                                  "keeps its length."_s),
          optionalText(u"until"_s,
                       u"The new end date; an empty string makes the event a moment in time."_s),
          optionalText(u"description"_s, u"Replace the description (empty clears it)."_s),
          optionalTextList(u"participants"_s,
                           u"Replace the whole participant list: entity names or aliases (or "
                           "ids); an empty list clears it."_s),
          optionalText(u"location"_s,
                       u"The new location, an entity name or alias (or id); empty clears it."_s)},
         updateTimelineEvent},
        {u"manage_eras"_s,
         u"Adds, removes, or renames a named era (the labelled background bands of story "
         "time). \"add\" needs \"start\" and \"end\" dates in the project calendar; "
         "\"rename\" needs \"new_name\"."_s,
         {optionalChoice(u"action"_s, u"add (default), remove, or rename."_s,
                         actionNames(eraActions())),
          requiredText(u"name"_s, u"The era's name (for add, the new era's name)."_s),
          optionalText(u"start"_s, u"add: the era's first date, in the project calendar."_s),
          optionalText(u"end"_s, u"add: the era's last date, in the project calendar."_s),
          optionalText(u"color"_s, u"add: the band's colour, written \"#RRGGBB\"."_s),
          optionalText(u"new_name"_s, u"rename: the era's new name."_s)},
         manageEras},
    };
    for (ToolDefinition &tool : continuityTools())
        tools.push_back(std::move(tool));
    return tools;
}

} // namespace fb::app
