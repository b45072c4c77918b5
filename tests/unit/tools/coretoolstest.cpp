#include "support/toolfixture.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

using fb::test::ToolFixture;

namespace {

class CoreTools : public ToolFixture
{
protected:
    // Puts a plain file where the objects folder belongs, so that every save fails.
    QString blockSaving()
    {
        const QString objects = QDir(workspace().folder()).filePath(u"objects"_s);
        EXPECT_TRUE(QDir(objects).removeRecursively());
        QFile blocker(objects);
        EXPECT_TRUE(blocker.open(QIODevice::WriteOnly));
        return u"Cannot create project folder: %1"_s.arg(QDir::toNativeSeparators(objects));
    }
};

TEST_F(CoreTools, KeepsAChangeThatCouldNotBeSavedUndoableButUnlogged)
{
    const QString saveError = blockSaving();
    EXPECT_EQ(fails(u"create_document"_s, {{u"title"_s, u"Coda"_s}}),
              u"Created the prose document 'Coda' at the top level (0 characters). The "
              "change is applied in the open project and can be undone, but saving "
              "failed: "_s
                  + saveError);
    EXPECT_EQ(ok(u"get_recent_changes"_s), u"No changes this session."_s);
    // The change is in memory: the title is taken.
    EXPECT_TRUE(fails(u"create_document"_s, {{u"title"_s, u"coda"_s}})
                    .startsWith(u"A document titled 'coda' already exists"_s));
    EXPECT_EQ(fails(u"save_project"_s), saveError);
    // Undoing the change that never reached the disk leaves nothing to write.
    EXPECT_EQ(ok(u"undo_last"_s), u"Undid the last change."_s);
    EXPECT_EQ(fails(u"undo_last"_s), u"Nothing to undo."_s);
}

TEST_F(CoreTools, ListsTheSessionsChangesOldestFirst)
{
    ok(u"append_to_document"_s, {{u"title"_s, u"Dust"_s}, {u"text"_s, u"More."_s}});
    ok(u"update_document"_s, {{u"title"_s, u"Dust"_s}, {u"status"_s, u"Final"_s}});
    EXPECT_EQ(ok(u"undo_last"_s), u"Undid the last change."_s);
    EXPECT_EQ(ok(u"save_project"_s), u"Project saved."_s);
    EXPECT_EQ(ok(u"get_recent_changes"_s),
              u"Appended 1 word(s) to 'Dust'.\nUpdated 'Dust': status set to 'Final'.\n"
              "Undid the last change."_s);
}

TEST_F(CoreTools, RefusesToBackUpAFolderOfHiddenFilesOnly)
{
    const QDir root(workspace().folder());
    for (const QString &entry : root.entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        QFileInfo(root.filePath(entry)).isDir() ? QDir(root.filePath(entry)).removeRecursively()
                                                : QFile::remove(root.filePath(entry));
    }
    QFile hidden(root.filePath(u".settings"_s));
    ASSERT_TRUE(hidden.open(QIODevice::WriteOnly));
    hidden.close();
    EXPECT_EQ(fails(u"backup_project"_s), u"Could not create a backup of the project."_s);
}

} // namespace
