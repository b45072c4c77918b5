#include "codexfixture.h"
#include "core/document.h"

using fb::test::CodexFixture;
using namespace Qt::StringLiterals;

namespace {

class CodexRules : public CodexFixture
{};

struct Call
{
    const char *tool;
    const char *arguments;
    QString message;
};

TEST_F(CodexRules, EntityToolsLookOnlyAtEntities)
{
    // Documents that share an entity's name and one of its aliases.
    for (const QString &title : {u"Saltmere"_s, u"The Salt Port"_s}) {
        project().addObject(std::make_unique<fb::core::Document>(title));
    }
    const Call cases[] = {
        {"get_entity", R"({"name": " saltmere "})", u"# Saltmere (Cities)"_s},
        {"get_entity", R"({"name": "the salt port"})", u"# Saltmere (Cities)"_s},
        {"get_entity", R"({"name": "Harbour Chart"})", u"No entity named 'Harbour Chart' exists."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(call(QString::fromUtf8(c.tool), fb::test::args(c.arguments))
                      .text.section(u'\n', 0, 0),
                  c.message);
    }
}

TEST_F(CodexRules, NamesTitlesAndAliasesAreOneLine)
{
    const auto before = files();
    const struct
    {
        const char *tool;
        const char *arguments;
        QString argument; // the one the refusal names
    } cases[] = {
        {"create_entity", R"({"name": "Captain\nVey", "category": "Characters"})", u"name"_s},
        {"create_entity", R"({"name": "Vey", "category": "Ships\r\nBoats"})", u"category"_s},
        {"create_entity",
         R"({"name": "Vey", "category": "Characters", "aliases": ["V", "The\nRival"]})",
         u"aliases"_s},
        {"create_entity",
         R"({"name": "Vey", "category": "Characters", "tags": ["rival\u2028captain"]})", u"tags"_s},
        {"create_entity",
         R"({"name": "Vey", "category": "Characters", "fields": {"Ship\nName": "Gull"}})",
         u"fields"_s},
        {"update_entity", R"({"entity": "Mara", "new_name": "Mara\nVell-Ash"})", u"new_name"_s},
        {"update_entity", R"({"entity": "Mara", "aliases": ["Ferry\rMara"]})", u"aliases"_s},
        {"update_entity", R"({"entity": "Mara", "tags": ["he\nro"]})", u"tags"_s},
        {"update_entity", R"({"entity": "Mara", "category": "Ships\nBoats"})", u"category"_s},
        {"update_entity", R"({"entity": "Mara", "fields": {"Eye\nColor": "grey"}})", u"fields"_s},
        {"update_entity", R"({"entity": "Mara", "references": {"Best\nFriend": "Tobin Ash"}})",
         u"references"_s},
        {"split_entity", R"({"source": "Mara", "new_name": "Young\u2029Mara"})", u"new_name"_s},
        {"set_visibility", R"({"name": "Mara", "audiences": ["Beta\nreaders"]})", u"audiences"_s},
        {"create_category", R"({"name": "Ships\nBoats"})", u"name"_s},
        {"create_category", R"({"name": "Frigates", "parent": "Ships\nBoats"})", u"parent"_s},
        {"update_category", R"({"category": "Places", "new_name": "Lo\ncations"})", u"new_name"_s},
        {"update_category", R"({"category": "Districts", "parent": "Wa\nrds"})", u"parent"_s},
        {"add_field", R"({"category": "Characters", "label": "Eye\nColor"})", u"label"_s},
        {"add_field", R"({"category": "Characters", "label": "Eyes", "type": "choice",
                          "options": ["Grey", "Sea\nGreen"]})",
         u"options"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails(c.tool, c.arguments),
                  u"\"%1\" must be a single line: a title or name cannot hold a line break."_s.arg(
                      c.argument));
    }
    EXPECT_EQ(files(), before);
    // A line break at either end is trimmed away with the blanks.
    EXPECT_EQ(ok("create_category", R"({"name": "\nShips\n"})"), u"Created category 'Ships'."_s);
}

TEST_F(CodexRules, CreateEntityStoresItsAliasesAndTags)
{
    const auto before = files();
    const struct
    {
        const char *arguments;
        QString sheet;
    } cases[] = {
        // Aliases are kept as update_entity keeps them: trimmed, once each, sorted.
        {R"({"name": "Captain Vey", "category": "Characters",
             "aliases": [" Vey ", "vey", "", "The Rival"],
             "tags": ["rival", " captain ", "rival"]})",
         u"# Captain Vey (Characters)\nAliases: The Rival, Vey\nTags: captain, rival\n"
         "Lifespan: unknown -- unknown\nGallery: 0 image(s)"_s},
        {R"({"name": "Gull", "category": "Ships", "tags": ["sloop"]})",
         u"# Gull (Ships)\nTags: sloop\nLifespan: unknown -- unknown\nGallery: 0 image(s)"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        const QJsonObject arguments = fb::test::args(c.arguments);
        EXPECT_EQ(ok(u"create_entity"_s, arguments),
                  u"Created entity '%1' (%2) with 0 field(s)."_s
                      .arg(arguments.value(u"name"_s).toString(),
                           arguments.value(u"category"_s).toString()));
        EXPECT_EQ(ok(u"get_entity"_s, {{u"name"_s, arguments.value(u"name"_s)}}), c.sheet);
    }
    // The aliases find the entity like its name does.
    EXPECT_TRUE(ok("get_entity", R"({"name": "the rival"})").startsWith(u"# Captain Vey"));
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

// The kit checks every argument's JSON type before a handler runs: a string "true" is no
// boolean, and a refused call changes nothing. Where a tool has its own words for a value of the
// wrong form, they are used.
TEST_F(CodexRules, AValueOfTheWrongTypeIsRefusedNamingTheArgument)
{
    const auto before = files();
    const Call cases[] = {
        {"create_category", R"({"name": 7})", u"\"name\" must be a string."_s},
        {"update_category", R"({"category": "Places", "delete": "true"})",
         u"\"delete\" must be true or false."_s},
        {"add_field", R"({"category": "Characters", "label": "Eyes", "options": "Grey"})",
         u"\"options\" must be an array of strings."_s},
        {"move_field", R"({"category": "Characters", "field": "Home", "position": "2"})",
         u"move_field needs \"position\" (a 0-based integer index)."_s},
        {"move_field", R"({"category": "Characters", "field": "Home", "position": 1.5})",
         u"move_field needs \"position\" (a 0-based integer index)."_s},
        {"create_entity", R"({"name": "Vey", "category": "Ships", "fields": ["Age"]})",
         u"\"fields\" must be a JSON object."_s},
        {"update_entity", R"({"entity": "Mara", "timed_values": [{"field": "role", "when": 1250}]})",
         u"\"timed_values[0].when\" must be a string."_s},
        {"split_entity", R"({"source": "Mara", "new_name": "Young Mara", "copy_lifespan": "true"})",
         u"\"copy_lifespan\" must be true or false."_s},
        {"set_visibility", R"({"name": "Pell", "audiences": "Editors"})",
         u"set_visibility needs \"audiences\" (an array of audience names; empty means visible "
         "to everyone)."_s},
        {"set_ai_exclusion", R"({"name": "Pell", "excluded": "yes"})",
         u"set_ai_exclusion needs \"excluded\" (true to hide the object from AI, false to "
         "include it again)."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails(c.tool, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(changeLog(), u"No changes this session."_s);
}

} // namespace
