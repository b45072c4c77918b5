#include "core/enumerations.h"
#include "core/ids.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;
using namespace fb::core;

TEST(Enumerations, TypeNamesMapToTheirCodesAndBack)
{
    const QStringList expected{u"document"_s, u"entity"_s,       u"spreadsheet"_s,    u"chart"_s,
                               u"map"_s,      u"timeline"_s,     u"timeline_event"_s, u"media"_s,
                               u"source"_s,   u"task"_s,         u"canvas"_s,         u"comment"_s,
                               u"language"_s, u"random_table"_s, u"stat_block"_s};
    for (qint32 code = 0; code < expected.size(); ++code) {
        SCOPED_TRACE(code);
        const auto type = static_cast<ObjectType>(code);
        EXPECT_EQ(enumName(type), expected.at(code));
        EXPECT_EQ(enumFromName<ObjectType>(expected.at(code)), type);
    }
    EXPECT_EQ(enumName(static_cast<ObjectType>(15)), QString());
    EXPECT_EQ(enumFromName<ObjectType>(u"Document"), std::nullopt);
    EXPECT_EQ(enumFromName<ObjectType>(u"timeline event"), std::nullopt);
    EXPECT_EQ(objectTypeNoun(ObjectType::TimelineEvent), u"timeline event"_s);
    EXPECT_EQ(objectTypeNoun(ObjectType::Media), u"media item"_s);
    EXPECT_EQ(objectTypeNoun(ObjectType::StatBlock), u"stat block"_s);
}

TEST(Enumerations, OnlyTheExactLowerCaseKindNamesMap)
{
    struct Case
    {
        QString name;
        std::optional<DocumentKind> kind;
    };
    const Case cases[] = {
        {u"prose"_s, DocumentKind::Prose}, {u"screenplay"_s, DocumentKind::Screenplay},
        {u"note"_s, DocumentKind::Note},   {u"Prose"_s, std::nullopt},
        {u"NOTE"_s, std::nullopt},         {u"screenPlay"_s, std::nullopt},
        {u" prose"_s, std::nullopt},       {u"notes"_s, std::nullopt},
        {QString(), std::nullopt},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name.toStdString());
        EXPECT_EQ(enumFromName<DocumentKind>(c.name), c.kind);
    }
}

TEST(Enumerations, CodesOutsideATableHaveAnEmptyName)
{
    EXPECT_EQ(enumName(static_cast<DocumentKind>(3)), QString());
    EXPECT_EQ(enumName(static_cast<DocumentKind>(-1)), QString());
    EXPECT_EQ(enumName(static_cast<TaskPriority>(4)), QString());
    EXPECT_EQ(enumName(static_cast<FieldType>(7)), QString());
    EXPECT_EQ(sourceKindDisplayName(static_cast<SourceKind>(11)), QString());
    EXPECT_EQ(enumName(DocumentKind::Note), u"note"_s);
}

TEST(Enumerations, EveryTableListsItsStoredNamesInCodeOrder)
{
    struct Case
    {
        const char *name;
        QStringList names;
        QString expected;
    };
    const Case cases[] = {
        {"priority", enumNames<TaskPriority>(), u"low normal high urgent"_s},
        {"submission", enumNames<SubmissionKind>(), u"agent publisher magazine contest other"_s},
        {"field type", enumNames<FieldType>(), u"text number boolean date reference choice url"_s},
        {"source kind", enumNames<SourceKind>(),
         u"book chapter article-journal article-magazine article-newspaper webpage report "
         u"thesis paper-conference manuscript other"_s},
        {"chart kind", enumNames<ChartKind>(), u"bar line area pie scatter"_s},
        {"grid kind", enumNames<GridKind>(), u"none square"_s},
        {"constraint kind", enumNames<ConstraintKind>(), u"before after during same_time"_s},
        {"comparison", enumNames<RuleComparison>(), u"equals notEquals"_s},
        {"alignment", enumNames<CellAlignment>(), u"default left center right"_s},
        {"number format", enumNames<NumberFormat>(),
         u"general number currency percent scientific"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.names.join(u' '), c.expected);
    }
    EXPECT_EQ(sourceKindDisplayName(SourceKind::ArticleJournal), u"Journal Article"_s);
    EXPECT_EQ(sourceKindDisplayName(SourceKind::Webpage), u"Website"_s);
}

TEST(Ids, TextIsWithoutBracesAndEmptyForTheNullId)
{
    const QUuid id = QUuid::fromString(u"{6F9619FF-8B86-D011-B42D-00C04FC964FF}");
    EXPECT_EQ(idText(id), u"6f9619ff-8b86-d011-b42d-00c04fc964ff"_s);
    EXPECT_EQ(objectLink(id), u"fablery://object/6f9619ff-8b86-d011-b42d-00c04fc964ff"_s);
    EXPECT_EQ(idFromText(u"6f9619ff-8b86-d011-b42d-00c04fc964ff"), id);
    EXPECT_EQ(idFromText(u"{6f9619ff-8b86-d011-b42d-00c04fc964ff}"), id);
    EXPECT_TRUE(idFromText(u"not an id").isNull());
    EXPECT_EQ(idText(QUuid()), QString());
    EXPECT_EQ(objectLink(QUuid()), QString());
}

TEST(Ids, CompareInTheOrderOfTheirText)
{
    // Random ids differ in their variant bits too, which QUuid's own ordering puts first.
    std::vector<QUuid> ids;
    for (int i = 0; i < 300; ++i)
        ids.push_back(QUuid::createUuid());
    ids.push_back(QUuid::fromString(u"ffffffff-0000-0000-0000-000000000000"));
    ids.push_back(QUuid::fromString(u"00000000-0000-0000-c000-000000000000"));
    std::sort(ids.begin(), ids.end(), IdTextLess());
    for (std::size_t i = 1; i < ids.size(); ++i)
        ASSERT_LT(idText(ids[i - 1]), idText(ids[i])) << i;
}
