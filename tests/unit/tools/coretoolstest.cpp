#include "support/toolfixture.h"

#include <QDir>
#include <QFile>

using fb::test::ToolFixture;

namespace {

class CoreTools : public ToolFixture
{
protected:
    // Puts a plain file where the objects folder belongs, so that every save fails.
    QString blockSaving()
    {
        const QString objects = QDir(workspace().folder()).filePath(QStringLiteral("objects"));
        EXPECT_TRUE(QDir(objects).removeRecursively());
        QFile blocker(objects);
        EXPECT_TRUE(blocker.open(QIODevice::WriteOnly));
        return QStringLiteral("Cannot create project folder: %1").arg(QDir::toNativeSeparators(objects));
    }
};

TEST_F(CoreTools, KeepsAChangeThatCouldNotBeSavedUndoableButUnlogged)
{
    const QString saveError = blockSaving();
    EXPECT_EQ(fails(QStringLiteral("create_document"), {{QStringLiteral("title"), QStringLiteral("Coda")}}),
              QStringLiteral("Created the prose document 'Coda' at the top level (0 characters). The "
                             "change is applied in the open project and can be undone, but saving "
                             "failed: ") + saveError);
    EXPECT_EQ(ok(QStringLiteral("get_recent_changes")), QStringLiteral("No changes this session."));
    // The change is in memory: the title is taken.
    EXPECT_TRUE(fails(QStringLiteral("create_document"), {{QStringLiteral("title"), QStringLiteral("coda")}})
                    .startsWith(QStringLiteral("A document titled 'coda' already exists")));
    EXPECT_EQ(fails(QStringLiteral("save_project")), saveError);
    // Undoing the change that never reached the disk leaves nothing to write.
    EXPECT_EQ(ok(QStringLiteral("undo_last")), QStringLiteral("Undid the last change."));
    EXPECT_EQ(fails(QStringLiteral("undo_last")), QStringLiteral("Nothing to undo."));
}

TEST_F(CoreTools, ListsTheSessionsChangesOldestFirst)
{
    ok(QStringLiteral("append_to_document"), {{QStringLiteral("title"), QStringLiteral("Dust")},
                                              {QStringLiteral("text"), QStringLiteral("More.")}});
    ok(QStringLiteral("update_document"), {{QStringLiteral("title"), QStringLiteral("Dust")},
                                           {QStringLiteral("status"), QStringLiteral("Final")}});
    EXPECT_EQ(ok(QStringLiteral("undo_last")), QStringLiteral("Undid the last change."));
    EXPECT_EQ(ok(QStringLiteral("save_project")), QStringLiteral("Project saved."));
    EXPECT_EQ(ok(QStringLiteral("get_recent_changes")),
              QStringLiteral("Appended 1 word(s) to 'Dust'.\nUpdated 'Dust': status set to 'Final'.\n"
                             "Undid the last change."));
}

TEST_F(CoreTools, RefusesToBackUpAFolderOfHiddenFilesOnly)
{
    const QDir root(workspace().folder());
    for (const QString &entry : root.entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        QFileInfo(root.filePath(entry)).isDir() ? QDir(root.filePath(entry)).removeRecursively()
                                                : QFile::remove(root.filePath(entry));
    }
    QFile hidden(root.filePath(QStringLiteral(".settings")));
    ASSERT_TRUE(hidden.open(QIODevice::WriteOnly));
    hidden.close();
    EXPECT_EQ(fails(QStringLiteral("backup_project")),
              QStringLiteral("Could not create a backup of the project."));
}

} // namespace
