#include "core/contentobjects.h"
#include "core/project.h"
#include "projectfoldertestutil.h"
#include "storage/projectfolder.h"
#include "support/printers.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using fb::app::ProjectFolderWriter;
using fb::app::readProjectFolder;

namespace {

QJsonObject readJson(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

QStringList sortedKeys(const QJsonObject &object)
{
    QStringList keys;
    for (const QString &key : object.keys()) {
        // The sample's unknown keys are checked by the round trip.
        if (!key.startsWith(u"future"_s))
            keys.append(key);
    }
    return keys;
}

QStringList expectedKeys(const QString &spaceSeparated)
{
    QStringList keys = spaceSeparated.split(u' ', Qt::SkipEmptyParts);
    keys.sort();
    return keys;
}

TEST(ProjectFolder, WritesTheSampleBackByteForByte)
{
    const auto project = readProjectFolder(everythingFolder());
    ASSERT_TRUE(project) << project.error().toStdString();

    QTemporaryDir dir;
    const QString copy = dir.filePath(u"nested/copy"_s);
    ProjectFolderWriter writer;
    fb::app::FolderWriteReport written;
    const fb::app::SaveOutcome outcome = writer.write(copy, **project, &written);
    ASSERT_TRUE(outcome.isSaved()) << outcome.message.toStdString();
    const auto *report = &written;

    const QMap<QString, QByteArray> original = folderFiles(everythingFolder());
    ASSERT_EQ(original.size(), 20);
    EXPECT_EQ(folderFiles(copy), original);
    EXPECT_EQ(report->written.size(), original.size());
    for (auto it = original.cbegin(); it != original.cend(); ++it) {
        SCOPED_TRACE(it.key().toStdString());
        EXPECT_EQ(report->written.value(it.key()), it.value());
    }
    EXPECT_TRUE(report->removed.isEmpty());
}

TEST(ProjectFolder, StoresEveryKeyUnderItsName)
{
    const QString common = u"id type visibleTo tags aiExcluded "_s;
    struct Case
    {
        const char *file;
        const char *arrayMember; // when set, the keys of its first element are checked
        QString keys;
    };
    const Case cases[] = {
        {"objects/00000000-0000-4000-8000-000000000002.json", nullptr,
         common
             + u"body kind title synopsis status pointOfView tensionLevel sceneInstant "
               "wordCountTarget parentId sortIndex sourceIds plotThreadIds revisionBaseline "
               "versions variants activeVariant footnotes"_s},
        {"objects/00000000-0000-4000-8000-000000000002.json", "versions", u"label createdAt body"_s},
        {"objects/00000000-0000-4000-8000-000000000002.json", "footnotes", u"id text endnote"_s},
        {"objects/00000000-0000-4000-8000-000000000003.json", nullptr,
         common
             + u"categoryId name aliases gallery values birthInstant deathInstant "
               "timedValues"_s},
        {"objects/00000000-0000-4000-8000-000000000005.json", nullptr,
         common
             + u"title rowCount columnCount cells formats columnWidths rowHeights "
               "linkedCategoryId"_s},
        {"objects/00000000-0000-4000-8000-000000000005.json", "formats",
         u"row column bold italic underline strikeOut fontFamily fontPointSize textColor "
         "backgroundColor alignment numberFormat decimalPlaces"_s},
        {"objects/00000000-0000-4000-8000-000000000006.json", nullptr,
         common + u"title kind categories series valueAxisTitle categoryAxisTitle"_s},
        {"objects/00000000-0000-4000-8000-000000000007.json", nullptr,
         common
             + u"title imageAssetPath regions routes travelSpeedPerHour distanceUnit "
               "widthDistance pins gridKind gridColumns gridColor tokens"_s},
        {"objects/00000000-0000-4000-8000-000000000007.json", "regions",
         u"label points linkedEntityId linkedMapId layer revealed"_s},
        {"objects/00000000-0000-4000-8000-000000000008.json", nullptr,
         common + u"title description sortIndex"_s},
        {"objects/00000000-0000-4000-8000-000000000009.json", nullptr,
         common
             + u"timelineId title startMinute durationMinutes ordinal dateQualifier "
               "participants locationId parentId collapsed constraints sceneIds description "
               "styleColor styleLabel layer"_s},
        {"objects/00000000-0000-4000-8000-000000000010.json", nullptr,
         common + u"kind caption assetPath annotations crop"_s},
        {"objects/00000000-0000-4000-8000-000000000011.json", nullptr,
         common + u"sourceType title citationKey fields"_s},
        {"objects/00000000-0000-4000-8000-000000000012.json", nullptr,
         common
             + u"title description done board priority dueDate status targetId sortIndex "
               "submission"_s},
        {"objects/00000000-0000-4000-8000-000000000013.json", nullptr,
         common + u"title cards connections"_s},
        {"objects/00000000-0000-4000-8000-000000000014.json", nullptr,
         common + u"targetId parentId anchor author body createdAt updatedAt resolved"_s},
        {"objects/00000000-0000-4000-8000-000000000015.json", nullptr,
         common
             + u"name consonants vowels patterns minSyllables maxSyllables grammarNotes "
               "lexicon"_s},
        {"objects/00000000-0000-4000-8000-000000000016.json", nullptr, common + u"title entries"_s},
        {"objects/00000000-0000-4000-8000-000000000017.json", nullptr,
         common + u"title system notes stats actions"_s},
        {"taxonomy/c0000000-0000-4000-8000-000000000001.json", nullptr,
         u"id name parentId fields"_s},
        {"taxonomy/c0000000-0000-4000-8000-000000000001.json", "fields",
         u"key type label required description options"_s},
        {"project.json", nullptr,
         u"name pinned savedSearches entityTemplates audiences plotThreads continuityRules "
         "timelineEras timelineMarkers timelineBookmarks beatSheet mounts writingLog writingGoal "
         "calendar reckonings timelineView timelineViewPresets"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + (c.arrayMember ? c.arrayMember : ""));
        QJsonObject json = readJson(QDir(everythingFolder()).filePath(QString::fromUtf8(c.file)));
        if (c.arrayMember)
            json = json.value(QString::fromUtf8(c.arrayMember)).toArray().first().toObject();
        EXPECT_EQ(sortedKeys(json), expectedKeys(c.keys));
    }
}

TEST(ProjectFolder, ReportsEachMalformedFileExactly)
{
    const QByteArray id = "0a1b2c3d-0000-4000-8000-000000000001";
    const QByteArray task = R"({"id": ")" + id + R"(", "type": "task"})";
    struct Case
    {
        const char *name;
        QList<std::pair<QString, QByteArray>> files;
        QString expected; // "{dir}" stands for the project folder
    };
    const Case cases[] = {
        {"missing project file", {}, u"Cannot read file: {dir}/project.json"_s},
        {"duplicate id",
         {{u"objects/a.json"_s, task}, {u"objects/b.json"_s, task}},
         u"Duplicate object id 0a1b2c3d-0000-4000-8000-000000000001 in {dir}/objects/b.json"_s},
        {"unknown type",
         {{u"objects/a.json"_s, R"({"id": ")" + id + R"(", "type": "novel"})"}},
         u"Malformed object file: {dir}/objects/a.json"_s},
        {"type name in another letter case",
         {{u"objects/a.json"_s, R"({"id": ")" + id + R"(", "type": "Task"})"}},
         u"Malformed object file: {dir}/objects/a.json"_s},
        {"null id",
         {{u"objects/a.json"_s, R"({"id": "", "type": "task"})"}},
         u"Malformed object file: {dir}/objects/a.json"_s},
        {"id of the wrong type",
         {{u"objects/a.json"_s, R"({"id": 7, "type": "task"})"}},
         u"Malformed object file: {dir}/objects/a.json"_s},
        {"invalid JSON",
         {{u"objects/a.json"_s, R"({"id": ")"}},
         u"Invalid JSON in file: {dir}/objects/a.json"_s},
        {"array instead of object",
         {{u"objects/a.json"_s, "[]"}},
         u"Invalid JSON in file: {dir}/objects/a.json"_s},
        {"invalid project file",
         {{u"project.json"_s, "nonsense"}},
         u"Invalid JSON in file: {dir}/project.json"_s},
        {"category without a name",
         {{u"taxonomy/c.json"_s, R"({"id": ")" + id + R"(", "fields": []})"}},
         u"Malformed category file: {dir}/taxonomy/c.json"_s},
        {"category with a blank name",
         {{u"taxonomy/c.json"_s, R"({"id": ")" + id + R"(", "name": "  "})"}},
         u"Malformed category file: {dir}/taxonomy/c.json"_s},
        {"field that is not an object",
         {{u"taxonomy/c.json"_s,
           R"({"id": ")" + id + R"(", "name": "People", "fields": [{"key": "a"}, "age"]})"}},
         u"Malformed field in category: {dir}/taxonomy/c.json"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        if (std::string_view(c.name) != "missing project file")
            writeFile(dir.filePath(u"project.json"_s), "{}");
        for (const auto &[path, bytes] : c.files)
            writeFile(dir.filePath(path), bytes);
        const auto project = readProjectFolder(dir.path());
        ASSERT_FALSE(project);
        EXPECT_EQ(project.error(),
                  QDir::toNativeSeparators(QString(c.expected).replace(u"{dir}"_s, dir.path())));
    }
}

TEST(ProjectFolder, LeavesAbsentAndMistypedKeysAtTheirDefaults)
{
    QTemporaryDir dir;
    writeFile(dir.filePath(u"project.json"_s), R"({"name": 12, "pinned": "all"})");
    writeFile(dir.filePath(u"objects/1.json"_s),
              R"({"id": "00000000-0000-4000-8000-000000000001", "type": "task"})");
    writeFile(dir.filePath(u"objects/2.json"_s),
              R"({"id": "00000000-0000-4000-8000-000000000002", "type": "language"})");
    writeFile(dir.filePath(u"objects/3.json"_s),
              R"({"id": "00000000-0000-4000-8000-000000000003", "type": "document",
                  "title": 5, "tags": "x", "sortIndex": "3", "sceneInstant": 2.5,
                  "sourceIds": [1, "bad", "00000000-0000-4000-8000-000000000001"],
                  "versions": [3, {"label": "v"}], "kind": "Novel"})");
    writeFile(dir.filePath(u"objects/4.json"_s),
              R"({"id": "00000000-0000-4000-8000-000000000004", "type": "spreadsheet",
                  "formats": [{"row": 1, "column": 2}]})");
    writeFile(dir.filePath(u"objects/5.json"_s),
              R"({"id": "00000000-0000-4000-8000-000000000005", "type": "map",
                  "regions": [{"label": "North"}]})");

    const auto read = readProjectFolder(dir.path());
    ASSERT_TRUE(read) << read.error().toStdString();
    const fb::core::Project &project = **read;
    EXPECT_EQ(project.name(), QString());
    EXPECT_TRUE(project.pinned().isEmpty());
    EXPECT_EQ(project.calendar(), fb::core::Calendar::defaultCalendar());

    const QUuid id1 = QUuid::fromString(u"00000000-0000-4000-8000-000000000001"_s);
    const auto *task = project.objectAs<fb::core::Task>(id1);
    ASSERT_TRUE(task);
    EXPECT_EQ(task->board(), u"Tasks"_s);
    EXPECT_EQ(task->status(), u"To Do"_s);
    EXPECT_EQ(task->priority(), fb::core::TaskPriority::Normal);
    EXPECT_FALSE(task->dueDate().isValid());
    EXPECT_FALSE(task->isAiExcluded());

    const auto *language = project.objectAs<fb::core::Language>(
        QUuid::fromString(u"00000000-0000-4000-8000-000000000002"_s));
    ASSERT_TRUE(language);
    EXPECT_EQ(language->record(), fb::core::LanguageRecord());

    const auto *document = project.objectAs<fb::core::Document>(
        QUuid::fromString(u"00000000-0000-4000-8000-000000000003"_s));
    ASSERT_TRUE(document);
    EXPECT_EQ(document->title(), QString());
    EXPECT_TRUE(document->tags().isEmpty());
    EXPECT_EQ(document->sortIndex(), 0);
    EXPECT_FALSE(document->sceneInstant().has_value());
    EXPECT_EQ(document->kind(), fb::core::DocumentKind::Prose);
    EXPECT_EQ(document->sourceIds(), QList<QUuid>{id1});
    ASSERT_EQ(document->versions().size(), 1);
    EXPECT_EQ(document->versions().first().label, u"v"_s);
    // A known key of the wrong type is not an unknown key.
    EXPECT_TRUE(document->preservedProperties().isEmpty());

    const auto *sheet = project.objectAs<fb::core::Spreadsheet>(
        QUuid::fromString(u"00000000-0000-4000-8000-000000000004"_s));
    ASSERT_TRUE(sheet);
    ASSERT_TRUE(sheet->formats().contains({1, 2}));
    EXPECT_EQ(sheet->formats().value({1, 2}), fb::core::CellFormat());

    const auto *map = project.objectAs<fb::core::Map>(
        QUuid::fromString(u"00000000-0000-4000-8000-000000000005"_s));
    ASSERT_TRUE(map);
    ASSERT_EQ(map->regions().size(), 1);
    EXPECT_TRUE(map->regions().first().revealed);
}

} // namespace
