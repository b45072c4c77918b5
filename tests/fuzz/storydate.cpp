// Fuzzes the story-date parser: one input is a date as an agent would type it, read in the
// default calendar and in an invented one of unequal months with names of several words and
// an era label. A date that reads must read back from its own formatted text to the same
// instant.

#include "core/calendar.h"
#include "core/storytime.h"
#include "fuzzcheck.h"
#include "tools/common/storydates.h"

#include <cstdint>

using namespace Qt::StringLiterals;

using namespace fb;

namespace {

core::Calendar inventedCalendar()
{
    core::Calendar calendar;
    calendar.name = u"Reckoning of the Vale"_s;
    calendar.months = {{u"Frostmoon"_s, 31},      {u"Thaw"_s, 1},
                       {u"Harvest Moon"_s, 45},   {u"Harvestide"_s, 12},
                       {u"Long Dark Night"_s, 7}, {u"Year End"_s, 100}};
    calendar.weekdays = {u"Oneday"_s, u"Twoday"_s};
    calendar.eraName = u"After Ruin"_s;
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
