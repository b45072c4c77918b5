#pragma once

#include <QJsonObject>

namespace fb::core {
class Canvas;
class Comment;
class Source;
class Task;
} // namespace fb::core

namespace fb::app {

class JsonReader;

// The type keys of sources, tasks, canvases and comments (see objectcodec.h for the stored
// forms).
void readSource(JsonReader &reader, core::Source &source);
void writeSource(const core::Source &source, QJsonObject &json);

void readTask(JsonReader &reader, core::Task &task);
void writeTask(const core::Task &task, QJsonObject &json);

void readCanvas(JsonReader &reader, core::Canvas &canvas);
void writeCanvas(const core::Canvas &canvas, QJsonObject &json);

void readComment(JsonReader &reader, core::Comment &comment);
void writeComment(const core::Comment &comment, QJsonObject &json);

} // namespace fb::app
