#include "tools/codex/fieldvalues.h"

#include "core/calendar.h"
#include "core/category.h"
#include "core/storytime.h"
#include "tools/codex/entitysupport.h"

#include <QLocale>
#include <QUrl>

#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// The form a field of this type takes, as a refusal states it.
QString expectedForm(const core::FieldDefinition &field)
{
    switch (field.type) {
    case core::FieldType::Number:
        return u"a number (e.g. 26 or 3.5)"_s;
    case core::FieldType::Boolean:
        return u"true or false"_s;
    case core::FieldType::Date:
        return u"a story date in the project calendar (e.g. \"25 Harvestmoon 1250\" or \"1250\")"_s;
    case core::FieldType::Choice:
        return u"one of its options (%1)"_s.arg(field.options.join(u", "_s));
    case core::FieldType::Url:
        return u"an absolute http, https or mailto URL (e.g. \"https://example.org\")"_s;
    case core::FieldType::Text:
    case core::FieldType::Reference:
        break;
    }
    return u"text"_s;
}

// The value as a refusal quotes it back.
QString quoted(const QJsonValue &value)
{
    if (value.isArray())
        return u"an array"_s;
    if (value.isObject())
        return u"an object"_s;
    if (value.isString())
        return u"'%1'"_s.arg(value.toString().trimmed());
    return argumentText(value);
}

Error refusal(const core::FieldDefinition &field, const QString &name, const QJsonValue &value)
{
    return makeError(
        u"Field '%1' takes %2, not %3."_s.arg(name, expectedForm(field), quoted(value)));
}

// The number a value gives: a JSON number, or text in the C locale without group separators.
// Infinities and NaN are no values a writer means.
std::optional<double> numberOf(const QJsonValue &value)
{
    double number = 0;
    if (value.isDouble()) {
        number = value.toDouble();
    } else if (value.isString()) {
        QLocale c = QLocale::c();
        c.setNumberOptions(QLocale::RejectGroupSeparator);
        bool ok = false;
        number = c.toDouble(value.toString().trimmed(), &ok);
        if (!ok)
            return std::nullopt;
    } else {
        return std::nullopt;
    }
    if (!std::isfinite(number))
        return std::nullopt;
    return number;
}

bool isAbsoluteWebUrl(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid())
        return false;
    const QString scheme = url.scheme().toLower();
    if (scheme == u"http" || scheme == u"https")
        return !url.host().isEmpty();
    return scheme == u"mailto" && !url.path().isEmpty();
}

} // namespace

Result<QString> fieldValueText(const core::FieldDefinition &field, const QString &name,
                               const QJsonValue &value, const core::Calendar &calendar)
{
    if (value.isNull() || value.isUndefined())
        return QString();
    // Arrays and objects are no field value of any type.
    if (value.isArray() || value.isObject())
        return refusal(field, name, value);
    const QString text = argumentText(value);
    if (text.isEmpty())
        return QString();

    switch (field.type) {
    case core::FieldType::Number: {
        const std::optional<double> number = numberOf(value);
        if (!number)
            return refusal(field, name, value);
        return QString::number(*number, 'g', QLocale::FloatingPointShortest);
    }
    case core::FieldType::Boolean: {
        // A JSON boolean, or the same word as text.
        if (value.isDouble())
            return refusal(field, name, value);
        const QString folded = text.toLower();
        if (folded != u"true" && folded != u"false")
            return refusal(field, name, value);
        return folded;
    }
    case core::FieldType::Date: {
        if (value.isBool())
            return refusal(field, name, value);
        const std::optional<qint64> instant = core::parseDate(calendar, text);
        if (!instant)
            return refusal(field, name, value);
        return core::formatInstant(calendar, *instant);
    }
    case core::FieldType::Choice: {
        for (const QString &option : field.options) {
            if (option.trimmed().compare(text, Qt::CaseInsensitive) == 0)
                return option;
        }
        return refusal(field, name, value);
    }
    case core::FieldType::Url:
        if (!value.isString() || !isAbsoluteWebUrl(text))
            return refusal(field, name, value);
        return text;
    case core::FieldType::Text:
    case core::FieldType::Reference:
        break;
    }
    return text;
}

} // namespace fb::app
