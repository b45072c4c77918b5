#include "codexfixture.h"
#include "tools/codex/references.h"

using fb::test::CodexFixture;
using namespace Qt::StringLiterals;

namespace {

class EntityReferences : public CodexFixture
{
protected:
    QStringList referenceKinds(int entity)
    {
        QStringList kinds;
        const QUuid id = QUuid::fromString(entityId(entity));
        for (const auto &reference : fb::app::walkReferences(project(), id).references)
            kinds.append(reference.kind);
        return kinds;
    }
};

struct Refusal
{
    const char *arguments;
    QString message;
};

// The Smuggler is pointed at by one reference of every kind.
const QStringList smugglerReferences{
    u"timeline participant"_s,
    u"timeline location"_s,
    u"map region"_s,
    u"map route"_s,
    u"map token"_s,
    u"task"_s,
    u"comment"_s,
    u"research-canvas card"_s,
    u"prose link"_s,
    u"reference field \"Mentor\""_s,
    u"plot-thread character arc"_s,
    u"entity-template default \"Dock Worker\""_s,
    u"continuity rule"_s,
};

TEST_F(EntityReferences, FindEveryKindOfReference)
{
    EXPECT_EQ(referenceKinds(11), smugglerReferences);
    // Pell's own reference to the Smuggler is no reference to Pell.
    EXPECT_EQ(referenceKinds(12), QStringList(3, u"timeline participant"_s));
    EXPECT_EQ(referenceKinds(14), QStringList());
}

TEST_F(EntityReferences, DeleteLeavesReferencesDanglingUntilUndo)
{
    const auto before = files();
    EXPECT_EQ(ok("delete_object", R"({"name": "pell the younger"})"),
              u"Deleted the entity 'Pell'. 3 reference(s) to it elsewhere are now dangling."_s);
    EXPECT_FALSE(entity(u"Pell"_s));
    EXPECT_EQ(referenceKinds(12), QStringList(3, u"timeline participant"_s));
    ok("undo_last");
    EXPECT_EQ(files(), before);
    EXPECT_TRUE(ok("get_entity", R"({"name": "Pell"})").contains(u"- Mentor: The Smuggler"));

    const Refusal deletions[] = {
        {R"({"name": "The Smuggler"})",
         u"Deleted the entity 'The Smuggler'. 13 reference(s) to it elsewhere are now dangling."_s},
        {R"({"name": "Tide Song"})", u"Deleted the entity 'Tide Song'."_s},
        {R"({"name": "notes"})", u"Deleted the document 'Notes'."_s},
        {R"({"name": "Harbour Chart"})", u"Deleted the map 'Harbour Chart'."_s},
        {R"({"id": "a0de0000-0000-4000-8000-000000000004"})",
         u"Deleted the timeline event 'Night Crossing'."_s},
    };
    for (const auto &c : deletions) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(ok("delete_object", c.arguments), c.message);
        ok("undo_last");
        EXPECT_EQ(files(), before);
    }
    EXPECT_EQ(fails("delete_object", R"({"name": " "})"),
              u"delete_object needs \"name\" (or \"id\")."_s);
    EXPECT_EQ(fails("delete_object", R"({"name": "Nobody"})"),
              u"No object named 'Nobody' exists."_s);
}

