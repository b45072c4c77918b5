#include "core/document.h"
#include "core/project.h"
#include "planningfixture.h"

using namespace Qt::StringLiterals;
using fb::test::Expected;
using fb::test::ExpectedChange;

namespace {

class PlotThreadTools : public fb::test::PlanningFixture
{
protected:
    // The threads a scene is tagged with, by name, read from the model.
    QStringList tagsOf(const QString &title)
    {
        fb::core::Project &project = workspace().project();
        QStringList names;
        for (const fb::core::Document *document : project.objectsOfType<fb::core::Document>()) {
            if (document->title() != title)
                continue;
            for (const QUuid &id : document->plotThreadIds()) {
                for (const fb::core::PlotThread &thread : project.plotThreads()) {
                    if (thread.id == id)
                        names.append(thread.name);
                }
            }
        }
        return names;
    }

    // The raw tags of a scene, dangling ones included.
    QList<QUuid> tagIdsOf(const QString &title)
    {
        for (const fb::core::Document *document :
             workspace().project().objectsOfType<fb::core::Document>()) {
            if (document->title() == title)
                return document->plotThreadIds();
        }
        return {};
    }

    // The threads of the test project are b1a00000-0000-4000-8000-0000000000nn, in list order.
    static QUuid threadId(int n)
    {
        return QUuid::fromString(
            QStringLiteral("{b1a00000-0000-4000-8000-%1}").arg(n, 12, 10, QLatin1Char('0')));
    }
};

const QString lineBreak = u" must be a single line: a title or name cannot hold a line break."_s;
const QString rivalryAmbiguity = u"The name 'RIVALRY' matches 2 plot threads; rename one in the "
                                 "desktop app so the name is unique."_s;

TEST_F(PlotThreadTools, ListThreadsWithoutNamingWhatIsWithheld)
{
    // The note tagged with Smuggling and Secret heir is excluded, so it is not counted, and the
    // excluded character is not named.
    EXPECT_EQ(ok("list_plot_threads"),
              u"## Plot threads (6)\n"
              "- **Smuggling** (#C0392B) -- 3 tagged scene(s) -- Letters moved across the strait.\n"
              "- **Mara's arc** -- arc of Mara Vell -- 1 tagged scene(s)\n"
              "- **The storm** (#1a5276) -- arc of (missing character) -- 1 tagged scene(s) -- "
              "Weather as a threat.\n"
              "- **Secret heir** -- arc of (a character excluded from AI) -- 0 tagged scene(s)\n"
              "- **Rivalry** -- 0 tagged scene(s)\n"
              "- **rivalry** -- 0 tagged scene(s)"_s);
}

TEST_F(PlotThreadTools, CreateAndUpdateThreadsAndArcs)
{
    const auto before = files();
    const struct
    {
        const char *tool;
        const char *arguments;
        QString text;
        QString label;
    } changes[] = {
        {"create_plot_thread", R"({"name": " Harbor politics ", "color": "#C0392B"})",
         u"Created the plot thread 'Harbor politics'."_s, u"MCP: create plot thread"_s},
        {"create_plot_thread",
         R"({"name": "Mara grows up", "character": " mara ", "description": "Pilot to captain.",
             "color": ""})",
         u"Created the character arc 'Mara grows up'."_s, u"MCP: create plot thread"_s},
        {"update_plot_thread",
         R"({"thread": "smuggling", "new_name": "Contraband", "color": "#aabbcc"})",
         u"Updated the plot thread 'Contraband' (name, color)."_s, u"MCP: update plot thread"_s},
        {"update_plot_thread", R"({"thread": "Mara's arc", "character": ""})",
         u"Updated the plot thread 'Mara's arc' (character)."_s, u"MCP: update plot thread"_s},
        {"update_plot_thread",
         R"({"thread": "the storm", "color": "", "description": "",
             "character": "e1a00000-0000-4000-8000-000000000001"})",
         u"Updated the plot thread 'The storm' (color, description, character)."_s,
         u"MCP: update plot thread"_s},
        // A thread may change the case of its own name.
        {"update_plot_thread", R"({"thread": "Contraband", "new_name": "CONTRABAND"})",
         u"Updated the plot thread 'CONTRABAND' (name)."_s, u"MCP: update plot thread"_s},
    };
    std::size_t expectedSteps = 0;
    for (const auto &c : changes) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(ok(c.tool, c.arguments), c.text);
        EXPECT_EQ(steps(), ++expectedSteps);
        EXPECT_EQ(lastLabel(), c.label);
    }
    EXPECT_EQ(
        ok("list_plot_threads"),
        u"## Plot threads (8)\n"
        "- **CONTRABAND** (#aabbcc) -- 3 tagged scene(s) -- Letters moved across the strait.\n"
        "- **Mara's arc** -- 1 tagged scene(s)\n"
        "- **The storm** -- arc of Mara Vell -- 1 tagged scene(s)\n"
        "- **Secret heir** -- arc of (a character excluded from AI) -- 0 tagged scene(s)\n"
        "- **Rivalry** -- 0 tagged scene(s)\n"
        "- **rivalry** -- 0 tagged scene(s)\n"
        "- **Harbor politics** (#C0392B) -- 0 tagged scene(s)\n"
        "- **Mara grows up** -- arc of Mara Vell -- 0 tagged scene(s) -- Pilot to captain."_s);
    undoAll();
    EXPECT_EQ(files(), before);
}

