#include "storage/workspace.h"

#include "core/document.h"
#include "core/project.h"
#include "projectfoldertestutil.h"
#include "storage/folderarchive.h"
#include "support/parameternames.h"
#include "support/printers.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using fb::app::Workspace;

namespace {

const QUuid arrivalId = QUuid::fromString(u"6f1c0a52-0000-4000-8000-000000000001"_s);
const QString arrivalFile = u"objects/6f1c0a52-0000-4000-8000-000000000001.json"_s;
const QString newcomerFile = u"objects/6f1c0a52-0000-4000-8000-0000000000ff.json"_s;
const QByteArray newcomer = R"({"id": "6f1c0a52-0000-4000-8000-0000000000ff", "type": "document",
    "title": "Written elsewhere"})";

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString retryAdvice()
{
    return u" Nothing was changed; the next call works on the project as it is on disk now, so try again."_s;
}

// The novel test project opened as a folder or as a bundle, with the means to change it the way
// another program would: file by file, or by saving a whole new bundle.
class WorkspaceSafety : public ::testing::TestWithParam<bool>
{
protected:
    bool isBundle() const { return GetParam(); }

    void SetUp() override
    {
        m_folder = m_dir.filePath(u"novel"_s);
        copyFolder(QStringLiteral(FB_TEST_DATA_DIR "/projects/novel"), m_folder);
        if (isBundle()) {
            m_bundle = m_dir.filePath(u"novel.fablery"_s);
            writeFile(m_bundle, *fb::app::packFolder(m_folder));
            auto opened
                = Workspace::openBundle(m_bundle,
                                        fb::app::StoragePaths::forBundle(m_bundle,
                                                                         u"workingcopies-mcp"_s));
            ASSERT_TRUE(opened) << opened.error().toStdString();
            m_workspace = std::move(opened).value();
        } else {
            auto opened = Workspace::openFolder(m_folder);
            ASSERT_TRUE(opened) << opened.error().toStdString();
            m_workspace = std::move(opened).value();
        }
    }

    // Another program's edit: in the folder, or in a new bundle saved over the old one.
    void editOutside(const std::function<void(const QString &folder)> &edit)
    {
        edit(m_folder);
        if (isBundle())
            writeFile(m_bundle, *fb::app::packFolder(m_folder));
    }

    QMap<QString, QByteArray> onDisk() const
    {
        return isBundle() ? QMap<QString, QByteArray>{{m_bundle, readAll(m_bundle)}}
                          : folderFiles(m_folder);
    }

    QString changedFile() const
    {
        return isBundle() ? m_bundle : QDir(m_folder).filePath(arrivalFile);
    }

    fb::core::Document &arrival()
    {
        return *m_workspace->project().objectAs<fb::core::Document>(arrivalId);
    }

    QTemporaryDir m_dir;
    QString m_folder;
    QString m_bundle;
    std::unique_ptr<Workspace> m_workspace;
};

TEST_P(WorkspaceSafety, NeverOverwritesASaveAnotherProgramMadeDuringACall)
{
    // The call has begun: outside changes were adopted, and the tool changes the model.
    ASSERT_FALSE(m_workspace->hasExternalChange());
    arrival().setTitle(u"Ours"_s);
    // Meanwhile the desktop application saves its own edit of the same document.
    editOutside([](const QString &folder) {
        writeFile(
            QDir(folder).filePath(arrivalFile),
            R"({"id": "6f1c0a52-0000-4000-8000-000000000001", "type": "document", "title": "Theirs"})");
    });
    const auto before = onDisk();

    const fb::app::SaveOutcome saved = m_workspace->save();
    EXPECT_TRUE(saved.isRefused());
    const QString expected
        = isBundle()
              ? u"Another program saved the project file %1 since this server last read it."_s
              : u"Another program changed %1 since this server last read it."_s;
    EXPECT_EQ(saved.message, expected.arg(QDir::toNativeSeparators(changedFile())) + retryAdvice());
    EXPECT_EQ(onDisk(), before);
    // The next call adopts the other program's save.
    ASSERT_TRUE(m_workspace->hasExternalChange());
    ASSERT_TRUE(m_workspace->reload());
    EXPECT_EQ(arrival().title(), u"Theirs"_s);
}

