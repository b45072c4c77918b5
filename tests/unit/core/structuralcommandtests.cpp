#include "commandfixture.h"
#include "core/commands/canvascommands.h"
#include "core/commands/categorycommands.h"
#include "core/commands/commentcommands.h"
#include "core/commands/entitycommands.h"
#include "core/commands/objectcommands.h"
#include "core/commands/structuralcommands.h"
#include "support/printers.h"

using namespace Qt::StringLiterals;
using namespace fb::core;

namespace {

// The documents in sibling order, each with its sort index: "End 0, Opening 1".
QString placements(const std::vector<Document *> &documents)
{
    QStringList result;
    for (const Document *document : documents)
        result.append(u"%1 %2"_s.arg(document->title()).arg(document->sortIndex()));
    return result.join(u", "_s);
}

QString fieldKeys(const Project &project, const QUuid &category)
{
    QStringList result;
    for (const FieldDefinition &field : project.categories().category(category)->fields())
        result.append(field.key);
    return result.join(u", "_s);
}

} // namespace

TEST_F(CommandTest, AddingUndoingAndRedoingKeepsTheSameInstanceAndId)
{
    auto owned = std::make_unique<Task>(u"Call the editor"_s);
    Task *const instance = owned.get();
    const QUuid id = instance->id();
    AddObjectCommand add(project, std::move(owned));
    EXPECT_EQ(add.objectId(), id);
    EXPECT_FALSE(project.contains(id));

    add.redo();
    EXPECT_EQ(project.object(id), instance);
    add.undo();
    EXPECT_FALSE(project.contains(id));
    add.redo();
    EXPECT_EQ(project.object(id), instance);
}

TEST_F(CommandTest, RemovingKeepsTheObjectAliveForUndo)
{
    const QUuid id = mara->id();
    auto remove = std::make_unique<RemoveObjectCommand>(project, id);
    remove->redo();
    EXPECT_FALSE(project.contains(id));
    remove->undo();
    EXPECT_EQ(project.object(id), mara);
    remove->redo();
    // The command owns the object now and destroys it with itself.
    remove.reset();
    EXPECT_FALSE(project.contains(id));
}

TEST_F(CommandTest, MovingADocumentRenumbersBothSiblingListsWithoutGaps)
{
    // Gaps and a tie in the indices, as files written elsewhere may hold them.
    opening->setSortIndex(5);
    middle->setSortIndex(10);
    end->setSortIndex(10);
    partTwo->setSortIndex(40);
    const struct
    {
        const char *name;
        Document *document;
        Document *newParent;
        int position;
        QString partOne;
        QString topLevel;
    } cases[] = {
        {"to the front", end, partOne, 0, u"End 0, Opening 1, Middle 2"_s,
         u"Part One 0, Part Two 40"_s},
        {"one place on", end, partOne, 1, u"Opening 0, End 1, Middle 2"_s,
         u"Part One 0, Part Two 40"_s},
        {"past the end", opening, partOne, 99, u"End 0, Middle 1, Opening 2"_s,
         u"Part One 0, Part Two 40"_s},
        {"before the front", middle, partOne, -3, u"Middle 0, End 1, Opening 2"_s,
         u"Part One 0, Part Two 40"_s},
        {"to the top level", middle, nullptr, 1, u"End 0, Opening 1"_s,
         u"Part One 0, Middle 1, Part Two 2"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray before = snapshot();
        MoveDocumentCommand move(project, c.document->id(),
                                 c.newParent ? c.newParent->id() : QUuid(), c.position);
        move.redo();
        EXPECT_EQ(placements(project.childrenOf(partOne->id())), c.partOne);
        EXPECT_EQ(placements(project.childrenOf(QUuid())), c.topLevel);
        move.undo();
        EXPECT_EQ(snapshot(), before);
        // Each case starts from the order the previous one left.
        move.redo();
    }
}

TEST_F(CommandTest, AMoveIntoItsOwnSubtreeOrUnderNoDocumentChangesNothing)
{
    const struct
    {
        const char *name;
        QUuid document;
        QUuid newParent;
    } cases[] = {
        {"under itself", partOne->id(), partOne->id()},
        {"under its child", partOne->id(), middle->id()},
        {"under an entity", opening->id(), mara->id()},
        {"under a missing document", opening->id(), QUuid::createUuid()},
    };
    // A grandchild makes the descendant walk take more than one step.
    Document *scene = addDocument(u"Scene"_s, 0, middle->id());
    const QByteArray before = snapshot();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        MoveDocumentCommand move(project, c.document, c.newParent, 0);
        move.redo();
        EXPECT_EQ(snapshot(), before);
        move.undo();
        EXPECT_EQ(snapshot(), before);
    }
    MoveDocumentCommand underGrandchild(project, partOne->id(), scene->id(), 0);
    underGrandchild.redo();
    EXPECT_EQ(snapshot(), before);
}

