#include "tools/codex/mentions.h"

#include "core/document.h"
#include "core/project.h"
#include "tools/common/manuscript.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <iostream>

using namespace Qt::StringLiterals;

namespace {

using fb::core::Document;
using fb::core::Project;

Document *addDocument(Project &project, const QString &title, const QString &body, int sortIndex = 0)
{
    auto document = std::make_unique<Document>(title);
    document->setBody(body);
    document->setSortIndex(sortIndex);
    return static_cast<Document *>(project.addObject(std::move(document)));
}

TEST(Mentions, MatchWholeNamesInAnyCase)
{
    const struct
    {
        const char *name;
        QStringList names;
        QString body;
        bool mentioned;
    } cases[] = {
        {"plain", {u"Mara"_s}, u"Mara rowed."_s, true},
        {"any case", {u"Mara"_s}, u"MARA rowed."_s, true},
        {"possessive", {u"Mara"_s}, u"Mara's boat."_s, true},
        {"inside a word", {u"Mara"_s}, u"Maraschino and Samara."_s, false},
        {"digits glue", {u"Mara"_s}, u"Mara2 was a codename."_s, false},
        {"letters beyond ASCII", {u"Mara"_s}, u"Maraé is elsewhere."_s, false},
        {"split over a line", {u"Mara Vell"_s}, u"said Mara\n  Vell."_s, true},
        {"only part of the name", {u"Mara Vell"_s}, u"Mara Vellum"_s, false},
        {"second alias", {u"Tobin Ash"_s, u"Old Tobin"_s}, u"old tobin waved"_s, true},
        {"punctuation in the name", {u"Dr. Vell"_s}, u"(Dr. Vell)"_s, true},
        {"pattern characters are literal", {u"A+B"_s}, u"AAB and A+B"_s, true},
        {"pattern characters stay literal", {u"A+B"_s}, u"AAB"_s, false},
        {"rich text",
         {u"Tobin Ash"_s},
         u"<!DOCTYPE html><html><body><p>Tobin&nbsp;Ash</p></body></html>"_s,
         true},
        {"markup is no text",
         {u"body"_s},
         u"<!DOCTYPE html><html><body><p>nothing</p></body></html>"_s,
         false},
        {"blank names", {u"  "_s, QString()}, u"  "_s, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Project project;
        addDocument(project, u"Scene"_s, c.body);
        EXPECT_EQ(fb::app::documentsMentioning(fb::app::visibleManuscript(project), c.names).size(),
                  c.mentioned ? 1u : 0u);
    }
}

// A novelist's manuscript: 2,000 documents of 500 words each, and a character with several
// names mentioned in every tenth. The bodies are read once, so this stays well within a second
// even in a sanitizer build; a walk per name and document would take many times longer.
TEST(Mentions, ScanALargeManuscriptOnce)
{
    Project project;
    QString filler;
    for (int word = 0; word < 490; ++word)
        filler += u"harbour%1 "_s.arg(word % 97);
    for (int i = 0; i < 2000; ++i) {
        const QString body = i % 10 == 0 ? filler + u"and the ferrywoman rowed on."_s
                                         : filler + u"and nobody rowed on."_s;
        addDocument(project, u"Scene %1"_s.arg(i), body, i);
    }
    QStringList names{u"Mara Vell"_s};
    for (int i = 0; i < 20; ++i)
        names.append(u"Alias %1"_s.arg(i));
    names.append(u"The Ferrywoman"_s);

    QElapsedTimer timer;
    timer.start();
    const auto found = fb::app::documentsMentioning(fb::app::visibleManuscript(project), names);
    const qint64 elapsed = timer.elapsed();
    std::cout << "[ TIMING   ] 2000 documents scanned in " << elapsed << " ms\n";
    EXPECT_EQ(found.size(), 200u);
    EXPECT_LT(elapsed, 5000);
}

} // namespace
