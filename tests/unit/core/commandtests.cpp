#include "commandfixture.h"
#include "core/commands/canvascommands.h"
#include "core/commands/categorycommands.h"
#include "core/commands/commentcommands.h"
#include "core/commands/documentcommands.h"
#include "core/commands/entitycommands.h"
#include "core/commands/objectcommands.h"
#include "core/commands/projectcommands.h"
#include "core/commands/researchcommands.h"
#include "core/commands/structuralcommands.h"
#include "core/commands/taskcommands.h"
#include "core/commands/worldcommands.h"
#include "support/printers.h"

using namespace Qt::StringLiterals;
using namespace fb::core;

namespace {

struct CommandCase
{
    const char *name;
    std::unique_ptr<Command> command;
};

// Records its steps in a shared log, to show the order in which a composite calls its children.
class LoggingCommand final : public Command
{
public:
    LoggingCommand(QStringList &log, QString name)
        : m_log(log)
        , m_name(std::move(name))
    {}
    void redo() override { m_log.append(u"redo "_s + m_name); }
    void undo() override { m_log.append(u"undo "_s + m_name); }
    QString label() const override { return m_name; }

private:
    QStringList &m_log;
    QString m_name;
};

} // namespace

TEST_F(CommandTest, UndoRedoUndoRestoresTheSameStateEachTime)
{
    LanguageRecord words = language->record();
    words.lexicon = {{u"sal"_s, u"sea"_s, u"noun"_s, {}}};
    CommentRecord resolved = comment->record();
    resolved.resolved = true;
    const QList<PlotThread> threads{
        {QUuid::createUuid(), u"Revenge"_s, {}, mara->id(), u"#c0392b"_s}};
    const DocumentDrafts drafts{{{u"Draft 1"_s, u"It was dawn."_s}}, u"Night"_s, u"Dusk."_s};
    const CommandCase cases[] = {
        {"document body", std::make_unique<SetDocumentBodyCommand>(*opening, u"Dusk."_s)},
        {"document drafts", std::make_unique<SetDocumentVariantsCommand>(*opening, drafts)},
        {"task done", std::make_unique<SetTaskDoneCommand>(*task, true)},
        {"field value",
         std::make_unique<SetFieldValueCommand>(project, mara->id(), u"eye colour"_s, u"grey"_s)},
        {"lifespan",
         std::make_unique<SetEntityLifespanCommand>(project, mara->id(), EntityLifespan{100, {}})},
        {"tags", std::make_unique<SetObjectTagsCommand>(project, mara->id(), QStringList{u"b"_s})},
        {"audiences",
         std::make_unique<SetAudiencesCommand>(project, mara->id(), QStringList{u"Agents"_s})},
        {"unpin", std::make_unique<SetPinnedCommand>(project, opening->id(), false)},
        {"plot threads", std::make_unique<SetPlotThreadsCommand>(project, threads)},
        {"language", std::make_unique<SetLanguageCommand>(project, language->id(), words)},
        {"map pins", std::make_unique<SetMapPinsCommand>(project, map->id(), QList<MapPin>())},
        {"cleared cell", std::make_unique<SetSpreadsheetCellCommand>(project, sheet->id(),
                                                                     CellAddress(), QString())},
        {"comment", std::make_unique<SetCommentCommand>(project, comment->id(), resolved)},
        {"removed card",
         std::make_unique<RemoveCanvasCardCommand>(project, canvas->id(), firstCard)},
        {"category rename", std::make_unique<RenameCategoryCommand>(project, people, u"Folk"_s)},
        {"removed field", std::make_unique<RemoveFieldCommand>(project, people, u"eye colour"_s)},
        {"removed category", std::make_unique<RemoveCategoryCommand>(project, people)},
        {"removed object", std::make_unique<RemoveObjectCommand>(project, mara->id())},
        {"moved document",
         std::make_unique<MoveDocumentCommand>(project, end->id(), partTwo->id(), 0)},
    };
    for (const CommandCase &c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray before = snapshot();
        c.command->redo();
        const QByteArray after = snapshot();
        EXPECT_NE(after, before);
        c.command->undo();
        EXPECT_EQ(snapshot(), before);
        c.command->redo();
        EXPECT_EQ(snapshot(), after);
        c.command->undo();
        EXPECT_EQ(snapshot(), before);
    }
}

