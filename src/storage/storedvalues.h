#pragma once

#include "core/enumerations.h"

#include <QDate>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QLatin1StringView>
#include <QList>
#include <QMap>
#include <QStringList>
#include <QUuid>
#include <QVarLengthArray>
#include <QVariantMap>

#include <optional>

namespace fb::app {

// Reads the members of one stored JSON object. An absent member or one of the wrong JSON type
// gives the fallback, so a damaged or older file still loads. The reader remembers which keys
// it was asked for: every other member is a key this version does not know, and
// unreadProperties() hands those back to be kept and written out again unchanged.
class JsonReader
{
public:
    explicit JsonReader(QJsonObject object);
    JsonReader(const JsonReader &) = delete;
    JsonReader &operator=(const JsonReader &) = delete;

    QJsonValue value(QLatin1StringView key);

    QString string(QLatin1StringView key, const QString &fallback = QString());
    bool boolean(QLatin1StringView key, bool fallback = false);
    qint32 int32(QLatin1StringView key, qint32 fallback = 0);
    qint64 int64(QLatin1StringView key, qint64 fallback = 0);
    double number(QLatin1StringView key, double fallback = 0);
    // Absent unless the member is a whole number.
    std::optional<qint64> optionalInt64(QLatin1StringView key);

    // The null id for anything but the text of a UUID.
    QUuid id(QLatin1StringView key);
    // Members that are no UUID text are left out.
    QList<QUuid> ids(QLatin1StringView key);
    QStringList strings(QLatin1StringView key);
    // Text of every member of a JSON object, by name.
    QMap<QString, QString> textMap(QLatin1StringView key);
    // Invalid when absent or not "yyyy-MM-dd".
    QDate date(QLatin1StringView key);
    // Invalid when absent or not an ISO 8601 date-time.
    QDateTime dateTime(QLatin1StringView key);

    QJsonObject object(QLatin1StringView key);
    QJsonArray array(QLatin1StringView key);

    // The value named by the stored text, or the fallback for any other text.
    template<typename E>
    E enumeration(QLatin1StringView key, E fallback)
    {
        return core::enumFromName<E>(string(key)).value_or(fallback);
    }

    // Each member of an array that is a JSON object, read by read(JsonReader &) into a T;
    // members that are no objects are skipped.
    template<typename T, typename Read>
    QList<T> list(QLatin1StringView key, Read read)
    {
        const QJsonArray items = array(key);
        QList<T> result;
        result.reserve(items.size());
        for (const QJsonValue &item : items) {
            if (!item.isObject())
                continue;
            JsonReader reader(item.toObject());
            result.append(read(reader));
        }
        return result;
    }

    // The members whose keys were never asked for, as variants.
    QVariantMap unreadProperties() const;

private:
    QJsonObject m_object;
    QVarLengthArray<QLatin1StringView, 32> m_asked;
    qsizetype m_askedPresent = 0;
};

// The text form of a value kept as text: strings as they are, numbers and booleans in their
// JSON spelling, anything else empty.
QString storedValueText(const QJsonValue &value);

// Stored forms. An id is its UUID text, "" for the null id; a calendar date "yyyy-MM-dd" and a
// date-time ISO 8601 with milliseconds, each "" when invalid.
QJsonValue idValue(const QUuid &id);
QJsonArray idArray(const QList<QUuid> &ids);
QJsonArray stringArray(const QStringList &strings);
QJsonObject textMapObject(const QMap<QString, QString> &map);
QJsonValue dateValue(const QDate &date);
QJsonValue dateTimeValue(const QDateTime &dateTime);

// An absent instant leaves the key out.
void insertOptional(QJsonObject &json, QLatin1StringView key, std::optional<qint64> value);

// The keys this version does not know, as the starting point of an object's stored form.
QJsonObject preservedJson(const QVariantMap &properties);

template<typename T, typename Write>
QJsonArray jsonArray(const QList<T> &items, Write write)
{
    QJsonArray result;
    for (const T &item : items)
        result.append(write(item));
    return result;
}

} // namespace fb::app
