#include "storage/projectsettingscodec.h"

#include "core/project.h"
#include "storage/storedvalues.h"

using namespace Qt::StringLiterals;

namespace fb::app {

using namespace core;

namespace {

// Each absent member keeps the fallback's value, so a calendar stored without its months
// still reads as a usable calendar.
Calendar readCalendar(const QJsonObject &json, const Calendar &fallback)
{
    JsonReader reader(json);
    Calendar calendar = fallback;
    calendar.name = reader.string("name"_L1, fallback.name);
    if (reader.value("months"_L1).isArray()) {
        calendar.months = reader.list<CalendarMonth>("months"_L1, [](JsonReader &item) {
            CalendarMonth month;
            month.name = item.string("name"_L1);
            month.days = item.int32("days"_L1, month.days);
            return month;
        });
    }
    if (reader.value("weekdays"_L1).isArray())
        calendar.weekdays = reader.strings("weekdays"_L1);
    calendar.eraName = reader.string("eraName"_L1, fallback.eraName);
    return calendar;
}

QJsonObject calendarJson(const Calendar &calendar)
{
    return QJsonObject{
        {"name"_L1, calendar.name},
        {"months"_L1,
         jsonArray(calendar.months,
                   [](const CalendarMonth &month) {
                       return QJsonObject{{"name"_L1, month.name}, {"days"_L1, month.days}};
                   })},
        {"weekdays"_L1, stringArray(calendar.weekdays)},
        {"eraName"_L1, calendar.eraName},
    };
}

void readCollections(JsonReader &reader, Project &project)
{
    project.setSavedSearches(reader.list<SavedSearch>("savedSearches"_L1, [](JsonReader &item) {
        return SavedSearch{item.string("name"_L1), item.string("query"_L1)};
    }));
    project.setEntityTemplates(
        reader.list<EntityTemplate>("entityTemplates"_L1, [](JsonReader &item) {
            return EntityTemplate{item.string("name"_L1), item.id("categoryId"_L1),
                                  item.textMap("fieldValues"_L1)};
        }));
    project.setPlotThreads(reader.list<PlotThread>("plotThreads"_L1, [](JsonReader &item) {
        return PlotThread{item.id("id"_L1), item.string("name"_L1), item.string("description"_L1),
                          item.id("characterId"_L1), item.string("color"_L1)};
    }));
    project.setContinuityRules(
        reader.list<ContinuityRule>("continuityRules"_L1, [](JsonReader &item) {
            ContinuityRule rule;
            rule.name = item.string("name"_L1);
            rule.entityId = item.id("entityId"_L1);
            rule.fieldKey = item.string("fieldKey"_L1);
            rule.value = item.string("value"_L1);
            rule.comparison = item.string("comparison"_L1, rule.comparison);
            rule.instant = item.optionalInt64("instant"_L1);
            return rule;
        }));
    project.setMounts(reader.list<Mount>("mounts"_L1, [](JsonReader &item) {
        return Mount{item.string("name"_L1), item.string("path"_L1), item.boolean("writable"_L1)};
    }));
    project.setWritingLog(reader.list<WritingLogEntry>("writingLog"_L1, [](JsonReader &item) {
        return WritingLogEntry{item.date("date"_L1), item.int32("words"_L1)};
    }));

    JsonReader goal(reader.object("writingGoal"_L1));
    project.setWritingGoal(WritingGoal{goal.int32("dailyWordTarget"_L1),
                                       goal.int32("manuscriptWordTarget"_L1),
                                       goal.date("deadline"_L1)});

    JsonReader sheet(reader.object("beatSheet"_L1));
    project.setBeatSheet(
        BeatSheet{sheet.string("templateId"_L1),
                  sheet.list<BeatAssignment>("assignments"_L1, [](JsonReader &item) {
                      return BeatAssignment{item.string("beatName"_L1), item.id("documentId"_L1)};
                  })});
}

void readStoryTime(JsonReader &reader, Project &project)
{
    if (const QJsonValue stored = reader.value("calendar"_L1); stored.isObject())
        project.setCalendar(readCalendar(stored.toObject(), project.calendar()));
    project.setReckonings(reader.list<Reckoning>("reckonings"_L1, [](JsonReader &item) {
        return Reckoning{item.string("name"_L1), item.int64("epochOffsetMinutes"_L1),
                         readCalendar(item.object("calendar"_L1), Calendar())};
    }));
    project.setTimelineEras(reader.list<TimelineEra>("timelineEras"_L1, [](JsonReader &item) {
        return TimelineEra{item.string("name"_L1), item.string("color"_L1),
                           item.int64("startMinute"_L1), item.int64("endMinute"_L1)};
    }));
    project.setTimelineMarkers(
        reader.list<TimelineMarker>("timelineMarkers"_L1, [](JsonReader &item) {
            return TimelineMarker{item.string("name"_L1), item.int64("instant"_L1),
                                  item.boolean("isNow"_L1)};
        }));
    project.setTimelineBookmarks(
        reader.list<TimelineBookmark>("timelineBookmarks"_L1, [](JsonReader &item) {
            return TimelineBookmark{item.string("name"_L1), item.int64("startMinute"_L1),
                                    item.int64("endMinute"_L1)};
        }));
    project.setTimelineView(reader.object("timelineView"_L1).toVariantMap());
    project.setTimelineViewPresets(reader.array("timelineViewPresets"_L1).toVariantList());
}

void insertCollections(const Project &project, QJsonObject &json)
{
    json.insert("savedSearches"_L1, jsonArray(project.savedSearches(), [](const SavedSearch &s) {
                    return QJsonObject{{"name"_L1, s.name}, {"query"_L1, s.query}};
                }));
    json.insert("entityTemplates"_L1,
                jsonArray(project.entityTemplates(), [](const EntityTemplate &t) {
                    return QJsonObject{{"name"_L1, t.name},
                                       {"categoryId"_L1, idValue(t.categoryId)},
                                       {"fieldValues"_L1, textMapObject(t.fieldValues)}};
                }));
    json.insert("plotThreads"_L1, jsonArray(project.plotThreads(), [](const PlotThread &t) {
                    return QJsonObject{{"id"_L1, idValue(t.id)},
                                       {"name"_L1, t.name},
                                       {"description"_L1, t.description},
                                       {"characterId"_L1, idValue(t.characterId)},
                                       {"color"_L1, t.color}};
                }));
    json.insert("continuityRules"_L1,
                jsonArray(project.continuityRules(), [](const ContinuityRule &rule) {
                    QJsonObject item{{"name"_L1, rule.name},
                                     {"entityId"_L1, idValue(rule.entityId)},
                                     {"fieldKey"_L1, rule.fieldKey},
                                     {"value"_L1, rule.value},
                                     {"comparison"_L1, rule.comparison}};
                    insertOptional(item, "instant"_L1, rule.instant);
                    return item;
                }));
    json.insert("mounts"_L1, jsonArray(project.mounts(), [](const Mount &mount) {
                    return QJsonObject{{"name"_L1, mount.name},
                                       {"path"_L1, mount.path},
                                       {"writable"_L1, mount.writable}};
                }));
    json.insert("writingLog"_L1, jsonArray(project.writingLog(), [](const WritingLogEntry &e) {
                    return QJsonObject{{"date"_L1, dateValue(e.date)}, {"words"_L1, e.words}};
                }));
    const WritingGoal &goal = project.writingGoal();
    json.insert("writingGoal"_L1, QJsonObject{{"dailyWordTarget"_L1, goal.dailyWordTarget},
                                              {"manuscriptWordTarget"_L1, goal.manuscriptWordTarget},
                                              {"deadline"_L1, dateValue(goal.deadline)}});
    const BeatSheet &sheet = project.beatSheet();
    json.insert("beatSheet"_L1,
                QJsonObject{{"templateId"_L1, sheet.templateId},
                            {"assignments"_L1, jsonArray(sheet.assignments, [](const auto &a) {
                                 return QJsonObject{{"beatName"_L1, a.beatName},
                                                    {"documentId"_L1, idValue(a.documentId)}};
                             })}});
}

void insertStoryTime(const Project &project, QJsonObject &json)
{
    json.insert("calendar"_L1, calendarJson(project.calendar()));
    json.insert("reckonings"_L1, jsonArray(project.reckonings(), [](const Reckoning &r) {
                    return QJsonObject{{"name"_L1, r.name},
                                       {"epochOffsetMinutes"_L1, r.epochOffsetMinutes},
                                       {"calendar"_L1, calendarJson(r.calendar)}};
                }));
    json.insert("timelineEras"_L1, jsonArray(project.timelineEras(), [](const TimelineEra &era) {
                    return QJsonObject{{"name"_L1, era.name},
                                       {"color"_L1, era.color},
                                       {"startMinute"_L1, era.startMinute},
                                       {"endMinute"_L1, era.endMinute}};
                }));
    json.insert("timelineMarkers"_L1,
                jsonArray(project.timelineMarkers(), [](const TimelineMarker &marker) {
                    return QJsonObject{{"name"_L1, marker.name},
                                       {"instant"_L1, marker.instant},
                                       {"isNow"_L1, marker.isNow}};
                }));
    json.insert("timelineBookmarks"_L1,
                jsonArray(project.timelineBookmarks(), [](const TimelineBookmark &bookmark) {
                    return QJsonObject{{"name"_L1, bookmark.name},
                                       {"startMinute"_L1, bookmark.startMinute},
                                       {"endMinute"_L1, bookmark.endMinute}};
                }));
    json.insert("timelineView"_L1, QJsonObject::fromVariantMap(project.timelineView()));
    json.insert("timelineViewPresets"_L1,
                QJsonArray::fromVariantList(project.timelineViewPresets()));
}

} // namespace

void readProjectSettings(const QJsonObject &json, Project &project)
{
    JsonReader reader(json);
    project.setName(reader.string("name"_L1));
    project.setPinned(reader.ids("pinned"_L1));
    project.setAudiences(reader.strings("audiences"_L1));
    readCollections(reader, project);
    readStoryTime(reader, project);
    project.setPreservedProperties(reader.unreadProperties());
}

QJsonObject projectSettingsToJson(const Project &project)
{
    QJsonObject json = preservedJson(project.preservedProperties());
    json.insert("name"_L1, project.name());
    json.insert("pinned"_L1, idArray(project.pinned()));
    json.insert("audiences"_L1, stringArray(project.audiences()));
    insertCollections(project, json);
    insertStoryTime(project, json);
    return json;
}

} // namespace fb::app
