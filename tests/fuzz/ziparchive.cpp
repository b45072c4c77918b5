// Fuzzes the ZIP reader and the extraction of archives to disk: one input is an archive. Its
// directory is read and every entry decoded in memory, then the archive is unpacked into a
// fresh folder. Whatever the archive holds, nothing may be written beside that folder, a
// refused archive must leave no trace, and an unpacked file must hold what its entry decodes to.

#include "fuzzcheck.h"
#include "storage/folderarchive.h"
#include "storage/zip/zipreader.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>

using namespace Qt::StringLiterals;

using namespace fb;
using namespace fb::app;

namespace {

// The most an input may unpack to: a small archive can still declare gigabytes, and writing
// them would only slow the search down.
constexpr quint64 kMaxUnpacked = 16 * 1024 * 1024;

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                  | QDir::NoDotAndDotDot);
}

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray("<unreadable>");
    return file.readAll();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView archive(reinterpret_cast<const char *>(data), qsizetype(size));
    const Result<QList<ZipDirectoryEntry>> directory = readZipDirectory(archive);
    QList<std::pair<QString, QByteArray>> decoded;
    if (directory) {
        for (const ZipDirectoryEntry &entry : *directory) {
            const Result<QByteArray> bytes = extractZipEntry(archive, entry);
            if (bytes)
                decoded.append({entry.name, *bytes});
        }
    }

    QTemporaryDir parent;
    FB_FUZZ_CHECK(parent.isValid());
    const QString folder = parent.filePath(u"unpacked"_s);
    UnpackLimits limits;
    limits.maxTotalSize = kMaxUnpacked;
    const Result<void> unpacked = extractArchive(archive, folder, limits);

    if (!unpacked) {
        FB_FUZZ_CHECK(entriesOf(parent.path()).isEmpty());
        return 0;
    }
    FB_FUZZ_CHECK(directory.hasValue());
    FB_FUZZ_CHECK(entriesOf(parent.path()) == QStringList{u"unpacked"_s});
    for (const auto &[name, bytes] : decoded) {
        if (!name.endsWith(u'/'))
            FB_FUZZ_CHECK(fileBytes(folder + u'/' + name) == bytes);
    }
    return 0;
}
