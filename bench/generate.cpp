// Writes a deterministic synthetic project in the real folder format, and the same project as a
// .fablery bundle, for the benchmark driver. The same size always gives the same bytes: every
// id and word comes from one seeded generator.

#include "core/category.h"
#include "core/contentobjects.h"
#include "core/project.h"
#include "storage/folderarchive.h"
#include "storage/projectfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <cstdio>
#include <random>

using namespace Qt::StringLiterals;

namespace {

using namespace fb;

struct Size
{
    int chapters;
    int scenesPerChapter;
    int wordsPerScene;
    int categories;
    int entities;
    int events;
    int tasks;
    int ledgerRows;
};

const Size smallSize{10, 9, 500, 5, 250, 100, 25, 20};
// 100 chapters of 19 scenes: 2,000 documents holding about 1,000,000 words.
const Size largeSize{100, 19, 526, 20, 5000, 2000, 500, 200};

class Generator
{
public:
    explicit Generator(quint64 seed)
        : m_random(seed)
    {}

    QUuid id()
    {
        const quint64 high = m_random();
        const quint64 low = m_random();
        QUuid uuid(uint(high >> 32), ushort(high >> 16), ushort(high), uchar(low >> 56),
                   uchar(low >> 48), uchar(low >> 40), uchar(low >> 32), uchar(low >> 24),
                   uchar(low >> 16), uchar(low >> 8), uchar(low));
        // Version 4, RFC variant, like the ids the applications make.
        uuid.data3 = (uuid.data3 & 0x0fff) | 0x4000;
        uuid.data4[0] = (uuid.data4[0] & 0x3f) | 0x80;
        return uuid;
    }

    int below(int n) { return int(m_random() % quint64(n)); }

