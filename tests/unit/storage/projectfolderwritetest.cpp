#include "core/contentobjects.h"
#include "core/project.h"
#include "projectfoldertestutil.h"
#include "storage/projectfolder.h"
#include "support/printers.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using fb::app::FolderWriteReport;
using fb::app::ProjectFiles;
using fb::app::ProjectFolderWriter;
using fb::app::readProjectFolder;
using fb::app::SaveOutcome;
using fb::core::Document;
using fb::core::Project;

namespace {

const QUuid documentId = QUuid::fromString(u"00000000-0000-4000-8000-000000000002"_s);
const QUuid categoryId = QUuid::fromString(u"c0000000-0000-4000-8000-000000000001"_s);
const QUuid newId = QUuid::fromString(u"0b000000-0000-4000-8000-000000000001"_s);
const QString documentFile = u"objects/00000000-0000-4000-8000-000000000002.json"_s;
const QString categoryFile = u"taxonomy/c0000000-0000-4000-8000-000000000001.json"_s;
const QString newFile = u"objects/0b000000-0000-4000-8000-000000000001.json"_s;

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

QJsonObject jsonOf(const QByteArray &bytes)
{
    return QJsonDocument::fromJson(bytes).object();
}

// A copy of the sample project, read back from the copy by a writer told what is on disk.
class FolderWriter : public ::testing::Test
{
protected:
    void SetUp() override { reset(); }

    void reset(const std::function<void(const QString &folder)> &prepare = {})
    {
        ASSERT_TRUE(QDir(folder()).removeRecursively());
        copyFolder(everythingFolder(), folder());
        if (prepare)
            prepare(folder());
        ProjectFiles files;
        auto read = readProjectFolder(folder(), {}, &files);
        ASSERT_TRUE(read) << read.error().toStdString();
        m_project = std::move(read).value();
        m_writer = std::make_unique<ProjectFolderWriter>();
        m_writer->assumeOnDisk(*m_project, files);
    }

    QString folder() const { return m_dir.filePath(u"project"_s); }

public:
    QString path(const QString &relative) const { return QDir(folder()).filePath(relative); }

protected:
    Document &document() { return *m_project->objectAs<Document>(documentId); }

