#include "tools/common/storydates.h"

#include "core/calendar.h"
#include "core/storytime.h"

using namespace Qt::StringLiterals;

namespace fb::app {

QString dateNotUnderstoodMessage(const QString &text)
{
    return u"The date '%1' was not understood; use the project calendar (e.g. "
           "\"25 Harvestmoon 1250\" or \"1250\")."_s.arg(text);
}

Result<qint64> parseStoryDate(const core::Calendar &calendar, const QString &text)
{
    if (const std::optional<qint64> instant = core::parseDate(calendar, text))
        return *instant;
    return makeError(dateNotUnderstoodMessage(text));
}

} // namespace fb::app
