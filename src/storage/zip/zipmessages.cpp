#include "storage/zip/zipmessages.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace fb::app::zipmessage {

namespace {

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

// Sizes are shown in whole mebibytes, rounded up so that a need is never understated.
quint64 mebibytes(quint64 bytes)
{
    return bytes / 1048576 + (bytes % 1048576 != 0 ? 1 : 0);
}

QString entryDamaged(const QString &name, QStringView what)
{
    return u"The archive's entry \"%1\" %2; the archive is damaged."_s.arg(name, what);
}

} // namespace

QString tooShort()
{
    return u"The archive is too short to be a ZIP archive."_s;
}

QString noEndRecord()
{
    return u"The archive has no end of central directory record."_s;
}

QString damagedZip64EndRecord()
{
    return u"The archive's ZIP64 end of central directory record is damaged."_s;
}

QString headerWithoutSignature()
{
    return u"A central directory header has no signature."_s;
}

QString headerPastEnd()
{
    return u"A central directory header runs past the end of the archive."_s;
}

QString unreadable()
{
    return u"The archive could not be read from the disk."_s;
}

QString notWritten()
{
    return u"The archive could not be written."_s;
}

QString duplicateEntry(const QString &name)
{
    return u"The archive holds two entries named \"%1\"."_s.arg(name);
}

QString missingZip64Sizes(const QString &name)
{
    return u"The archive's directory lacks the ZIP64 sizes of the entry \"%1\"; the archive is "
           u"damaged."_s.arg(name);
}

QString missingEntry(const QString &name)
{
    return u"The archive has no entry named \"%1\"."_s.arg(name);
}

QString unsupportedMethod(const QString &name)
{
    return u"The archive's entry \"%1\" uses a compression method other than stored or deflate; "
           u"it cannot be read."_s.arg(name);
}

QString encrypted(const QString &name)
{
    return u"The archive's entry \"%1\" is encrypted; it cannot be read."_s.arg(name);
}

QString damagedHeader(const QString &name)
{
    return entryDamaged(name, u"has a damaged header");
}

QString headerDisagrees(const QString &name)
{
    return entryDamaged(name, u"has a header that disagrees with the archive's directory");
}

QString dataPastEnd(const QString &name)
{
    return entryDamaged(name, u"runs past the end of the archive");
}

QString notDecompressible(const QString &name)
{
    return entryDamaged(name, u"cannot be decompressed");
}

QString longerThanDeclared(const QString &name)
{
    return entryDamaged(name, u"holds more data than the archive's directory declares");
}

QString shorterThanDeclared(const QString &name)
{
    return entryDamaged(name, u"holds less data than the archive's directory declares");
}

QString checksumMismatch(const QString &name)
{
    return entryDamaged(name, u"does not match its checksum");
}

QString tooLargeForMemory(const QString &name)
{
    return u"The archive's entry \"%1\" is larger than 64 MiB, too large to be read into "
           u"memory."_s.arg(name);
}

QString unsafeName(const QString &name)
{
    return u"The archive holds an entry whose name leads outside its folder: %1"_s.arg(name);
}

QString duplicateTarget(const QString &relativePath)
{
    return u"The archive holds two entries that unpack to \"%1\"."_s.arg(relativePath);
}

QString tooLargeInTotal(quint64 limitBytes)
{
    return u"The archive would unpack to more than %1 GiB, more than a project can hold; it is "
           u"refused."_s.arg(limitBytes / 1073741824);
}

QString tooCompressed(quint64 ratio)
{
    return u"The archive would unpack to more than %1 times its own size, which no project "
           u"archive does; it is refused."_s.arg(ratio);
}

QString notEnoughSpace(quint64 neededBytes, quint64 freeBytes)
{
    return u"The archive needs %1 MiB of disk space to unpack but only %2 MiB are free; free some "
           u"space and try again."_s.arg(mebibytes(neededBytes))
               .arg(freeBytes / 1048576);
}

QString folderNotEmpty(const QString &path)
{
    return u"The extraction folder is not empty: %1"_s.arg(native(path));
}

QString folderNotCreated(const QString &path)
{
    return u"Could not create the folder: %1"_s.arg(native(path));
}

QString parentNotCreated(const QString &path)
{
    return u"Could not create the folder for: %1"_s.arg(native(path));
}

QString fileNotWritten(const QString &path)
{
    return u"Could not write a project file: %1"_s.arg(native(path));
}

QString fileUnreadable(const QString &name)
{
    return u"The file \"%1\" could not be read while the archive was being written."_s.arg(name);
}

QString fileChanged(const QString &name)
{
    return u"The file \"%1\" changed while the archive was being written; write the archive "
           u"again."_s.arg(name);
}

} // namespace fb::app::zipmessage
