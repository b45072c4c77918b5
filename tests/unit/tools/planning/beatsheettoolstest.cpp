#include "core/project.h"
#include "planningfixture.h"
#include "tools/planning/beattemplates.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using fb::test::Expected;
using fb::test::ExpectedChange;

namespace {

class BeatSheetTools : public fb::test::PlanningFixture
{
protected:
    void setSheet(const QString &templateId, const QList<fb::core::BeatAssignment> &assignments)
    {
        workspace().project().setBeatSheet({templateId, assignments});
    }
};

const QString threeActSheet = u"## Beat sheet: Three-Act Structure\n"
                              "- **Setup** (0%): 'The Letter'\n"
                              "- **Inciting Incident** (10%): 'The Harbor'\n"
                              "- **First Plot Point** (25%): unfilled -- The hero commits to the "
                              "conflict and act two begins.\n"
                              "- **Midpoint** (50%): 'The Storm'\n"
                              "- **Second Plot Point** (75%): unfilled -- A crisis that turns the "
                              "story into its last act.\n"
                              "- **Climax** (90%): (a document excluded from AI)\n"
                              "- **Resolution** (100%): unfilled -- The new normal once the "
                              "conflict is settled.\n"
                              "\n"
                              "4 of 7 beats filled."_s;

TEST_F(BeatSheetTools, ShowTheSheetWithoutNamingAWithheldScene)
{
    // The Resolution holds a scene that was deleted since, which leaves the beat unfilled.
    EXPECT_EQ(ok("get_beat_sheet"), threeActSheet);
}

// Every template lists its beats with the names the desktop application stores and the
// positions the methods give them, in order.
TEST_F(BeatSheetTools, ListEveryBeatOfEveryTemplate)
{
    const struct
    {
        const char *id;
        QString displayName;
        QStringList beats;
    } templates[] = {
        {"three-act",
         u"Three-Act Structure"_s,
         {u"Setup (0%)"_s, u"Inciting Incident (10%)"_s, u"First Plot Point (25%)"_s,
          u"Midpoint (50%)"_s, u"Second Plot Point (75%)"_s, u"Climax (90%)"_s,
          u"Resolution (100%)"_s}},
        {"heros-journey",
         u"The Hero's Journey"_s,
         {u"Ordinary World (0%)"_s, u"Call to Adventure (8%)"_s, u"Refusal of the Call (15%)"_s,
          u"Meeting the Mentor (20%)"_s, u"Crossing the Threshold (25%)"_s,
          u"Tests, Allies, Enemies (35%)"_s, u"Approach to the Inmost Cave (45%)"_s,
          u"The Ordeal (50%)"_s, u"Reward (60%)"_s, u"The Road Back (75%)"_s,
          u"Resurrection (90%)"_s, u"Return with the Elixir (100%)"_s}},
        {"save-the-cat",
         u"Save the Cat!"_s,
         {u"Opening Image (1%)"_s, u"Theme Stated (5%)"_s, u"Set-Up (8%)"_s, u"Catalyst (10%)"_s,
          u"Debate (15%)"_s, u"Break into Two (20%)"_s, u"B Story (22%)"_s,
          u"Fun and Games (35%)"_s, u"Midpoint (50%)"_s, u"Bad Guys Close In (60%)"_s,
          u"All Is Lost (75%)"_s, u"Dark Night of the Soul (78%)"_s, u"Break into Three (80%)"_s,
          u"Finale (90%)"_s, u"Final Image (100%)"_s}},
        {"snowflake",
         u"The Snowflake Method"_s,
         {u"One-Sentence Summary (0%)"_s, u"One-Paragraph Summary (10%)"_s,
          u"Character Summaries (20%)"_s, u"One-Page Plot Summary (30%)"_s,
          u"Character Charts (45%)"_s, u"Four-Page Synopsis (60%)"_s, u"Character Bibles (70%)"_s,
          u"Scene List (85%)"_s, u"Scene Briefs (95%)"_s, u"First Draft (100%)"_s}},
    };
    const QRegularExpression beatLine(u"^- \\*\\*(.+)\\*\\* \\((\\d+%)\\): "_s);
    for (const auto &t : templates) {
        SCOPED_TRACE(t.id);
        setSheet(QString::fromUtf8(t.id), {});
        const QStringList lines = ok("get_beat_sheet").split(u'\n');
        ASSERT_EQ(lines.size(), t.beats.size() + 3);
        EXPECT_EQ(lines.front(), u"## Beat sheet: "_s + t.displayName);
        QStringList beats;
        for (const QString &line : lines.mid(1, t.beats.size())) {
            const QRegularExpressionMatch match = beatLine.match(line);
            EXPECT_TRUE(match.hasMatch()) << line.toStdString();
            beats.append(u"%1 (%2)"_s.arg(match.captured(1), match.captured(2)));
        }
        EXPECT_EQ(beats, t.beats);
        EXPECT_EQ(lines.back(), u"0 of %1 beats filled."_s.arg(t.beats.size()));
    }
}

// Each template and beat is described in one short sentence, which the sheet shows for a beat
// still to fill.
TEST_F(BeatSheetTools, DescribeEveryTemplateAndBeatInOneSentence)
{
    const QRegularExpression oneSentence(u"^[A-Z][^.!?]*[^ .!?][.]$"_s);
    for (const fb::app::BeatTemplate &beatTemplate : fb::app::beatTemplates()) {
        SCOPED_TRACE(beatTemplate.id.toStdString());
        EXPECT_TRUE(oneSentence.match(beatTemplate.description).hasMatch())
            << beatTemplate.description.toStdString();
        double previous = -1;
        for (const fb::app::Beat &beat : beatTemplate.beats) {
            EXPECT_TRUE(oneSentence.match(beat.description).hasMatch())
                << beat.description.toStdString();
            EXPECT_GT(beat.position, previous) << beat.name.toStdString();
            previous = beat.position;
        }
        EXPECT_EQ(previous, 100.0);
    }
    const fb::app::BeatTemplate *threeAct = fb::app::beatTemplateById(u"three-act"_s);
    ASSERT_NE(threeAct, nullptr);
    EXPECT_EQ(threeAct->description, u"The classic setup / confrontation / resolution shape."_s);
    EXPECT_EQ(fb::app::findBeat(*threeAct, u" inciting INCIDENT"_s)->description,
              u"The event that disrupts the status quo."_s);
    EXPECT_EQ(fb::app::findBeat(*fb::app::beatTemplateById(u"save-the-cat"_s), u"Catalyst"_s)
                  ->description,
              u"The life-changing event."_s);
}

TEST_F(BeatSheetTools, SwitchTemplatesKeepingOnlyTheBeatsTheyShare)
{
    const auto before = files();
    EXPECT_EQ(ok("apply_beat_template", R"({"template": " save THE cat! "})"),
              u"Applied the 'Save the Cat!' beat sheet (15 beats). Map scenes with assign_beat."_s);
    EXPECT_EQ(lastLabel(), u"MCP: apply beat template"_s);
    const fb::core::BeatSheet switched = workspace().project().beatSheet();
    EXPECT_EQ(switched.templateId, u"save-the-cat"_s);
    EXPECT_EQ(switched.assignments,
              (QList<fb::core::BeatAssignment>{
                  {u"Midpoint"_s, QUuid::fromString(u"{d1a00000-0000-4000-8000-000000000004}"_s)}}));
    EXPECT_TRUE(ok("get_beat_sheet")
                    .contains(u"\n- **Midpoint** (50%): 'The Storm'\n- **Bad Guys Close In**"_s));
    EXPECT_TRUE(ok("get_beat_sheet").endsWith(u"\n\n1 of 15 beats filled."_s));

    // The applied template again, by id, changes nothing.
    EXPECT_EQ(ok("apply_beat_template", R"({"template": "save-the-cat"})"),
              u"The 'Save the Cat!' beat sheet is already applied; nothing changed."_s);
    EXPECT_EQ(steps(), 1u);

    // One undo gives back the template and every assignment.
    ok("undo_last");
    EXPECT_EQ(ok("get_beat_sheet"), threeActSheet);
    EXPECT_EQ(files(), before);

    const Expected refusals[] = {
        {"{}", u"apply_beat_template needs \"template\" (a structure id or name)."_s},
        {R"({"template": " "})",
         u"apply_beat_template needs \"template\" (a structure id or name)."_s},
        {R"({"template": "freytag"})",
         u"Unknown structure template 'freytag'. Choose one of: three-act (Three-Act Structure), "
         "heros-journey (The Hero's Journey), save-the-cat (Save the Cat!), snowflake (The "
         "Snowflake Method)."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("apply_beat_template", c.arguments), c.text);
    }
    EXPECT_EQ(steps(), 0u);
}

TEST_F(BeatSheetTools, AssignAndClearBeats)
{
    const auto before = files();
    const ExpectedChange changes[] = {
        {R"({"beat": " first PLOT point", "document": "the letter"})",
         u"Assigned 'The Letter' to the 'First Plot Point' beat."_s, u"MCP: assign beat"_s},
        // The withheld note gives way.
        {R"({"beat": "Climax", "document": "Epilogue"})",
         u"Assigned 'Epilogue' to the 'Climax' beat."_s, u"MCP: assign beat"_s},
        {R"({"beat": "Midpoint", "document": ""})", u"Cleared the 'Midpoint' beat."_s,
         u"MCP: assign beat"_s},
        {R"({"beat": "Resolution", "document_id": "d1a00000-0000-4000-8000-000000000006"})",
         u"Assigned 'Epilogue' to the 'Resolution' beat."_s, u"MCP: assign beat"_s},
    };
    std::size_t expectedSteps = 0;
    for (const auto &c : changes) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(ok("assign_beat", c.arguments), c.text);
        EXPECT_EQ(steps(), ++expectedSteps);
        EXPECT_EQ(lastLabel(), c.label);
    }
    EXPECT_EQ(ok("get_beat_sheet"),
              u"## Beat sheet: Three-Act Structure\n"
              "- **Setup** (0%): 'The Letter'\n"
              "- **Inciting Incident** (10%): 'The Harbor'\n"
              "- **First Plot Point** (25%): 'The Letter'\n"
              "- **Midpoint** (50%): unfilled -- A reversal or revelation that raises the stakes.\n"
              "- **Second Plot Point** (75%): unfilled -- A crisis that turns the story into its "
              "last act.\n"
              "- **Climax** (90%): 'Epilogue'\n"
              "- **Resolution** (100%): 'Epilogue'\n"
              "\n"
              "5 of 7 beats filled."_s);
    // What the sheet already holds changes nothing.
    EXPECT_EQ(ok("assign_beat", R"({"beat": "Setup", "document": "The Letter"})"),
              u"Assigned 'The Letter' to the 'Setup' beat."_s);
    EXPECT_EQ(ok("assign_beat", R"({"beat": "Midpoint", "document": ""})"),
              u"Cleared the 'Midpoint' beat."_s);
    EXPECT_EQ(steps(), expectedSteps);
    undoAll();
    EXPECT_EQ(files(), before);
}

