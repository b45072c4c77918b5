#include "codexfixture.h"

using fb::test::CodexFixture;
using namespace Qt::StringLiterals;

namespace {

class EntityTools : public CodexFixture
{};

struct Refusal
{
    const char *arguments;
    QString message;
};

const QString dateRefusal = u"The date '%1' was not understood; use the project calendar (e.g. "
                            "\"25 Harvestmoon 1250\" or \"1250\")."_s;

TEST_F(EntityTools, ShowAnEntityInFull)
{
    const Refusal sheets[] = {
        // Found by alias; "Maraschino" is no mention of Mara, the excluded Secret Notes are not
        // listed, and the alias "The Ferrywoman" is found in capitals.
        {R"({"name": "  the ferrywoman "})",
         u"# Mara Vell (Characters)\nAliases: Mara, The Ferrywoman\nTags: protagonist\n"
         "Lifespan: 3 Seedmoon, Year 1224 AR -- unknown\nGallery: 2 image(s)\nFields:\n"
         "- Summary: A ferry pilot who smuggles letters.\n- Age: 26\n- Role: Smuggler\n"
         "- Mentor: Tobin Ash\n- Home: Saltmere\nState over time:\n"
         "- Role: \"Smuggler\" from 1 Frostmoon, Year 1242 AR\n"
         "- Role: \"Captain\" from 1 Harvestmoon, Year 1250 AR\n"
         "Mentioned in: Chapter One, Chapter Two."_s},
        // The id wins over the name; a rich-text non-breaking space still separates words.
        {R"({"id": "{E0DE0000-0000-4000-8000-000000000002}", "name": "ignored"})",
         u"# Tobin Ash (Characters)\nAliases: Old Tobin\n"
         "Lifespan: 1 Frostmoon, Year 1190 AR -- 12 Darkmoon, Year 1251 AR\nGallery: 0 image(s)\n"
         "Fields:\n"
         "- Summary: Mara's teacher, a retired captain.\n- Role: Captain\n- Home: Saltmere\n"
         "Mentioned in: Chapter One, Chapter Three."_s},
        {R"({"name": "Tide Song"})",
         u"# Tide Song (uncategorized)\nLifespan: unknown -- unknown\nGallery: 0 image(s)\n"
         "Fields:\n- summary: A tune every sailor hums."_s},
        // A library entity is shown with its library, and mentioned in the open project.
        {R"({"name": "drowned one"})",
         u"# The Drowned God (Deities)\nFrom the mounted library 'World Lore'.\n"
         "Aliases: Drowned One\nLifespan: 1 Frostmoon, Year 1 AR -- unknown\nGallery: 0 image(s)\n"
         "Fields:\n"
         "- Summary: God of the sea floor.\n- Domain: Shipwrecks\nMentioned in: Notes."_s},
    };
    for (const auto &c : sheets) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(ok("get_entity", c.arguments), c.message);
    }
}

TEST_F(EntityTools, ExplainWhyAnEntityCannotBeShown)
{
    const Refusal cases[] = {
        {R"({"name": "  "})", u"get_entity needs \"name\" (or \"id\")."_s},
        {R"({"name": "Veiled Sister"})", u"'Veiled Sister' is excluded from AI."_s},
        {R"({"id": "e0de0000-0000-4000-8000-000000000013"})",
         u"'Veiled Sister' is excluded from AI."_s},
        // Only entities are looked for, so a document's title finds nothing.
        {R"({"name": "chapter one"})", u"No entity named 'chapter one' exists."_s},
        {R"({"id": "d0de0000-0000-4000-8000-000000000002"})",
         u"The id 'd0de0000-0000-4000-8000-000000000002' is not an entity."_s},
        {R"({"name": "Mara V"})", u"No entity named 'Mara V' exists."_s},
        {R"({"id": "{00000000-0000-0000-0000-000000000000}"})",
         u"'{00000000-0000-0000-0000-000000000000}' is not a valid id."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("get_entity", c.arguments), c.message);
    }
}

