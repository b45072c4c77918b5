#include "tools/planning/beattemplates.h"

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// The beats keep the names the desktop application stores in the beat sheet, so assignments
// made there and here match by name. Positions are where each beat should fall, in percent of
// the story; Save the Cat's opening image sits at 1 by the method's own page count.

BeatTemplate threeAct()
{
    return {u"three-act"_s,
            u"Three-Act Structure"_s,
            u"The classic setup / confrontation / resolution shape."_s,
            {
                {u"Setup"_s, u"The hero's ordinary world, before anything changes."_s, 0},
                {u"Inciting Incident"_s, u"The event that disrupts the status quo."_s, 10},
                {u"First Plot Point"_s, u"The hero commits to the conflict and act two begins."_s,
                 25},
                {u"Midpoint"_s, u"A reversal or revelation that raises the stakes."_s, 50},
                {u"Second Plot Point"_s, u"A crisis that turns the story into its last act."_s, 75},
                {u"Climax"_s, u"The decisive confrontation."_s, 90},
                {u"Resolution"_s, u"The new normal once the conflict is settled."_s, 100},
            }};
}

BeatTemplate herosJourney()
{
    return {u"heros-journey"_s,
            u"The Hero's Journey"_s,
            u"Joseph Campbell's monomyth in Christopher Vogler's twelve stages."_s,
            {
                {u"Ordinary World"_s, u"The hero's everyday life before the adventure."_s, 0},
                {u"Call to Adventure"_s, u"A challenge or summons disturbs that life."_s, 8},
                {u"Refusal of the Call"_s, u"The hero hesitates out of fear or duty."_s, 15},
                {u"Meeting the Mentor"_s, u"A guide offers advice, training or a gift."_s, 20},
                {u"Crossing the Threshold"_s, u"The hero leaves the known world behind."_s, 25},
                {u"Tests, Allies, Enemies"_s,
                 u"The hero learns the rules of the new world and who stands where."_s, 35},
                {u"Approach to the Inmost Cave"_s, u"The hero prepares for the central ordeal."_s,
                 45},
                {u"The Ordeal"_s, u"The hero faces the greatest fear and seems to die."_s, 50},
                {u"Reward"_s, u"The hero takes hold of the prize won in the ordeal."_s, 60},
                {u"The Road Back"_s, u"The hero turns for home, pursued by the consequences."_s, 75},
                {u"Resurrection"_s, u"A final test in which the hero is reborn."_s, 90},
                {u"Return with the Elixir"_s,
                 u"The hero comes home changed, bringing something that heals."_s, 100},
            }};
}

BeatTemplate saveTheCat()
{
    return {u"save-the-cat"_s,
            u"Save the Cat!"_s,
            u"Blake Snyder's fifteen-beat sheet for screenplays and novels."_s,
            {
                {u"Opening Image"_s, u"A snapshot of the hero's world before the story."_s, 1},
                {u"Theme Stated"_s, u"Someone hints at the lesson the hero must learn."_s, 5},
                {u"Set-Up"_s, u"The hero's life, flaws and what is missing from it."_s, 8},
                {u"Catalyst"_s, u"The life-changing event."_s, 10},
                {u"Debate"_s, u"The hero doubts whether to act."_s, 15},
                {u"Break into Two"_s, u"The hero chooses to enter a new world."_s, 20},
                {u"B Story"_s, u"A second story, often a relationship, that carries the theme."_s,
                 22},
                {u"Fun and Games"_s, u"The promise of the premise, explored."_s, 35},
                {u"Midpoint"_s, u"A false victory or false defeat that raises the stakes."_s, 50},
                {u"Bad Guys Close In"_s, u"Doubt and enemies tighten their grip on the hero."_s, 60},
                {u"All Is Lost"_s, u"The lowest point, where something or someone is lost."_s, 75},
                {u"Dark Night of the Soul"_s, u"The hero despairs before finding the answer."_s, 78},
                {u"Break into Three"_s, u"The answer arrives, joining the A and B stories."_s, 80},
                {u"Finale"_s, u"The hero applies the lesson and wins through."_s, 90},
                {u"Final Image"_s, u"A snapshot that mirrors the opening and shows the change."_s,
                 100},
            }};
}

BeatTemplate snowflake()
{
    return {u"snowflake"_s,
            u"The Snowflake Method"_s,
            u"Randy Ingermanson's ten steps that grow a one-sentence idea into a draft."_s,
            {
                {u"One-Sentence Summary"_s, u"The whole novel in one sentence."_s, 0},
                {u"One-Paragraph Summary"_s,
                 u"The setup, three disasters and the ending in one paragraph."_s, 10},
                {u"Character Summaries"_s, u"Each major character's goal, conflict and epiphany."_s,
                 20},
                {u"One-Page Plot Summary"_s,
                 u"Each sentence of the paragraph grown into a paragraph of its own."_s, 30},
                {u"Character Charts"_s, u"The history and traits of every character."_s, 45},
                {u"Four-Page Synopsis"_s, u"The one-page summary expanded to four pages."_s, 60},
                {u"Character Bibles"_s, u"Everything known about each character, in depth."_s, 70},
                {u"Scene List"_s, u"Every scene the story needs, one line each."_s, 85},
                {u"Scene Briefs"_s, u"A short narrative description of each scene."_s, 95},
                {u"First Draft"_s, u"The novel itself, written from the briefs."_s, 100},
            }};
}

bool sameName(const QString &a, const QString &b)
{
    return a.trimmed().compare(b.trimmed(), Qt::CaseInsensitive) == 0;
}

} // namespace

const QList<BeatTemplate> &beatTemplates()
{
    static const QList<BeatTemplate> templates{threeAct(), herosJourney(), saveTheCat(),
                                               snowflake()};
    return templates;
}

const BeatTemplate *beatTemplateById(const QString &id)
{
    for (const BeatTemplate &beatTemplate : beatTemplates()) {
        if (beatTemplate.id == id)
            return &beatTemplate;
    }
    return nullptr;
}

const BeatTemplate *findBeatTemplate(const QString &name)
{
    for (const BeatTemplate &beatTemplate : beatTemplates()) {
        if (sameName(beatTemplate.id, name) || sameName(beatTemplate.displayName, name))
            return &beatTemplate;
    }
    return nullptr;
}

const Beat *findBeat(const BeatTemplate &beatTemplate, const QString &name)
{
    for (const Beat &beat : beatTemplate.beats) {
        if (sameName(beat.name, name))
            return &beat;
    }
    return nullptr;
}

} // namespace fb::app
