// Another program works on the project while the server serves calls: it adds, rewrites
// (atomically and in place), deletes and half-writes its own object files, or saves the whole
// bundle. Afterwards every outside write that no later outside write replaced is on disk as the
// other program left it, and so is every change the server acknowledged.
//
// FB_OUTSIDE_SECONDS sets how long the two work side by side (a short run by default).

#include "core/document.h"
#include "core/ids.h"
#include "core/task.h"
#include "pipedserver.h"
#include "storage/folderarchive.h"
#include "storage/storagepaths.h"
#include "storage/zip/zipreader.h"
#include "storage/zip/zipwriter.h"
#include "support/parameternames.h"
#include "support/serverprocess.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>
#include <QUuid>

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <random>
#include <thread>

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using fb::test::PipedServer;
using fb::test::ScratchProject;

namespace {

int environmentNumber(const char *name, int fallback)
{
    bool ok = false;
    const int value = qEnvironmentVariableIntValue(name, &ok);
    return ok ? value : fallback;
}

QByteArray taskFile(const QUuid &id, int version)
{
    const QJsonObject task{{u"id"_s, fb::core::idText(id)},
                           {u"type"_s, u"task"_s},
                           {u"title"_s, u"Outside %1"_s.arg(fb::core::idText(id).left(8))},
                           {u"description"_s, u"version %1"_s.arg(version)},
                           {u"board"_s, u"Outside"_s}};
    return QJsonDocument(task).toJson();
}

void writeInPlace(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
}

void writeByRename(const QString &path, const QByteArray &bytes)
{
    const QString temporary = path + u".outside-tmp"_s;
    writeInPlace(temporary, bytes);
    ::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData());
}

// The other program, on a folder project: it owns the task files it creates and never touches
// anything else. `expected` ends as what each of its files must hold (empty: removed).
void outsideFolderWriter(const QString &folder, std::atomic<bool> &stop, unsigned seed,
                         std::map<QString, QByteArray> &expected)
{
    std::mt19937 random(seed);
    std::vector<QUuid> owned;
    int version = 0;
    while (!stop) {
        const int action = std::uniform_int_distribution<int>(0, 4)(random);
        QThread::msleep(std::uniform_int_distribution<int>(1, 25)(random));
        if (owned.empty() || action == 0) {
            const QUuid id = QUuid::createUuid();
            const QString path = QDir(folder).filePath(
                u"objects/%1.json"_s.arg(fb::core::idText(id)));
            const QByteArray bytes = taskFile(id, ++version);
            writeByRename(path, bytes);
            owned.push_back(id);
            expected[path] = bytes;
            continue;
        }
        const std::size_t pick = std::uniform_int_distribution<std::size_t>(0, owned.size()
                                                                                   - 1)(random);
        const QUuid id = owned[pick];
        const QString path = QDir(folder).filePath(u"objects/%1.json"_s.arg(fb::core::idText(id)));
        const QByteArray bytes = taskFile(id, ++version);
        switch (action) {
        case 1:
            writeByRename(path, bytes);
            break;
        case 2:
            writeInPlace(path, bytes);
            break;
        case 3: {
            // Half a file for a moment, as a slow or interrupted writer leaves it.
            writeInPlace(path, bytes.left(bytes.size() / 2));
            QThread::msleep(std::uniform_int_distribution<int>(1, 40)(random));
            writeInPlace(path, bytes);
            break;
        }
        default:
            QFile::remove(path);
            owned.erase(owned.begin() + qsizetype(pick));
            expected[path] = QByteArray();
            continue;
        }
        expected[path] = bytes;
    }
}

// The other program, on a bundle: it reads the bundle, puts one task of its own in or out, and
// saves the whole bundle through a temporary file. Like a careful desktop application it only
// replaces the bundle when the bundle is still the one it read; the instant of that check and
// the rename is shielded with the servers' own lock, so the test itself never loses a save.
void outsideBundleWriter(const QString &bundle, const QString &lockFile, std::atomic<bool> &stop,
                         unsigned seed, std::map<QString, QByteArray> &expected)
{
    std::mt19937 random(seed);
    int version = 0;
    std::vector<QString> owned;
    while (!stop) {
        QThread::msleep(std::uniform_int_distribution<int>(5, 40)(random));
        QFile in(bundle);
        if (!in.open(QIODevice::ReadOnly))
            continue;
        struct stat before;
        ::fstat(in.handle(), &before);
        const QByteArray bytes = in.readAll();
        in.close();
        const auto directory = fb::app::readZipDirectory(bytes);
        if (!directory)
            continue;
        std::map<QString, QByteArray> entries;
        for (const auto &entry : *directory) {
            if (const auto data = fb::app::extractZipEntry(bytes, entry))
                entries[entry.name] = *data;
        }
        QString name;
        QByteArray content;
        if (owned.empty() || std::uniform_int_distribution<int>(0, 3)(random) != 0) {
            const QUuid id = QUuid::createUuid();
            name = u"objects/%1.json"_s.arg(fb::core::idText(id));
            content = taskFile(id, ++version);
            entries[name] = content;
        } else {
            name = owned.back();
            entries.erase(name);
        }
        QList<fb::app::ZipEntry> packed;
        for (const auto &[entryName, data] : entries)
            packed.append({entryName, data});
        const QString temporary = bundle + u".outside-tmp"_s;
        writeInPlace(temporary, fb::app::writeZip(packed));

        const int lock = ::open(QFile::encodeName(lockFile).constData(), O_RDWR | O_CREAT, 0644);
        ::flock(lock, LOCK_EX);
        struct stat now;
        const bool unchanged = ::stat(QFile::encodeName(bundle).constData(), &now) == 0
                               && now.st_ino == before.st_ino
                               && now.st_mtim.tv_nsec == before.st_mtim.tv_nsec
                               && now.st_mtim.tv_sec == before.st_mtim.tv_sec
                               && now.st_size == before.st_size;
        if (unchanged)
            ::rename(QFile::encodeName(temporary).constData(),
                     QFile::encodeName(bundle).constData());
        ::flock(lock, LOCK_UN);
        ::close(lock);
        QFile::remove(temporary);
        if (!unchanged)
            continue;
        expected[name] = content;
        if (content.isEmpty())
            owned.pop_back();
        else
            owned.push_back(name);
    }
}

