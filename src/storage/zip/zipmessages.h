#pragma once

#include <QString>

// The sentences the archive layer fails with, each written once. They speak of "the archive";
// callers that know its path add it.
namespace fb::app::zipmessage {

// The archive as a whole.
QString tooShort();
QString noEndRecord();
QString damagedZip64EndRecord();
QString headerWithoutSignature();
QString headerPastEnd();
QString unreadable();
QString notWritten();

// One entry, named as the archive names it.
QString duplicateEntry(const QString &name);
QString missingZip64Sizes(const QString &name);
QString missingEntry(const QString &name);
QString unsupportedMethod(const QString &name);
QString encrypted(const QString &name);
QString damagedHeader(const QString &name);
QString headerDisagrees(const QString &name);
QString dataPastEnd(const QString &name);
QString notDecompressible(const QString &name);
QString longerThanDeclared(const QString &name);
QString shorterThanDeclared(const QString &name);
QString checksumMismatch(const QString &name);
QString tooLargeForMemory(const QString &name);

// Unpacking into a folder; paths are shown in the platform's form.
QString unsafeName(const QString &name);
QString duplicateTarget(const QString &relativePath);
QString tooLargeInTotal(quint64 limitBytes);
QString tooCompressed(quint64 ratio);
QString notEnoughSpace(quint64 neededBytes, quint64 freeBytes);
QString folderNotEmpty(const QString &path);
QString folderNotCreated(const QString &path);
QString parentNotCreated(const QString &path);
QString fileNotWritten(const QString &path);

// Packing files into an archive.
QString fileUnreadable(const QString &name);
QString fileChanged(const QString &name);

} // namespace fb::app::zipmessage
