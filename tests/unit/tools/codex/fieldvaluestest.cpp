#include "codexfixture.h"
#include "core/commands/undohistory.h"

using fb::test::CodexFixture;
using namespace Qt::StringLiterals;

namespace {

class FieldValues : public CodexFixture
{
protected:
    // Sets custom field values of one entity through update_entity.
    fb::test::ToolReply update(const char *entityName, const char *fields)
    {
        QJsonObject arguments{{u"entity"_s, QString::fromUtf8(entityName)}};
        arguments.insert(u"fields"_s, fb::test::args(fields));
        return call(u"update_entity"_s, arguments);
    }

    void undoAll()
    {
        while (workspace().undoHistory().canUndo())
            ok("undo_last");
    }
};

const QString numberForm = u"a number (e.g. 26 or 3.5)"_s;
const QString urlForm = u"an absolute http, https or mailto URL (e.g. \"https://example.org\")"_s;

TEST_F(FieldValues, AreStoredInTheFormOfTheirFieldsType)
{
    const auto before = files();
    const struct
    {
        const char *entity;
        const char *fields;
        const char *key;
        QString stored;
    } cases[] = {
        {"Mara Vell", R"({"Age": "27"})", "age", u"27"_s},
        {"Mara Vell", R"({"age": 27.50})", "age", u"27.5"_s},
        {"Mara Vell", R"({"Role": " captain "})", "role", u"Captain"_s},
        {"Saltmere", R"({"Population": " 1.5e4 "})", "population", u"15000"_s},
        {"Saltmere", R"({"Founded": "3 seedmoon 1100"})", "founded", u"3 Seedmoon, Year 1100 AR"_s},
        {"Saltmere", R"({"Climate": "ARID"})", "climate", u"Arid"_s},
        {"Saltmere", R"({"Website": " https://saltmere.example/port?tide=high "})", "website",
         u"https://saltmere.example/port?tide=high"_s},
        {"Saltmere", R"({"Website": "mailto:warden@saltmere.example"})", "website",
         u"mailto:warden@saltmere.example"_s},
        {"The Lantern", R"({"Cursed": false})", "cursed", u"false"_s},
        {"The Lantern", R"({"cursed": "TRUE"})", "cursed", u"true"_s},
        {"The Lantern", R"({"Weight": 2.25})", "weight", u"2.25"_s},
        // An empty value clears the field whatever its type.
        {"The Lantern", R"({"Weight": ""})", "weight", QString()},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.fields);
        const fb::test::ToolReply reply = update(c.entity, c.fields);
        EXPECT_TRUE(reply.ok) << reply.text.toStdString();
        EXPECT_EQ(entity(QString::fromUtf8(c.entity))->value(QString::fromUtf8(c.key)), c.stored);
    }
    // A date is stored as the calendar writes it, which reads back as the same date.
    EXPECT_EQ(update("Saltmere", R"({"Founded": "3 Seedmoon, Year 1100 AR"})").text,
              u"'Saltmere' was already up to date; nothing changed."_s);
    EXPECT_TRUE(ok("get_entity", R"({"name": "Saltmere"})")
                    .contains(u"\n- Founded: 3 Seedmoon, Year 1100 AR\n"));
    undoAll();
    EXPECT_EQ(files(), before);
}

TEST_F(FieldValues, OfTheWrongFormAreRefusedNamingTheFieldAndTheForm)
{
    const auto before = files();
    const struct
    {
        const char *entity;
        const char *fields;
        QString message;
    } cases[] = {
        {"Mara Vell", R"({"Age": "nineteen"})",
         u"Field 'Age' takes %1, not 'nineteen'."_s.arg(numberForm)},
        {"Mara Vell", R"({"Age": true})", u"Field 'Age' takes %1, not true."_s.arg(numberForm)},
        {"Saltmere", R"({"population": "12,000"})",
         u"Field 'population' takes %1, not '12,000'."_s.arg(numberForm)},
        {"Saltmere", R"({"Population": "inf"})",
         u"Field 'Population' takes %1, not 'inf'."_s.arg(numberForm)},
        {"The Lantern", R"({"Cursed": "maybe"})",
         u"Field 'Cursed' takes true or false, not 'maybe'."_s},
        {"The Lantern", R"({"Cursed": 1})", u"Field 'Cursed' takes true or false, not 1."_s},
        {"Saltmere", R"({"Founded": "someday"})",
         u"Field 'Founded' takes a story date in the project calendar (e.g. \"25 Harvestmoon "
         "1250\" or \"1250\"), not 'someday'."_s},
        {"Saltmere", R"({"Climate": "Tropical"})",
         u"Field 'Climate' takes one of its options (Temperate, Arid, Polar), not 'Tropical'."_s},
        {"Saltmere", R"({"Website": "saltmere.example"})",
         u"Field 'Website' takes %1, not 'saltmere.example'."_s.arg(urlForm)},
        {"Saltmere", R"({"Website": "ftp://saltmere.example/charts"})",
         u"Field 'Website' takes %1, not 'ftp://saltmere.example/charts'."_s.arg(urlForm)},
        {"Saltmere", R"({"Website": "javascript:void"})",
         u"Field 'Website' takes %1, not 'javascript:void'."_s.arg(urlForm)},
        {"Saltmere", R"({"Summary": ["A", "harbour"]})",
         u"Field 'Summary' takes text, not an array."_s},
        // A valid value beside a refused one is not applied either.
        {"Mara Vell", R"({"Summary": "Fine.", "Role": "Pirate"})",
         u"Field 'Role' takes one of its options (Smuggler, Captain, Scholar), not 'Pirate'."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.fields);
        const fb::test::ToolReply reply = update(c.entity, c.fields);
        EXPECT_FALSE(reply.ok);
        EXPECT_EQ(reply.text, c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(FieldValues, AreCheckedAlikeWhenAnEntityIsCreated)
{
    const auto before = files();
    EXPECT_EQ(fails("create_entity", R"({"name": "Vey", "category": "Characters",
                                          "fields": {"Age": "nineteen"}})"),
              u"Field 'Age' takes %1, not 'nineteen'."_s.arg(numberForm));
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok("create_entity", R"({"name": "Vey", "category": "Characters",
                                      "fields": {"Age": "51", "Role": "scholar"}})"),
              u"Created entity 'Vey' (Characters) with 2 field(s)."_s);
    EXPECT_EQ(entity(u"Vey"_s)->values(),
              (QMap<QString, QString>{{u"age"_s, u"51"_s}, {u"role"_s, u"Scholar"_s}}));
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

} // namespace
