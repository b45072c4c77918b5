#include "support/serverprocess.h"

#include <QJsonArray>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using fb::test::ScratchProject;
using fb::test::ServerProcess;

namespace {

using Args = QJsonObject;

// The timeline tools over the wire, on a project whose calendar has months of unequal length
// and the era label "Third Age".
class TimelineOverTheWire : public ::testing::Test
{
protected:
    QMap<QString, QByteArray> onDisk() const { return fb::test::folderContents(m_project.path()); }

    ScratchProject m_project{u"projects/chronicle"_s};
    ServerProcess m_server{{m_project.path()}};
};

TEST_F(TimelineOverTheWire, AnUnknownParticipantChangesNothingOnDisk)
{
    const auto golden = onDisk();
    const auto refused = m_server.call(u"create_timeline_event"_s,
                                       {{u"title"_s, u"Night Market"_s},
                                        {u"when"_s, u"12 Highsun 1250"_s},
                                        {u"participants"_s, QJsonArray{u"Mara Vell"_s, u"Nobody"_s}},
                                        {u"location"_s, u"The Harbor"_s}});
    EXPECT_TRUE(refused.isError);
    EXPECT_EQ(refused.text,
              u"\"participants\" names 'Nobody', but no entity has that name or alias."_s);
    EXPECT_EQ(onDisk(), golden);
    EXPECT_FALSE(m_server.call(u"get_timeline"_s).text.contains(u"Night Market"_s));
    EXPECT_EQ(m_server.finish(), 0);
}

TEST_F(TimelineOverTheWire, ReadsAnEventBackAtTheDateItWasCreatedAtAndUndoesIt)
{
    const auto golden = onDisk();
    const auto created = m_server.call(u"create_timeline_event"_s,
                                       {{u"title"_s, u"Night Market"_s},
                                        {u"when"_s, u"27 Harvestmoon, Year 1250 Third Age 21:15"_s},
                                        {u"until"_s, u"3 Long Night 1250"_s},
                                        {u"participants"_s, QJsonArray{u"The Heron"_s}},
                                        {u"location"_s, u"the harbor"_s},
                                        {u"timeline"_s, u"Main Story"_s}});
    EXPECT_FALSE(created.isError) << created.text.toStdString();
    EXPECT_EQ(created.text,
              u"Created the event 'Night Market' at 27 Harvestmoon, Year 1250 Third Age, 21:15."_s);
    EXPECT_NE(onDisk(), golden);
    const QString line = u"- 27 Harvestmoon, Year 1250 Third Age, 21:15 to 3 Long Night, Year 1250 "
                         "Third Age -- **Night Market** (with Mara Vell; at Saltmarsh Harbor)"_s;
    EXPECT_TRUE(m_server.call(u"get_timeline"_s, {{u"timeline"_s, u"Main Story"_s}})
                    .text.contains(u"\n"_s + line + u"\n"_s));

    EXPECT_EQ(m_server.call(u"undo_last"_s).text, u"Undid the last change."_s);
    EXPECT_EQ(onDisk(), golden);
    EXPECT_EQ(m_server.finish(), 0);
}

TEST_F(TimelineOverTheWire, RefusesBadErasAndUndoesGoodOnes)
{
    const auto golden = onDisk();
    const struct
    {
        const char *name;
        Args arguments;
        QString message;
    } refusals[] = {
        {"end before start",
         {{u"name"_s, u"Dusk"_s}, {u"start"_s, u"1300"_s}, {u"end"_s, u"Highsun 1299"_s}},
         u"The era's end '1 Highsun, Year 1299 Third Age' is before its start '1 Thawing, Year "
         "1300 Third Age'."_s},
        {"name taken",
         {{u"action"_s, u"add"_s},
          {u"name"_s, u"AGE OF SAIL"_s},
          {u"start"_s, u"1"_s},
          {u"end"_s, u"2"_s}},
         u"An era named 'AGE OF SAIL' already exists."_s},
        {"unknown era",
         {{u"action"_s, u"remove"_s}, {u"name"_s, u"Dusk"_s}},
         u"No era named 'Dusk' exists."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.name);
        const auto answer = m_server.call(u"manage_eras"_s, c.arguments);
        EXPECT_TRUE(answer.isError);
        EXPECT_EQ(answer.text, c.message);
    }
    EXPECT_EQ(onDisk(), golden);

    EXPECT_FALSE(m_server
                     .call(u"manage_eras"_s, {{u"action"_s, u"rename"_s},
                                              {u"name"_s, u"Age of Sail"_s},
                                              {u"new_name"_s, u"Age of Steam"_s}})
                     .isError);
    EXPECT_FALSE(
        m_server
            .call(u"manage_eras"_s, {{u"action"_s, u"remove"_s}, {u"name"_s, u"The Long Peace"_s}})
            .isError);
    EXPECT_TRUE(m_server.call(u"get_timeline"_s)
                    .text.endsWith(u"## Eras\n- Age of Steam: 1 Thawing, Year 1200 Third Age to 1 "
                                   "Thawing, Year 1260 Third Age"_s));
    EXPECT_EQ(m_server.call(u"undo_last"_s).text, u"Undid the last change."_s);
    EXPECT_EQ(m_server.call(u"undo_last"_s).text, u"Undid the last change."_s);
    EXPECT_EQ(onDisk(), golden);
    EXPECT_EQ(m_server.finish(), 0);
}

} // namespace
