#include "core/commands/undohistory.h"
#include "core/comment.h"
#include "core/ids.h"
#include "core/project.h"
#include "reviewedproject.h"

#include <QDir>
#include <QUuid>

using namespace Qt::StringLiterals;

using fb::test::args;

namespace {

QString commentId(int n)
{
    return u"a0000000-0000-4000-8000-%1"_s.arg(n, 12, 10, QLatin1Char('0'));
}

const QString libraryComment = u"a1000000-0000-4000-8000-000000000001"_s;

const QString ferryThread
    = u"- [open] Ana (\"grey water\"): Tighten this opening. [id: "
      "a0000000-0000-4000-8000-000000000001]\n"
      "  - [open] Claude (2024-05-06 10:00 UTC): Trimmed the first line. [id: "
      "a0000000-0000-4000-8000-000000000002]\n"
      "    - [resolved] Ana (2024-05-06 11:00 UTC): Thanks. [id: "
      "a0000000-0000-4000-8000-000000000003]"_s;
const QString maraThread = u"- [resolved] Ben (2024-05-07 09:00 UTC): Is she left-handed? [id: "
                           "a0000000-0000-4000-8000-000000000004]"_s;
const QString wyrmThread = u"- [open] Dee (2024-04-01 08:00 UTC): Check the wyrm's "
                           "size. [id: a1000000-0000-4000-8000-000000000001]"_s;
// The body is cut to 160 characters.
const QString cutThread
    = u"- [open] Ana (2024-05-08 09:30 UTC): This scene was cut, but the idea of the drowned bell "
      "should come back later in the book, perhaps in the storm chapter where Mara hears it ring "
      "beneath the waves... [id: a0000000-0000-4000-8000-000000000005]"_s;

class CommentTools : public fb::test::ReviewedProject
{
protected:
    const fb::core::Comment *newestComment()
    {
        const fb::core::Comment *newest = nullptr;
        for (const auto *comment : workspace().project().objectsOfType<fb::core::Comment>()) {
            if (!newest || comment->createdAt() > newest->createdAt())
                newest = comment;
        }
        return newest;
    }

    static QString stamp(const fb::core::Comment &comment)
    {
        return comment.createdAt().toUTC().toString(u"yyyy-MM-dd HH:mm 'UTC'"_s);
    }

    QString lastLabel() { return workspace().undoHistory().undoLabel(); }

