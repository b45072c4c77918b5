#include "reviewedproject.h"

#include "core/commands/undohistory.h"
#include "core/comment.h"
#include "core/ids.h"
#include "core/project.h"

#include <QDir>

using fb::test::args;

namespace {

QString commentId(int n)
{
    return QStringLiteral("a0000000-0000-4000-8000-%1").arg(n, 12, 10, QLatin1Char('0'));
}

const QString libraryComment = QStringLiteral("a1000000-0000-4000-8000-000000000001");

const QString ferryThread = QStringLiteral(
    "- [open] Ana (\"grey water\"): Tighten this opening. [id: "
    "a0000000-0000-4000-8000-000000000001]\n"
    "  - [open] Claude (2024-05-06 10:00 UTC): Trimmed the first line. [id: "
    "a0000000-0000-4000-8000-000000000002]\n"
    "    - [resolved] Ana (2024-05-06 11:00 UTC): Thanks. [id: "
    "a0000000-0000-4000-8000-000000000003]");
const QString maraThread = QStringLiteral(
    "- [resolved] Ben (2024-05-07 09:00 UTC): Is she left-handed? [id: "
    "a0000000-0000-4000-8000-000000000004]");
const QString wyrmThread = QStringLiteral("- [open] Dee (2024-04-01 08:00 UTC): Check the wyrm's "
                                          "size. [id: a1000000-0000-4000-8000-000000000001]");
// The body is cut to 160 characters.
const QString cutThread = QStringLiteral(
    "- [open] Ana (2024-05-08 09:30 UTC): This scene was cut, but the idea of the drowned bell "
    "should come back later in the book, perhaps in the storm chapter where Mara hears it ring "
    "beneath the waves... [id: a0000000-0000-4000-8000-000000000005]");

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
        return comment.createdAt().toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm 'UTC'"));
    }

    QString lastLabel() { return workspace().undoHistory().undoLabel(); }
};

TEST_F(CommentTools, ListsThreadsGroupedByTargetWithoutWhatIsWithheld)
{
    // The threads on the excluded entity and on the scene below the excluded draft, and the
    // excluded comment on the notes, never show.
    const QString ferry = QStringLiteral("## The Ferry\n") + ferryThread;
    const QString rest = QStringLiteral("\n\n## Harbour Wyrm (library 'Lore Library')\n")
                         + wyrmThread + QStringLiteral("\n\n## (deleted object)\n") + cutThread;
    EXPECT_EQ(ok("list_comments"), ferry + rest);
    EXPECT_EQ(ok("list_comments", args({{"include_resolved", true}})),
              ferry + QStringLiteral("\n\n## Mara Vell\n") + maraThread + rest);
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
        {args({{"target", "The Heron"}}), true,
         QStringLiteral("No open comments on 'Mara Vell' yet.")},
        {args({{"target", "Mara Vell"}, {"include_resolved", true}}), true, maraThread},
        {args({{"target", "Notes"}, {"include_resolved", true}}), true,
         QStringLiteral("No comments on 'Notes' yet.")},
        {args({{"target_id", "{E1000000-0000-4000-8000-000000000001}"}}), true, wyrmThread},
        {args({{"target", "Hidden Scene"}}), false,
         QStringLiteral("'Hidden Scene' is excluded from AI.")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        const fb::test::ToolReply reply = call(QStringLiteral("list_comments"), c.arguments);
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
        {args({{"target", "the ferry"}, {"body", "  Check the   tide tables. "},
               {"anchor", " the quay "}, {"author", "  "}}),
         QStringLiteral("Added a comment by Claude on 'The Ferry'."),
         QStringLiteral("\"the quay\"")},
        {args({{"target", "the heron"}, {"body", "Check the tide tables."}, {"author", "Ben"}}),
         QStringLiteral("Added a comment by Ben on 'Mara Vell'."), QString()},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.answer.toStdString());
        const auto before = files();
        EXPECT_EQ(ok("add_comment", c.arguments), c.answer);
        EXPECT_EQ(workspace().undoHistory().count(), 1u);
        EXPECT_EQ(lastLabel(), QStringLiteral("MCP: add comment"));

        const fb::core::Comment *added = newestComment();
        ASSERT_NE(added, nullptr);
        EXPECT_TRUE(added->parentId().isNull());
        const QString line = QStringLiteral("- [open] %1 (%2): Check the tide tables. [id: %3]")
                                 .arg(c.answer.section(u' ', 4, 4),
                                      c.detail.isEmpty() ? stamp(*added) : c.detail,
                                      fb::core::idText(added->id()));
        const QString listed =
            ok("list_comments", args({{"target_id", fb::core::idText(added->targetId())}}));
        EXPECT_TRUE(listed.endsWith(line)) << listed.toStdString();

        EXPECT_EQ(ok("undo_last"), QStringLiteral("Undid the last change."));
        EXPECT_EQ(files(), before);
    }
}

