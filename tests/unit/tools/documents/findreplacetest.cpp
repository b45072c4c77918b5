#include "support/toolfixture.h"

using namespace Qt::StringLiterals;

using fb::test::ToolFixture;

namespace {

using Args = QJsonObject;

class FindReplace : public ToolFixture
{
protected:
    QString find(Args arguments, const char *pattern)
    {
        arguments.insert(u"find"_s, QString::fromUtf8(pattern));
        return ok(u"find_replace"_s, arguments);
    }
};

TEST_F(FindReplace, ListsMatchesInReadingOrderWithoutExcludedDocuments)
{
    // "lantern" also stands in the excluded journal and its scene; they are never searched.
    EXPECT_EQ(find({}, "lantern"), u"Found 4 match(es) in 3 document(s):\n"
                                   "**The Ferry** (2 match(es))\n"
                                   "  - Mara watched the lanterns swing over the water.\n"
                                   "  - The lanterns burned low.\n"
                                   "**Harbor Lights** (1 match(es))\n"
                                   "  - Harbor lights, lantern light, every light.[^fn1]\n"
                                   "**Letter** (1 match(es))\n"
                                   "  - Dear Tobin, the lantern &lt; is lit."_s);
    EXPECT_EQ(find({{u"whole_word"_s, true}, {u"scope"_s, u"arrival"_s}}, "light"),
              u"Found 2 match(es) in 1 document(s):\n"
              "**Harbor Lights** (2 match(es))\n"
              "  - Harbor lights, lantern light, every light.[^fn1]\n"
              "  - Harbor lights, lantern light, every light.[^fn1]"_s);
    EXPECT_EQ(find({{u"case_sensitive"_s, true}, {u"replace"_s, u"x"_s}, {u"dry_run"_s, true}},
                   "Harbor"),
              u"Found 1 match(es) in 1 document(s):\n"
              "**Harbor Lights** (1 match(es))\n"
              "  - Harbor lights, lantern light, every light.[^fn1]"_s);
    // Only non-empty matches count; a pattern that matches nothing but empty strings finds nothing.
    EXPECT_EQ(find({{u"regex"_s, true}}, "x*"), u"No matches for 'x*'."_s);
}

TEST_F(FindReplace, CutsLongListingsShort)
{
    ok(u"update_document"_s,
       {{u"title"_s, u"Dust"_s}, {u"body"_s, u"a\na\na\na\n"_s + QString(130, u'a')}});
    EXPECT_EQ(find({{u"regex"_s, true}, {u"scope"_s, u"Dust"_s}}, "a+"),
              u"Found 5 match(es) in 1 document(s):\n**Dust** (5 match(es))\n  - a\n  - a\n"
              "  - a\n  - ...and 2 more"_s);
    EXPECT_EQ(find({{u"regex"_s, true}, {u"scope"_s, u"Dust"_s}}, "a{100}"),
              u"Found 1 match(es) in 1 document(s):\n**Dust** (1 match(es))\n  - "_s
                  + QString(117, u'a') + u"..."_s);
}

TEST_F(FindReplace, ReplacesAcrossDocumentsAsOneUndoStep)
{
    const auto before = files();
    EXPECT_EQ(find({{u"regex"_s, true}, {u"replace"_s, u"\\2-\\1\\9\\x"_s}}, "(lantern)(s?)"),
              u"Replaced 3 match(es) of '(lantern)(s?)' across 2 document(s): 'The "
              "Ferry' (2), 'Harbor Lights' (1). 1 match(es) in rich-text document(s) "
              "were left unchanged: 'Letter' (1 match(es)); replace those bodies "
              "wholesale with update_document."_s);
    EXPECT_TRUE(ok(u"get_document"_s, {{u"title"_s, u"The Ferry"_s}})
                    .endsWith(u"Mara watched the s-lantern\\x swing over the water.\n\n"
                              "The s-lantern\\x burned low."_s));
    EXPECT_EQ(ok(u"undo_last"_s), u"Undid the last change."_s);
    EXPECT_EQ(files(), before);
}

TEST_F(FindReplace, LeavesRichTextAndMissesAlone)
{
    const auto before = files();
    EXPECT_EQ(find({{u"replace"_s, u""_s}}, "Tobin"),
              u"All 1 match(es) of 'Tobin' are in rich-text document(s) ('Letter' (1 "
              "match(es))), which cannot be rewritten by pattern safely; nothing was "
              "changed. Replace those bodies wholesale with update_document instead."_s);
    EXPECT_EQ(find({{u"replace"_s, u""_s}}, "zebra"), u"No matches for 'zebra'; nothing changed."_s);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(ok(u"get_recent_changes"_s), u"No changes this session."_s);
}

TEST_F(FindReplace, DeletesMatchesWithAnEmptyReplacement)
{
    find({{u"replace"_s, u""_s}, {u"scope"_s, u"Dust"_s}}, " of the archive");
    EXPECT_TRUE(
        ok(u"get_document"_s, {{u"title"_s, u"Dust"_s}}).endsWith(u"\n\nDust on every shelf."_s));
}

TEST_F(FindReplace, RefusesBadPatternsAndScopes)
{
    const struct
    {
        Args arguments;
        QString message;
    } cases[] = {
        {{}, u"find_replace needs non-empty \"find\" text."_s},
        {{{u"find"_s, u"("_s}, {u"regex"_s, true}},
         u"'(' is not a valid regular expression: missing closing parenthesis"_s},
        {{{u"find"_s, u"x"_s}, {u"scope"_s, u"Nowhere"_s}},
         u"No document titled 'Nowhere' exists."_s},
        {{{u"find"_s, u"x"_s}, {u"scope"_s, u"Private Journal"_s}},
         u"'Private Journal' is excluded from AI."_s},
        // A wrong type is never guessed at: a string "true" is no boolean, so nothing is replaced.
        {{{u"find"_s, u"Dust"_s}, {u"replace"_s, u"Ash"_s}, {u"dry_run"_s, u"true"_s}},
         u"\"dry_run\" must be true or false."_s},
        {{{u"find"_s, u"Dust"_s}, {u"replace"_s, 7}}, u"\"replace\" must be a string."_s},
    };
    const auto before = files();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message.toStdString());
        EXPECT_EQ(fails(u"find_replace"_s, c.arguments), c.message);
    }
    EXPECT_EQ(files(), before);
}

} // namespace