    QUuid newestReplyTo(const QString &id)
    {
        for (const auto *comment : workspace().project().objectsOfType<fb::core::Comment>()) {
            if (comment->parentId() == QUuid::fromString(id))
                return comment->id();
        }
        return {};
    }
};

TEST_F(CommentTools, ListsThreadsGroupedByTargetWithoutWhatIsWithheld)
{
    // The threads on the excluded entity and on the scene below the excluded draft, and the
    // excluded comment on the notes, never show.
    const QString ferry = u"## The Ferry\n"_s + ferryThread;
    const QString rest = u"\n\n## Harbour Wyrm (library 'Lore Library')\n"_s + wyrmThread
                         + u"\n\n## (deleted object)\n"_s + cutThread;
    EXPECT_EQ(ok("list_comments"), ferry + rest);
    EXPECT_EQ(ok("list_comments", args({{"include_resolved", true}})),
              ferry + u"\n\n## Mara Vell\n"_s + maraThread + rest);
}

TEST_F(CommentTools, ListsTheThreadsOfOneTarget)
{
    const struct
    {
        QJsonObject arguments;
        bool ok;
        QString answer;
    } cases[] = {
        {args({{"target", " the ferry "}}), true, ferryThread},
        {args({{"target", "The Heron"}}), true, u"No open comments on 'Mara Vell' yet."_s},
        {args({{"target", "Mara Vell"}, {"include_resolved", true}}), true, maraThread},
        {args({{"target", "Notes"}, {"include_resolved", true}}), true,
         u"No comments on 'Notes' yet."_s},
        {args({{"target_id", "{E1000000-0000-4000-8000-000000000001}"}}), true, wyrmThread},
        {args({{"target", "Hidden Scene"}}), false, u"'Hidden Scene' is excluded from AI."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        const fb::test::ToolReply reply = call(u"list_comments"_s, c.arguments);
        EXPECT_EQ(reply.ok, c.ok);
        EXPECT_EQ(reply.text, c.answer);
    }
}

TEST_F(CommentTools, AddsACommentAsOneUndoableStep)
{
    const struct
    {
        QJsonObject arguments;
        QString answer;
        QString detail; // empty for the creation time
    } cases[] = {
        {args({{"target", "the ferry"},
               {"body", "  Check the   tide tables. "},
               {"anchor", " the quay "},
               {"author", "  "}}),
         u"Added a comment by Claude on 'The Ferry'."_s, u"\"the quay\""_s},
        {args({{"target", "the heron"}, {"body", "Check the tide tables."}, {"author", "Ben"}}),
         u"Added a comment by Ben on 'Mara Vell'."_s, QString()},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        const auto before = files();
        const QString answer = ok("add_comment", c.arguments);
        EXPECT_EQ(workspace().undoHistory().count(), 1u);
        EXPECT_EQ(lastLabel(), u"MCP: add comment"_s);

        const fb::core::Comment *added = newestComment();
        ASSERT_NE(added, nullptr);
        EXPECT_EQ(answer, c.answer);
        EXPECT_TRUE(added->parentId().isNull());
        // The comment is dated by the server's clock, which the fixture fixes.
        EXPECT_EQ(added->createdAt(), fb::test::fixedTime());
        const QString line = u"- [open] %1 (%2): Check the tide tables. [id: %3]"_s
                                 .arg(c.answer.section(u' ', 4, 4),
                                      c.detail.isEmpty() ? stamp(*added) : c.detail,
                                      fb::core::idText(added->id()));
        const QString listed = ok("list_comments",
                                  args({{"target_id", fb::core::idText(added->targetId())}}));
        EXPECT_TRUE(listed.endsWith(line)) << listed.toStdString();

        EXPECT_EQ(ok("undo_last"), u"Undid the last change."_s);
        EXPECT_EQ(files(), before);
    }
}

TEST_F(CommentTools, TheIdListCommentsShowsIsTheOneToReplyToAndResolve)
{
    ok("add_comment", args({{"target", "Notes"}, {"body", "Cite the tides."}}));
    const QString listed = ok("list_comments", args({{"target", "Notes"}}));
    const QString id = listed.section(u"[id: "_s, 1).chopped(1);
    ASSERT_FALSE(QUuid::fromString(id).isNull()) << listed.toStdString();
    const struct
    {
        const char *tool;
        QJsonObject arguments;
        QString answer;
    } steps[] = {
        {"reply_comment", args({{"comment", id}, {"body", "Done."}}), u"Added a reply by Claude."_s},
        {"resolve_comment", args({{"comment", id}}), u"Marked the comment resolved."_s},
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(step.tool);
        EXPECT_EQ(ok(step.tool, step.arguments), step.answer);
    }
    EXPECT_EQ(ok("list_comments", args({{"target", "Notes"}})),
              u"- [resolved] Claude (2025-03-14 09:26 UTC): Cite the tides. [id: %1]\n"
              "  - [open] Claude (2025-03-14 09:26 UTC): Done. [id: %2]"_s
                  .arg(id, fb::core::idText(newestReplyTo(id))));
}

TEST_F(CommentTools, RepliesJoinTheThreadOfTheCommentTheyAnswer)
{
    const auto before = files();
    EXPECT_EQ(ok("reply_comment", args({{"comment", u'{' + commentId(1).toUpper() + u'}'},
                                        {"body", " Done; see the new opening. "}})),
              u"Added a reply by Claude."_s);
    EXPECT_EQ(lastLabel(), u"MCP: reply to comment"_s);
    const fb::core::Comment *reply = newestComment();
    ASSERT_NE(reply, nullptr);
    // The newest reply to the first comment comes after the older reply and its answer.
    EXPECT_EQ(ok("list_comments", args({{"target", "The Ferry"}})),
              ferryThread
                  + u"\n  - [open] Claude (%1): Done; see the new opening. [id: %2]"_s
                        .arg(stamp(*reply), fb::core::idText(reply->id())));

    // An open reply brings a resolved thread back into the default listing.
    EXPECT_EQ(ok("reply_comment",
                 args({{"comment", commentId(4)}, {"body", "Yes."}, {"author", "Ben"}})),
              u"Added a reply by Ben."_s);
    EXPECT_TRUE(ok("list_comments").contains(u"## Mara Vell\n"_s + maraThread));

    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(CommentTools, ResolvesAndReopensOnlyWhenTheStateChanges)
{
    const auto before = files();
    const struct
    {
        QJsonObject arguments;
        QString answer;
        bool changes;
    } steps[] = {
        {args({{"comment", commentId(1)}}), u"Marked the comment resolved."_s, true},
        {args({{"comment", commentId(1)}, {"resolved", true}}),
         u"That comment is already resolved."_s, false},
        {args({{"comment", commentId(4)}, {"resolved", false}}), u"Reopened the comment."_s, true},
        {args({{"comment", commentId(2)}, {"resolved", false}}), u"That comment is already open."_s,
         false},
    };
    std::size_t expectedSteps = 0;
    for (const auto &step : steps) {
        SCOPED_TRACE(step.answer.toStdString());
        const auto previous = files();
        EXPECT_EQ(ok("resolve_comment", step.arguments), step.answer);
        expectedSteps += step.changes ? 1 : 0;
        EXPECT_EQ(workspace().undoHistory().count(), expectedSteps);
        EXPECT_EQ(files() != previous, step.changes);
    }
    EXPECT_EQ(lastLabel(), u"MCP: resolve comment"_s);
    EXPECT_EQ(ok("get_recent_changes"), u"Marked the comment resolved.\nReopened the comment."_s);
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(CommentTools, RefusesABadCallAndChangesNothing)
{
    const auto before = files();
    const char *body = "A remark.";
    const QString excluded = u"'%1' is excluded from AI and cannot be changed."_s;
    const QString inLibrary = u"Comment '%1' lives in a mounted library; this server "
                              "edits only the open project."_s.arg(libraryComment);
    const struct
    {
        const char *tool;
        QJsonObject arguments;
        QString message;
    } cases[] = {
        {"add_comment", args({{"body", body}}),
         u"add_comment needs \"target\" (or \"target_id\")."_s},
        {"add_comment", args({{"target", "The Ferry"}, {"body", " \n "}}),
         u"add_comment needs a non-empty \"body\"."_s},
        {"add_comment", args({{"target", "Sea Serpent"}, {"body", body}}),
         u"'Harbour Wyrm' lives in the mounted library 'Lore Library'; this server "
         "edits only the open project. Open the library as its own project to "
         "change it."_s},
        {"add_comment", args({{"target", "Nightjar"}, {"body", body}}), excluded.arg(u"Nightjar")},
        {"add_comment", args({{"target", "hidden scene"}, {"body", body}}),
         excluded.arg(u"hidden scene")},
        {"reply_comment", args({{"body", body}}),
         u"reply_comment needs \"comment\" (the id shown by list_comments)."_s},
        {"reply_comment", args({{"comment", commentId(1)}}),
         u"reply_comment needs a non-empty \"body\"."_s},
        {"reply_comment",
         args({{"comment", "a0000000-0000-4000-8000-000000000001x"}, {"body", body}}),
         u"'a0000000-0000-4000-8000-000000000001x' is not a valid comment id."_s},
        {"reply_comment",
         args({{"comment", "{00000000-0000-0000-0000-000000000000}"}, {"body", body}}),
         u"'{00000000-0000-0000-0000-000000000000}' is not a valid comment id."_s},
        {"reply_comment", args({{"comment", libraryComment}, {"body", body}}), inLibrary},
        // An entity's id names no comment.
        {"reply_comment",
         args({{"comment", "e0000000-0000-4000-8000-000000000001"}, {"body", body}}),
         u"No comment with id 'e0000000-0000-4000-8000-000000000001' exists in this "
         "project."_s},
        // On the excluded entity; flagged itself; on the scene below the excluded draft.
        {"reply_comment", args({{"comment", commentId(6)}, {"body", body}}),
         excluded.arg(commentId(6))},
        {"resolve_comment", args({{"comment", commentId(8)}}), excluded.arg(commentId(8))},
        {"resolve_comment", args({{"comment", commentId(7)}}), excluded.arg(commentId(7))},
        {"resolve_comment", args({{"comment", "  "}}),
         u"resolve_comment needs \"comment\" (the id shown by list_comments)."_s},
        {"resolve_comment", args({{"comment", libraryComment}}), inLibrary},
        // The author heads the comment's line in every listing.
        {"add_comment", args({{"target", "The Ferry"}, {"body", body}, {"author", "Ana\nBell"}}),
         u"\"author\" must be a single line: a title or name cannot hold a line "
         "break."_s},
        {"reply_comment", args({{"comment", commentId(1)}, {"body", body}, {"author", "Ana\rBell"}}),
         u"\"author\" must be a single line: a title or name cannot hold a line "
         "break."_s},
        // A string is no boolean: this once reopened nothing and resolved the comment instead.
        {"resolve_comment", args({{"comment", commentId(1)}, {"resolved", "false"}}),
         u"\"resolved\" must be true or false."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(c.tool, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(workspace().undoHistory().count(), 0u);
    EXPECT_EQ(ok("get_recent_changes"), u"No changes this session."_s);
}

TEST_F(CommentTools, SaysWhenNoThreadHasOpenWork)
{
    for (const int n : {1, 2, 5})
        ok("resolve_comment", args({{"comment", commentId(n)}}));
    // Without the library, its open thread is gone too.
    ASSERT_TRUE(QDir(sibling(u"reviewedlibrary"_s)).removeRecursively());
    reload();
    EXPECT_EQ(ok("list_comments"),
              u"No open comments; pass include_resolved to see resolved threads."_s);
    EXPECT_TRUE(ok("list_comments", args({{"include_resolved", true}}))
                    .startsWith(u"## The Ferry\n- [resolved] Ana"_s));
}

} // namespace
