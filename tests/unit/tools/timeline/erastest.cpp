#include "chroniclefixture.h"

using namespace Qt::StringLiterals;

using fb::test::chronicleEras;
using fb::test::ChronicleFixture;
using fb::test::json;

namespace {

class Eras : public ChronicleFixture
{
protected:
    // The era list as "get_timeline" ends it.
    QString eraList()
    {
        const QString all = ok("get_timeline");
        return all.mid(all.indexOf(u"## Eras"_s));
    }
};

// Each change is read back in the era list and undone to the very bytes.
TEST_F(Eras, AddsRemovesAndRenamesErasAndUndoesEach)
{
    const auto before = files();
    ASSERT_EQ(eraList(), chronicleEras);
    const QString peace
        = u"- The Long Peace: 1 Thawing, Year 900 Third Age to 1 Thawing, Year 1100 "
          "Third Age"_s;
    const QString sail = u"- Age of Sail: 1 Thawing, Year 1200 Third Age to 1 Thawing, Year 1260 "
                         "Third Age"_s;
    const struct
    {
        const char *name;
        const char *arguments;
        QString result;
        QString eras;
    } cases[] = {
        {"add, listed in story order",
         R"({"action": "add", "name": " Age of Storms ", "start": "Highsun 1000",
             "end": "12 Long Night 1150 23:00", "color": "#aa00FF"})",
         u"Added the era 'Age of Storms' (1 Highsun, Year 1000 Third Age to 12 Long Night, Year "
         "1150 Third Age, 23:00)."_s,
         u"## Eras\n"_s + peace
             + u"\n- Age of Storms: 1 Highsun, Year 1000 Third Age to 12 Long Night, Year 1150 "
               "Third Age, 23:00\n"_s
             + sail},
        {"add is the default action, and a moment is an era",
         R"({"name": "The Flood", "start": "1 Thawing 1300", "end": "1 Thawing 1300"})",
         u"Added the era 'The Flood' (1 Thawing, Year 1300 Third Age to 1 Thawing, Year 1300 "
         "Third Age)."_s,
         chronicleEras
             + u"\n- The Flood: 1 Thawing, Year 1300 Third Age to 1 Thawing, Year 1300 Third Age"_s},
        {"remove by any case", R"({"action": "REMOVE", "name": "  the long peace"})",
         u"Removed the era 'The Long Peace'."_s, u"## Eras\n"_s + sail},
        {"rename", R"({"action": "rename", "name": "Age of Sail", "new_name": " Age of Steam "})",
         u"Renamed the era 'Age of Sail' to 'Age of Steam'."_s,
         u"## Eras\n"_s + peace + u'\n' + QString(sail).replace(u"Sail"_s, u"Steam"_s)},
        {"rename to another letter case",
         R"({"action": "rename", "name": "age of sail", "new_name": "Age Of Sail"})",
         u"Renamed the era 'Age of Sail' to 'Age Of Sail'."_s,
         u"## Eras\n"_s + peace + u'\n' + QString(sail).replace(u"of"_s, u"Of"_s)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_FALSE(json(c.arguments).isEmpty());
        EXPECT_EQ(ok("manage_eras", c.arguments), c.result);
        EXPECT_EQ(eraList(), c.eras);
        EXPECT_EQ(ok("undo_last"), u"Undid the last change."_s);
        EXPECT_EQ(files(), before);
    }
}

TEST_F(Eras, RenamingToTheSameNameChangesNothing)
{
    const auto before = files();
    EXPECT_EQ(ok("manage_eras", R"({"action": "rename", "name": "age of sail",
                                  "new_name": "Age of Sail"})"),
              u"The era 'Age of Sail' already has that name; nothing changed."_s);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(fails("undo_last"), u"Nothing to undo."_s);
}

TEST_F(Eras, RefusesAndChangesNothing)
{
    const auto before = files();
    const QString taken = u"An era named '%1' already exists."_s;
    const struct
    {
        const char *name;
        const char *arguments;
        QString message;
    } cases[] = {
        {"no name", R"({"action": "remove"})", u"manage_eras needs \"name\" (the era's name)."_s},
        {"a blank name", R"({"action": "add", "name": " ", "start": "1", "end": "2"})",
         u"manage_eras needs \"name\" (the era's name)."_s},
        {"an unknown action", R"({"action": "merge", "name": "Age of Sail"})",
         u"Unknown action 'merge' (use add, remove, or rename)."_s},
        {"add without an end", R"({"action": "add", "name": "Dusk", "start": "1300"})",
         u"Adding an era needs \"start\" and \"end\" dates."_s},
        {"add without dates", R"({"name": "Dusk"})",
         u"Adding an era needs \"start\" and \"end\" dates."_s},
        {"add a name of two lines", R"({"name": "Dusk\nDawn", "start": "1300", "end": "1400"})",
         u"\"name\" must be a single line: a title or name cannot hold a line break."_s},
        {"add a start not understood", R"({"name": "Dusk", "start": "Year", "end": "1400"})",
         u"The date 'Year' was not understood; use the project calendar (e.g. \"25 Harvestmoon "
         "1250\" or \"1250\")."_s},
        {"add an end before the start", R"({"name": "Dusk", "start": "1200", "end": "1100"})",
         u"The era's end '1 Thawing, Year 1100 Third Age' is before its start '1 Thawing, Year "
         "1200 Third Age'."_s},
        {"add a name taken", R"({"name": " age OF sail ", "start": "1300", "end": "1400"})",
         taken.arg(u"age OF sail"_s)},
        {"add a colour not #RRGGBB", R"({"name": "Dusk", "start": "1300", "end": "1400",
                                         "color": "#12345"})",
         u"\"color\" must be written \"#RRGGBB\" (for example \"#336699\")."_s},
        {"remove an unknown era", R"({"action": "remove", "name": "Age of Sai"})",
         u"No era named 'Age of Sai' exists."_s},
        {"rename an unknown era", R"({"action": "rename", "name": "Dusk", "new_name": "Dawn"})",
         u"No era named 'Dusk' exists."_s},
        {"rename without a new name", R"({"action": "rename", "name": "Age of Sail"})",
         u"Renaming an era needs a non-empty \"new_name\"."_s},
        {"rename to a name taken",
         R"({"action": "rename", "name": "Age of Sail", "new_name": "the long peace"})",
         taken.arg(u"the long peace"_s)},
        {"rename to two lines",
         R"({"action": "rename", "name": "Age of Sail", "new_name": "Age\nof Sail"})",
         u"\"new_name\" must be a single line: a title or name cannot hold a line break."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_FALSE(json(c.arguments).isEmpty());
        EXPECT_EQ(fails("manage_eras", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok("get_recent_changes"), u"No changes this session."_s);
}

} // namespace