TEST_F(EntityTools, CreateAnEntityWithItsFields)
{
    const auto before = files();
    // A reference field takes the target's name; an unknown field becomes a text field.
    EXPECT_EQ(ok("create_entity", R"({"name": " Captain Vey ", "category": "characters",
                                      "summary": " A rival captain. ",
                                      "fields": {"ROLE": "Captain", "Mentor": "tobin ash",
                                                 "Ship": " The Gull ", "Age": 51, "Home": ""}})"),
              u"Created entity 'Captain Vey' (Characters) with 5 field(s)."_s);
    EXPECT_EQ(ok("get_entity", R"({"name": "Captain Vey"})"),
              u"# Captain Vey (Characters)\nLifespan: unknown -- unknown\nGallery: 0 image(s)\n"
              "Fields:\n- Summary: A rival captain.\n- Age: 51\n"
              "- Role: Captain\n- Mentor: Tobin Ash\n- Ship: The Gull"_s);
    EXPECT_EQ(category(u"Characters"_s)->fields().last().type, fb::core::FieldType::Text);
    EXPECT_EQ(ok("create_entity", R"({"name": "Gull", "category": "Ships",
                                      "fields": {"summary": "A sloop."}})"),
              u"Created entity 'Gull' (Ships) with 1 field(s)."_s);
    EXPECT_EQ(ok("get_category", R"({"category": "Ships"})").section(u'\n', 3),
              u"- Entities: 1\n- Fields (1):\n  - Summary [text] (summary)"_s);
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);

    const Refusal refusals[] = {
        {R"({"name": "Vey"})", u"create_entity needs \"name\" and \"category\"."_s},
        {R"({"name": " the SALT port", "category": "Places"})",
         u"An entity named 'the SALT port' already exists."_s},
        // Excluded entities still hold their names.
        {R"({"name": "Veiled Sister", "category": "Places"})",
         u"An entity named 'Veiled Sister' already exists."_s},
        {R"({"name": "Vey", "category": "Ships", "fields": {" Aliases ": "V"}})",
         u"'Aliases' is a built-in entity property, not a custom field; set it with "
         "update_entity's own argument (e.g. \"new_name\" to rename, \"category\" to move), not "
         "inside \"fields\"."_s},
        {R"({"name": "Vey", "category": "Characters", "fields": {"Mentor": "Nobody"}})",
         u"No entity named 'Nobody' exists."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("create_entity", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(EntityTools, UpdateOnlyTheGivenKeysAsOneStep)
{
    const auto before = files();
    const char *update = R"({"entity": "mara", "new_name": "Mara Vell-Ash",
        "fields": {"Summary": " A ferry captain. ", "Eye Color": "grey"},
        "references": {"home": "The Grey Coast", "Mentor": "Tobin Ash"},
        "aliases": ["Mara", " mara ", "Ferry Mara", ""], "tags": ["hero"],
        "born": "", "died": "4 Darkmoon 1260",
        "timed_values": [{"field": "role", "when": "1250", "value": "Captain"}]})";
    // "Mentor" already holds Tobin Ash and is not counted.
    EXPECT_EQ(ok("update_entity", update),
              u"Updated 'Mara Vell': 2 field(s), 1 reference(s), 2 alias(es), 1 tag(s), lifespan, "
              "1 timed value(s), renamed to 'Mara Vell-Ash'."_s);
    EXPECT_EQ(ok("get_entity", R"({"name": "Ferry Mara"})"),
              u"# Mara Vell-Ash (Characters)\nAliases: Ferry Mara, Mara\nTags: hero\n"
              "Lifespan: unknown -- 4 Darkmoon, Year 1260 AR\nGallery: 2 image(s)\nFields:\n"
              "- Summary: A ferry captain.\n- Age: 26\n- Role: Smuggler\n- Mentor: Tobin Ash\n"
              "- Home: The Grey Coast\n- Eye Color: grey\nState over time:\n"
              "- Role: \"Captain\" from 1 Frostmoon, Year 1250 AR\nMentioned in: Chapter One."_s);

    QJsonObject again = fb::test::args(update);
    again.insert(u"entity"_s, u"Mara Vell-Ash"_s);
    again.remove(u"new_name"_s);
    EXPECT_EQ(ok(u"update_entity"_s, again),
              u"'Mara Vell-Ash' was already up to date; nothing changed."_s);
    // Without "born" the birth date stays.
    ok("update_entity", R"({"entity": "Tobin Ash", "died": ""})");
    EXPECT_TRUE(entity(u"Tobin Ash"_s)->birthInstant().has_value());
    EXPECT_FALSE(entity(u"Tobin Ash"_s)->deathInstant().has_value());
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(EntityTools, MoveAnEntityIntoANewCategoryThatGetsItsFields)
{
    const auto before = files();
    EXPECT_EQ(ok("update_entity",
                 R"({"entity": "tide song", "category": " Songs ", "fields": {"Key": "D minor"}})"),
              u"Updated 'Tide Song': 1 field(s), moved to 'Songs'."_s);
    EXPECT_EQ(ok("get_category", R"({"category": "songs"})").section(u'\n', 3),
              u"- Entities: 1\n- Fields (2):\n  - Summary [text] (summary)\n  - Key [text] (key)"_s);
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(EntityTools, RefuseAnUpdateWholeEvenWhenPartOfItIsValid)
{
    const auto before = files();
    const Refusal cases[] = {
        {R"({"new_name": "Renamed"})", u"update_entity needs \"entity\" (or \"id\")."_s},
        {R"({"entity": "Mara"})",
         u"update_entity received nothing to change; pass \"fields\", \"aliases\", \"born\", "
         "\"died\", \"tags\", or \"references\"."_s},
        {R"({"entity": "Chapter One", "new_name": "Renamed"})",
         u"No entity named 'Chapter One' exists."_s},
        {R"({"id": "d0de0000-0000-4000-8000-000000000002", "new_name": "Renamed"})",
         u"The id 'd0de0000-0000-4000-8000-000000000002' is not an entity."_s},
        {R"({"entity": "Mara", "new_name": " "})", u"\"new_name\" must be a non-empty name."_s},
        {R"({"entity": "Mara", "new_name": "old TOBIN"})",
         u"An entity named 'old TOBIN' already exists."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "category": " "})",
         u"\"category\" must be a non-empty category name."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "aliases": "Mara"})",
         u"\"aliases\" must be an array of strings."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "tags": [1]})",
         u"\"tags\" must be an array of strings."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "born": "Blursday"})",
         dateRefusal.arg(u"Blursday"_s)},
        {R"({"entity": "Mara", "new_name": "Renamed", "fields": {" NaMe": "x"}})",
         u"'NaMe' is a built-in entity property, not a custom field; set it with update_entity's "
         "own argument (e.g. \"new_name\" to rename, \"category\" to move), not inside "
         "\"fields\"."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "fields": {"Mentor": "Tobin Ash"}})",
         u"Field 'Mentor' exists with a non-text type; use \"references\" for a Reference "
         "field."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "references": {"Summary": "Tobin Ash"}})",
         u"Field 'Summary' exists but is not a Reference field."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "references": {"Mentor": " "}})",
         u"The reference 'Mentor' needs a target entity name."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "references": {"Mentor": "Veiled Sister"}})",
         u"'Veiled Sister' is excluded from AI."_s},
        // "Old Tobin" is an alias here and a title in the library.
        {R"({"entity": "Mara", "new_name": "Renamed", "references": {"Mentor": "Old Tobin"}})",
         u"The name 'Old Tobin' matches 2 entitys:\n"
         "- Tobin Ash (entity in Characters, id e0de0000-0000-4000-8000-000000000002)\n"
         "- Old Tobin (entity in Lore, library 'World Lore', id "
         "e1b00000-0000-4000-8000-000000000002)\nPass \"id\" with the one you mean."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "timed_values": ["role"]})",
         u"\"timed_values\" must be an array of {field, when, value} objects."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "timed_values": {"field": "role"}})",
         u"\"timed_values\" must be an array of {field, when, value} objects."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "timed_values": [{"field": 7, "when": "1250"}]})",
         u"\"timed_values[0].field\" must be a string."_s},
        {R"({"entity": "Mara", "new_name": "Renamed", "timed_values": [{"field": "role"}]})",
         u"Every timed value needs a non-empty \"field\" and \"when\"."_s},
        {R"({"entity": "Mara", "new_name": "Renamed",
             "timed_values": [{"field": "role", "when": "soon"}]})",
         dateRefusal.arg(u"soon"_s)},
        {R"({"entity": "Tide Song", "new_name": "Renamed", "fields": {"Key": "D"}})",
         u"'Tide Song' has no category to define the field 'Key' on; pass \"category\" to file it "
         "first."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("update_entity", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(changeLog(), u"No changes this session."_s);
}

// Every writer refuses library content and AI-excluded objects, and changes nothing.
TEST_F(EntityTools, WritersRefuseLibraryAndExcludedObjects)
{
    const auto before = files();
    const QString library = u"'The Drowned God' lives in the mounted library 'World Lore'; this "
                            "server edits only the open project. Open the library as its own "
                            "project to change it."_s;
    const QString excluded = u"'Veiled Sister' is excluded from AI and cannot be changed."_s;
    const struct
    {
        const char *tool;
        const char *arguments;
        QString message;
    } cases[] = {
        {"update_entity", R"({"entity": "Drowned One", "tags": []})", library},
        {"update_entity", R"({"entity": "Veiled Sister", "tags": []})", excluded},
        {"delete_object", R"({"id": "e1b00000-0000-4000-8000-000000000001"})", library},
        {"delete_object", R"({"name": " Veiled Sister "})", excluded},
        {"merge_entities", R"({"source": "The Drowned God", "target": "Pell"})", library},
        {"merge_entities", R"({"source": "Pell", "target": "The Drowned God"})", library},
        {"merge_entities",
         R"({"source": "Pell", "target_id": "e0de0000-0000-4000-8000-000000000013"})", excluded},
        {"split_entity", R"({"source": "The Drowned God", "new_name": "Half God"})", library},
        {"split_entity", R"({"source": "Veiled Sister", "new_name": "Half Sister"})", excluded},
        {"set_visibility", R"({"name": "The Drowned God", "audiences": []})", library},
        {"set_visibility", R"({"name": "Veiled Sister", "audiences": []})", excluded},
        {"set_ai_exclusion", R"({"name": "The Drowned God", "excluded": true})", library},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.tool);
        EXPECT_EQ(fails(c.tool, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(changeLog(), u"No changes this session."_s);
}

TEST_F(EntityTools, IncludeAnExcludedObjectAgain)
{
    const auto before = files();
    const Refusal steps[] = {
        {R"({"name": "veiled sister", "excluded": false})",
         u"'Veiled Sister' is now included in AI features again."_s},
        {R"({"name": "Veiled Sister", "excluded": false})",
         u"'Veiled Sister' is already included in AI."_s},
        {R"({"id": "d0de0000-0000-4000-8000-000000000003", "excluded": true})",
         u"'Chapter Two' is now excluded from AI features (its content is withheld from the "
         "agent snapshot, the world index, and consistency checks)."_s},
        {R"({"name": "Chapter Two", "excluded": true})",
         u"'Chapter Two' is already excluded from AI."_s},
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(step.arguments);
        EXPECT_EQ(ok("set_ai_exclusion", step.arguments), step.message);
    }
    EXPECT_EQ(ok("get_entity", R"({"name": "Veiled Sister"})"),
              u"# Veiled Sister (Characters)\nLifespan: unknown -- unknown\nGallery: 0 image(s)\n"
              "Fields:\n- Summary: Secret."_s);
    // The excluded chapter no longer counts as a mention of Pell.
    EXPECT_TRUE(ok("get_entity", R"({"name": "Pell"})").endsWith(u"\n- Mentor: The Smuggler"));
    EXPECT_EQ(fails("set_ai_exclusion", R"({"name": "Pell"})"),
              u"set_ai_exclusion needs \"excluded\" (true to hide the object from AI, false to "
              "include it again)."_s);
    EXPECT_EQ(fails("set_ai_exclusion", R"({"excluded": true})"),
              u"set_ai_exclusion needs \"name\" (or \"id\")."_s);
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(EntityTools, RestrictAnObjectToAudiencesAndRegisterNewOnes)
{
    const auto before = files();
    const char *restrict
        = R"({"name": "Mara", "audiences": [" Editors ", "Beta readers", "", "Editors"]})";
    EXPECT_EQ(ok("set_visibility", restrict),
              u"'Mara Vell' is now visible only to: Editors, Beta readers. New audience(s) "
              "registered: Editors."_s);
    EXPECT_EQ(entity(u"Mara Vell"_s)->visibleTo(), (QStringList{u"Beta readers"_s, u"Editors"_s}));
    EXPECT_EQ(project().audiences(), (QStringList{u"Beta readers"_s, u"Editors"_s}));
    // The same request again already holds and is not applied a second time.
    EXPECT_EQ(ok("set_visibility", restrict),
              u"'Mara Vell' is now visible only to: Editors, Beta readers."_s);
    EXPECT_EQ(ok("set_visibility",
                 R"({"id": "e0de0000-0000-4000-8000-000000000001", "audiences": []})"),
              u"'Mara Vell' is now visible to everyone."_s);
    EXPECT_TRUE(entity(u"Mara Vell"_s)->visibleTo().isEmpty());
    EXPECT_EQ(fails("set_visibility", R"({"name": "Mara"})"),
              u"set_visibility needs \"audiences\" (an array of audience names; empty means "
              "visible to everyone)."_s);
    EXPECT_EQ(fails("set_visibility", R"({"audiences": []})"),
              u"set_visibility needs \"name\" (or \"id\")."_s);
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

} // namespace