TEST_F(CommandTest, RedoTakesThePreviousValueAnewEachTime)
{
    SetDocumentTitleCommand rename(*opening, u"Dawn"_s);
    rename.redo();
    rename.undo();
    opening->setTitle(u"Prologue"_s);
    rename.redo();
    EXPECT_EQ(opening->title(), u"Dawn"_s);
    rename.undo();
    EXPECT_EQ(opening->title(), u"Prologue"_s);
}

TEST_F(CommandTest, ACommandWhoseTargetIsGoneOrOfAnotherTypeDoesNothing)
{
    const QUuid gone = QUuid::createUuid();
    const QUuid document = opening->id();
    CanvasCard stray = canvas->cards().first();
    stray.id = QUuid::createUuid();
    const CommandCase cases[] = {
        {"field value", std::make_unique<SetFieldValueCommand>(project, gone, u"age"_s, u"3"_s)},
        {"entity name on a document",
         std::make_unique<SetEntityNameCommand>(project, document, u"X"_s)},
        {"chart on a document", std::make_unique<SetChartCommand>(project, document, ChartRecord())},
        {"audiences", std::make_unique<SetAudiencesCommand>(project, gone, QStringList{u"New"_s})},
        {"pin", std::make_unique<SetPinnedCommand>(project, gone, true)},
        {"cell", std::make_unique<SetSpreadsheetCellCommand>(project, gone, CellAddress(), u"x"_s)},
        {"card not on the canvas",
         std::make_unique<SetCanvasCardCommand>(project, canvas->id(), stray)},
        {"connection",
         std::make_unique<AddCanvasConnectionCommand>(project, gone, CanvasConnection())},
        {"category rename", std::make_unique<RenameCategoryCommand>(project, gone, u"X"_s)},
        {"field", std::make_unique<AddFieldCommand>(project, gone, fieldDefinition(u"x"_s, u"X"_s))},
        {"object removal", std::make_unique<RemoveObjectCommand>(project, gone)},
        {"document move", std::make_unique<MoveDocumentCommand>(project, gone, QUuid(), 0)},
    };
    const QByteArray before = snapshot();
    for (const CommandCase &c : cases) {
        SCOPED_TRACE(c.name);
        c.command->redo();
        EXPECT_EQ(snapshot(), before);
        c.command->undo();
        EXPECT_EQ(snapshot(), before);
    }
}

TEST(CompositeCommand, UndoesChildrenInReverseOrder)
{
    QStringList log;
    CompositeCommand composite(u"MCP: test"_s);
    composite.append(std::make_unique<LoggingCommand>(log, u"a"_s));
    composite.append(nullptr);
    composite.append(std::make_unique<LoggingCommand>(log, u"b"_s));
    composite.redo();
    composite.undo();
    EXPECT_EQ(composite.childCount(), 2u);
    EXPECT_EQ(log, (QStringList{u"redo a"_s, u"redo b"_s, u"undo b"_s, u"undo a"_s}));
    EXPECT_EQ(composite.label(), u"MCP: test"_s);
}

TEST_F(CommandTest, ACompositeStillAppliesTheChildrenBeforeOneWhoseTargetIsGone)
{
    const QByteArray before = snapshot();
    const QUuid id = mara->id();
    CompositeCommand composite(u"MCP: delete object"_s);
    composite.append(std::make_unique<RemoveObjectCommand>(project, id));
    composite.append(std::make_unique<SetObjectTagsCommand>(project, id, QStringList{u"x"_s}));
    composite.redo();
    EXPECT_FALSE(project.contains(id));
    composite.undo();
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(project.object(id), mara);
}