TEST_F(CommentTools, RepliesJoinTheThreadOfTheCommentTheyAnswer)
{
    const auto before = files();
    EXPECT_EQ(ok("reply_comment", args({{"comment", u'{' + commentId(1).toUpper() + u'}'},
                                        {"body", " Done; see the new opening. "}})),
              QStringLiteral("Added a reply by Claude."));
    EXPECT_EQ(lastLabel(), QStringLiteral("MCP: reply to comment"));
    const fb::core::Comment *reply = newestComment();
    ASSERT_NE(reply, nullptr);
    // The newest reply to the first comment comes after the older reply and its answer.
    EXPECT_EQ(ok("list_comments", args({{"target", "The Ferry"}})),
              ferryThread
                  + QStringLiteral("\n  - [open] Claude (%1): Done; see the new opening. [id: %2]")
                        .arg(stamp(*reply), fb::core::idText(reply->id())));

    // An open reply brings a resolved thread back into the default listing.
    EXPECT_EQ(ok("reply_comment", args({{"comment", commentId(4)}, {"body", "Yes."},
                                        {"author", "Ben"}})),
              QStringLiteral("Added a reply by Ben."));
    EXPECT_TRUE(ok("list_comments").contains(QStringLiteral("## Mara Vell\n") + maraThread));

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
        {args({{"comment", commentId(1)}}), QStringLiteral("Marked the comment resolved."), true},
        {args({{"comment", commentId(1)}, {"resolved", true}}),
         QStringLiteral("That comment is already resolved."), false},
        {args({{"comment", commentId(4)}, {"resolved", false}}),
         QStringLiteral("Reopened the comment."), true},
        {args({{"comment", commentId(2)}, {"resolved", false}}),
         QStringLiteral("That comment is already open."), false},
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
    EXPECT_EQ(lastLabel(), QStringLiteral("MCP: resolve comment"));
    EXPECT_EQ(ok("get_recent_changes"),
              QStringLiteral("Marked the comment resolved.\nReopened the comment."));
    ok("undo_last");
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

TEST_F(CommentTools, RefusesABadCallAndChangesNothing)
{
    const auto before = files();
    const char *body = "A remark.";
    const QString excluded = QStringLiteral("'%1' is excluded from AI and cannot be changed.");
    const QString inLibrary = QStringLiteral("Comment '%1' lives in a mounted library; this server "
                                             "edits only the open project.")
                                  .arg(libraryComment);
    const struct
    {
        const char *tool;
        QJsonObject arguments;
        QString message;
    } cases[] = {
        {"add_comment", args({{"body", body}}),
         QStringLiteral("add_comment needs \"target\" (or \"target_id\").")},
        {"add_comment", args({{"target", "The Ferry"}, {"body", " \n "}}),
         QStringLiteral("add_comment needs a non-empty \"body\".")},
        {"add_comment", args({{"target", "Sea Serpent"}, {"body", body}}),
         QStringLiteral("'Harbour Wyrm' lives in the mounted library 'Lore Library'; this server "
                        "edits only the open project. Open the library as its own project to "
                        "change it.")},
        {"add_comment", args({{"target", "Nightjar"}, {"body", body}}), excluded.arg(u"Nightjar")},
        {"add_comment", args({{"target", "hidden scene"}, {"body", body}}),
         excluded.arg(u"Hidden Scene")},
        {"reply_comment", args({{"body", body}}),
         QStringLiteral("reply_comment needs \"comment\" (the id shown by list_comments).")},
        {"reply_comment", args({{"comment", commentId(1)}}),
         QStringLiteral("reply_comment needs a non-empty \"body\".")},
        {"reply_comment", args({{"comment", "a0000000-0000-4000-8000-000000000001x"},
                                {"body", body}}),
         QStringLiteral("'a0000000-0000-4000-8000-000000000001x' is not a valid comment id.")},
        {"reply_comment", args({{"comment", "{00000000-0000-0000-0000-000000000000}"},
                                {"body", body}}),
         QStringLiteral("'{00000000-0000-0000-0000-000000000000}' is not a valid comment id.")},
        {"reply_comment", args({{"comment", libraryComment}, {"body", body}}), inLibrary},
        // An entity's id names no comment.
        {"reply_comment", args({{"comment", "e0000000-0000-4000-8000-000000000001"},
                                {"body", body}}),
         QStringLiteral("No comment with id 'e0000000-0000-4000-8000-000000000001' exists in this "
                        "project.")},
        // On the excluded entity; flagged itself; on the scene below the excluded draft.
        {"reply_comment", args({{"comment", commentId(6)}, {"body", body}}),
         excluded.arg(commentId(6))},
        {"resolve_comment", args({{"comment", commentId(8)}}), excluded.arg(commentId(8))},
        {"resolve_comment", args({{"comment", commentId(7)}}), excluded.arg(commentId(7))},
        {"resolve_comment", args({{"comment", "  "}}),
         QStringLiteral("resolve_comment needs \"comment\" (the id shown by list_comments).")},
        {"resolve_comment", args({{"comment", libraryComment}}), inLibrary},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(c.tool, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
    EXPECT_EQ(workspace().undoHistory().count(), 0u);
    EXPECT_EQ(ok("get_recent_changes"), QStringLiteral("No changes this session."));
}

TEST_F(CommentTools, SaysWhenNoThreadHasOpenWork)
{
    for (const int n : {1, 2, 5})
        ok("resolve_comment", args({{"comment", commentId(n)}}));
    // Without the library, its open thread is gone too.
    ASSERT_TRUE(QDir(sibling(QStringLiteral("reviewedlibrary"))).removeRecursively());
    reload();
    EXPECT_EQ(ok("list_comments"),
              QStringLiteral("No open comments; pass include_resolved to see resolved threads."));
    EXPECT_TRUE(ok("list_comments", args({{"include_resolved", true}}))
                    .startsWith(QStringLiteral("## The Ferry\n- [resolved] Ana")));
}

} // namespace