TEST_P(WorkspaceSafety, RefusesChangesWhileTheProjectCannotBeReadAndDestroysNothing)
{
    const QString brokenFile = u"objects/6f1c0a52-0000-4000-8000-0000000000fe.json"_s;
    editOutside([&](const QString &folder) {
        writeFile(QDir(folder).filePath(newcomerFile), newcomer);
        writeFile(QDir(folder).filePath(brokenFile),
                  R"({"id": "6f1c0a52-0000-4000-8000-0000000000fe", "ty)");
    });
    const auto before = onDisk();
    ASSERT_TRUE(m_workspace->hasExternalChange());
    const auto reloaded = m_workspace->reload();
    ASSERT_FALSE(reloaded);

    // Reading goes on from the last good model; changing is refused, naming the file.
    EXPECT_EQ(arrival().title(), u"Arrival"_s);
    const auto writable = m_workspace->checkWritable();
    ASSERT_FALSE(writable);
    const QString unreadable = isBundle() ? m_workspace->folder() + u'/' + brokenFile
                                          : QDir(m_folder).filePath(brokenFile);
    EXPECT_EQ(
        writable.error(),
        u"The project on disk cannot be read right now (Invalid JSON in file: %1), so no change is "
        u"made until it can: the file may be half-written by another program, or come from a "
        u"newer version. Reading tools show the project as it was last read."_s.arg(
            QDir::toNativeSeparators(unreadable)));
    arrival().setTitle(u"Ours"_s);
    EXPECT_TRUE(m_workspace->save().isRefused());
    EXPECT_EQ(onDisk(), before);
    EXPECT_FALSE(m_workspace->hasExternalChange());

    // Once the other program finishes its file, everything it wrote is adopted.
    editOutside([&](const QString &folder) { QFile::remove(QDir(folder).filePath(brokenFile)); });
    ASSERT_TRUE(m_workspace->hasExternalChange());
    ASSERT_TRUE(m_workspace->reload());
    EXPECT_TRUE(m_workspace->checkWritable());
    EXPECT_TRUE(m_workspace->project().contains(
        QUuid::fromString(u"6f1c0a52-0000-4000-8000-0000000000ff"_s)));
}

TEST_P(WorkspaceSafety, OpensAReadOnlyProjectForReadingWithoutRewritingIt)
{
    m_workspace.reset();
    const QString locked = isBundle() ? m_bundle : QDir(m_folder).filePath(u"objects"_s);
    ASSERT_EQ(::chmod(QFile::encodeName(locked).constData(), isBundle() ? 0444 : 0555), 0);
    const auto before = onDisk();
    for (int open = 0; open < 2; ++open) {
        SCOPED_TRACE(open);
        auto opened
            = isBundle()
                  ? Workspace::openBundle(m_bundle,
                                          fb::app::StoragePaths::forBundle(m_bundle,
                                                                           u"workingcopies-mcp"_s))
                  : Workspace::openFolder(m_folder);
        ASSERT_TRUE(opened) << opened.error().toStdString();
        const auto writable = (*opened)->checkWritable();
        ASSERT_FALSE(writable);
        EXPECT_EQ(writable.error(),
                  u"The project is open for reading only: %1 cannot be written. Nothing was changed."_s
                      .arg(QDir::toNativeSeparators(locked)));
        (*opened)->project().objectAs<fb::core::Document>(arrivalId)->setTitle(u"Ours"_s);
        EXPECT_TRUE((*opened)->save().isRefused());
        EXPECT_EQ(onDisk(), before);
    }
    ::chmod(QFile::encodeName(locked).constData(), 0755);
}

INSTANTIATE_TEST_SUITE_P(FolderAndBundle, WorkspaceSafety, ::testing::Bool(),
                         fb::test::folderOrBundle);

TEST(BundleWorkingCopy, NeverPacksAWorkingCopyThatDiffersFromItsBundleIntoIt)
{
    QTemporaryDir dir;
    const QString bundle = dir.filePath(u"novel.fablery"_s);
    // A bundle another ZIP tool wrote (deflated entries), which this server would pack differently.
    QFile::copy(QStringLiteral(FB_TEST_DATA_DIR "/bundles/novel-deflated.fablery"), bundle);
    const QByteArray original = readAll(bundle);
    const auto paths = fb::app::StoragePaths::forBundle(bundle, u"workingcopies-mcp"_s);
    QString folder;
    {
        auto first = Workspace::openBundle(bundle, paths);
        ASSERT_TRUE(first) << first.error().toStdString();
        folder = (*first)->folder();
    }
    // A working copy cut short (an interrupted unpacking) or edited by hand.
    QFile::remove(QDir(folder).filePath(arrivalFile));
    auto second = Workspace::openBundle(bundle, paths);
    ASSERT_TRUE(second) << second.error().toStdString();
    EXPECT_EQ(readAll(bundle), original);
    EXPECT_TRUE((*second)->project().contains(arrivalId));
    EXPECT_TRUE(QFileInfo::exists(QDir(folder).filePath(arrivalFile)));
    // The odd working copy is kept as a backup, never simply deleted.
    EXPECT_EQ(QDir(paths.backupFolder).entryList(QDir::Files).size(), 1);
}

} // namespace