TEST_F(CommandTest, RemovingACategoryMovesItsContentsUpAndUndoFilesThemBack)
{
    auto child = std::make_unique<Category>(u"Villains"_s, people);
    const QUuid villains = child->id();
    AddCategoryCommand addChild(project, std::move(child));
    addChild.redo();

    RemoveCategoryCommand remove(project, people);
    remove.redo();
    EXPECT_FALSE(project.categories().contains(people));
    EXPECT_EQ(project.categories().category(villains)->parentId(), cast);
    EXPECT_EQ(mara->categoryId(), cast);

    remove.undo();
    EXPECT_EQ(project.categories().category(villains)->parentId(), people);
    EXPECT_EQ(mara->categoryId(), people);
    EXPECT_EQ(fieldKeys(project, people), u"summary, eye colour, age"_s);
}

TEST_F(CommandTest, AReparentThatTheTreeRefusesIsExplainedAndChangesNothing)
{
    const struct
    {
        const char *name;
        QUuid category;
        QUuid newParent;
        QString message;
    } cases[] = {
        {"unknown category", QUuid::createUuid(), cast, u"Cannot reparent an unknown category."_s},
        {"unknown parent", people, QUuid::createUuid(),
         u"Cannot reparent under an unknown category."_s},
        {"under itself", cast, cast, u"Reparenting there would create a cycle."_s},
        {"under its child", cast, people, u"Reparenting there would create a cycle."_s},
    };
    const QByteArray before = snapshot();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const fb::Result<void> checked = ReparentCategoryCommand::check(project.categories(),
                                                                        c.category, c.newParent);
        ASSERT_FALSE(checked);
        EXPECT_EQ(checked.error(), c.message);
        ReparentCategoryCommand reparent(project, c.category, c.newParent);
        reparent.redo();
        reparent.undo();
        EXPECT_EQ(snapshot(), before);
    }
    ReparentCategoryCommand toTop(project, people, QUuid());
    toTop.redo();
    EXPECT_TRUE(project.categories().category(people)->parentId().isNull());
    toTop.undo();
    EXPECT_EQ(project.categories().category(people)->parentId(), cast);
}

TEST_F(CommandTest, FieldCommandsEditTheOwnSchemaInPlace)
{
    FieldDefinition eyes = fieldDefinition(u"eye colour"_s, u"Eyes"_s, FieldType::Choice);
    eyes.required = true;
    const struct
    {
        const char *name;
        std::unique_ptr<Command> command;
        QString keys;
    } cases[] = {
        {"add appends",
         std::make_unique<AddFieldCommand>(project, people, fieldDefinition(u"home"_s, u"H"_s)),
         u"summary, eye colour, age, home"_s},
        {"add replaces the same key", std::make_unique<AddFieldCommand>(project, people, eyes),
         u"summary, eye colour, age"_s},
        {"remove", std::make_unique<RemoveFieldCommand>(project, people, u"eye colour"_s),
         u"summary, age"_s},
        {"move to the front", std::make_unique<MoveFieldCommand>(project, people, u"age"_s, 0),
         u"age, summary, eye colour"_s},
        {"move past the end", std::make_unique<MoveFieldCommand>(project, people, u"summary"_s, 7),
         u"eye colour, age, summary"_s},
    };
    const QString original = fieldKeys(project, people);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        c.command->redo();
        EXPECT_EQ(fieldKeys(project, people), c.keys);
        c.command->undo();
        EXPECT_EQ(fieldKeys(project, people), original);
    }
    AddFieldCommand replace(project, people, eyes);
    replace.redo();
    EXPECT_EQ(project.categories().category(people)->fields().at(1), eyes);
    RemoveFieldCommand remove(project, people, u"eye colour"_s);
    remove.redo();
    // The entity keeps its value, so undo brings the field back with its data.
    EXPECT_EQ(mara->value(u"eye colour"_s), u"green"_s);
}