    QString words(int count)
    {
        static const char *const vocabulary[] = {"the",    "lantern", "harbor", "salt",  "road",
                                                 "ledger", "archive", "tide",   "ferry", "smoke",
                                                 "quiet",  "night",   "lamp",   "rope",  "stone",
                                                 "river",  "north",   "window", "paper", "voice",
                                                 "and",    "of",      "to",     "in",    "she",
                                                 "he",     "was",     "had",    "with",  "at",
                                                 "a",      "her",     "his",    "not",   "on",
                                                 "for",    "light",   "dark",   "cold",  "shore"};
        constexpr int vocabularySize = int(sizeof vocabulary / sizeof *vocabulary);
        QString text;
        text.reserve(count * 6);
        for (int i = 0; i < count; ++i) {
            if (i > 0)
                text += (i % 90 == 0) ? u"\n\n"_s : u" "_s;
            text += QLatin1StringView(vocabulary[below(vocabularySize)]);
        }
        return text + u'.';
    }

private:
    std::mt19937_64 m_random;
};

// A sheet of figures as a writer keeps one: a label and eight amounts per row, a formula summing
// each row, and a closing row of column totals that reads every cell above it.
std::unique_ptr<core::Spreadsheet> ledger(Generator &gen, int rows)
{
    auto sheet = std::make_unique<core::Spreadsheet>(u"Ledger"_s, gen.id());
    sheet->setRowCount(rows + 2);
    sheet->setColumnCount(11);
    QMap<core::CellAddress, QString> cells;
    for (int r = 0; r < rows; ++r) {
        cells.insert({r, 0}, u"Item %1"_s.arg(r + 1));
        for (int c = 1; c <= 8; ++c)
            cells.insert({r, c}, QString::number(gen.below(1000)));
        cells.insert({r, 9}, u"=SUM(B%1:I%1)"_s.arg(r + 1));
    }
    cells.insert({rows, 0}, u"Total"_s);
    for (int c = 1; c <= 9; ++c) {
        const QChar column(u'A' + c);
        cells.insert({rows, c}, u"=SUM(%11:%1%2)"_s.arg(column).arg(rows));
    }
    sheet->setCells(cells);
    return sheet;
}

std::unique_ptr<core::Project> buildProject(const Size &size)
{
    Generator gen(20261122);
    auto project = std::make_unique<core::Project>();
    project->setName(u"Benchmark Novel"_s);

    for (int c = 0; c < size.chapters; ++c) {
        auto chapter = std::make_unique<core::Document>(u"Chapter %1"_s.arg(c + 1), gen.id());
        chapter->setSortIndex(c);
        chapter->setSynopsis(gen.words(12));
        const QUuid chapterId = chapter->id();
        project->addObject(std::move(chapter));
        for (int s = 0; s < size.scenesPerChapter; ++s) {
            auto scene = std::make_unique<core::Document>(u"Scene %1.%2"_s.arg(c + 1).arg(s + 1),
                                                          gen.id());
            scene->setParentId(chapterId);
            scene->setSortIndex(s);
            scene->setBody(gen.words(size.wordsPerScene));
            scene->setStatus(u"Draft"_s);
            project->addObject(std::move(scene));
        }
    }

    std::vector<QUuid> categories;
    for (int c = 0; c < size.categories; ++c) {
        auto category = std::make_unique<core::Category>(u"Category %1"_s.arg(c + 1), QUuid(),
                                                         gen.id());
        category->setFields({{u"summary"_s, u"Summary"_s},
                             {u"origin"_s, u"Origin"_s},
                             {u"rank"_s, u"Rank"_s, core::FieldType::Number}});
        categories.push_back(category->id());
        project->categories().add(std::move(category));
    }
    std::vector<QUuid> entities;
    for (int e = 0; e < size.entities; ++e) {
        auto entity = std::make_unique<core::Entity>(gen.id());
        entity->setName(u"Entity %1"_s.arg(e + 1));
        entity->setCategoryId(categories[size_t(e) % categories.size()]);
        entity->setAliases({u"Alias %1"_s.arg(e + 1)});
        entity->setValues({{u"summary"_s, gen.words(20)},
                           {u"origin"_s, gen.words(3)},
                           {u"rank"_s, QString::number(gen.below(100))}});
        entities.push_back(entity->id());
        project->addObject(std::move(entity));
    }

    auto timeline = std::make_unique<core::Timeline>(u"Main timeline"_s, gen.id());
    const QUuid timelineId = timeline->id();
    project->addObject(std::move(timeline));
    for (int e = 0; e < size.events; ++e) {
        auto event = std::make_unique<core::TimelineEvent>(gen.id());
        event->setTimelineId(timelineId);
        event->setTitle(u"Event %1"_s.arg(e + 1));
        event->setStartMinute(qint64(e) * 1440 * 3 + gen.below(1440));
        event->setDurationMinutes(60 + gen.below(600));
        event->setParticipants({entities[size_t(gen.below(int(entities.size())))],
                                entities[size_t(gen.below(int(entities.size())))]});
        event->setLocationId(entities[size_t(gen.below(int(entities.size())))]);
        event->setDescription(gen.words(25));
        project->addObject(std::move(event));
    }
    project->addObject(ledger(gen, size.ledgerRows));
    for (int t = 0; t < size.tasks; ++t) {
        auto task = std::make_unique<core::Task>(u"Task %1"_s.arg(t + 1), gen.id());
        task->setDescription(gen.words(15));
        task->setStatus(t % 3 == 0 ? u"Done"_s : u"To Do"_s);
        project->addObject(std::move(task));
    }
    return project;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3 || (arguments[1] != u"small" && arguments[1] != u"large")) {
        std::fprintf(stderr, "Usage: fablery-bench-generate small|large <output folder>\n");
        return 2;
    }
    const Size &size = arguments[1] == u"large" ? largeSize : smallSize;
    const QString output = arguments[2];
    const QString folder = QDir(output).filePath(u"project"_s);
    QDir(folder).removeRecursively();

    const std::unique_ptr<core::Project> project = buildProject(size);
    app::ProjectFolderWriter writer;
    if (const app::SaveOutcome written = writer.write(folder, *project); !written.isSaved()) {
        std::fprintf(stderr, "%s\n", qPrintable(written.message));
        return 1;
    }
    const auto packed = app::packFolder(folder);
    QSaveFile bundle(QDir(output).filePath(u"project.fablery"_s));
    if (!packed || !bundle.open(QIODevice::WriteOnly) || bundle.write(*packed) != packed->size()
        || !bundle.commit()) {
        std::fprintf(stderr, "Could not write the bundle.\n");
        return 1;
    }
    std::printf("Wrote %lld objects and %lld categories to %s (bundle %.1f MB)\n",
                static_cast<long long>(project->objectCount()),
                static_cast<long long>(project->categories().count()), qPrintable(folder),
                double(packed->size()) / 1e6);
    return 0;
}
