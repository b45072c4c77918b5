#include "core/contentobjects.h"
#include "core/documenttree.h"
#include "core/project.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using namespace fb::core;

namespace {

QUuid uuid(const char16_t *text)
{
    return QUuid::fromString(QStringView(text));
}

Document *addDocument(Project &project, const QString &title, qint32 sortIndex,
                      const QUuid &parentId = QUuid(), const QUuid &id = QUuid::createUuid())
{
    auto document = std::make_unique<Document>(title, id);
    document->setSortIndex(sortIndex);
    document->setParentId(parentId);
    return objectCast<Document>(project.addObject(std::move(document)));
}

QStringList titles(const std::vector<const Document *> &documents)
{
    QStringList result;
    for (const Document *document : documents)
        result.append(document->title());
    return result;
}

} // namespace

TEST(Project, TakingAndAddingAnObjectKeepsTheSameInstance)
{
    Project project;
    auto owned = std::make_unique<Entity>(u"Mara"_s);
    Entity *const instance = owned.get();
    const QUuid id = instance->id();

    EXPECT_EQ(project.addObject(std::move(owned)), instance);
    EXPECT_EQ(project.objectAs<Entity>(id), instance);
    EXPECT_EQ(project.objectAs<Document>(id), nullptr);

    std::unique_ptr<ContentObject> taken = project.takeObject(id);
    EXPECT_EQ(taken.get(), instance);
    EXPECT_EQ(project.object(id), nullptr);
    EXPECT_EQ(project.takeObject(id), nullptr);

    EXPECT_EQ(project.addObject(std::move(taken)), instance);
    EXPECT_EQ(project.object(id), instance);
    EXPECT_EQ(project.objectCount(), 1);
}

TEST(Project, RefusesNullObjectsNullIdsAndTakenIds)
{
    Project project;
    const QUuid id = QUuid::createUuid();
    ASSERT_NE(project.addObject(std::make_unique<Task>(u"First"_s, id)), nullptr);
    EXPECT_EQ(project.addObject(std::make_unique<Task>(u"Second"_s, id)), nullptr);
    EXPECT_EQ(project.addObject(std::make_unique<Task>(u"Nameless"_s, QUuid())), nullptr);
    EXPECT_EQ(project.addObject(nullptr), nullptr);
    EXPECT_EQ(project.objectCount(), 1);
    EXPECT_EQ(project.objectAs<Task>(id)->title(), u"First"_s);
}

TEST(Project, EnumeratesObjectsInAscendingIdText)
{
    Project project;
    for (int i = 0; i < 60; ++i) {
        const auto type = static_cast<ObjectType>(i % 15);
        project.addObject(createContentObject(type, QUuid::createUuid()));
    }
    const std::vector<const ContentObject *> all = std::as_const(project).objects();
    ASSERT_EQ(all.size(), 60u);
    for (std::size_t i = 1; i < all.size(); ++i)
        EXPECT_LT(idText(all[i - 1]->id()), idText(all[i]->id()));

    const std::vector<Task *> tasks = project.objectsOfType<Task>();
    const std::vector<ContentObject *> byCode = project.objectsOfType(ObjectType::Task);
    ASSERT_EQ(tasks.size(), 4u);
    ASSERT_EQ(byCode.size(), 4u);
    for (std::size_t i = 0; i < tasks.size(); ++i)
        EXPECT_EQ(tasks[i], byCode[i]);
    EXPECT_LT(idText(tasks[0]->id()), idText(tasks[3]->id()));
}

TEST(Project, ChildrenComeBySortIndexThenTitleThenIdText)
{
    Project project;
    const QUuid book = addDocument(project, u"Book"_s, 0)->id();
    // Inserted in an order that none of the three keys gives.
    addDocument(project, u"Same"_s, 1, book, uuid(u"ffffffff-0000-4000-8000-000000000000"));
    addDocument(project, u"late"_s, 2, book);
    addDocument(project, u"Same"_s, 1, book, uuid(u"0fffffff-0000-4000-8000-000000000000"));
    addDocument(project, u"apple"_s, 1, book);
    addDocument(project, u"Zebra"_s, 1, book);
    addDocument(project, u"first"_s, -5, book);
    addDocument(project, u"Elsewhere"_s, 0);

    const std::vector<const Document *> children = std::as_const(project).childrenOf(book);
    // Upper-case letters sort before lower-case ones in plain comparison.
    EXPECT_EQ(titles(children),
              QStringList({u"first"_s, u"Same"_s, u"Same"_s, u"Zebra"_s, u"apple"_s, u"late"_s}));
    EXPECT_EQ(idText(children[1]->id()), u"0fffffff-0000-4000-8000-000000000000"_s);
    EXPECT_EQ(idText(children[2]->id()), u"ffffffff-0000-4000-8000-000000000000"_s);

    const DocumentTree tree(project);
    EXPECT_EQ(tree.children(book), children);
    EXPECT_EQ(titles(tree.children(QUuid())), QStringList({u"Book"_s, u"Elsewhere"_s}));
    EXPECT_EQ(titles(std::as_const(project).childrenOf(QUuid())), titles(tree.children({})));
}

