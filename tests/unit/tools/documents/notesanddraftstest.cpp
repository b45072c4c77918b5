#include "support/toolfixture.h"

#include <QDateTime>
#include <QRegularExpression>

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

class NotesAndDrafts : public ToolFixture
{
protected:
    QString run(const char *tool, Args arguments, const char *title = "Harbor Lights")
    {
        arguments.insert(QStringLiteral("title"), QString::fromUtf8(title));
        return ok(QString::fromUtf8(tool), arguments);
    }
    QString refuse(const char *tool, Args arguments, const char *title = "Harbor Lights")
    {
        arguments.insert(QStringLiteral("title"), QString::fromUtf8(title));
        return fails(QString::fromUtf8(tool), arguments);
    }
};

TEST_F(NotesAndDrafts, NumbersFootnotesByFirstCitation)
{
    EXPECT_EQ(run("add_footnote", {{QStringLiteral("text"), QStringLiteral("An endnote.")},
                                   {QStringLiteral("footnote_id"), QStringLiteral("b")},
                                   {QStringLiteral("endnote"), true}}),
              QStringLiteral("Added endnote [^b] to 'Harbor Lights'. Put a [^b] marker in the body "
                             "to reference it."));
    EXPECT_EQ(run("add_footnote", {{QStringLiteral("text"), QStringLiteral("Orphan.")}}),
              QStringLiteral("Added footnote [^fn2] to 'Harbor Lights'. Put a [^fn2] marker in the "
                             "body to reference it."));
    // The body cites b first, then fn1 twice, and an id that has no definition.
    run("update_document", {{QStringLiteral("body"), QStringLiteral("One[^b] two[^fn1] three[^fn1] four[^zz]")}});
    EXPECT_EQ(run("list_footnotes", {}),
              QStringLiteral("# Footnotes of 'Harbor Lights'\n"
                             "1. [^b] (endnote) An endnote.\n"
                             "2. [^fn1] (footnote) Saltmere keeps its lanterns lit all night.\n"
                             "Unreferenced definitions (no [^id] marker in the body):\n"
                             "- [^fn2] Orphan."));
    EXPECT_EQ(run("remove_footnote", {{QStringLiteral("footnote_id"), QStringLiteral("fn1")}}),
              QStringLiteral("Removed footnote [^fn1]. The body still has a [^fn1] marker -- remove "
                             "it from the prose too so it is not left dangling."));
    EXPECT_EQ(run("add_footnote", {{QStringLiteral("text"), QStringLiteral("Back.")}}),
              QStringLiteral("Added footnote [^fn1] to 'Harbor Lights'."));
    EXPECT_EQ(run("update_footnote", {{QStringLiteral("footnote_id"), QStringLiteral("b")},
                                      {QStringLiteral("endnote"), false}}),
              QStringLiteral("Updated footnote [^b]."));
    EXPECT_EQ(run("list_footnotes", {}, "Dust"), QStringLiteral("No footnotes in 'Dust' yet."));
}