TEST_F(EntityReferences, DeletingADocumentMovesItsChildrenUpInPlace)
{
    const auto before = files();
    EXPECT_EQ(ok("delete_object", R"({"name": "Part One"})"), u"Deleted the document 'Part One'."_s);
    QStringList topLevel;
    for (const auto *document : project().childrenOf(QUuid()))
        topLevel.append(document->title());
    EXPECT_EQ(topLevel, (QStringList{u"Chapter One"_s, u"Chapter Two"_s, u"Chapter Three"_s,
                                     u"Secret Notes"_s, u"Notes"_s}));
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(EntityReferences, MergeRepointsEveryReferenceAndUndoesAsOneStep)
{
    const auto before = files();
    EXPECT_EQ(ok("merge_entities", R"({"source": "masked man", "target": "RUSK"})"),
              u"Merged 'The Smuggler' into 'Jory Rusk', re-pointing 13 reference(s)."_s);
    EXPECT_FALSE(entity(u"The Smuggler"_s));
    EXPECT_EQ(referenceKinds(11), QStringList());
    // Rusk was already a participant of the masked meeting (kept once) and on the canvas.
    QStringList expected = smugglerReferences;
    expected.insert(1, u"timeline participant"_s);
    expected.insert(9, u"research-canvas card"_s);
    EXPECT_EQ(referenceKinds(10), expected);
    const auto *meeting = project().objectAs<fb::core::TimelineEvent>(
        QUuid::fromString(u"a0de0000-0000-4000-8000-000000000005"_s));
    EXPECT_EQ(meeting->participants().size(), 2);
    // The gaps are filled from the source, what the target held wins, and the old names still
    // find it.
    EXPECT_EQ(ok("get_entity", R"({"name": "The Smuggler"})"),
              u"# Jory Rusk (Characters)\nAliases: Masked Man, Rusk, The Smuggler\nTags: mystery\n"
              "Lifespan: 1 Frostmoon, Year 1210 AR -- unknown\nGallery: 1 image(s)\nFields:\n"
              "- Summary: A masked smuggler seen at the docks.\n- Age: 40\n- Role: Scholar\n"
              "- Home: Gallows Quarter\nState over time:\n"
              "- Age: \"40\" from 1 Frostmoon, Year 1250 AR\n"
              "Mentioned in: Chapter One, Chapter Two."_s);
    ok("undo_last");
    EXPECT_EQ(files(), before);
    EXPECT_EQ(referenceKinds(11), smugglerReferences);

    const Refusal refusals[] = {
        {R"({"target": "Pell"})", u"merge_entities needs \"source\" (or \"source_id\")."_s},
        {R"({"source": "Pell"})", u"merge_entities needs \"target\" (or \"target_id\")."_s},
        // Named once by name and once by id.
        {R"({"source": "Pell", "target_id": "e0de0000-0000-4000-8000-000000000012"})",
         u"An entity cannot be merged into itself."_s},
        {R"({"source": "Chapter One", "target": "Pell"})",
         u"No entity named 'Chapter One' exists."_s},
        {R"({"source": "Pell", "target_id": "d0de0000-0000-4000-8000-000000000002"})",
         u"The id 'd0de0000-0000-4000-8000-000000000002' is not an entity."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("merge_entities", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(EntityReferences, SplitCopiesTheChosenFieldsAndLeavesTheSource)
{
    const auto before = files();
    EXPECT_EQ(ok("split_entity", R"({"source": "Mara", "new_name": " Young Mara ",
                                     "fields": ["summary", " ROLE", "Home", "role"],
                                     "copy_lifespan": true})"),
              u"Split a new entity 'Young Mara' off 'Mara Vell' (copied 3 field(s) + lifespan). "
              "Divide the references between the two by hand."_s);
    EXPECT_EQ(ok("get_entity", R"({"name": "young mara"})"),
              u"# Young Mara (Characters)\nLifespan: 3 Seedmoon, Year 1224 AR -- unknown\n"
              "Gallery: 0 image(s)\nFields:\n- Summary: A ferry pilot who smuggles letters.\n- "
              "Role: Smuggler\n"
              "- Home: Saltmere"_s);
    // Without dates to copy there is no lifespan to report.
    EXPECT_EQ(ok("split_entity", R"({"source_id": "e0de0000-0000-4000-8000-000000000006",
                                     "new_name": "The Far Coast", "copy_lifespan": true})"),
              u"Split a new entity 'The Far Coast' off 'The Grey Coast' (copied 0 field(s)). "
              "Divide the references between the two by hand."_s);
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);

    const Refusal refusals[] = {
        {R"({"source": "Mara", "new_name": " "})",
         u"split_entity needs \"new_name\" for the entity to carve off."_s},
        {R"({"new_name": "Young Mara"})", u"split_entity needs \"source\" (or \"source_id\")."_s},
        {R"({"source": "Mara", "new_name": "old tobin"})",
         u"An entity named 'old tobin' already exists; choose a distinct name."_s},
        {R"({"source": "Mara", "new_name": "Young Mara", "fields": ["Summary", "Eye Color"]})",
         u"'Eye Color' is not a field of 'Mara Vell's category."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("split_entity", c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(EntityReferences, MentionsAreCappedAfterTenDocuments)
{
    for (int i = 1; i <= 12; ++i) {
        ok(u"create_document"_s,
           {{u"title"_s, u"Scene %1"_s.arg(i)}, {u"body"_s, u"Harbour Watch patrols again."_s}});
    }
    EXPECT_EQ(ok("get_entity", R"({"name": "Harbour Watch"})"),
              u"# Harbour Watch (Factions)\nLifespan: unknown -- unknown\nGallery: 0 image(s)\n"
              "Fields:\n- Summary: The city guard of Saltmere.\n"
              "Mentioned in: Scene 1, Scene 2, Scene 3, Scene 4, Scene 5, Scene 6, Scene 7, "
              "Scene 8, Scene 9, Scene 10, +2 more."_s);
}

} // namespace
