#pragma once

#include "core/commands/undohistory.h"
#include "support/toolfixture.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

namespace fb::test {

// The planning test project "Harbor Plot": a chapter with three scenes, an excluded note and an
// epilogue; the character Mara Vell and the excluded Quill Vantor; tasks on four boards (two of
// them titled alike, one excluded); six plot threads tagged on the scenes; and a three-act beat
// sheet whose Climax holds the excluded note and whose Resolution a scene that was deleted.
class PlanningFixture : public ToolFixture
{
protected:
    PlanningFixture()
        : ToolFixture(QStringLiteral("projects/planning"))
    {}

    // Tool arguments written as JSON text, which keeps tables of calls short and readable.
    static QJsonObject args(const char *json)
    {
        return QJsonDocument::fromJson(QByteArray(json)).object();
    }

    using ToolFixture::call;
    using ToolFixture::fails;
    using ToolFixture::ok;
    ToolReply call(const char *tool, const char *json = "{}")
    {
        return call(QString::fromUtf8(tool), args(json));
    }
    QString ok(const char *tool, const char *json = "{}")
    {
        return ok(QString::fromUtf8(tool), args(json));
    }
    QString fails(const char *tool, const char *json = "{}")
    {
        return fails(QString::fromUtf8(tool), args(json));
    }

    QString lastLabel() { return workspace().undoHistory().undoLabel(); }
    std::size_t steps() { return workspace().undoHistory().count(); }
    QString changeLog() { return ok("get_recent_changes"); }

    // Undoes every step of the session.
    void undoAll()
    {
        while (workspace().undoHistory().canUndo())
            ok("undo_last");
    }
};

// A call and what it must answer.
struct Expected
{
    const char *arguments;
    QString text;
};

// A call that changes the project, what it answers and the undo step it records.
struct ExpectedChange
{
    const char *arguments;
    QString text;
    QString label;
};

} // namespace fb::test
