#include "storage/storedvalues.h"

#include "core/ids.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

JsonReader::JsonReader(QJsonObject object)
    : m_object(std::move(object))
{}

QJsonValue JsonReader::value(QLatin1StringView key)
{
    const QJsonValue found = m_object.value(key);
    if (!m_asked.contains(key)) {
        m_asked.append(key);
        if (!found.isUndefined())
            ++m_askedPresent;
    }
    return found;
}

QString JsonReader::string(QLatin1StringView key, const QString &fallback)
{
    const QJsonValue found = value(key);
    return found.isString() ? found.toString() : fallback;
}

bool JsonReader::boolean(QLatin1StringView key, bool fallback)
{
    return value(key).toBool(fallback);
}

qint32 JsonReader::int32(QLatin1StringView key, qint32 fallback)
{
    return value(key).toInt(fallback);
}

qint64 JsonReader::int64(QLatin1StringView key, qint64 fallback)
{
    return value(key).toInteger(fallback);
}

double JsonReader::number(QLatin1StringView key, double fallback)
{
    return value(key).toDouble(fallback);
}

std::optional<qint64> JsonReader::optionalInt64(QLatin1StringView key)
{
    const QJsonValue found = value(key);
    const qint64 whole = found.toInteger();
    if (!found.isDouble() || double(whole) != found.toDouble())
        return std::nullopt;
    return whole;
}

QUuid JsonReader::id(QLatin1StringView key)
{
    const QJsonValue found = value(key);
    return found.isString() ? core::idFromText(found.toString()) : QUuid();
}

QList<QUuid> JsonReader::ids(QLatin1StringView key)
{
    const QJsonArray items = array(key);
    QList<QUuid> result;
    result.reserve(items.size());
    for (const QJsonValue &item : items) {
        const QUuid parsed = core::idFromText(item.toString());
        if (!parsed.isNull())
            result.append(parsed);
    }
    return result;
}

QStringList JsonReader::strings(QLatin1StringView key)
{
    const QJsonArray items = array(key);
    QStringList result;
    result.reserve(items.size());
    for (const QJsonValue &item : items) {
        if (item.isString())
            result.append(item.toString());
    }
    return result;
}

QMap<QString, QString> JsonReader::textMap(QLatin1StringView key)
{
    const QJsonObject members = object(key);
    QMap<QString, QString> result;
    for (auto it = members.constBegin(); it != members.constEnd(); ++it)
        result.insert(it.key(), storedValueText(it.value()));
    return result;
}

QDate JsonReader::date(QLatin1StringView key)
{
    return QDate::fromString(string(key), Qt::ISODate);
}

QDateTime JsonReader::dateTime(QLatin1StringView key)
{
    return QDateTime::fromString(string(key), Qt::ISODateWithMs);
}

QJsonObject JsonReader::object(QLatin1StringView key)
{
    return value(key).toObject();
}

QJsonArray JsonReader::array(QLatin1StringView key)
{
    return value(key).toArray();
}

QVariantMap JsonReader::unreadProperties() const
{
    QVariantMap result;
    // Almost every stored object holds only known keys; counting spares the walk over them.
    if (m_askedPresent == m_object.size())
        return result;
    for (auto it = m_object.constBegin(); it != m_object.constEnd(); ++it) {
        const QString key = it.key();
        const bool asked = std::any_of(m_asked.cbegin(), m_asked.cend(),
                                       [&key](QLatin1StringView known) { return key == known; });
        if (!asked)
            result.insert(key, it.value().toVariant());
    }
    return result;
}

QString storedValueText(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Bool:
        return value.toBool() ? u"true"_s : u"false"_s;
    case QJsonValue::Double: {
        const qint64 whole = value.toInteger();
        if (double(whole) == value.toDouble())
            return QString::number(whole);
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    }
    default:
        return QString();
    }
}

QJsonValue idValue(const QUuid &id)
{
    return core::idText(id);
}

QJsonArray idArray(const QList<QUuid> &ids)
{
    QJsonArray result;
    for (const QUuid &id : ids)
        result.append(core::idText(id));
    return result;
}

QJsonArray stringArray(const QStringList &strings)
{
    return QJsonArray::fromStringList(strings);
}

QJsonObject textMapObject(const QMap<QString, QString> &map)
{
    QJsonObject result;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        result.insert(it.key(), it.value());
    return result;
}

QJsonValue dateValue(const QDate &date)
{
    return date.isValid() ? date.toString(Qt::ISODate) : QString();
}

QJsonValue dateTimeValue(const QDateTime &dateTime)
{
    return dateTime.isValid() ? dateTime.toString(Qt::ISODateWithMs) : QString();
}

void insertOptional(QJsonObject &json, QLatin1StringView key, std::optional<qint64> value)
{
    if (value)
        json.insert(key, *value);
}

QJsonObject preservedJson(const QVariantMap &properties)
{
    return QJsonObject::fromVariantMap(properties);
}

} // namespace fb::app