TEST_F(BeatSheetTools, RefuseToAssignBeforeChangingAnything)
{
    const auto before = files();
    const Expected refusals[] = {
        {"{}", u"assign_beat needs \"beat\" (the name of a beat of the applied template)."_s},
        {R"({"beat": "Catalyst", "document": "Epilogue"})",
         u"'Catalyst' is not a beat of the applied template 'Three-Act Structure'. Its beats are: "
         "Setup, Inciting Incident, First Plot Point, Midpoint, Second Plot Point, Climax, "
         "Resolution."_s},
        // Clearing takes an explicit "".
        {R"({"beat": "Setup"})",
         u"assign_beat needs \"document\" (a scene's title, or \"\" to clear the beat)."_s},
        {R"({"beat": "Setup", "document": "Sealed Notes"})",
         u"'Sealed Notes' is excluded from AI."_s},
        {R"({"beat": "Setup", "document": "Nowhere"})", u"No document titled 'Nowhere' exists."_s},
        {R"({"beat": "Setup", "document": 3})", u"\"document\" must be a string."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("assign_beat", c.arguments), c.text);
    }
    EXPECT_EQ(steps(), 0u);
    EXPECT_EQ(files(), before);
}

TEST_F(BeatSheetTools, SayWhenNoKnownTemplateIsApplied)
{
    setSheet(QString(), {});
    EXPECT_EQ(fails("get_beat_sheet"), u"No beat sheet applied yet. Apply a structure template in "
                                       "the desktop app's Beat Sheet dock."_s);
    EXPECT_EQ(fails("assign_beat", R"({"beat": "Setup", "document": "Epilogue"})"),
              u"No beat sheet is applied yet; apply a structure template in the desktop app's "
              "Beat Sheet dock first."_s);

    // A template of a newer desktop application: its assignments to beats the chosen template
    // shares survive the switch.
    const QUuid storm = QUuid::fromString(u"{d1a00000-0000-4000-8000-000000000004}"_s);
    setSheet(u"seven-point"_s, {{u"Hook"_s, storm}, {u"Midpoint"_s, storm}});
    const QString unknown = u"The applied structure template 'seven-point' is not known to this "
                            "build."_s;
    EXPECT_EQ(fails("get_beat_sheet"), unknown);
    EXPECT_EQ(fails("assign_beat", R"({"beat": "Hook", "document": "Epilogue"})"), unknown);
    EXPECT_EQ(ok("apply_beat_template", R"({"template": "The Hero's Journey"})"),
              u"Applied the 'The Hero's Journey' beat sheet (12 beats). Map scenes with "
              "assign_beat."_s);
    EXPECT_EQ(workspace().project().beatSheet().assignments, QList<fb::core::BeatAssignment>());
    ok("undo_last");
    EXPECT_EQ(ok("apply_beat_template", R"({"template": "THREE-ACT"})"),
              u"Applied the 'Three-Act Structure' beat sheet (7 beats). Map scenes with "
              "assign_beat."_s);
    EXPECT_EQ(workspace().project().beatSheet().assignments,
              (QList<fb::core::BeatAssignment>{{u"Midpoint"_s, storm}}));
}

} // namespace