TEST_F(CommandTest, AnEmptyFieldValueRemovesTheKeyAndUndoRestoresIt)
{
    SetFieldValueCommand clear(project, mara->id(), u"age"_s, QString());
    clear.redo();
    EXPECT_FALSE(mara->values().contains(u"age"_s));
    clear.undo();
    EXPECT_EQ(mara->value(u"age"_s), u"31"_s);

    SetFieldValueCommand fill(project, mara->id(), u"home"_s, u"Harbour"_s);
    fill.redo();
    EXPECT_EQ(mara->value(u"home"_s), u"Harbour"_s);
    fill.undo();
    EXPECT_FALSE(mara->values().contains(u"home"_s));
}

TEST_F(CommandTest, SettingAudiencesRegistersTheNewNamesInTheSameStep)
{
    const QStringList audiences{u"beta readers"_s, u"Agents"_s, u"agents"_s};
    EXPECT_EQ(SetAudiencesCommand::unregistered(project.audiences(), audiences),
              QStringList{u"Agents"_s});
    SetAudiencesCommand set(project, mara->id(), audiences);
    set.redo();
    EXPECT_EQ(mara->visibleTo(), (QStringList{u"Agents"_s, u"agents"_s, u"beta readers"_s}));
    EXPECT_EQ(project.audiences(), (QStringList{u"Beta readers"_s, u"Agents"_s}));
    set.undo();
    EXPECT_TRUE(mara->visibleTo().isEmpty());
    EXPECT_EQ(project.audiences(), QStringList{u"Beta readers"_s});
}

TEST_F(CommandTest, PinningAppendsOnceAndUnpinningIsUndoneInPlace)
{
    const QList<QUuid> original = project.pinned();
    SetPinnedCommand pinAgain(project, opening->id(), true);
    pinAgain.redo();
    EXPECT_EQ(project.pinned(), original);
    SetPinnedCommand pin(project, task->id(), true);
    pin.redo();
    EXPECT_EQ(project.pinned(), original + QList<QUuid>{task->id()});
    pin.undo();

    SetPinnedCommand unpin(project, opening->id(), false);
    unpin.redo();
    EXPECT_EQ(project.pinned(), QList<QUuid>{mara->id()});
    unpin.undo();
    EXPECT_EQ(project.pinned(), original);
}

TEST_F(CommandTest, EditingACommentLeavesItsTargetToTheMoveCommand)
{
    CommentRecord record = comment->record();
    record.body = u"Faster now."_s;
    record.targetId = mara->id();
    SetCommentCommand edit(project, comment->id(), record);
    SetCommentTargetCommand move(project, comment->id(), partTwo->id());
    move.redo();
    edit.redo();
    EXPECT_EQ(comment->body(), u"Faster now."_s);
    EXPECT_EQ(comment->targetId(), partTwo->id());
    move.undo();
    edit.undo();
    EXPECT_EQ(comment->body(), u"Too slow."_s);
    EXPECT_EQ(comment->targetId(), opening->id());
}

TEST_F(CommandTest, RemovingACardTakesItsConnectionsAlong)
{
    const CanvasBoard before{canvas->cards(), canvas->connections()};
    AddCanvasConnectionCommand connect(project, canvas->id(),
                                       {secondCard, firstCard, u"mentions"_s, {}});
    connect.redo();
    ASSERT_EQ(canvas->connections().size(), 2);
    RemoveCanvasCardCommand remove(project, canvas->id(), secondCard);
    remove.redo();
    ASSERT_EQ(canvas->cards().size(), 1);
    EXPECT_EQ(canvas->cards().first().id, firstCard);
    EXPECT_TRUE(canvas->connections().isEmpty());
    remove.undo();
    connect.undo();
    EXPECT_EQ((CanvasBoard{canvas->cards(), canvas->connections()}), before);
}
