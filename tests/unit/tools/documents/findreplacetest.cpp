#include "support/toolfixture.h"

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

class FindReplace : public ToolFixture
{
protected:
    QString find(Args arguments, const char *pattern)
    {
        arguments.insert(QStringLiteral("find"), QString::fromUtf8(pattern));
        return ok(QStringLiteral("find_replace"), arguments);
    }
};

TEST_F(FindReplace, ListsMatchesInReadingOrderWithoutExcludedDocuments)
{
    // "lantern" also stands in the excluded journal and its scene; they are never searched.
    EXPECT_EQ(find({}, "lantern"),
              QStringLiteral("Found 4 match(es) in 3 document(s):\n"
                             "**The Ferry** (2 match(es))\n"
                             "  - Mara watched the lanterns swing over the water.\n"
                             "  - The lanterns burned low.\n"
                             "**Harbor Lights** (1 match(es))\n"
                             "  - Harbor lights, lantern light, every light.[^fn1]\n"
                             "**Letter** (1 match(es))\n"
                             "  - Dear Tobin, the lantern &lt; is lit."));
    EXPECT_EQ(find({{QStringLiteral("whole_word"), true}, {QStringLiteral("scope"), QStringLiteral("arrival")}},
                   "light"),
              QStringLiteral("Found 2 match(es) in 1 document(s):\n"
                             "**Harbor Lights** (2 match(es))\n"
                             "  - Harbor lights, lantern light, every light.[^fn1]\n"
                             "  - Harbor lights, lantern light, every light.[^fn1]"));
    EXPECT_EQ(find({{QStringLiteral("case_sensitive"), true}, {QStringLiteral("replace"), QStringLiteral("x")},
                    {QStringLiteral("dry_run"), true}},
                   "Harbor"),
              QStringLiteral("Found 1 match(es) in 1 document(s):\n"
                             "**Harbor Lights** (1 match(es))\n"
                             "  - Harbor lights, lantern light, every light.[^fn1]"));
    // Only non-empty matches count; a pattern that matches nothing but empty strings finds nothing.
    EXPECT_EQ(find({{QStringLiteral("regex"), true}}, "x*"), QStringLiteral("No matches for 'x*'."));
}

TEST_F(FindReplace, CutsLongListingsShort)
{
    ok(QStringLiteral("update_document"),
       {{QStringLiteral("title"), QStringLiteral("Dust")},
        {QStringLiteral("body"), QStringLiteral("a\na\na\na\n") + QString(130, u'a')}});
    EXPECT_EQ(find({{QStringLiteral("regex"), true}, {QStringLiteral("scope"), QStringLiteral("Dust")}}, "a+"),
              QStringLiteral("Found 5 match(es) in 1 document(s):\n**Dust** (5 match(es))\n  - a\n  - a\n"
                             "  - a\n  - ...and 2 more"));
    EXPECT_EQ(find({{QStringLiteral("regex"), true}, {QStringLiteral("scope"), QStringLiteral("Dust")}}, "a{100}"),
              QStringLiteral("Found 1 match(es) in 1 document(s):\n**Dust** (1 match(es))\n  - ")
                  + QString(117, u'a') + QStringLiteral("..."));
}

TEST_F(FindReplace, ReplacesAcrossDocumentsAsOneUndoStep)
{
    const auto before = files();
    EXPECT_EQ(find({{QStringLiteral("regex"), true}, {QStringLiteral("replace"), QStringLiteral("\\2-\\1\\9\\x")}},
                   "(lantern)(s?)"),
              QStringLiteral("Replaced 3 match(es) of '(lantern)(s?)' across 2 document(s): 'The "
                             "Ferry' (2), 'Harbor Lights' (1). 1 match(es) in rich-text document(s) "
                             "were left unchanged: 'Letter' (1 match(es)); replace those bodies "
                             "wholesale with update_document."));
    EXPECT_TRUE(ok(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("The Ferry")}})
                    .endsWith(QStringLiteral("Mara watched the s-lantern\\x swing over the water.\n\n"
                                             "The s-lantern\\x burned low.")));
    EXPECT_EQ(ok(QStringLiteral("undo_last")), QStringLiteral("Undid the last change."));
    EXPECT_EQ(files(), before);
}

TEST_F(FindReplace, LeavesRichTextAndMissesAlone)
{
    const auto before = files();
    EXPECT_EQ(find({{QStringLiteral("replace"), QStringLiteral("")}}, "Tobin"),
              QStringLiteral("All 1 match(es) of 'Tobin' are in rich-text document(s) ('Letter' (1 "
                             "match(es))), which cannot be rewritten by pattern safely; nothing was "
                             "changed. Replace those bodies wholesale with update_document instead."));
    EXPECT_EQ(find({{QStringLiteral("replace"), QStringLiteral("")}}, "zebra"),
              QStringLiteral("No matches for 'zebra'; nothing changed."));
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(QStringLiteral("get_recent_changes")), QStringLiteral("No changes this session."));
}

TEST_F(FindReplace, DeletesMatchesWithAnEmptyReplacement)
{
    find({{QStringLiteral("replace"), QStringLiteral("")}, {QStringLiteral("scope"), QStringLiteral("Dust")}},
         " of the archive");
    EXPECT_TRUE(ok(QStringLiteral("get_document"), {{QStringLiteral("title"), QStringLiteral("Dust")}})
                    .endsWith(QStringLiteral("\n\nDust on every shelf.")));
}

TEST_F(FindReplace, RefusesBadPatternsAndScopes)
{
    const struct
    {
        Args arguments;
        QString message;
    } cases[] = {
        {{}, QStringLiteral("find_replace needs non-empty \"find\" text.")},
        {{{QStringLiteral("find"), QStringLiteral("(")}, {QStringLiteral("regex"), true}},
         QStringLiteral("'(' is not a valid regular expression: missing closing parenthesis")},
        {{{QStringLiteral("find"), QStringLiteral("x")}, {QStringLiteral("scope"), QStringLiteral("Nowhere")}},
         QStringLiteral("No document titled 'Nowhere' exists.")},
        {{{QStringLiteral("find"), QStringLiteral("x")}, {QStringLiteral("scope"), QStringLiteral("Private Journal")}},
         QStringLiteral("'Private Journal' is excluded from AI.")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(QStringLiteral("find_replace"), c.arguments), c.message);
    }
}

} // namespace