TEST(DocumentTree, ReadingOrderVisitsEachParentBeforeItsSubtreeAndSurvivesLoops)
{
    Project project;
    const QUuid one = addDocument(project, u"Part One"_s, 0)->id();
    const QUuid two = addDocument(project, u"Part Two"_s, 1)->id();
    const QUuid chapter = addDocument(project, u"Chapter 1"_s, 0, one)->id();
    addDocument(project, u"Scene 1"_s, 0, chapter);
    addDocument(project, u"Scene 2"_s, 1, chapter);
    addDocument(project, u"Chapter 2"_s, 0, two);
    // Damaged data: two documents that are each other's parent, and one with a missing parent.
    Document *loopA = addDocument(project, u"Loop A"_s, 0);
    Document *loopB = addDocument(project, u"Loop B"_s, 0, loopA->id());
    loopA->setParentId(loopB->id());
    addDocument(project, u"Orphan"_s, 0, QUuid::createUuid());

    const DocumentTree tree(project);
    QStringList lines;
    for (const DocumentTree::Entry &entry : tree.readingOrder())
        lines.append(QString(entry.depth * 2, u' ') + entry.document->title());
    // The orphan is shown at the top level, so no document is out of reach; the loop is not
    // reachable from the top and is left out rather than walked forever.
    EXPECT_EQ(lines, QStringList({u"Orphan"_s, u"Part One"_s, u"  Chapter 1"_s, u"    Scene 1"_s,
                                  u"    Scene 2"_s, u"Part Two"_s, u"  Chapter 2"_s}));

    QStringList loop;
    for (const DocumentTree::Entry &entry : tree.readingOrder(loopA->id()))
        loop.append(entry.document->title());
    EXPECT_EQ(loop, QStringList({u"Loop B"_s}));

    EXPECT_TRUE(project.isInDocumentSubtree(chapter, one));
    EXPECT_TRUE(project.isInDocumentSubtree(one, one));
    EXPECT_FALSE(project.isInDocumentSubtree(one, chapter));
    EXPECT_FALSE(project.isInDocumentSubtree(loopA->id(), one));
    EXPECT_TRUE(project.isInDocumentSubtree(loopA->id(), loopB->id()));
}

TEST(Project, SettingsSettersStampTheSettingsRevisionOnly)
{
    Project project;
    struct Case
    {
        const char *name;
        std::function<void()> change;
    };
    const Case cases[] = {
        {"name", [&] { project.setName(u"The Salt Road"_s); }},
        {"plot threads", [&] { project.setPlotThreads({PlotThread{}}); }},
        {"beat sheet",
         [&] {
             project.setBeatSheet({u"three-act"_s, {}});
         }},
        {"audiences", [&] { project.setAudiences({u"Editor"_s}); }},
        {"pinned", [&] { project.setPinned({QUuid::createUuid()}); }},
        {"continuity rules", [&] { project.setContinuityRules({ContinuityRule{}}); }},
        {"calendar", [&] { project.setCalendar({}); }},
        {"eras", [&] { project.setTimelineEras({TimelineEra{}}); }},
        {"timeline view",
         [&] {
             project.setTimelineView({{u"density"_s, 2}});
         }},
        {"view presets", [&] { project.setTimelineViewPresets({QVariantMap()}); }},
        {"mounts",
         [&] {
             project.setMounts({{u"Lore"_s, u"/lore"_s, false}});
         }},
        {"writing goal",
         [&] {
             project.setWritingGoal({500, 80000, {}});
         }},
        {"preserved keys",
         [&] {
             project.setPreservedProperties({{u"future"_s, true}});
         }},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const quint64 settings = project.settingsRevision();
        const quint64 membership = project.membershipRevision();
        c.change();
        EXPECT_GT(project.settingsRevision(), settings);
        EXPECT_EQ(project.membershipRevision(), membership);
    }
}

TEST(Project, AddingAndTakingStampTheMembershipRevision)
{
    Project project;
    const quint64 empty = project.membershipRevision();
    const QUuid id = project.addObject(std::make_unique<Timeline>(u"Main"_s))->id();
    const quint64 added = project.membershipRevision();
    EXPECT_GT(added, empty);
    std::unique_ptr<ContentObject> taken = project.takeObject(id);
    EXPECT_GT(project.membershipRevision(), added);
    EXPECT_EQ(project.calendar(), Calendar::defaultCalendar());
}

TEST(DocumentParentLoops, AreCutAtTheirSmallestIdSoEveryDocumentIsReachable)
{
    // Documents are named by the last digit of their id; parents as "child>parent" pairs.
    struct Case
    {
        const char *name;
        QList<std::pair<int, int>> links; // 0 as a parent means the top level
        int expectedCuts;
        QList<int> freed;
    };
    const Case cases[] = {
        {"no loop", {{1, 0}, {2, 1}, {3, 2}}, 0, {}},
        {"a document its own parent", {{1, 0}, {2, 2}}, 1, {2}},
        {"two documents each other's parent", {{3, 4}, {4, 3}}, 1, {3}},
        {"a loop of three with a tail into it", {{5, 6}, {6, 7}, {7, 5}, {8, 7}}, 1, {5}},
        {"two separate loops", {{1, 2}, {2, 1}, {3, 4}, {4, 3}}, 2, {1, 3}},
    };
    const auto idOf = [](int n) {
        return QUuid::fromString(u"00000000-0000-4000-8000-00000000000%1"_s.arg(n));
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Project project;
        for (const auto &[child, parent] : c.links)
            addDocument(project, QString::number(child), 0, parent ? idOf(parent) : QUuid(),
                        idOf(child));
        EXPECT_EQ(repairDocumentParentLoops(project), c.expectedCuts);
        for (const auto &[child, parent] : c.links) {
            const bool freed = c.freed.contains(child);
            EXPECT_EQ(project.objectAs<Document>(idOf(child))->parentId(),
                      freed || !parent ? QUuid() : idOf(parent))
                << child;
        }
        EXPECT_EQ(DocumentTree(project).readingOrder().size(), std::size_t(c.links.size()));
        EXPECT_EQ(repairDocumentParentLoops(project), 0);
    }
}
