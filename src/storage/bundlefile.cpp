#include "storage/bundlefile.h"

#include "storage/sha256.h"
#include "storage/storagemessages.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QString temporarySuffix = u".saving"_s;

// ".<bundle name>.<pid>-<counter>.saving" in the bundle's folder: hidden, so a crash leaves
// nothing the writer sees in their folder, and telling which process made it.
QString temporaryFor(const QString &bundlePath)
{
    static quint64 counter = 0;
    const QFileInfo bundle(bundlePath);
    return bundle.dir().filePath(u".%1.%2-%3%4"_s.arg(bundle.fileName(), QString::number(::getpid()),
                                                      QString::number(++counter), temporarySuffix));
}

QString cannotWrite(const QString &path)
{
    return u"Could not write the project file: %1"_s.arg(QDir::toNativeSeparators(path));
}

} // namespace

Result<OpenedBundle> openBundleFile(const QString &bundlePath)
{
    auto file = std::make_unique<QFile>(bundlePath);
    struct stat info;
    if (!file->open(QIODevice::ReadOnly) || ::fstat(file->handle(), &info) != 0
        || !S_ISREG(info.st_mode))
        return makeError(u"Cannot read file: %1"_s.arg(QDir::toNativeSeparators(bundlePath)));
    return OpenedBundle{std::move(file), fileStatusOf(info)};
}

QString sha256HexOf(QFile &file)
{
    Sha256 digest;
    file.seek(0);
    while (!file.atEnd()) {
        const QByteArray piece = file.read(1 << 20);
        if (piece.isEmpty())
            break;
        digest.addData(piece);
    }
    return QString::fromLatin1(digest.result().toHex());
}

SaveOutcome writeBundleFile(const QString &bundlePath,
                            const std::function<bool(QIODevice &out)> &produce,
                            const std::optional<FileStatus> &expected, FileStatus *written)
{
    const QString temporary = temporaryFor(bundlePath);
    const QByteArray temporaryName = QFile::encodeName(temporary);
    const int fd = ::open(temporaryName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0)
        return SaveOutcome::failed(cannotWrite(bundlePath));
    bool ok = false;
    {
        QFile out;
        ok = out.open(fd, QIODevice::WriteOnly, QFileDevice::DontCloseHandle) && produce(out)
             && out.flush();
    }
    struct stat info;
    ok = ok && ::fsync(fd) == 0 && ::fstat(fd, &info) == 0;
    ok = ::close(fd) == 0 && ok;
    if (!ok) {
        ::unlink(temporaryName.constData());
        return SaveOutcome::failed(cannotWrite(bundlePath));
    }
    // The last look before the bundle is replaced: another program's save wins.
    if (fileStatus(bundlePath) != expected) {
        ::unlink(temporaryName.constData());
        return SaveOutcome::refused(bundleChangedOnDiskMessage(bundlePath));
    }
    if (::rename(temporaryName.constData(), QFile::encodeName(bundlePath).constData()) != 0) {
        ::unlink(temporaryName.constData());
        return SaveOutcome::failed(cannotWrite(bundlePath));
    }
    syncFolder(QFileInfo(bundlePath).absolutePath());
    // The status to remember is the new file's own. Should another program have replaced the
    // bundle in the instant since the rename, the inode tells, and that program's file is not
    // mistaken for this one: the next check sees a change.
    const FileStatus ours = fileStatusOf(info);
    const std::optional<FileStatus> now = fileStatus(bundlePath);
    if (written)
        *written = now && now->inode == ours.inode && now->device == ours.device ? *now : ours;
    return SaveOutcome::saved();
}

void removeAbandonedBundleTemporaries(const QString &bundlePath)
{
    const QFileInfo bundle(bundlePath);
    const QString prefix = u"."_s + bundle.fileName() + u'.';
    QDirIterator it(bundle.absolutePath(), QDir::Files | QDir::Hidden);
    while (it.hasNext()) {
        it.next();
        const QString name = it.fileName();
        if (!name.startsWith(prefix) || !name.endsWith(temporarySuffix))
            continue;
        bool ok = false;
        const qint64 pid = name.mid(prefix.size()).section(u'-', 0, 0).toLongLong(&ok);
        if (ok && pid > 0 && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH)
            QFile::remove(it.filePath());
    }
}

bool isReadOnly(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat info;
    if (::stat(name.constData(), &info) != 0)
        return false;
    return ::access(name.constData(), W_OK) != 0 || (info.st_mode & 0222) == 0;
}

} // namespace fb::app
