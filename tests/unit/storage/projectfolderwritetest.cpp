#include "storage/projectfolder.h"

#include "core/contentobjects.h"
#include "core/project.h"
#include "projectfoldertestutil.h"
#include "support/printers.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;
using fb::app::FolderWriteReport;
using fb::app::ProjectFolderWriter;
using fb::app::readProjectFolder;
using fb::core::Project;

namespace {

const QUuid documentId = QUuid::fromString(u"00000000-0000-4000-8000-000000000002"_s);
const QUuid categoryId = QUuid::fromString(u"c0000000-0000-4000-8000-000000000001"_s);
const QString documentFile = u"objects/00000000-0000-4000-8000-000000000002.json"_s;
const QString categoryFile = u"taxonomy/c0000000-0000-4000-8000-000000000001.json"_s;

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

// A copy of the sample project, read back from the copy, and a writer that knows nothing yet.
class FolderWriter : public ::testing::Test
{
protected:
    void SetUp() override { reset(); }

    void reset()
    {
        m_writer.forget();
        ASSERT_TRUE(QDir(folder()).removeRecursively());
        copyFolder(everythingFolder(), folder());
        auto read = readProjectFolder(folder());
        ASSERT_TRUE(read) << read.error().toStdString();
        m_project = std::move(read).value();
    }

    QString folder() const { return m_dir.filePath(u"project"_s); }

    FolderWriteReport write()
    {
        auto report = m_writer.write(folder(), *m_project);
        EXPECT_TRUE(report) << report.error().toStdString();
        return report ? *report : FolderWriteReport();
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Project> m_project;
    ProjectFolderWriter m_writer;
};

TEST_F(FolderWriter, WritesOnlyWhatChangedSinceTheProjectWasRead)
{
    const QUuid newId = QUuid::fromString(u"0b000000-0000-4000-8000-000000000001"_s);
    struct Case
    {
        const char *name;
        std::function<void(Project &)> change;
        QStringList expected;
    };
    const Case cases[] = {
        {"nothing", [](Project &) {}, {}},
        {"an object's field",
         [](Project &p) { p.objectAs<fb::core::Document>(documentId)->setTitle(u"Landfall"_s); },
         {documentFile}},
        {"a category's name",
         [](Project &p) { p.categories().setName(categoryId, u"Cast"_s); },
         {categoryFile}},
        {"a project setting", [](Project &p) { p.setName(u"Renamed"_s); }, {u"project.json"_s}},
        {"a new object",
         [&](Project &p) { p.addObject(std::make_unique<fb::core::Task>(u"Plan"_s, newId)); },
         {u"objects/0b000000-0000-4000-8000-000000000001.json"_s}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        reset();
        m_writer.assumeOnDisk(*m_project);
        c.change(*m_project);
        const FolderWriteReport report = write();
        EXPECT_EQ(sorted(report.written.keys()), c.expected);
        EXPECT_TRUE(report.removed.isEmpty());
        const QMap<QString, QByteArray> onDisk = folderFiles(folder());
        for (auto it = report.written.cbegin(); it != report.written.cend(); ++it)
            EXPECT_EQ(onDisk.value(it.key()), it.value());
    }
}

TEST_F(FolderWriter, SkipsFilesWhoseBytesWouldNotChange)
{
    EXPECT_EQ(write().written.size(), 20);
    EXPECT_TRUE(write().written.isEmpty());

    auto *document = m_project->objectAs<fb::core::Document>(documentId);
    document->setTitle(document->title());
    m_project->setName(m_project->name());
    const FolderWriteReport report = write();
    EXPECT_TRUE(report.written.isEmpty());
    EXPECT_TRUE(report.removed.isEmpty());

    document->setTitle(u"Landfall"_s);
    EXPECT_EQ(write().written.keys(), QStringList{documentFile});
}

TEST_F(FolderWriter, WritesEverythingAgainAfterForgetting)
{
    write();
    m_writer.forget();
    const FolderWriteReport report = write();
    EXPECT_EQ(report.written.size(), 20);
    EXPECT_EQ(folderFiles(folder()), folderFiles(everythingFolder()));
}

TEST_F(FolderWriter, RemovesTheFilesOfWhatLeftTheModel)
{
    struct Case
    {
        const char *name;
        bool toldWhatIsOnDisk;
        bool category;
    };
    const Case cases[] = {
        {"object, fresh writer", false, false},
        {"object, after assumeOnDisk", true, false},
        {"category, fresh writer", false, true},
        {"category, after assumeOnDisk", true, true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        reset();
        writeFile(QDir(folder()).filePath(u"objects/notes.txt"_s), "kept");
        if (c.toldWhatIsOnDisk)
            m_writer.assumeOnDisk(*m_project);
        if (c.category)
            ASSERT_TRUE(m_project->categories().take(categoryId));
        else
            ASSERT_TRUE(m_project->takeObject(documentId));
        const QString removedFile = c.category ? categoryFile : documentFile;

        const FolderWriteReport report = write();
        EXPECT_EQ(report.removed, QStringList{removedFile});
        QMap<QString, QByteArray> expected = folderFiles(everythingFolder());
        expected.remove(removedFile);
        expected.insert(u"objects/notes.txt"_s, "kept");
        EXPECT_EQ(folderFiles(folder()), expected);
        EXPECT_EQ(report.written.size(), c.toldWhatIsOnDisk ? 0 : 19);
        EXPECT_TRUE(write().removed.isEmpty());
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
         u"Cannot write file: {dir}/project/objects/00000000-0000-4000-8000-000000000001.json"_s},
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
        const auto report = writer.write(dir.filePath(c.folder), project);
        ASSERT_FALSE(report);
        EXPECT_EQ(report.error(),
                  QDir::toNativeSeparators(QString(c.expected).replace(u"{dir}"_s, dir.path())));
        EXPECT_FALSE(QFileInfo::exists(dir.filePath(c.folder + u"/project.json"_s)));
    }
}

} // namespace