    FolderWriteReport write()
    {
        FolderWriteReport report;
        const SaveOutcome outcome = m_writer->write(folder(), *m_project, &report);
        EXPECT_TRUE(outcome.isSaved()) << outcome.message.toStdString();
        return report;
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Project> m_project;
    std::unique_ptr<ProjectFolderWriter> m_writer;
};

TEST_F(FolderWriter, WritesOnlyWhatChangedSinceTheProjectWasRead)
{
    struct Case
    {
        const char *name;
        std::function<void(Project &)> change;
        QStringList expected;
    };
    const Case cases[] = {
        {"nothing", [](Project &) {}, {}},
        {"an object's field",
         [](Project &p) { p.objectAs<Document>(documentId)->setTitle(u"Landfall"_s); },
         {documentFile}},
        {"a field set to the value it had",
         [](Project &p) { p.objectAs<Document>(documentId)->setTitle(u"The Harbour at Dawn"_s); },
         {}},
        {"a category's name",
         [](Project &p) { p.categories().setName(categoryId, u"Cast"_s); },
         {categoryFile}},
        {"a project setting", [](Project &p) { p.setName(u"Renamed"_s); }, {u"project.json"_s}},
        {"a new object",
         [&](Project &p) { p.addObject(std::make_unique<fb::core::Task>(u"Plan"_s, newId)); },
         {newFile}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        reset();
        c.change(*m_project);
        const FolderWriteReport report = write();
        EXPECT_EQ(sorted(report.written.keys()), c.expected);
        EXPECT_TRUE(report.removed.isEmpty());
        const QMap<QString, QByteArray> onDisk = folderFiles(folder());
        for (auto it = report.written.cbegin(); it != report.written.cend(); ++it)
            EXPECT_EQ(onDisk.value(it.key()), it.value());
        EXPECT_TRUE(write().written.isEmpty());
    }
}

TEST_F(FolderWriter, WritesAWholeProjectIntoANewFolderByteForByte)
{
    ProjectFolderWriter fresh;
    const QString copy = m_dir.filePath(u"nested/copy"_s);
    FolderWriteReport report;
    ASSERT_TRUE(fresh.write(copy, *m_project, &report).isSaved());
    EXPECT_EQ(report.written.size(), 20);
    EXPECT_EQ(folderFiles(copy), folderFiles(everythingFolder()));
    // A writer that knows nothing of a folder never overwrites what it finds there.
    m_project->setName(u"Renamed"_s);
    const SaveOutcome again = ProjectFolderWriter().write(copy, *m_project);
    EXPECT_TRUE(again.isRefused());
    EXPECT_TRUE(again.message.startsWith(u"Another program created "_s));
    EXPECT_EQ(folderFiles(copy), folderFiles(everythingFolder()));
}

TEST_F(FolderWriter, RemovesOnlyTheFilesOfWhatLeftTheModel)
{
    for (const bool category : {false, true}) {
        SCOPED_TRACE(category ? "category" : "object");
        reset();
        writeFile(path(u"objects/notes.txt"_s), "kept");
        if (category)
            ASSERT_TRUE(m_project->categories().take(categoryId));
        else
            ASSERT_TRUE(m_project->takeObject(documentId));
        const QString removedFile = category ? categoryFile : documentFile;

        const FolderWriteReport report = write();
        EXPECT_EQ(report.removed, QStringList{removedFile});
        EXPECT_TRUE(report.written.isEmpty());
        QMap<QString, QByteArray> expected = folderFiles(everythingFolder());
        expected.remove(removedFile);
        expected.insert(u"objects/notes.txt"_s, "kept");
        EXPECT_EQ(folderFiles(folder()), expected);
        EXPECT_TRUE(write().removed.isEmpty());
    }
}

TEST_F(FolderWriter, NeverReplacesOrRemovesWhatAnotherProgramChanged)
{
    const QString documentPath = u"{dir}/"_s + documentFile;
    struct Case
    {
        const char *name;
        std::function<void(FolderWriter &)> outsideEdit;
        std::function<void(Project &)> change;
        QString expected;
    };
    const auto renameDocument = [](Project &p) {
        p.objectAs<Document>(documentId)->setTitle(u"Landfall"_s);
    };
    const auto rewrite = [](FolderWriter &t) {
        writeFile(t.path(documentFile), "{\"id\": \"edited elsewhere\"}");
    };
    const Case cases[] = {
        {"rewritten, then changed here", rewrite, renameDocument,
         u"Another program changed %1 since this server last read it."_s.arg(documentPath)},
        {"removed, then changed here", [](FolderWriter &t) { QFile::remove(t.path(documentFile)); },
         renameDocument,
         u"Another program removed %1 since this server last read it."_s.arg(documentPath)},
        {"rewritten, then deleted here", rewrite, [](Project &p) { p.takeObject(documentId); },
         u"Another program changed %1 since this server last read it."_s.arg(documentPath)},
        {"created where a new object goes",
         [](FolderWriter &t) { writeFile(t.path(newFile), "{}"); },
         [](Project &p) { p.addObject(std::make_unique<fb::core::Task>(u"Plan"_s, newId)); },
         u"Another program created {dir}/%1 since this server last read the project."_s.arg(
             newFile)},
        {"project file rewritten, settings changed here",
         [](FolderWriter &t) { writeFile(t.path(u"project.json"_s), "{\"name\": \"Theirs\"}"); },
         [](Project &p) { p.setName(u"Ours"_s); },
         u"Another program changed {dir}/project.json since this server last read it."_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        reset();
        // An unrelated change rides along: a refused save writes none of it.
        m_project->categories().setName(categoryId, u"Cast"_s);
        c.change(*m_project);
        c.outsideEdit(*this);
        const QMap<QString, QByteArray> before = folderFiles(folder());

        const SaveOutcome outcome = m_writer->write(folder(), *m_project);
        EXPECT_TRUE(outcome.isRefused());
        EXPECT_EQ(outcome.message,
                  QDir::toNativeSeparators(QString(c.expected).replace(u"{dir}"_s, folder()))
                      + u" Nothing was changed; the next call works on the project as it is on "
                        u"disk now, so try again."_s);
        EXPECT_EQ(folderFiles(folder()), before);
    }
}

TEST_F(FolderWriter, WritesEachObjectBackToTheFileItCameFrom)
{
    for (const QString &name : {u"Chapter One.json"_s,
                                u"{00000000-0000-4000-8000-000000000002}.json"_s, u"DOC-2.json"_s}) {
        SCOPED_TRACE(name.toStdString());
        const QString ownFile = u"objects/"_s + name;
        reset([&](const QString &root) { QDir(root).rename(documentFile, ownFile); });
        document().setTitle(u"Landfall"_s);
        EXPECT_EQ(write().written.keys(), QStringList{ownFile});
        EXPECT_FALSE(QFileInfo::exists(path(documentFile)));
        EXPECT_EQ(jsonOf(folderFiles(folder()).value(ownFile)).value("title"_L1).toString(),
                  u"Landfall"_s);

        ASSERT_TRUE(m_project->takeObject(documentId));
        EXPECT_EQ(write().removed, QStringList{ownFile});
        EXPECT_FALSE(QFileInfo::exists(path(ownFile)));
        const auto reread = readProjectFolder(folder());
        ASSERT_TRUE(reread) << reread.error().toStdString();
        EXPECT_FALSE((*reread)->contains(documentId));
    }
}

TEST_F(FolderWriter, KeepsValuesItCouldNotUnderstandUnlessTheChangeSetsThem)
{
    const QByteArray stored = R"({"id": "00000000-0000-4000-8000-000000000002", "type": "document",
        "title": 5, "body": {"paragraphs": ["lost?"]}, "sortIndex": "3", "kind": "Novel",
        "tags": "x", "sceneInstant": "dawn", "status": "Draft",
        "footnotes": [{"id": "n1", "text": "kept", "style": "roman"}, 7]})";
    struct Case
    {
        const char *name;
        std::function<void(Document &)> change;
        QJsonObject expectedChanges;
    };
    const Case cases[] = {
        {"another field changes",
         [](Document &d) { d.setStatus(u"Final"_s); },
         {{"status"_L1, u"Final"_s}}},
        {"the misread field is set",
         [](Document &d) { d.setTitle(u"Landfall"_s); },
         {{"title"_L1, u"Landfall"_s}}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        reset([&](const QString &root) { writeFile(QDir(root).filePath(documentFile), stored); });
        c.change(document());
        write();
        const QJsonObject written = jsonOf(folderFiles(folder()).value(documentFile));
        QJsonObject expected = jsonOf(stored);
        for (auto it = c.expectedChanges.constBegin(); it != c.expectedChanges.constEnd(); ++it)
            expected.insert(it.key(), it.value());
        // Every value of the file survives as it was, but what the change set.
        for (auto it = expected.constBegin(); it != expected.constEnd(); ++it) {
            SCOPED_TRACE(it.key().toStdString());
            EXPECT_EQ(written.value(it.key()), it.value());
        }
    }
}

TEST(FolderWriterFailure, ReportsTheFileItCouldNotWriteAndStopsThere)
{
    const QUuid objectId = QUuid::fromString(u"00000000-0000-4000-8000-000000000001"_s);
    struct Case
    {
        const char *name;
        QString obstacle; // a file, or a folder when it ends in "/"
        QString folder;
        QString expected; // "{dir}" stands for the temporary folder
    };
    const Case cases[] = {
        {"project folder below a file", u"blocker"_s, u"blocker/project"_s,
         u"Cannot create project folder: {dir}/blocker/project"_s},
        {"object file taken by a folder",
         u"project/objects/00000000-0000-4000-8000-000000000001.json/"_s, u"project"_s,
         u"Cannot read file: {dir}/project/objects/00000000-0000-4000-8000-000000000001.json"_s},
        {"taxonomy taken by a file", u"project/taxonomy"_s, u"project"_s,
         u"Cannot create taxonomy folder: {dir}/project/taxonomy"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        if (c.obstacle.endsWith(u'/'))
            ASSERT_TRUE(QDir().mkpath(dir.filePath(c.obstacle)));
        else
            writeFile(dir.filePath(c.obstacle), "x");
        Project project;
        project.addObject(std::make_unique<fb::core::Task>(u"Plan"_s, objectId));
        project.categories().add(std::make_unique<fb::core::Category>(u"Cast"_s));

        ProjectFolderWriter writer;
        const SaveOutcome outcome = writer.write(dir.filePath(c.folder), project);
        ASSERT_FALSE(outcome.isSaved());
        EXPECT_EQ(outcome.message,
                  QDir::toNativeSeparators(QString(c.expected).replace(u"{dir}"_s, dir.path())));
        EXPECT_FALSE(QFileInfo::exists(dir.filePath(c.folder + u"/project.json"_s)));
    }
}

} // namespace
