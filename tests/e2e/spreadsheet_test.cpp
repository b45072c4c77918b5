#include "support/serverprocess.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using fb::test::ScratchProject;
using fb::test::ServerProcess;

namespace {

using Args = QJsonObject;

// The spreadsheet tools over the wire: a refused update must leave every file as it was, and
// an undone one must give every byte back.
class SpreadsheetsOverTheWire : public ::testing::Test
{
protected:
    ScratchProject m_project{u"projects/novel"_s};
    ServerProcess m_server{{m_project.path()}};
};

TEST_F(SpreadsheetsOverTheWire, RefusedUpdatesChangeNoFileAndUndoRestoresEveryByte)
{
    const auto created = m_server.call(u"create_spreadsheet"_s,
                                       {{u"title"_s, u"Crew"_s},
                                        {u"headers"_s, QJsonArray{u"Name"_s, u"Wage"_s}},
                                        {u"rows"_s, QJsonArray{QJsonArray{u"Ada"_s, 30},
                                                               QJsonArray{u"Bo"_s, u"=B2+5"_s}}}});
    ASSERT_FALSE(created.isError) << created.text.toStdString();
    EXPECT_EQ(created.text, u"Created the spreadsheet 'Crew' (100 rows)."_s);
    const auto before = fb::test::folderContents(m_project.path());

    struct Refusal
    {
        const char *name;
        Args cells;
        QString message;
    };
    const Refusal refusals[] = {
        {"an address beyond the grid",
         {{u"A1"_s, u"Captain"_s}, {u"B101"_s, u"=1"_s}},
         u"'B101' is outside the sheet's 100-row x 26-column grid."_s},
        {"a key that is no address",
         {{u"A1"_s, u"Captain"_s}, {u"Wage"_s, 40}},
         u"'Wage' is not an A1-style cell address (e.g. \"B7\")."_s},
        {"a value of the wrong type",
         {{u"A1"_s, u"Captain"_s}, {u"B2"_s, false}},
         u"The value for 'B2' must be a string (a literal, or a formula starting with '=') or a "
         "number."_s},
    };
    for (const Refusal &refusal : refusals) {
        SCOPED_TRACE(refusal.name);
        const auto answer = m_server.call(u"update_spreadsheet"_s, {{u"spreadsheet"_s, u"Crew"_s},
                                                                    {u"cells"_s, refusal.cells}});
        EXPECT_TRUE(answer.isError);
        EXPECT_EQ(answer.text, refusal.message);
        EXPECT_EQ(fb::test::folderContents(m_project.path()), before);
    }

    const auto updated = m_server.call(u"update_spreadsheet"_s,
                                       {{u"spreadsheet"_s, u"Crew"_s},
                                        {u"cells"_s, Args{{u"A1"_s, u"Captain"_s},
                                                          {u"B2"_s, 40},
                                                          {u"B4"_s, u"=SUM(B2:B3)"_s}}}});
    ASSERT_FALSE(updated.isError) << updated.text.toStdString();
    EXPECT_EQ(updated.text, u"Set 3 cell(s) in 'Crew'. Formulas evaluate to: B4 = 85."_s);
    EXPECT_NE(fb::test::folderContents(m_project.path()), before);

    EXPECT_EQ(m_server.call(u"undo_last"_s).text, u"Undid the last change."_s);
    EXPECT_EQ(fb::test::folderContents(m_project.path()), before);
    EXPECT_EQ(m_server.call(u"get_spreadsheet"_s, {{u"spreadsheet"_s, u"Crew"_s}}).text,
              u"## Crew\n\n|   | A | B |\n| - | - | - |\n| 1 | Name | Wage |\n| 2 | Ada | 30 |\n"
              "| 3 | Bo | 35 (=B2+5) |"_s);
    EXPECT_EQ(m_server.finish(), 0);
}

} // namespace
