#include "codexfixture.h"

using fb::test::CodexFixture;
using namespace Qt::StringLiterals;

namespace {

class CategoryTools : public CodexFixture
{
protected:
    QString fieldKeys(const QString &name)
    {
        QStringList keys;
        for (const auto &field : category(name)->fields())
            keys.append(field.key);
        return keys.join(u',');
    }
};

// A table of refused calls: each gives its exact message and leaves the files as they were.
struct Refusal
{
    const char *arguments;
    QString message;
};

TEST_F(CategoryTools, ShowTheEffectiveSchemaWithInheritedFields)
{
    EXPECT_EQ(ok("get_category", R"({"category": "  cities "})"),
              u"## Category: Cities\n- Parent: Places\n- Subcategories: Districts\n- Entities: 1\n"
              "- Fields (5):\n"
              "  - Summary [text] (summary) (inherited)\n"
              "  - Climate [choice] (climate) -- options: Temperate, Arid, Polar (inherited)\n"
              "  - Website [url] (website) (inherited)\n"
              "  - Population [number] (population)\n"
              "  - Founded [date] (founded)"_s);
    // The excluded Veiled Sister is not counted.
    EXPECT_EQ(ok("get_category", R"({"category": "CHARACTERS"})"),
              u"## Category: Characters\n- Parent: (none, top level)\n- Subcategories: Nobles\n"
              "- Entities: 5\n- Fields (5):\n"
              "  - Summary [text] (summary)\n"
              "  - Age [number] (age) -- In years.\n"
              "  - Role [choice] (role), required -- options: Smuggler, Captain, Scholar\n"
              "  - Mentor [reference] (mentor) -- Who taught them.\n"
              "  - Home [reference] (home)"_s);
}

TEST_F(CategoryTools, ListEntitiesAlphabeticallyWithSummaries)
{
    EXPECT_EQ(ok("list_category", R"({"category": "characters"})"),
              u"Entities in 'Characters' (5):\n- Jory Rusk\n"
              "- Mara Vell -- A ferry pilot who smuggles letters.\n- Pell\n"
              "- The Smuggler -- A masked smuggler seen at the docks.\n"
              "- Tobin Ash -- Mara's teacher, a retired captain."_s);
    ok("create_category", R"({"name": "Ships"})");
    EXPECT_EQ(ok("list_category", R"({"category": "Ships"})"), u"No entities in 'Ships' yet."_s);
}

TEST_F(CategoryTools, ExplainWhyACategoryCannotBeRead)
{
    // A second "Cities" makes the name ambiguous for the listing.
    ok("update_category", R"({"category": "Nobles", "new_name": "cities"})");
    const struct
    {
        const char *tool;
        const char *arguments;
        QString message;
    } cases[] = {
        {"get_category", R"({"category": " "})", u"get_category needs \"category\" (its name)."_s},
        {"get_category", R"({"category": "Ships"})", u"No category named 'Ships' exists."_s},
        {"list_category", R"({})", u"list_category needs \"category\"."_s},
        {"list_category", R"({"category": "Ships"})", u"No category named 'Ships' exists."_s},
        {"list_category", R"({"category": "CITIES"})",
         u"The name 'CITIES' matches 2 categories (ids: c0de0000-0000-4000-8000-000000000002, "
         "c0de0000-0000-4000-8000-000000000004)."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails(c.tool, c.arguments), c.message);
    }
}

TEST_F(CategoryTools, CreateWithAMissingParentAsOneStep)
{
    const auto before = files();
    EXPECT_EQ(ok("create_category", R"({"name": " Frigates ", "parent": " Ships "})"),
              u"Created category 'Frigates' under 'Ships'."_s);
    ASSERT_TRUE(category(u"Frigates"_s) && category(u"Ships"_s));
    EXPECT_EQ(category(u"Frigates"_s)->parentId(), category(u"Ships"_s)->id());
    EXPECT_EQ(fieldKeys(u"Ships"_s), u"summary"_s);
    EXPECT_EQ(category(u"Frigates"_s)->fields().value(0).label, u"Summary"_s);
    EXPECT_EQ(ok("create_category", R"({"name": "Sloops", "parent": "ships"})"),
              u"Created category 'Sloops' under 'ships'."_s);
    EXPECT_EQ(category(u"Sloops"_s)->parentId(), category(u"Ships"_s)->id());
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(CategoryTools, TreatAnExistingCategoryAsAValidNoOp)
{
    const auto before = files();
    EXPECT_EQ(ok("create_category", R"({"name": "  PLACES", "parent": "Nowhere"})"),
              u"Category 'Places' already exists."_s);
    EXPECT_EQ(fails("create_category", R"({"name": "  "})"),
              u"create_category needs a non-empty \"name\"."_s);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(changeLog(), u"No changes this session."_s);
}

TEST_F(CategoryTools, RenameAndMoveInOneStep)
{
    const auto before = files();
    EXPECT_EQ(ok("update_category",
                 R"({"category": "districts", "new_name": "Wards", "parent": ""})"),
              u"Updated category 'Districts': renamed to 'Wards', made a top-level category."_s);
    EXPECT_TRUE(category(u"Wards"_s)->parentId().isNull());
    EXPECT_EQ(ok("update_category", R"({"category": "Wards", "parent": "Harbours"})"),
              u"Updated category 'Wards': moved under 'Harbours'."_s);
    // Without "parent" the category stays where it is.
    ok("update_category", R"({"category": "Wards", "new_name": "Quarters"})");
    EXPECT_EQ(category(u"Quarters"_s)->parentId(), category(u"Harbours"_s)->id());
    for (int i = 0; i < 3; ++i)
        ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(CategoryTools, RefuseAnUpdateWholeEvenWithAValidRename)
{
    const auto before = files();
    const Refusal cases[] = {
        {R"({"category": " "})", u"update_category needs \"category\" (the category to change)."_s},
        {R"({"category": "Ships", "new_name": "Boats"})", u"No category named 'Ships'."_s},
        {R"({"category": "Places"})",
         u"update_category needs one of: \"new_name\", \"parent\", or \"delete\": true."_s},
        // Districts is the grandchild of Places.
        {R"({"category": "Places", "new_name": "Locations", "parent": "districts"})",
         u"Can't move 'Places' under 'Districts': that would nest a category inside one of its "
         "own subcategories."_s},
        {R"({"category": "Places", "new_name": "Locations", "parent": "Places"})",
         u"Can't move 'Places' under 'Places': that would nest a category inside one of its own "
         "subcategories."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("update_category", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(changeLog(), u"No changes this session."_s);
}

TEST_F(CategoryTools, DeleteMovesSubcategoriesAndEntitiesUp)
{
    const auto before = files();
    EXPECT_EQ(ok("update_category", R"({"category": "Cities", "new_name": "x", "delete": true})"),
              u"Deleted category 'Cities'; its subcategories and entities moved up to its "
              "parent."_s);
    EXPECT_FALSE(category(u"Cities"_s) || category(u"x"_s));
    EXPECT_EQ(category(u"Districts"_s)->parentId(), category(u"Places"_s)->id());
    EXPECT_EQ(entity(u"Saltmere"_s)->categoryId(), category(u"Places"_s)->id());
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(CategoryTools, AddFieldsKeyedByTheirFoldedLabel)
{
    EXPECT_EQ(ok("add_field", R"({"category": "characters", "label": "  Eye Color ",
                                  "options": ["ignored"], "description": " As seen by Mara. "})"),
              u"Added the text field 'Eye Color' on category 'characters'."_s);
    EXPECT_EQ(ok("add_field", R"({"category": "Characters", "label": "eye color",
                                  "type": " choice ", "options": [" Grey ", " ", "Green"],
                                  "required": true})"),
              u"Updated the choice field 'eye color' on category 'Characters'."_s);
    EXPECT_EQ(fieldKeys(u"Characters"_s), u"summary,age,role,mentor,home,eye color"_s);
    const fb::core::FieldDefinition &added = category(u"Characters"_s)->fields().last();
    EXPECT_EQ(added.type, fb::core::FieldType::Choice);
    EXPECT_TRUE(added.required);
    EXPECT_EQ(added.options, (QStringList{u"Grey"_s, u"Green"_s}));
    EXPECT_EQ(added.description, QString());

    const auto before = files();
    const Refusal refusals[] = {
        {R"({"category": "Characters", "label": "  "})",
         u"add_field needs \"category\" and a non-empty \"label\"."_s},
        {R"({"category": "Ships", "label": "Hull"})", u"No category named 'Ships'."_s},
        {R"({"category": "Characters", "label": "Eyes", "type": "Text"})",
         u"Unknown field type 'Text'; use one of: text, number, boolean, date, reference, choice, "
         "url."_s},
        {R"({"category": "Characters", "label": "Eyes", "type": "choice", "options": [" "]})",
         u"A choice field needs a non-empty \"options\" array."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("add_field", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(CategoryTools, RemoveAFieldButKeepItsValuesForUndo)
{
    const auto before = files();
    EXPECT_EQ(ok("remove_field", R"({"category": "Things", "field": " CURSED "})"),
              u"Removed the field 'Cursed' from category 'Things'. Entity values under it are "
              "kept, so undo restores the field with its data."_s);
    EXPECT_EQ(category(u"Things"_s)->fieldIndex(u"cursed"_s), -1);
    EXPECT_EQ(entity(u"The Lantern"_s)->value(u"cursed"_s), u"true"_s);
    ok("undo_last");
    EXPECT_EQ(files(), before);

    const Refusal refusals[] = {
        {R"({"category": "Things"})", u"remove_field needs \"category\" and \"field\"."_s},
        {R"({"category": "Ships", "field": "Hull"})", u"No category named 'Ships'."_s},
        {R"({"category": "things", "field": "Hull"})", u"Category 'things' has no field 'Hull'."_s},
        {R"({"category": "Cities", "field": "climate"})",
         u"'Climate' is inherited from a parent category, not defined on 'Cities'; remove it "
         "from the parent that defines it."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("remove_field", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(CategoryTools, MoveAnOwnFieldClampedToTheSchema)
{
    const auto before = files();
    EXPECT_EQ(ok("move_field", R"({"category": "Characters", "field": "home", "position": 0})"),
              u"Moved the field 'Home' to position 0 on category 'Characters'."_s);
    EXPECT_EQ(fieldKeys(u"Characters"_s), u"home,summary,age,role,mentor"_s);
    EXPECT_EQ(ok("move_field", R"({"category": "Characters", "field": "Home", "position": 99})"),
              u"Moved the field 'Home' to position 4 on category 'Characters'."_s);
    EXPECT_EQ(files(), before);

    const Refusal refusals[] = {
        {R"({"category": "Characters", "position": 1})",
         u"move_field needs \"category\" and \"field\"."_s},
        {R"({"category": "Characters", "field": "Home"})",
         u"move_field needs \"position\" (a 0-based integer index)."_s},
        {R"({"category": "Characters", "field": "Home", "position": -1})",
         u"\"position\" must be a non-negative index."_s},
        {R"({"category": "Ships", "field": "Home", "position": 1})",
         u"No category named 'Ships'."_s},
        {R"({"category": "Nobles", "field": "Summary", "position": 1})",
         u"Category 'Nobles' has no own field 'Summary' to reorder."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("move_field", c.arguments), c.message);
    }
}

} // namespace
