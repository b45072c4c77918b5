#pragma once

#include "core/result.h"

#include <QJsonValue>
#include <QString>

namespace fb::core {
struct Calendar;
struct FieldDefinition;
} // namespace fb::core

namespace fb::app {

// The text an entity stores under a field for a value the agent sent in "fields", checked by
// the field's type:
// - text: a string (trimmed), or a number or boolean written out;
// - number: a JSON number, or text that reads as one; stored in its shortest form ("26");
// - boolean: true or false, or that text in any letter case; stored as "true" or "false";
// - date: a story date in the project calendar; stored as the calendar writes it, so that it
//   reads the same in every listing and parses again;
// - choice: one of the field's options, in any letter case; stored as the option is spelled;
// - url: an absolute http, https or mailto URL, stored as given.
// A null or empty value gives the empty text, which clears the field. A reference field takes
// its target through the tools' own lookup, not here. `name` is the field as the agent named
// it; every refusal names it and the form the field takes.
Result<QString> fieldValueText(const core::FieldDefinition &field, const QString &name,
                               const QJsonValue &value, const core::Calendar &calendar);

} // namespace fb::app
