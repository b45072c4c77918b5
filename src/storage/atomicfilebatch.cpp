#include "storage/atomicfilebatch.h"

#include "storage/storagemessages.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <cerrno>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QString temporarySuffix = u".saving"_s;
const QString journalName = u".fablery-mcp-journal"_s;

QString cannotWrite(const QString &path)
{
    return u"Cannot write file: %1"_s.arg(QDir::toNativeSeparators(path));
}

QString failedToWrite(const QString &path)
{
    return u"Failed to write file: %1"_s.arg(QDir::toNativeSeparators(path));
}

QByteArray encoded(const QString &path)
{
    return QFile::encodeName(path);
}

bool writeAll(int fd, const QByteArray &bytes)
{
    const char *data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, data, size_t(left));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        left -= written;
    }
    return true;
}

// Brings the data of the given files to the disk. One file is flushed on its own; many are
// flushed with their file system in one go (Linux), which the disk does in one journal commit.
bool flushToDisk(const QStringList &paths)
{
#ifdef Q_OS_LINUX
    if (paths.size() > 1) {
        const int fd = ::open(encoded(paths.first()).constData(), O_RDONLY | O_CLOEXEC);
        if (fd >= 0) {
            const bool synced = ::syncfs(fd) == 0;
            ::close(fd);
            if (synced)
                return true;
        }
    }
#endif
    for (const QString &path : paths) {
        const int fd = ::open(encoded(path).constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            return false;
        const bool synced = ::fsync(fd) == 0;
        ::close(fd);
        if (!synced)
            return false;
    }
    return true;
}

// "<target>.<pid>-<counter>.saving": a name no other writer uses, telling which process made it.
QString temporaryNameFor(const QString &path)
{
    static quint64 counter = 0;
    return u"%1.%2-%3%4"_s.arg(path, QString::number(::getpid()), QString::number(++counter),
                               temporarySuffix);
}

qint64 stagingProcess(const QString &name)
{
    const QString stem = name.chopped(temporarySuffix.size());
    const QString tag = stem.mid(stem.lastIndexOf(u'.') + 1);
    bool ok = false;
    const qint64 pid = tag.section(u'-', 0, 0).toLongLong(&ok);
    return ok ? pid : -1;
}

bool isRunning(qint64 pid)
{
    return pid > 0 && (::kill(pid_t(pid), 0) == 0 || errno == EPERM);
}

// Writes a small file through a temporary and a rename, flushed, so it is whole or absent.
bool writeDurably(const QString &path, const QByteArray &bytes)
{
    const QString temporary = temporaryNameFor(path);
    const int fd = ::open(encoded(temporary).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                          0666);
    if (fd < 0)
        return false;
    const bool written = writeAll(fd, bytes) && ::fsync(fd) == 0;
    if (::close(fd) != 0 || !written
        || ::rename(encoded(temporary).constData(), encoded(path).constData()) != 0) {
        QFile::remove(temporary);
        return false;
    }
    return syncFolder(QFileInfo(path).absolutePath());
}

std::optional<QByteArray> digestOfFile(const QString &path)
{
    const Result<std::optional<FileContents>> read = readFileContents(path);
    if (!read || !*read)
        return std::nullopt;
    return journalDigest((*read)->bytes);
}

// Whether the target is still what the journal says it was before the batch.
bool isAsBeforeTheBatch(const QString &target, const QByteArray &sha1Before)
{
    const std::optional<QByteArray> now = digestOfFile(target);
    if (sha1Before.isEmpty())
        return !now && !QFileInfo::exists(target);
    return now && *now == sha1Before;
}

} // namespace

QByteArray journalDigest(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex();
}

