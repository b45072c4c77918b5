#include "support/serverprocess.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using fb::test::ScratchProject;
using fb::test::ServerProcess;

namespace {

// The planning tools over the wire, on the "Harbor Plot" project: scenes tagged with plot
// threads (one scene excluded from AI), a three-act beat sheet and tasks on four boards.
class PlanningOverTheWire : public ::testing::Test
{
protected:
    QMap<QString, QByteArray> onDisk() const { return fb::test::folderContents(m_project.path()); }
    QMap<QString, QByteArray> golden() const
    {
        return fb::test::folderContents(QStringLiteral(FB_TEST_DATA_DIR "/projects/planning"));
    }

    ScratchProject m_project{u"projects/planning"_s};
    ServerProcess m_server{{m_project.path()}};
};

TEST_F(PlanningOverTheWire, ListsThePlanningToolsInOrder)
{
    const QJsonObject answer = m_server.request(
        QJsonObject{{u"jsonrpc"_s, u"2.0"_s}, {u"id"_s, 1}, {u"method"_s, u"tools/list"_s}});
    QStringList names;
    for (const QJsonValue &tool : answer[u"result"_s][u"tools"_s].toArray())
        names.append(tool[u"name"_s].toString());
    const QStringList planning{
        u"list_tasks"_s,           u"create_task"_s,        u"update_task"_s,
        u"list_plot_threads"_s,    u"create_plot_thread"_s, u"update_plot_thread"_s,
        u"set_document_threads"_s, u"delete_plot_thread"_s, u"get_beat_sheet"_s,
        u"apply_beat_template"_s,  u"assign_beat"_s,
    };
    const qsizetype first = names.indexOf(planning.front());
    ASSERT_GE(first, 0);
    EXPECT_EQ(names.mid(first, planning.size()), planning);
}

TEST_F(PlanningOverTheWire, DeletesAThreadFromEverySceneAndOneUndoRestoresTheFiles)
{
    const auto deleted = m_server.call(u"delete_plot_thread"_s, {{u"thread"_s, u"Smuggling"_s}});
    EXPECT_FALSE(deleted.isError);
    EXPECT_EQ(deleted.text,
              u"Deleted the plot thread 'Smuggling'. Removed it from 3 tagged scene(s)."_s);
    // The project file and the four tagged scenes, the excluded one among them, were rewritten.
    const auto after = onDisk();
    QStringList changed;
    for (auto it = after.cbegin(); it != after.cend(); ++it) {
        if (golden().value(it.key()) != it.value())
            changed.append(it.key());
    }
    EXPECT_EQ(changed, (QStringList{u"objects/d1a00000-0000-4000-8000-000000000002.json"_s,
                                    u"objects/d1a00000-0000-4000-8000-000000000003.json"_s,
                                    u"objects/d1a00000-0000-4000-8000-000000000004.json"_s,
                                    u"objects/d1a00000-0000-4000-8000-000000000005.json"_s,
                                    u"project.json"_s}));
    EXPECT_FALSE(m_server.call(u"list_plot_threads"_s).text.contains(u"Smuggling"_s));

    EXPECT_EQ(m_server.call(u"undo_last"_s).text, u"Undid the last change."_s);
    EXPECT_EQ(onDisk(), golden());
    EXPECT_EQ(m_server.call(u"get_recent_changes"_s).text,
              u"Deleted the plot thread 'Smuggling'. Removed it from 3 tagged scene(s).\n"
              "Undid the last change."_s);
}

TEST_F(PlanningOverTheWire, SwitchingTemplatesKeepsOnlyTheSharedBeats)
{
    const auto applied = m_server.call(u"apply_beat_template"_s,
                                       {{u"template"_s, u"save-the-cat"_s}});
    EXPECT_EQ(applied.text,
              u"Applied the 'Save the Cat!' beat sheet (15 beats). Map scenes with assign_beat."_s);
    const QStringList sheet = m_server.call(u"get_beat_sheet"_s).text.split(u'\n');
    QStringList filled;
    for (const QString &line : sheet) {
        if (line.startsWith(u"- **"_s) && !line.contains(u": unfilled -- "_s))
            filled.append(line);
    }
    EXPECT_EQ(filled, QStringList{u"- **Midpoint** (50%): 'The Storm'"_s});
    EXPECT_EQ(sheet.first(), u"## Beat sheet: Save the Cat!"_s);
    EXPECT_EQ(sheet.last(), u"1 of 15 beats filled."_s);
    EXPECT_EQ(m_server.call(u"undo_last"_s).text, u"Undid the last change."_s);
    EXPECT_EQ(onDisk(), golden());
}

TEST_F(PlanningOverTheWire, RefusesBadValuesAndLeavesTheFilesAlone)
{
    const struct
    {
        QString tool;
        QJsonObject arguments;
        QString text;
    } refusals[] = {
        {u"create_plot_thread"_s,
         {{u"name"_s, u"Harbor politics"_s}, {u"color"_s, u"c0392b"_s}},
         u"The color 'c0392b' was not understood; use a CSS hex swatch like \"#c0392b\" (or \"\" "
         "for the default)."_s},
        {u"create_plot_thread"_s,
         {{u"name"_s, u"Harbor politics"_s}, {u"color"_s, u"#c0392"_s}},
         u"The color '#c0392' was not understood; use a CSS hex swatch like \"#c0392b\" (or \"\" "
         "for the default)."_s},
        {u"update_task"_s,
         {{u"task"_s, u"Fix the timeline"_s}, {u"done"_s, true}},
         u"The name 'Fix the timeline' matches 2 tasks: 'Fix the timeline' (board Tasks, status "
         "Doing); 'Fix the timeline' (board Revisions, status To Do). Make the name unique in the "
         "desktop app, or use a more specific name."_s},
        {u"create_task"_s,
         {{u"title"_s, u"Book the launch"_s}, {u"due"_s, u"next Friday"_s}},
         u"The due date 'next Friday' was not understood; use YYYY-MM-DD, or \"\" to clear it."_s},
        {u"update_task"_s,
         {{u"task"_s, u"Outline act two"_s}, {u"due"_s, u"2025-02-30"_s}},
         u"The due date '2025-02-30' was not understood; use YYYY-MM-DD, or \"\" to clear it."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.text.toStdString());
        const auto answer = m_server.call(c.tool, c.arguments);
        EXPECT_TRUE(answer.isError);
        EXPECT_EQ(answer.text, c.text);
    }
    EXPECT_EQ(onDisk(), golden());

    const auto created = m_server.call(u"create_plot_thread"_s, {{u"name"_s, u"Harbor politics"_s},
                                                                 {u"color"_s, u"#C0392B"_s}});
    EXPECT_FALSE(created.isError);
    EXPECT_EQ(created.text, u"Created the plot thread 'Harbor politics'."_s);
    EXPECT_EQ(m_server.call(u"get_recent_changes"_s).text,
              u"Created the plot thread 'Harbor politics'."_s);
    EXPECT_EQ(m_server.finish(), 0);
}

} // namespace