class OutsideWriter : public ::testing::TestWithParam<bool>
{
protected:
    bool isBundle() const { return GetParam(); }
};

TEST_P(OutsideWriter, LosesNeitherTheOtherProgramsWorkNorTheServers)
{
    ScratchProject scratch(u"projects/novel"_s);
    QTemporaryDir dataHome;
    QString project = scratch.path();
    if (isBundle()) {
        project = scratch.root() + u"/outside.fablery"_s;
        QFile bundle(project);
        ASSERT_TRUE(bundle.open(QIODevice::WriteOnly));
        bundle.write(*fb::app::packFolder(scratch.path()));
    }
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    const int seconds = environmentNumber("FB_OUTSIDE_SECONDS", 6);

    PipedServer server(project, dataHome.path());
    ASSERT_FALSE(server.call(u"get_recent_changes"_s).text.isEmpty());
    std::atomic<bool> stop = false;
    std::map<QString, QByteArray> outside;
    const QString lockFile = QDir(dataHome.path())
                                 .filePath(u"Tallowick Works/Fablery MCP/locks/%1.lock"_s.arg(
                                     fb::app::workingCopyName(
                                         QFileInfo(project).absoluteFilePath())));
    std::thread other([&] {
        if (isBundle())
            outsideBundleWriter(project, lockFile, stop, seed, outside);
        else
            outsideFolderWriter(project, stop, seed, outside);
    });

    // The server's own changes: documents it creates and then retitles the status of.
    std::map<QString, QString> acknowledged; // title -> status
    std::mt19937 random(seed + 1);
    const QDeadlineTimer deadline(seconds * 1000);
    int created = 0;
    int refused = 0;
    while (!deadline.hasExpired()) {
        if (acknowledged.empty() || std::uniform_int_distribution<int>(0, 2)(random) == 0) {
            const QString title = u"Server %1"_s.arg(++created);
            const auto answer = server.call(u"create_document"_s, {{u"title"_s, title}});
            ASSERT_FALSE(answer.text.isEmpty()) << "the server stopped answering";
            if (!answer.isError)
                acknowledged[title] = QString();
            else
                ++refused;
            continue;
        }
        auto it = acknowledged.begin();
        std::advance(it, std::uniform_int_distribution<std::size_t>(0, acknowledged.size()
                                                                           - 1)(random));
        const QString status = u"Pass %1"_s.arg(created);
        const auto answer = server.call(u"update_document"_s,
                                        {{u"title"_s, it->first}, {u"status"_s, status}});
        ASSERT_FALSE(answer.text.isEmpty()) << "the server stopped answering";
        if (!answer.isError)
            it->second = status;
        else
            ++refused;
    }
    stop = true;
    other.join();
    // One last call adopts whatever the other program left.
    ASSERT_FALSE(server.call(u"get_recent_changes"_s).text.isEmpty());
    EXPECT_EQ(server.finish(), 0);
    std::printf("%d server changes acknowledged, %d refused, %zu outside files\n",
                int(acknowledged.size()), refused, outside.size());

    if (isBundle()) {
        QFile file(project);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        for (const auto &[name, content] : outside) {
            SCOPED_TRACE(name.toStdString());
            const auto entry = fb::app::extractZipEntry(bytes, name);
            if (content.isEmpty())
                EXPECT_FALSE(entry);
            else
                EXPECT_TRUE(entry && *entry == content);
        }
    } else {
        for (const auto &[path, content] : outside) {
            SCOPED_TRACE(path.toStdString());
            QFile file(path);
            if (content.isEmpty()) {
                EXPECT_FALSE(file.exists());
            } else {
                ASSERT_TRUE(file.open(QIODevice::ReadOnly));
                EXPECT_EQ(file.readAll(), content);
            }
        }
    }
    auto onDisk = fb::test::readProjectOnDisk(project);
    ASSERT_TRUE(onDisk) << onDisk.error().toStdString();
    std::map<QString, QString> found;
    for (const fb::core::Document *document : (*onDisk)->objectsOfType<fb::core::Document>())
        found[document->title()] = document->status();
    for (const auto &[title, status] : acknowledged) {
        SCOPED_TRACE(title.toStdString());
        ASSERT_TRUE(found.count(title));
        EXPECT_EQ(found[title], status);
    }
}

INSTANTIATE_TEST_SUITE_P(FolderAndBundle, OutsideWriter, ::testing::Bool(),
                         fb::test::folderOrBundle);

} // namespace