void removeAbandonedTemporaries(const QString &folder)
{
    QStringList folders{folder};
    const QDir root(folder);
    for (const QString &child : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        folders.append(root.filePath(child));
    // Listed without a name filter: QDir's wildcard matching costs more than the whole check
    // in a folder of thousands of objects.
    for (const QString &path : std::as_const(folders)) {
        QDirIterator it(path, QDir::Files | QDir::Hidden);
        while (it.hasNext()) {
            it.next();
            if (it.fileName().endsWith(temporarySuffix) && !isRunning(stagingProcess(it.fileName())))
                QFile::remove(it.filePath());
        }
    }
}

void recoverInterruptedBatch(const QString &folder)
{
    const QString journalPath = QDir(folder).filePath(journalName);
    QFile file(journalPath);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QJsonObject journal = QJsonDocument::fromJson(file.readAll()).object();
    file.close();
    const qint64 owner = journal.value("process"_L1).toInteger(-1);
    if (owner != ::getpid() && isRunning(owner))
        return;

    const QDir root(folder);
    QSet<QString> touchedFolders;
    for (const QJsonValue &value : journal.value("operations"_L1).toArray()) {
        const QJsonObject operation = value.toObject();
        const QString target = root.filePath(operation.value("target"_L1).toString());
        const QString staged = operation.value("staged"_L1).toString();
        const QByteArray before = operation.value("before"_L1).toString().toLatin1();
        if (operation.value("target"_L1).toString().isEmpty())
            continue;
        touchedFolders.insert(QFileInfo(target).absolutePath());
        if (staged.isEmpty()) {
            if (QFileInfo::exists(target) && isAsBeforeTheBatch(target, before))
                QFile::remove(target);
            continue;
        }
        const QString temporary = root.filePath(staged);
        if (!QFileInfo::exists(temporary))
            continue; // renamed before the crash
        if (isAsBeforeTheBatch(target, before))
            ::rename(encoded(temporary).constData(), encoded(target).constData());
        else
            QFile::remove(temporary);
    }
    for (const QString &touched : std::as_const(touchedFolders))
        syncFolder(touched);
    QFile::remove(journalPath);
}

AtomicFileBatch::~AtomicFileBatch()
{
    discard();
}

void AtomicFileBatch::discard()
{
    for (qsizetype i = m_completed; i < m_operations.size(); ++i) {
        if (!m_operations.at(i).temporary.isEmpty())
            QFile::remove(m_operations.at(i).temporary);
    }
    m_operations.clear();
}

Result<void> AtomicFileBatch::stage(const QString &path, const QByteArray &bytes,
                                    const std::optional<TargetExpectation> &expected)
{
    // A target that is not a plain file (a folder in its place) could never be replaced.
    if (const QFileInfo target(path); target.exists() && !target.isFile())
        return makeError(cannotWrite(path));
    const QString temporary = temporaryNameFor(path);
    const int fd = ::open(encoded(temporary).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                          0666);
    if (fd < 0)
        return makeError(cannotWrite(path));
    m_operations.append({path, temporary, expected});
    const bool written = writeAll(fd, bytes);
    if (::close(fd) != 0 || !written)
        return makeError(failedToWrite(path));
    return {};
}

void AtomicFileBatch::stageRemoval(const QString &path, const TargetExpectation &expected)
{
    m_operations.append({path, QString(), expected});
}

std::optional<QString> AtomicFileBatch::firstConflict() const
{
    for (const Operation &operation : m_operations) {
        if (!operation.expected)
            continue;
        const std::optional<FileStatus> now = fileStatus(operation.target);
        const std::optional<FileStatus> &then = operation.expected->status;
        if (now == then)
            continue;
        if (!then)
            return createdOnDiskMessage(operation.target);
        if (!now)
            return removedOnDiskMessage(operation.target);
        return changedOnDiskMessage(operation.target);
    }
    return std::nullopt;
}

Result<QString> AtomicFileBatch::writeJournal(const QString &journalFolder) const
{
    const QDir root(journalFolder);
    QJsonArray operations;
    for (const Operation &operation : m_operations) {
        QJsonObject entry{{"target"_L1, root.relativeFilePath(operation.target)},
                          {"before"_L1, operation.expected
                                            ? QString::fromLatin1(operation.expected->sha1)
                                            : QString()}};
        if (!operation.temporary.isEmpty())
            entry.insert("staged"_L1, root.relativeFilePath(operation.temporary));
        operations.append(entry);
    }
    const QJsonObject journal{{"process"_L1, qint64(::getpid())}, {"operations"_L1, operations}};
    const QString path = root.filePath(journalName);
    if (!writeDurably(path, QJsonDocument(journal).toJson(QJsonDocument::Compact)))
        return makeError(cannotWrite(path));
    return path;
}

SaveOutcome AtomicFileBatch::commit(const QString &journalFolder)
{
    m_completed = 0;
    if (m_operations.isEmpty())
        return SaveOutcome::saved();

    QStringList temporaries;
    for (const Operation &operation : std::as_const(m_operations)) {
        if (!operation.temporary.isEmpty())
            temporaries.append(operation.temporary);
    }
    if (!temporaries.isEmpty() && !flushToDisk(temporaries)) {
        const QString target = m_operations.first().target;
        discard();
        return SaveOutcome::failed(failedToWrite(target));
    }

    QString journal;
    if (!journalFolder.isEmpty() && m_operations.size() > 1) {
        const Result<QString> written = writeJournal(journalFolder);
        if (!written) {
            discard();
            return SaveOutcome::failed(written.error());
        }
        journal = *written;
    }

    // The last look before anything is replaced: another program's save since the caller read
    // the files wins, and this commit is refused.
    if (const std::optional<QString> conflict = firstConflict()) {
        discard();
        if (!journal.isEmpty())
            QFile::remove(journal);
        return SaveOutcome::refused(*conflict);
    }

    QSet<QString> touchedFolders;
    for (const Operation &operation : std::as_const(m_operations)) {
        touchedFolders.insert(QFileInfo(operation.target).absolutePath());
        const bool done = operation.temporary.isEmpty()
                              ? (::unlink(encoded(operation.target).constData()) == 0
                                 || errno == ENOENT)
                              : ::rename(encoded(operation.temporary).constData(),
                                         encoded(operation.target).constData())
                                    == 0;
        if (!done) {
            const QString target = operation.target;
            discard();
            if (!journal.isEmpty())
                QFile::remove(journal);
            return SaveOutcome::failed(failedToWrite(target));
        }
        ++m_completed;
    }
    // The renames reach the disk before the journal goes, so a crash can never leave a torn
    // change without the journal that completes it.
    for (const QString &folder : std::as_const(touchedFolders))
        syncFolder(folder);
    if (!journal.isEmpty())
        QFile::remove(journal);
    m_operations.clear();
    return SaveOutcome::saved();
}

} // namespace fb::app
