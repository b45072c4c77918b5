#include "storage/jsonfile.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace fb::app {

Result<QJsonObject> readJsonFile(const QString &path)
{
    QByteArray bytes;
    return readJsonFile(path, bytes);
}

Result<QJsonObject> readJsonFile(const QString &path, QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return makeError(u"Cannot read file: %1"_s.arg(QDir::toNativeSeparators(path)));
    bytes = file.readAll();
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject())
        return makeError(u"Invalid JSON in file: %1"_s.arg(QDir::toNativeSeparators(path)));
    return document.object();
}

QByteArray jsonFileBytes(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

Result<void> writeFileAtomically(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return makeError(u"Cannot write file: %1"_s.arg(QDir::toNativeSeparators(path)));
    if (file.write(bytes) != bytes.size() || !file.commit()) {
        file.cancelWriting();
        return makeError(u"Failed to write file: %1"_s.arg(QDir::toNativeSeparators(path)));
    }
    return {};
}

Result<void> writeJsonFile(const QString &path, const QJsonObject &object)
{
    return writeFileAtomically(path, jsonFileBytes(object));
}

} // namespace fb::app
