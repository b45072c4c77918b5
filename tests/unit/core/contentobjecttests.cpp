#include "core/calendar.h"
#include "core/contentobjects.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using namespace fb::core;

TEST(ContentObject, EmptyAudienceSetIsVisibleToEveryoneAndOneAudienceHidesFromOthers)
{
    struct Case
    {
        const char *name;
        QStringList visibleTo;
        QString audience;
        bool visible;
    };
    const Case cases[] = {
        {"empty set, any audience", {}, u"Beta readers"_s, true},
        {"empty set, empty name", {}, QString(), true},
        {"member", {u"Beta readers"_s}, u"Beta readers"_s, true},
        {"other audience", {u"Beta readers"_s}, u"Editor"_s, false},
        {"names compare exactly", {u"Beta readers"_s}, u"beta readers"_s, false},
        {"one of several", {u"Editor"_s, u"Agent"_s}, u"Agent"_s, true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Document document(u"Chapter One"_s);
        document.setVisibleTo(c.visibleTo);
        EXPECT_EQ(document.isVisibleTo(c.audience), c.visible);
    }
}

TEST(ContentObject, AudienceAndTagSetsAreKeptSortedWithoutRepeats)
{
    Entity entity(u"Mara"_s);
    entity.setVisibleTo({u"Editor"_s, u"Agent"_s, u"Editor"_s});
    entity.setTags({u"villain"_s, u"Major"_s, u"villain"_s, u"arc"_s});
    EXPECT_EQ(entity.visibleTo(), QStringList({u"Agent"_s, u"Editor"_s}));
    EXPECT_EQ(entity.tags(), QStringList({u"Major"_s, u"arc"_s, u"villain"_s}));
}

TEST(Task, NewTaskIsOnTheTasksBoardInToDoWithNormalPriorityAndNoDueDate)
{
    const Task titled(u"Send query letters"_s);
    const std::unique_ptr<const ContentObject> created = createContentObject(ObjectType::Task,
                                                                             QUuid::createUuid());
    for (const Task *task : {&titled, objectCast<Task>(created.get())}) {
        ASSERT_NE(task, nullptr);
        EXPECT_EQ(task->board(), u"Tasks"_s);
        EXPECT_EQ(task->status(), u"To Do"_s);
        EXPECT_EQ(task->priority(), TaskPriority::Normal);
        EXPECT_FALSE(task->isDone());
        EXPECT_FALSE(task->dueDate().isValid());
        EXPECT_TRUE(task->targetId().isNull());
        EXPECT_EQ(task->submission(), Submission());
    }
    EXPECT_EQ(titled.title(), u"Send query letters"_s);
}

TEST(Document, NewDocumentIsTopLevelProseWithoutSceneInstant)
{
    const Document document(u"Prologue"_s);
    EXPECT_EQ(document.kind(), DocumentKind::Prose);
    EXPECT_TRUE(document.parentId().isNull());
    EXPECT_FALSE(document.sceneInstant().has_value());
    EXPECT_EQ(document.sortIndex(), 0);
    EXPECT_FALSE(document.isAiExcluded());
    EXPECT_FALSE(document.id().isNull());
    EXPECT_NE(document.id(), Document(u"Prologue"_s).id());
}

TEST(ContentObjects, FactoryMakesEveryTypeWithTheGivenId)
{
    const QUuid id = QUuid::createUuid();
    for (qint32 code = 0; code < 15; ++code) {
        SCOPED_TRACE(code);
        const auto type = static_cast<ObjectType>(code);
        const std::unique_ptr<ContentObject> object = createContentObject(type, id);
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(object->type(), type);
        EXPECT_EQ(object->id(), id);
        EXPECT_EQ(object->typeName(), enumName(type));
    }
    EXPECT_EQ(createContentObject(static_cast<ObjectType>(15), id), nullptr);
}

TEST(ContentObjects, TitleOfAMediaItemIsItsAssetFileName)
{
    struct Case
    {
        QString path;
        QString title;
    };
    const Case cases[] = {
        {u"assets/maps/harbour.png"_s, u"harbour.png"_s},
        {u"assets\\audio\\theme.ogg"_s, u"theme.ogg"_s},
        {u"cover.jpg"_s, u"cover.jpg"_s},
        {QString(), u"(untitled media)"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.path.toStdString());
        Media media;
        media.setAssetPath(c.path);
        EXPECT_EQ(objectTitle(media), c.title);
    }
    EXPECT_EQ(objectTitle(Entity(u"Mara"_s)), u"Mara"_s);
    EXPECT_EQ(objectTitle(Language(u"High Elvish"_s)), u"High Elvish"_s);
    EXPECT_EQ(objectTitle(Comment()), QString());
}

TEST(ContentObject, EverySetterStampsANewRevision)
{
    Document document;
    Entity entity;
    Spreadsheet sheet;
    Chart chart;
    Map map;
    TimelineEvent event;
    Media media;
    Source source;
    Task task;
    Canvas canvas;
    Comment comment;
    Language language;
    RandomTable table;
    StatBlock block;
    struct Case
    {
        const char *name;
        ContentObject *object;
        std::function<void()> change;
    };
    const Case cases[] = {
        {"tags", &document, [&] { document.setTags({u"draft"_s}); }},
        {"visibility", &document, [&] { document.setVisibleTo({u"Editor"_s}); }},
        {"AI exclusion", &document, [&] { document.setAiExcluded(true); }},
        {"preserved keys", &document,
         [&] {
             document.setPreservedProperties({{u"x"_s, 1}});
         }},
        {"body", &document, [&] { document.setBody(u"Once."_s); }},
        {"same value again", &document, [&] { document.setBody(u"Once."_s); }},
        {"footnotes", &document,
         [&] {
             document.setFootnotes({{u"fn1"_s, u"See."_s, false}});
         }},
        {"entity lifespan", &entity, [&] { entity.setBirthInstant(1440); }},
        {"cell", &sheet,
         [&] {
             sheet.setCellText({1, 2}, u"=A1"_s);
         }},
        {"chart record", &chart, [&] { chart.setRecord({}); }},
        {"map pins", &map, [&] { map.setPins({MapPin{}}); }},
        {"event constraints", &event,
         [&] {
             event.setConstraints({{QUuid(), u"before"_s}});
         }},
        {"caption", &media, [&] { media.setCaption(u"Dawn"_s); }},
        {"source fields", &source,
         [&] {
             source.setFields({{u"author"_s, u"Fostiom"_s}});
         }},
        {"submission", &task, [&] { task.setSubmission({}); }},
        {"cards", &canvas, [&] { canvas.setCards({CanvasCard{}}); }},
        {"resolved", &comment, [&] { comment.setResolved(true); }},
        {"lexicon", &language,
         [&] {
             language.setLexicon({{u"ka"_s, u"sun"_s, {}, {}}});
         }},
        {"entries", &table,
         [&] {
             table.setEntries({{u"Wolves"_s, 2}});
         }},
        {"stats", &block,
         [&] {
             block.setStats({{u"STR"_s, u"18"_s}});
         }},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const quint64 before = c.object->revision();
        c.change();
        EXPECT_GT(c.object->revision(), before);
    }
    EXPECT_NE(document.revision(), entity.revision());
}

TEST(Spreadsheet, SettingAnEmptyTextRemovesTheCell)
{
    Spreadsheet sheet(u"Budget"_s);
    sheet.setCellText({0, 1}, u"=SUM(B2:B9)"_s);
    EXPECT_EQ(sheet.cellText({0, 1}), u"=SUM(B2:B9)"_s);
    sheet.setCellText({0, 1}, QString());
    EXPECT_TRUE(sheet.cells().isEmpty());
}

TEST(Calendar, DefaultCalendarHasTwelveGregorianMonthsOf365DaysAndSevenWeekdays)
{
    const Calendar calendar = Calendar::defaultCalendar();
    ASSERT_EQ(calendar.months.size(), 12);
    EXPECT_EQ(calendar.months.at(0), (CalendarMonth{u"January"_s, 31}));
    EXPECT_EQ(calendar.months.at(1), (CalendarMonth{u"February"_s, 28}));
    EXPECT_EQ(calendar.months.at(11), (CalendarMonth{u"December"_s, 31}));
    EXPECT_EQ(calendar.daysPerYear(), 365);
    EXPECT_EQ(calendar.weekdays.first(), u"Monday"_s);
    EXPECT_EQ(calendar.weekdays.last(), u"Sunday"_s);
    EXPECT_EQ(calendar.weekdays.size(), 7);
    EXPECT_TRUE(calendar.eraName.isEmpty());
}