TEST_F(NotesAndDrafts, RefusesFootnoteEditsThatMakeNoSense)
{
    const auto before = files();
    const Args fn1{{QStringLiteral("footnote_id"), QStringLiteral("fn1")}};
    const struct
    {
        const char *tool;
        Args arguments;
        QString message;
    } cases[] = {
        {"add_footnote", {{QStringLiteral("text"), QStringLiteral(" ")}},
         QStringLiteral("add_footnote needs a non-empty \"text\".")},
        {"add_footnote", {{QStringLiteral("text"), QStringLiteral("x")}, {QStringLiteral("footnote_id"), QStringLiteral("fn1")}},
         QStringLiteral("Footnote [^fn1] is already defined in 'Harbor Lights'; use update_footnote to change it.")},
        {"update_footnote", {}, QStringLiteral("update_footnote needs \"footnote_id\" (the footnote's id).")},
        {"update_footnote", {{QStringLiteral("footnote_id"), QStringLiteral("nope")}, {QStringLiteral("text"), QStringLiteral("x")}},
         QStringLiteral("No footnote [^nope] is defined in 'Harbor Lights'.")},
        {"update_footnote", {{QStringLiteral("footnote_id"), QStringLiteral("fn1")}, {QStringLiteral("text"), QStringLiteral("")}},
         QStringLiteral("A footnote's \"text\" must not be empty.")},
        {"update_footnote", fn1, QStringLiteral("update_footnote changes nothing; provide \"text\" and/or \"endnote\".")},
        {"remove_footnote", {}, QStringLiteral("remove_footnote needs \"footnote_id\" (the footnote's id).")},
        {"remove_footnote", {{QStringLiteral("footnote_id"), QStringLiteral("fn9")}},
         QStringLiteral("No footnote [^fn9] is defined in 'Harbor Lights'.")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(refuse(c.tool, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

TEST_F(NotesAndDrafts, SwitchesDraftsWithoutLosingText)
{
    const Args list{{QStringLiteral("action"), QStringLiteral("list")}};
    const QString original = QStringLiteral("Dust on every shelf of the archive.");
    EXPECT_EQ(run("manage_variants", {}, "Dust"),
              QStringLiteral("Active draft of 'Dust': (single unnamed draft)\nNo alternate drafts. "
                             "Use action \"create\" to branch one."));
    EXPECT_EQ(run("manage_variants", {{QStringLiteral("action"), QStringLiteral("create")}, {QStringLiteral("name"), QStringLiteral("Bleak")}}, "Dust"),
              QStringLiteral("Created variant 'Bleak' from the current draft; it is now active."));
    run("update_document", {{QStringLiteral("body"), QStringLiteral("Only ash.")}}, "Dust");
    EXPECT_EQ(run("manage_variants", list, "Dust"),
              QStringLiteral("Active draft of 'Dust': Bleak\nAlternate drafts (1):\n- Draft 1 (7 words)"));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(run("manage_variants", {{QStringLiteral("action"), QStringLiteral("switch")}, {QStringLiteral("name"), QStringLiteral("draft 1")}}, "Dust"),
                  QStringLiteral("Switched to draft 'Draft 1'."));
        EXPECT_TRUE(run("get_document", {}, "Dust").endsWith(original));
        run("manage_variants", {{QStringLiteral("action"), QStringLiteral("switch")}, {QStringLiteral("name"), QStringLiteral("Bleak")}}, "Dust");
        EXPECT_TRUE(run("get_document", {}, "Dust").endsWith(QStringLiteral("\n\nOnly ash.")));
    }
    EXPECT_EQ(refuse("manage_variants", {{QStringLiteral("action"), QStringLiteral("delete")}, {QStringLiteral("name"), QStringLiteral("BLEAK")}}, "Dust"),
              QStringLiteral("'BLEAK' is the active draft; switch to another draft before deleting it."));
    EXPECT_EQ(refuse("manage_variants", {{QStringLiteral("action"), QStringLiteral("create")}, {QStringLiteral("name"), QStringLiteral("draft 1")}}, "Dust"),
              QStringLiteral("A draft named 'draft 1' already exists on 'Dust'."));
    EXPECT_EQ(run("manage_variants", {{QStringLiteral("action"), QStringLiteral("rename")}, {QStringLiteral("new_name"), QStringLiteral("Ash")}}, "Dust"),
              QStringLiteral("Renamed the active draft to 'Ash'."));
    EXPECT_EQ(run("manage_variants", {{QStringLiteral("action"), QStringLiteral("delete")}, {QStringLiteral("name"), QStringLiteral("Draft 1")}}, "Dust"),
              QStringLiteral("Deleted the alternate draft 'Draft 1'."));
    EXPECT_TRUE(run("get_document", {}, "Dust").endsWith(QStringLiteral("\n\nOnly ash.")));
    EXPECT_EQ(refuse("manage_variants", {{QStringLiteral("action"), QStringLiteral("merge")}}, "Dust"),
              QStringLiteral("Unknown action 'merge' (use list, create, switch, rename, or delete)."));
}

TEST_F(NotesAndDrafts, SnapshotsVersionsInUtc)
{
    EXPECT_EQ(run("get_document_versions", {}), QStringLiteral("No saved versions of 'Harbor Lights' yet."));
    EXPECT_EQ(run("snapshot_document_version", {{QStringLiteral("label"), QStringLiteral(" First pass ")}}),
              QStringLiteral("Saved version snapshot \"First pass\" of 'Harbor Lights' (1 snapshot(s) total)."));
    const QString before = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
    const QString saved = run("snapshot_document_version", {});
    const QString after = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
    const QString label = saved.section(u'"', 1, 1);
    EXPECT_TRUE(label == QStringLiteral("Snapshot ") + before || label == QStringLiteral("Snapshot ") + after)
        << label.toStdString();
    const QString listing = run("get_document_versions", {});
    static const QRegularExpression shape(
        QStringLiteral("^# Versions of 'Harbor Lights'\n1\\. \"First pass\" -- \\d{4}-\\d\\d-\\d\\d "
                       "\\d\\d:\\d\\d UTC \\(6 words\\)\n2\\. \"Snapshot [^\"]+\" -- .* UTC \\(6 words\\)$"));
    EXPECT_TRUE(shape.match(listing).hasMatch()) << listing.toStdString();
}

} // namespace