TEST_F(CommandTest, EveryCommandHasItsLabel)
{
    const QUuid id = mara->id();
    struct LabelCase
    {
        std::unique_ptr<Command> command;
        QString label;
    };
    const LabelCase cases[] = {
        {std::make_unique<AddObjectCommand>(project, std::make_unique<Task>()), u"Add object"_s},
        {std::make_unique<RemoveObjectCommand>(project, id), u"Remove object"_s},
        {std::make_unique<MoveDocumentCommand>(project, id, id, 0), u"Move document"_s},
        {std::make_unique<SetDocumentBodyCommand>(*opening, QString()), u"Edit document body"_s},
        {std::make_unique<SetDocumentFootnotesCommand>(*opening, QList<Footnote>()),
         u"Edit footnotes"_s},
        {std::make_unique<SetDocumentKindCommand>(*opening, DocumentKind::Note),
         u"Change document kind"_s},
        {std::make_unique<SetDocumentPointOfViewCommand>(*opening, QString()),
         u"Edit point of view"_s},
        {std::make_unique<SetDocumentStatusCommand>(*opening, QString()), u"Edit status"_s},
        {std::make_unique<SetDocumentSynopsisCommand>(*opening, QString()), u"Edit synopsis"_s},
        {std::make_unique<SetDocumentTargetCommand>(*opening, 0), u"Set word-count target"_s},
        {std::make_unique<SetDocumentTitleCommand>(*opening, QString()), u"Rename document"_s},
        {std::make_unique<SetDocumentVariantsCommand>(*opening, DocumentDrafts()),
         u"Edit document variants"_s},
        {std::make_unique<SetDocumentVersionsCommand>(*opening, QList<DocumentVersion>()),
         u"Edit version history"_s},
        {std::make_unique<SetDocumentPlotThreadsCommand>(*opening, QList<QUuid>()),
         u"Tag scene plot threads"_s},
        {std::make_unique<SetPlotThreadsCommand>(project, QList<PlotThread>()),
         u"Edit plot threads"_s},
        {std::make_unique<SetBeatSheetCommand>(project, BeatSheet()), u"Edit beat sheet"_s},
        {std::make_unique<SetTaskTitleCommand>(*task, QString()), u"Rename task"_s},
        {std::make_unique<SetTaskDescriptionCommand>(*task, QString()), u"Edit task details"_s},
        {std::make_unique<SetTaskDoneCommand>(*task, true), u"Complete task"_s},
        {std::make_unique<SetTaskDoneCommand>(*task, false), u"Reopen task"_s},
        {std::make_unique<SetTaskDueDateCommand>(*task, QDate()), u"Change task due date"_s},
        {std::make_unique<SetTaskPriorityCommand>(*task, TaskPriority::High),
         u"Change task priority"_s},
        {std::make_unique<SetTaskStatusCommand>(*task, QString()), u"Change task status"_s},
        {std::make_unique<SetTaskBoardCommand>(*task, QString()), u"Move task to board"_s},
        {std::make_unique<SetTaskSubmissionCommand>(*task, Submission()),
         u"Change submission details"_s},
        {std::make_unique<SetTaskTargetCommand>(*task, id), u"Link task"_s},
        {std::make_unique<SetLanguageCommand>(project, id, LanguageRecord()), u"Edit language"_s},
        {std::make_unique<SetRandomTableCommand>(project, id, RandomTableRecord()),
         u"Edit random table"_s},
        {std::make_unique<SetSourceCommand>(project, id, SourceRecord()), u"Edit source"_s},
        {std::make_unique<SetStatBlockCommand>(project, id, StatBlockRecord()),
         u"Edit stat block"_s},
        {std::make_unique<SetCalendarCommand>(project, Calendar()), u"Set calendar"_s},
        {std::make_unique<SetChartCommand>(project, id, ChartRecord()), u"Edit chart"_s},
        {std::make_unique<SetContinuityRulesCommand>(project, QList<ContinuityRule>()),
         u"Set continuity rules"_s},
        {std::make_unique<SetMapPinsCommand>(project, id, QList<MapPin>()), u"Edit map pins"_s},
        {std::make_unique<SetMapRegionsCommand>(project, id, QList<MapRegion>()),
         u"Edit map regions"_s},
        {std::make_unique<SetMapRoutesCommand>(project, id, QList<MapRoute>()),
         u"Edit map routes"_s},
        {std::make_unique<SetMapTokensCommand>(project, id, QList<MapToken>()),
         u"Edit map tokens"_s},
        {std::make_unique<SetMediaCaptionCommand>(project, id, QString()), u"Edit caption"_s},
        {std::make_unique<SetSpreadsheetCellCommand>(project, id, CellAddress(), QString()),
         u"Edit cell"_s},
        {std::make_unique<SetTimelineErasCommand>(project, QList<TimelineEra>()),
         u"Set timeline eras"_s},
        {std::make_unique<SetTimelineEventCommand>(project, id, TimelineEventRecord()),
         u"Edit timeline event"_s},
        {std::make_unique<AddCategoryCommand>(project, std::make_unique<Category>()),
         u"Add category"_s},
        {std::make_unique<RemoveCategoryCommand>(project, id), u"Remove category"_s},
        {std::make_unique<RenameCategoryCommand>(project, id, QString()), u"Rename category"_s},
        {std::make_unique<ReparentCategoryCommand>(project, id, QUuid()), u"Move category"_s},
        {std::make_unique<AddFieldCommand>(project, id, FieldDefinition()), u"Add field"_s},
        {std::make_unique<RemoveFieldCommand>(project, id, QString()), u"Remove field"_s},
        {std::make_unique<MoveFieldCommand>(project, id, QString(), 0), u"Move field"_s},
        {std::make_unique<SetFieldValueCommand>(project, id, QString(), QString()),
         u"Set field value"_s},
        {std::make_unique<SetEntityNameCommand>(project, id, QString()), u"Rename entity"_s},
        {std::make_unique<SetEntityAliasesCommand>(project, id, QStringList()), u"Set aliases"_s},
        {std::make_unique<SetEntityCategoryCommand>(project, id, QUuid()),
         u"Move entity to category"_s},
        {std::make_unique<SetEntityLifespanCommand>(project, id, EntityLifespan()),
         u"Edit lifespan"_s},
        {std::make_unique<SetEntityTimedValuesCommand>(project, id, QList<TimedValue>()),
         u"Set state over time"_s},
        {std::make_unique<SetEntityGalleryCommand>(project, id, QStringList()),
         u"Set entity gallery"_s},
        {std::make_unique<SetEntityTemplatesCommand>(project, QList<EntityTemplate>()),
         u"Update entity templates"_s},
        {std::make_unique<SetObjectTagsCommand>(project, id, QStringList()), u"Set tags"_s},
        {std::make_unique<SetObjectVisibilityCommand>(project, id, QStringList()),
         u"Set visibility"_s},
        {std::make_unique<SetAudiencesCommand>(project, id, QStringList()), u"Edit audiences"_s},
        {std::make_unique<SetAiExclusionCommand>(project, id, true), u"Set AI exclusion"_s},
        {std::make_unique<SetPinnedCommand>(project, id, true), u"Pin"_s},
        {std::make_unique<SetPinnedCommand>(project, id, false), u"Unpin"_s},
        {std::make_unique<SetCommentCommand>(project, id, CommentRecord()), u"Edit comment"_s},
        {std::make_unique<SetCommentTargetCommand>(project, id, QUuid()), u"Move comment"_s},
        {std::make_unique<AddCanvasConnectionCommand>(project, id, CanvasConnection()),
         u"Connect cards"_s},
        {std::make_unique<RemoveCanvasCardCommand>(project, id, QUuid()), u"Remove card"_s},
        {std::make_unique<SetCanvasCardCommand>(project, id, CanvasCard()), u"Move card"_s},
    };
    for (const LabelCase &c : cases) {
        SCOPED_TRACE(c.label.toStdString());
        EXPECT_EQ(c.command->label(), c.label);
    }
}
