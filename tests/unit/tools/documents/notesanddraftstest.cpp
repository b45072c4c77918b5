#include "support/toolfixture.h"

using namespace Qt::StringLiterals;

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

class NotesAndDrafts : public ToolFixture
{
protected:
    QString run(const char *tool, Args arguments, const char *title = "Harbor Lights")
    {
        arguments.insert(u"title"_s, QString::fromUtf8(title));
        return ok(QString::fromUtf8(tool), arguments);
    }
    QString refuse(const char *tool, Args arguments, const char *title = "Harbor Lights")
    {
        arguments.insert(u"title"_s, QString::fromUtf8(title));
        return fails(QString::fromUtf8(tool), arguments);
    }
};

TEST_F(NotesAndDrafts, NumbersFootnotesByFirstCitation)
{
    EXPECT_EQ(run("add_footnote",
                  {{u"text"_s, u"An endnote."_s}, {u"footnote_id"_s, u"b"_s}, {u"endnote"_s, true}}),
              u"Added endnote [^b] to 'Harbor Lights'. Put a [^b] marker in the body "
              "to reference it."_s);
    EXPECT_EQ(run("add_footnote", {{u"text"_s, u"Orphan."_s}}),
              u"Added footnote [^fn2] to 'Harbor Lights'. Put a [^fn2] marker in the "
              "body to reference it."_s);
    // The body cites b first, then fn1 twice, and an id that has no definition.
    run("update_document", {{u"body"_s, u"One[^b] two[^fn1] three[^fn1] four[^zz]"_s}});
    EXPECT_EQ(run("list_footnotes", {}),
              u"# Footnotes of 'Harbor Lights'\n"
              "1. [^b] (endnote) An endnote.\n"
              "2. [^fn1] (footnote) Saltmere keeps its lanterns lit all night.\n"
              "Unreferenced definitions (no [^id] marker in the body):\n"
              "- [^fn2] Orphan."_s);
    EXPECT_EQ(run("remove_footnote", {{u"footnote_id"_s, u"fn1"_s}}),
              u"Removed footnote [^fn1]. The body still has a [^fn1] marker -- remove "
              "it from the prose too so it is not left dangling."_s);
    EXPECT_EQ(run("add_footnote", {{u"text"_s, u"Back."_s}}),
              u"Added footnote [^fn1] to 'Harbor Lights'."_s);
    EXPECT_EQ(run("update_footnote", {{u"footnote_id"_s, u"b"_s}, {u"endnote"_s, false}}),
              u"Updated footnote [^b]."_s);
    EXPECT_EQ(run("list_footnotes", {}, "Dust"), u"No footnotes in 'Dust' yet."_s);
}