TEST_F(PlotThreadTools, AcceptOnlyAHexSwatchAsColour)
{
    const struct
    {
        const char *color;
        bool accepted;
    } colours[] = {
        {"#C0392B", true},   {"#c0392b", true},  {" #1A2b3C ", true},
        {"", true},          {"c0392b", false},  {"#c0392", false},
        {"#c0392bb", false}, {"#GG0000", false}, {"red", false},
    };
    for (const auto &c : colours) {
        SCOPED_TRACE(c.color);
        const QJsonObject arguments{{u"thread"_s, u"Mara's arc"_s},
                                    {u"color"_s, QString::fromUtf8(c.color)}};
        const fb::test::ToolReply reply = call(u"update_plot_thread"_s, arguments);
        EXPECT_EQ(reply.ok, c.accepted) << reply.text.toStdString();
        if (!c.accepted) {
            EXPECT_EQ(reply.text, u"The color '%1' was not understood; use a CSS hex swatch like "
                                  "\"#c0392b\" (or \"\" for the default)."_s.arg(
                                      QString::fromUtf8(c.color).trimmed()));
        }
    }
}

TEST_F(PlotThreadTools, RefuseABadThreadBeforeChangingAnything)
{
    const auto before = files();
    const struct
    {
        const char *tool;
        const char *arguments;
        QString text;
    } refusals[] = {
        {"create_plot_thread", "{}", u"create_plot_thread needs a non-empty \"name\"."_s},
        {"create_plot_thread", R"({"name": "A\nB"})", u"\"name\""_s + lineBreak},
        {"create_plot_thread", R"({"name": " SMUGGLING"})",
         u"A plot thread named 'SMUGGLING' already exists; choose a distinct name so each thread "
         "stays addressable."_s},
        {"create_plot_thread", R"({"name": "New", "color": 12})", u"\"color\" must be a string."_s},
        {"create_plot_thread", R"({"name": "New", "character": "Quill Vantor"})",
         u"'Quill Vantor' is excluded from AI."_s},
        // Only entities can have arcs.
        {"create_plot_thread", R"({"name": "New", "character": "The Letter"})",
         u"No entity named 'The Letter' exists."_s},
        {"update_plot_thread", "{}", u"update_plot_thread needs \"thread\" (its name)."_s},
        {"update_plot_thread", R"({"thread": "Nope", "color": ""})",
         u"No plot thread named 'Nope' exists."_s},
        {"update_plot_thread", R"({"thread": "RIVALRY", "color": ""})", rivalryAmbiguity},
        {"update_plot_thread", R"({"thread": "Smuggling"})",
         u"update_plot_thread changed nothing; provide at least one of new_name, color, "
         "description, or character."_s},
        {"update_plot_thread", R"({"thread": "Smuggling", "new_name": ""})",
         u"\"new_name\" must be a non-empty string."_s},
        {"update_plot_thread", R"({"thread": "Smuggling", "new_name": "x\ny"})",
         u"\"new_name\""_s + lineBreak},
        {"update_plot_thread", R"({"thread": "Smuggling", "new_name": "the STORM"})",
         u"A plot thread named 'the STORM' already exists; choose a distinct name so each thread "
         "stays addressable."_s},
        {"update_plot_thread", R"({"thread": "Smuggling", "description": "x", "character": "Q"})",
         u"No entity named 'Q' exists."_s},
        {"update_plot_thread",
         R"({"thread": "Smuggling", "character": "d1a00000-0000-4000-8000-000000000002"})",
         u"The id 'd1a00000-0000-4000-8000-000000000002' is not an entity."_s},
        {"delete_plot_thread", "{}", u"delete_plot_thread needs \"thread\" (its name)."_s},
        {"delete_plot_thread", R"({"thread": "Nope"})", u"No plot thread named 'Nope' exists."_s},
        {"delete_plot_thread", R"({"thread": "RIVALRY"})", rivalryAmbiguity},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails(c.tool, c.arguments), c.text);
    }
    // Values the thread already holds change nothing and record no step.
    EXPECT_EQ(ok("update_plot_thread", R"({"thread": "Smuggling", "color": "#C0392B"})"),
              u"Updated the plot thread 'Smuggling' (color)."_s);
    EXPECT_EQ(steps(), 0u);
    EXPECT_EQ(changeLog(), u"No changes this session."_s);
    EXPECT_EQ(files(), before);
}

