#include "core/ids.h"

#include <cstring>

using namespace Qt::StringLiterals;

namespace fb::core {

QString idText(const QUuid &id)
{
    if (id.isNull())
        return {};
    return id.toString(QUuid::WithoutBraces);
}

QUuid idFromText(QStringView text)
{
    return QUuid::fromString(text.trimmed());
}

QString objectLink(const QUuid &id)
{
    if (id.isNull())
        return {};
    return u"fablery://object/"_s + idText(id);
}

int compareIds(const QUuid &a, const QUuid &b)
{
    if (a.data1 != b.data1)
        return a.data1 < b.data1 ? -1 : 1;
    if (a.data2 != b.data2)
        return a.data2 < b.data2 ? -1 : 1;
    if (a.data3 != b.data3)
        return a.data3 < b.data3 ? -1 : 1;
    return std::memcmp(a.data4, b.data4, sizeof a.data4);
}

} // namespace fb::core
