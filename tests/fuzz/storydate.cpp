// Fuzzes the story-date parser: one input is a date as an agent would type it, read in the
// default calendar and in an invented one of unequal months with names of several words and
// an era label. A date that reads must read back from its own formatted text to the same
// instant.

#include "fuzzcheck.h"

#include "core/calendar.h"
#include "core/storytime.h"
#include "tools/common/storydates.h"

#include <cstdint>

using namespace fb;

namespace {

core::Calendar inventedCalendar()
{
    core::Calendar calendar;
    calendar.name = QStringLiteral("Reckoning of the Vale");
    calendar.months = {{QStringLiteral("Frostmoon"), 31},     {QStringLiteral("Thaw"), 1},
                       {QStringLiteral("Harvest Moon"), 45},  {QStringLiteral("Harvestide"), 12},
                       {QStringLiteral("Long Dark Night"), 7}, {QStringLiteral("Year End"), 100}};
    calendar.weekdays = {QStringLiteral("Oneday"), QStringLiteral("Twoday")};
    calendar.eraName = QStringLiteral("After Ruin");
    return calendar;
}

void readIn(const core::Calendar &calendar, const QString &text)
{
    const std::optional<qint64> instant = core::parseDate(calendar, text);
    const Result<qint64> story = app::parseStoryDate(calendar, text);
    FB_FUZZ_CHECK(story.hasValue() == instant.has_value());
    if (!instant) {
        FB_FUZZ_CHECK(story.error() == app::dateNotUnderstoodMessage(text));
        return;
    }
    FB_FUZZ_CHECK(*story == *instant);
    const QString formatted = core::formatInstant(calendar, *instant);
    FB_FUZZ_CHECK(core::parseDate(calendar, formatted) == instant);
    FB_FUZZ_CHECK(core::compose(calendar, core::breakDown(calendar, *instant)) == instant);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const core::Calendar defaultCalendar = core::Calendar::defaultCalendar();
    static const core::Calendar invented = inventedCalendar();
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    readIn(defaultCalendar, text);
    readIn(invented, text);
    return 0;
}
