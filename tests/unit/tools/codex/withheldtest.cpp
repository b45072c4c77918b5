#include "reviewedproject.h"

#include <QFile>
#include <QJsonDocument>

using fb::test::args;
using namespace Qt::StringLiterals;

namespace {

const QString hiddenScene = u"d0000000-0000-4000-8000-000000000005"_s;
const QString silasCrane = u"e0000000-0000-4000-8000-000000000004"_s;

// The reviewed project with two things damaged or hand-edited data can hold: a page whose parent
// document no longer exists, and an entity whose values point at withheld objects (the excluded
// Silas Crane, and the scene below the excluded drafts).
class WithheldObjects : public fb::test::ReviewedProject
{
protected:
    WithheldObjects()
    {
        editObject(u"d0000000-0000-4000-8000-000000000006"_s, [](QJsonObject &page) {
            page.insert(u"id"_s, u"d0000000-0000-4000-8000-000000000007"_s);
            page.insert(u"title"_s, u"Loose Page"_s);
            page.insert(u"parentId"_s, u"d0000000-0000-4000-8000-0000000000aa"_s);
            page.insert(u"body"_s, u"Mara Vell rows past the lighthouse."_s);
        });
        editObject(u"e0000000-0000-4000-8000-000000000002"_s, [](QJsonObject &tobin) {
            tobin.insert(u"values"_s,
                         QJsonObject{{u"hideout"_s, hiddenScene}, {u"rival"_s, silasCrane}});
        });
        reload();
    }

    // Rewrites one object file of the scratch project; the edited object is written under its
    // own id, so a changed id adds an object.
    void editObject(const QString &id, const std::function<void(QJsonObject &)> &edit)
    {
        QFile source(m_scratch.filePath(u"objects/%1.json"_s.arg(id)));
        ASSERT_TRUE(source.open(QIODevice::ReadOnly));
        QJsonObject object = QJsonDocument::fromJson(source.readAll()).object();
        edit(object);
        const QString editedId = object.value(u"id"_s).toString();
        QFile target(m_scratch.filePath(u"objects/%1.json"_s.arg(editedId)));
        ASSERT_TRUE(target.open(QIODevice::WriteOnly | QIODevice::Truncate));
        target.write(QJsonDocument(object).toJson());
    }
};

TEST_F(WithheldObjects, APageWhoseParentIsMissingIsVisibleEverywhere)
{
    const struct
    {
        const char *tool;
        QJsonObject arguments;
        QString answer;
    } cases[] = {
        {"search", args({{"query", "loose"}}), u"- Loose Page (document)"_s},
        {"search", args({{"query", "rows past"}}),
         u"- Loose Page (document) -- Mara Vell rows past the lighthouse."_s},
        {"add_comment", args({{"target", "loose page"}, {"body", "Where does this go?"}}),
         u"Added a comment by Claude on 'Loose Page'."_s},
        {"list_comments", args({{"target", "Loose Page"}}),
         u"- [open] Claude (2025-03-14 09:26 UTC): Where does this go?"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.tool);
        EXPECT_TRUE(ok(c.tool, c.arguments).startsWith(c.answer));
    }
    EXPECT_TRUE(ok("get_project_overview").startsWith(u"## Contents\n- document: 5\n"));
    EXPECT_EQ(ok("get_entity", args({{"name", "Mara Vell"}})).section(u'\n', -1),
              u"Mentioned in: Loose Page."_s);
}

TEST_F(WithheldObjects, AWithheldObjectIsNeverNamedByAVisibleEntity)
{
    // Neither the excluded entity nor the scene below the excluded drafts is named.
    EXPECT_EQ(ok("get_entity", args({{"name", "Tobin Ash"}})),
              u"# Tobin Ash (Characters)\nAliases: Ash\nLifespan: unknown -- unknown\n"
              "Gallery: 0 image(s)\nFields:\n- hideout: (excluded from AI)\n"
              "- rival: (excluded from AI)"_s);
    EXPECT_EQ(fails("add_comment", args({{"target_id", hiddenScene}, {"body", "Hm."}})),
              u"'Hidden Scene' is excluded from AI and cannot be changed."_s);
}

} // namespace