TEST_F(PlotThreadTools, TagAScene)
{
    const auto before = files();
    const ExpectedChange changes[] = {
        // The order given is kept; a thread named twice is tagged once.
        {R"({"document": " the HARBOR ", "threads": ["The storm", " mara's ARC ", "the storm"]})",
         u"Tagged 'The Harbor' with 2 plot thread(s): The storm, Mara's arc."_s,
         u"MCP: set document threads"_s},
        {R"({"document": "The Letter", "threads": []})",
         u"Cleared the plot-thread tags on 'The Letter'."_s, u"MCP: set document threads"_s},
        // The id wins over the title.
        {R"({"document": "ignored", "document_id": "d1a00000-0000-4000-8000-000000000006",
             "threads": ["Smuggling"]})",
         u"Tagged 'Epilogue' with 1 plot thread(s): Smuggling."_s, u"MCP: set document threads"_s},
    };
    std::size_t expectedSteps = 0;
    for (const auto &c : changes) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(ok("set_document_threads", c.arguments), c.text);
        EXPECT_EQ(steps(), ++expectedSteps);
        EXPECT_EQ(lastLabel(), c.label);
    }
    EXPECT_EQ(tagsOf(u"The Harbor"_s), (QStringList{u"The storm"_s, u"Mara's arc"_s}));
    EXPECT_EQ(tagsOf(u"The Letter"_s), QStringList());
    EXPECT_EQ(tagsOf(u"Epilogue"_s), QStringList{u"Smuggling"_s});
    // The same tags again change nothing.
    EXPECT_EQ(ok("set_document_threads", R"({"document": "The Letter", "threads": []})"),
              u"Cleared the plot-thread tags on 'The Letter'."_s);
    EXPECT_EQ(steps(), expectedSteps);
    undoAll();
    EXPECT_EQ(files(), before);
}

TEST_F(PlotThreadTools, RefuseToTagBeforeChangingAnything)
{
    const auto before = files();
    const QString needsThreads = u"set_document_threads needs a \"threads\" array of thread names "
                                 "([] clears the tags)."_s;
    const Expected refusals[] = {
        {R"({"threads": []})", u"set_document_threads needs \"document\" (its title)."_s},
        {R"({"document": " ", "threads": []})",
         u"set_document_threads needs \"document\" (its title)."_s},
        {R"({"document": "The Harbor"})", needsThreads},
        {R"({"document": "The Harbor", "threads": "Smuggling"})", needsThreads},
        {R"({"document": "The Harbor", "threads": [1]})", needsThreads},
        {R"({"document": "The Harbor", "threads": ["Smuggling", " "]})", needsThreads},
        {R"({"document": "The Harbor", "threads": ["Smuggling", "Nope"]})",
         u"No plot thread named 'Nope' exists."_s},
        {R"({"document": "The Harbor", "threads": ["RIVALRY"]})", rivalryAmbiguity},
        // A withheld scene cannot be tagged.
        {R"({"document": "sealed notes", "threads": ["Smuggling"]})",
         u"'sealed notes' is excluded from AI."_s},
        {R"({"document": "Nowhere", "threads": []})", u"No document titled 'Nowhere' exists."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("set_document_threads", c.arguments), c.text);
    }
    EXPECT_EQ(steps(), 0u);
    EXPECT_EQ(files(), before);
}

TEST_F(PlotThreadTools, DeleteAThreadAndUntagEveryScene)
{
    const auto before = files();
    // Three visible scenes lose the tag, and so does the withheld note, which is not counted.
    EXPECT_EQ(ok("delete_plot_thread", R"({"thread": " smuggling"})"),
              u"Deleted the plot thread 'Smuggling'. Removed it from 3 tagged scene(s)."_s);
    EXPECT_EQ(steps(), 1u);
    EXPECT_EQ(lastLabel(), u"MCP: delete plot thread"_s);
    const QUuid arc = threadId(2);
    const QUuid storm = threadId(3);
    const QUuid heir = threadId(4);
    const struct
    {
        QString title;
        QList<QUuid> tags;
    } scenes[] = {
        {u"The Letter"_s, {arc}},
        {u"The Harbor"_s, {}},
        {u"The Storm"_s, {storm}},
        {u"Sealed Notes"_s, {heir}},
    };
    for (const auto &scene : scenes) {
        SCOPED_TRACE(scene.title.toStdString());
        EXPECT_EQ(tagIdsOf(scene.title), scene.tags);
    }
    // One undo gives back the thread and every tag.
    ok("undo_last");
    EXPECT_EQ(files(), before);

    // A thread tagged only on the withheld note reports no scene.
    EXPECT_EQ(ok("delete_plot_thread", R"({"thread": "Secret heir"})"),
              u"Deleted the plot thread 'Secret heir'."_s);
    EXPECT_EQ(tagIdsOf(u"Sealed Notes"_s), QList<QUuid>{threadId(1)});
    ok("undo_last");
    EXPECT_EQ(files(), before);
}

} // namespace
