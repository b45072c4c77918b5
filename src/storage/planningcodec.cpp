#include "storage/planningcodec.h"

#include "core/canvas.h"
#include "core/comment.h"
#include "core/source.h"
#include "core/task.h"
#include "storage/storedvalues.h"

using namespace Qt::StringLiterals;

namespace fb::app {

using namespace core;

void readSource(JsonReader &reader, Source &source)
{
    SourceRecord record;
    record.kind = reader.enumeration("sourceType"_L1, SourceKind::Book);
    record.title = reader.string("title"_L1);
    record.citationKey = reader.string("citationKey"_L1);
    record.fields = reader.textMap("fields"_L1);
    source.setRecord(record);
}

void writeSource(const Source &source, QJsonObject &json)
{
    json.insert("sourceType"_L1, enumName(source.kind()));
    json.insert("title"_L1, source.title());
    json.insert("citationKey"_L1, source.citationKey());
    json.insert("fields"_L1, textMapObject(source.fields()));
}

void readTask(JsonReader &reader, Task &task)
{
    task.setTitle(reader.string("title"_L1));
    task.setDescription(reader.string("description"_L1));
    task.setDone(reader.boolean("done"_L1));
    task.setBoard(reader.string("board"_L1, task.board()));
    task.setPriority(reader.enumeration("priority"_L1, task.priority()));
    task.setDueDate(reader.date("dueDate"_L1));
    task.setStatus(reader.string("status"_L1, task.status()));
    task.setTargetId(reader.id("targetId"_L1));
    task.setSortIndex(reader.int32("sortIndex"_L1));

    JsonReader stored(reader.object("submission"_L1));
    Submission submission;
    submission.recipient = stored.string("recipient"_L1);
    submission.kind = stored.enumeration("kind"_L1, submission.kind);
    submission.submittedOn = stored.date("submittedOn"_L1);
    submission.notes = stored.string("notes"_L1);
    task.setSubmission(submission);
}

void writeTask(const Task &task, QJsonObject &json)
{
    json.insert("title"_L1, task.title());
    json.insert("description"_L1, task.description());
    json.insert("done"_L1, task.isDone());
    json.insert("board"_L1, task.board());
    json.insert("priority"_L1, enumName(task.priority()));
    json.insert("dueDate"_L1, dateValue(task.dueDate()));
    json.insert("status"_L1, task.status());
    json.insert("targetId"_L1, idValue(task.targetId()));
    json.insert("sortIndex"_L1, task.sortIndex());

    const Submission &submission = task.submission();
    json.insert("submission"_L1, QJsonObject{{"recipient"_L1, submission.recipient},
                                             {"kind"_L1, enumName(submission.kind)},
                                             {"submittedOn"_L1, dateValue(submission.submittedOn)},
                                             {"notes"_L1, submission.notes}});
}

void readCanvas(JsonReader &reader, Canvas &canvas)
{
    canvas.setTitle(reader.string("title"_L1));
    canvas.setCards(reader.list<CanvasCard>("cards"_L1, [](JsonReader &item) {
        CanvasCard card;
        card.id = item.id("id"_L1);
        card.objectId = item.id("objectId"_L1);
        card.x = item.number("x"_L1);
        card.y = item.number("y"_L1);
        card.width = item.number("width"_L1);
        card.height = item.number("height"_L1);
        card.preservedProperties = item.unreadProperties();
        return card;
    }));
    canvas.setConnections(reader.list<CanvasConnection>("connections"_L1, [](JsonReader &item) {
        CanvasConnection connection;
        connection.fromCardId = item.id("fromCardId"_L1);
        connection.toCardId = item.id("toCardId"_L1);
        connection.label = item.string("label"_L1);
        connection.preservedProperties = item.unreadProperties();
        return connection;
    }));
}

void writeCanvas(const Canvas &canvas, QJsonObject &json)
{
    json.insert("title"_L1, canvas.title());
    json.insert("cards"_L1, jsonArray(canvas.cards(), [](const CanvasCard &card) {
                    QJsonObject item = preservedJson(card.preservedProperties);
                    item.insert("id"_L1, idValue(card.id));
                    item.insert("objectId"_L1, idValue(card.objectId));
                    item.insert("x"_L1, card.x);
                    item.insert("y"_L1, card.y);
                    item.insert("width"_L1, card.width);
                    item.insert("height"_L1, card.height);
                    return item;
                }));
    json.insert("connections"_L1, jsonArray(canvas.connections(), [](const CanvasConnection &c) {
                    QJsonObject item = preservedJson(c.preservedProperties);
                    item.insert("fromCardId"_L1, idValue(c.fromCardId));
                    item.insert("toCardId"_L1, idValue(c.toCardId));
                    item.insert("label"_L1, c.label);
                    return item;
                }));
}

void readComment(JsonReader &reader, Comment &comment)
{
    CommentRecord record;
    record.targetId = reader.id("targetId"_L1);
    record.parentId = reader.id("parentId"_L1);
    record.anchor = reader.string("anchor"_L1);
    record.author = reader.string("author"_L1);
    record.body = reader.string("body"_L1);
    record.createdAt = reader.dateTime("createdAt"_L1);
    record.updatedAt = reader.dateTime("updatedAt"_L1);
    record.resolved = reader.boolean("resolved"_L1);
    comment.setRecord(record);
}

void writeComment(const Comment &comment, QJsonObject &json)
{
    const CommentRecord &record = comment.record();
    json.insert("targetId"_L1, idValue(record.targetId));
    json.insert("parentId"_L1, idValue(record.parentId));
    json.insert("anchor"_L1, record.anchor);
    json.insert("author"_L1, record.author);
    json.insert("body"_L1, record.body);
    json.insert("createdAt"_L1, dateTimeValue(record.createdAt));
    json.insert("updatedAt"_L1, dateTimeValue(record.updatedAt));
    json.insert("resolved"_L1, record.resolved);
}

} // namespace fb::app
