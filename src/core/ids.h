#pragma once

#include <QString>
#include <QStringView>
#include <QUuid>

namespace fb::core {

// The 36-character form of an id, without braces, as it is shown and stored; empty for the
// null id, which the files store as an empty string.
QString idText(const QUuid &id);

// Parses an id with or without braces; the null id when the text is no UUID.
QUuid idFromText(QStringView text);

// The canonical link of an object, "fablery://object/<id>"; empty for the null id.
QString objectLink(const QUuid &id);

// Orders ids as their texts compare, which is also the order of the sorted object file names.
// Comparing the fields directly gives that order without building strings; QUuid's own
// operator< puts the variant first and would not.
int compareIds(const QUuid &a, const QUuid &b);

struct IdTextLess
{
    bool operator()(const QUuid &a, const QUuid &b) const { return compareIds(a, b) < 0; }
};

} // namespace fb::core