TEST_F(NotesAndDrafts, RefusesFootnoteEditsThatMakeNoSense)
{
    const auto before = files();
    const Args fn1{{u"footnote_id"_s, u"fn1"_s}};
    const struct
    {
        const char *tool;
        Args arguments;
        QString message;
    } cases[] = {
        {"add_footnote", {{u"text"_s, u" "_s}}, u"add_footnote needs a non-empty \"text\"."_s},
        {"add_footnote",
         {{u"text"_s, u"x"_s}, {u"footnote_id"_s, u"fn1"_s}},
         u"Footnote [^fn1] is already defined in 'Harbor Lights'; use update_footnote to change it."_s},
        {"update_footnote", {}, u"update_footnote needs \"footnote_id\" (the footnote's id)."_s},
        {"update_footnote",
         {{u"footnote_id"_s, u"nope"_s}, {u"text"_s, u"x"_s}},
         u"No footnote [^nope] is defined in 'Harbor Lights'."_s},
        {"update_footnote",
         {{u"footnote_id"_s, u"fn1"_s}, {u"text"_s, u""_s}},
         u"A footnote's \"text\" must not be empty."_s},
        {"update_footnote", fn1,
         u"update_footnote changes nothing; provide \"text\" and/or \"endnote\"."_s},
        {"remove_footnote", {}, u"remove_footnote needs \"footnote_id\" (the footnote's id)."_s},
        {"remove_footnote",
         {{u"footnote_id"_s, u"fn9"_s}},
         u"No footnote [^fn9] is defined in 'Harbor Lights'."_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(refuse(c.tool, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

// list_footnotes shows ids as their markers; an agent copying one from there is understood.
TEST_F(NotesAndDrafts, TakesAFootnoteIdWrittenAsItsMarker)
{
    EXPECT_EQ(ok(u"update_footnote"_s, {{u"title"_s, u"Harbor Lights"_s},
                                        {u"footnote_id"_s, u" [^fn1] "_s},
                                        {u"text"_s, u"Rebuilt twice."_s}}),
              u"Updated footnote [^fn1]."_s);
    EXPECT_EQ(ok(u"remove_footnote"_s,
                 {{u"title"_s, u"Harbor Lights"_s}, {u"footnote_id"_s, u"[^fn1]"_s}})
                  .left(25),
              u"Removed footnote [^fn1]. "_s);
}

TEST_F(NotesAndDrafts, SwitchesDraftsWithoutLosingText)
{
    const Args list{{u"action"_s, u"list"_s}};
    const QString original = u"Dust on every shelf of the archive."_s;
    EXPECT_EQ(run("manage_variants", {}, "Dust"),
              u"Active draft of 'Dust': (single unnamed draft)\nNo alternate drafts. "
              "Use action \"create\" to branch one."_s);
    EXPECT_EQ(run("manage_variants", {{u"action"_s, u"create"_s}, {u"name"_s, u"Bleak"_s}}, "Dust"),
              u"Created variant 'Bleak' from the current draft; it is now active."_s);
    run("update_document", {{u"body"_s, u"Only ash."_s}}, "Dust");
    EXPECT_EQ(run("manage_variants", list, "Dust"),
              u"Active draft of 'Dust': Bleak\nAlternate drafts (1):\n- Draft 1 (7 words)"_s);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(run("manage_variants", {{u"action"_s, u"switch"_s}, {u"name"_s, u"draft 1"_s}},
                      "Dust"),
                  u"Switched to draft 'Draft 1'."_s);
        EXPECT_TRUE(run("get_document", {}, "Dust").endsWith(original));
        run("manage_variants", {{u"action"_s, u"switch"_s}, {u"name"_s, u"Bleak"_s}}, "Dust");
        EXPECT_TRUE(run("get_document", {}, "Dust").endsWith(u"\n\nOnly ash."_s));
    }
    EXPECT_EQ(refuse("manage_variants", {{u"action"_s, u"delete"_s}, {u"name"_s, u"BLEAK"_s}},
                     "Dust"),
              u"'BLEAK' is the active draft; switch to another draft before deleting it."_s);
    EXPECT_EQ(refuse("manage_variants", {{u"action"_s, u"create"_s}, {u"name"_s, u"draft 1"_s}},
                     "Dust"),
              u"A draft named 'draft 1' already exists on 'Dust'."_s);
    EXPECT_EQ(run("manage_variants", {{u"action"_s, u"rename"_s}, {u"new_name"_s, u"Ash"_s}},
                  "Dust"),
              u"Renamed the active draft to 'Ash'."_s);
    EXPECT_EQ(run("manage_variants", {{u"action"_s, u"delete"_s}, {u"name"_s, u"Draft 1"_s}},
                  "Dust"),
              u"Deleted the alternate draft 'Draft 1'."_s);
    EXPECT_TRUE(run("get_document", {}, "Dust").endsWith(u"\n\nOnly ash."_s));
    EXPECT_EQ(refuse("manage_variants", {{u"action"_s, u"merge"_s}}, "Dust"),
              u"Unknown action 'merge' (use list, create, switch, rename, or delete)."_s);
}

TEST_F(NotesAndDrafts, SnapshotsVersionsInUtc)
{
    EXPECT_EQ(run("get_document_versions", {}), u"No saved versions of 'Harbor Lights' yet."_s);
    EXPECT_EQ(run("snapshot_document_version", {{u"label"_s, u" First pass "_s}}),
              u"Saved version snapshot \"First pass\" of 'Harbor Lights' (1 snapshot(s) total)."_s);
    // The fixture's clock stands at 2025-03-14T09:26:53.589Z.
    EXPECT_EQ(run("snapshot_document_version", {}),
              u"Saved version snapshot \"Snapshot 2025-03-14 09:26\" of 'Harbor Lights' "
              "(2 snapshot(s) total)."_s);
    EXPECT_EQ(run("get_document_versions", {}),
              u"# Versions of 'Harbor Lights'\n"
              "1. \"First pass\" -- 2025-03-14 09:26 UTC (6 words)\n"
              "2. \"Snapshot 2025-03-14 09:26\" -- 2025-03-14 09:26 UTC (6 words)"_s);
}

} // namespace
