#include "core/storytime.h"

#include "core/calendar.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

using namespace fb::core;

namespace {

constexpr qint64 day = 1440;
constexpr qint64 year365 = 365 * day;
constexpr qint64 int64Min = std::numeric_limits<qint64>::min();
constexpr qint64 int64Max = std::numeric_limits<qint64>::max();

Calendar calendarOf(QList<CalendarMonth> months, QString era = {})
{
    Calendar calendar;
    calendar.months = std::move(months);
    calendar.eraName = std::move(era);
    return calendar;
}

const Calendar gregorian = Calendar::defaultCalendar();
// "harv" names one month, "Har" two.
const Calendar harvest = calendarOf({{u"Thawing"_s, 30},
                                     {u"Harvestmoon"_s, 30},
                                     {u"Harrowing"_s, 30},
                                     {u"Frostfall"_s, 28}},
                                    u"AR"_s);
const Calendar empty;
const Calendar endless = calendarOf({{u"Long"_s, std::numeric_limits<qint32>::max()}});
const Calendar damaged = calendarOf({{u"A"_s, 3}, {u"B"_s, -1}, {u"C"_s, 0}, {u"D"_s, 2}});
const Calendar oneDay = calendarOf({{u"One"_s, 1}});
const Calendar spoken = calendarOf({{u"Deep Winter"_s, 40}, {u"Deep"_s, 10}, {u"Year End"_s, 5}},
                                   u"Third Age"_s);

std::optional<qint64> at(const Calendar &calendar, BrokenDownDate date)
{
    return compose(calendar, date);
}

std::string show(const BrokenDownDate &d)
{
    return std::to_string(d.year) + "-" + std::to_string(d.month) + "-" + std::to_string(d.day)
           + " " + std::to_string(d.hour) + ":" + std::to_string(d.minute);
}

TEST(StoryTime, BreaksInstantsDownWithFloorArithmetic)
{
    const struct
    {
        const char *name;
        const Calendar &calendar;
        qint64 instant;
        BrokenDownDate expected;
    } cases[] = {
        {"epoch", gregorian, 0, {1, 1, 1, 0, 0}},
        {"minute before the epoch", gregorian, -1, {0, 12, 31, 23, 59}},
        {"one default year", gregorian, year365, {2, 1, 1, 0, 0}},
        {"last minute of Year 1", gregorian, year365 - 1, {1, 12, 31, 23, 59}},
        {"start of Year 0", gregorian, -year365, {0, 1, 1, 0, 0}},
        {"end of Year -1", gregorian, -year365 - 1, {-1, 12, 31, 23, 59}},
        {"March 1, 09:05", gregorian, 59 * day + 9 * 60 + 5, {1, 3, 1, 9, 5}},
        {"largest instant", gregorian, int64Max, {17548272520653, 2, 28, 18, 7}},
        {"smallest instant", gregorian, int64Min, {-17548272520652, 11, 3, 5, 52}},
        {"no months keeps the time", empty, 5 * day + 61, {1, 1, 1, 1, 1}},
        {"no months before the epoch", empty, -1, {1, 1, 1, 23, 59}},
        {"month of 2^31-1 days", endless, int64Max, {2982617, 1, 384757487, 18, 7}},
        {"skips months of no length", damaged, 3 * day, {1, 4, 2, 0, 0}},
        {"before the epoch, damaged", damaged, -2 * day, {0, 1, 3, 0, 0}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const BrokenDownDate actual = breakDown(c.calendar, c.instant);
        EXPECT_EQ(actual, c.expected) << show(actual);
    }
}

TEST(StoryTime, ComposesDatesAndRefusesInstantsBeyondRange)
{
    const struct
    {
        const char *name;
        const Calendar &calendar;
        BrokenDownDate date;
        std::optional<qint64> expected;
    } cases[] = {
        {"epoch", gregorian, {1, 1, 1, 0, 0}, 0},
        {"last minute of Year 0", gregorian, {0, 12, 31, 23, 59}, -1},
        {"Year 2", gregorian, {2, 1, 1, 0, 0}, year365},
        {"Year -1", gregorian, {-1, 1, 1, 0, 0}, -2 * year365},
        {"largest parsed year", gregorian, {1'000'000'000'000, 1, 1, 0, 0}, 525599999999474400},
        {"month 0 adds nothing", gregorian, {1, 0, 5, 0, 0}, 4 * day},
        {"month past the list adds the year", gregorian, {1, 13, 1, 0, 0}, year365},
        {"day past the month runs on", gregorian, {1, 1, 32, 0, 0}, 31 * day},
        {"hours past the day run on", gregorian, {1, 1, 1, 25, 0}, day + 60},
        {"smallest instant", gregorian, {-17548272520652, 11, 3, 5, 52}, int64Min},
        {"largest instant", gregorian, {17548272520653, 2, 28, 18, 7}, int64Max},
        {"one minute past the largest", gregorian, {17548272520653, 2, 28, 18, 8}, std::nullopt},
        {"one minute before the smallest", gregorian, {-17548272520652, 11, 3, 5, 51}, std::nullopt},
        {"smallest year", gregorian, {int64Min, 1, 1, 0, 0}, std::nullopt},
        {"any year of an empty calendar", empty, {int64Min, 1, 1, 2, 0}, 120},
        {"last year of long months", endless, {2982617, 1, 1, 0, 0}, qint64(6405119085280552) * day},
        {"first year beyond range", endless, {2982618, 1, 1, 0, 0}, std::nullopt},
        {"a parsed year of long months", endless, {1'000'000'000'000, 1, 1, 0, 0}, std::nullopt},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(compose(c.calendar, c.date), c.expected);
    }
}

TEST(StoryTime, FormatsDayMonthYearEraAndTime)
{
    const struct
    {
        const Calendar &calendar;
        qint64 instant;
        QString expected;
    } cases[] = {
        {gregorian, 0, u"1 January, Year 1"_s},
        {gregorian, -1, u"31 December, Year 0, 23:59"_s},
        {gregorian, year365, u"1 January, Year 2"_s},
        {gregorian, 9 * 60 + 5, u"1 January, Year 1, 09:05"_s},
        {gregorian, 30, u"1 January, Year 1, 00:30"_s},
        {gregorian, -year365 - day, u"31 December, Year -1"_s},
        {harvest, *at(harvest, {1250, 2, 25, 14, 30}), u"25 Harvestmoon, Year 1250 AR, 14:30"_s},
        {spoken, *at(spoken, {5, 1, 3, 12, 0}), u"3 Deep Winter, Year 5 Third Age, 12:00"_s},
        {empty, 0, u"1 1, Year 1"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.expected.toStdString());
        EXPECT_EQ(formatInstant(c.calendar, c.instant), c.expected);
    }
}

TEST(StoryTime, ParsesDatesInTheCalendarsTerms)
{
    const std::optional<qint64> refused;
    const struct
    {
        const Calendar &calendar;
        QString text;
        std::optional<qint64> expected;
    } cases[] = {
        {harvest, u"25 Harvestmoon 1250"_s, at(harvest, {1250, 2, 25, 0, 0})},
        {harvest, u"Harvestmoon 25, 1250"_s, at(harvest, {1250, 2, 25, 0, 0})},
        {harvest, u"25 harv 1250"_s, at(harvest, {1250, 2, 25, 0, 0})},
        {harvest, u"25 Harvestmoon Year 1250 14:30"_s, at(harvest, {1250, 2, 25, 14, 30})},
        {harvest, u"  1250 "_s, at(harvest, {1250, 1, 1, 0, 0})},
        {harvest, u"Harvestmoon 1250"_s, at(harvest, {1250, 2, 1, 0, 0})},
        {harvest, u"YEAR 1250"_s, at(harvest, {1250, 1, 1, 0, 0})},
        {harvest, u"25 Harvestmoon"_s, refused},
        {harvest, u"28 Frostfall 1250"_s, at(harvest, {1250, 4, 28, 0, 0})},
        {harvest, u"29 Frostfall 1250"_s, refused},
        {harvest, u"0 Frostfall 1250"_s, refused},
        {harvest, u"25 Har 1250"_s, refused},
        {harvest, u"25 Smarch 1250"_s, refused},
        {harvest, u"Thawing Frostfall 1250"_s, refused},
        {harvest, u"1 Thawing 1250 3"_s, refused},
        {harvest, u"1250 3"_s, refused},
        {harvest, u"25 Harvestmoon, Year 1250 ar"_s, at(harvest, {1250, 2, 25, 0, 0})},
        {harvest, u"1250 12:75"_s, refused},
        {harvest, u"1250 24:00"_s, refused},
        {harvest, u"1250 9:05"_s, at(harvest, {1250, 1, 1, 9, 5})},
        {harvest, u"14:30"_s, refused},
        {harvest, u"1250 14:30 16:00"_s, refused},
        {harvest, u""_s, refused},
        {harvest, u" ,  "_s, refused},
        {harvest, u"0"_s, at(harvest, {0, 1, 1, 0, 0})},
        {harvest, u"-5"_s, at(harvest, {-5, 1, 1, 0, 0})},
        {harvest, u"+12"_s, at(harvest, {12, 1, 1, 0, 0})},
        {harvest, u"1000000000000"_s, at(harvest, {1'000'000'000'000, 1, 1, 0, 0})},
        {harvest, u"1000000000001"_s, refused},
        {harvest, u"99999999999999999999"_s, refused},
        {harvest, u"12a"_s, refused},
        {gregorian, u"Ju 1250"_s, refused},
        {gregorian, u"4 Jul 1776"_s, at(gregorian, {1776, 7, 4, 0, 0})},
        {gregorian, u"june 1250"_s, at(gregorian, {1250, 6, 1, 0, 0})},
        {empty, u"1250 10:00"_s, 600},
        {empty, u"5 January 1250"_s, refused},
        {endless, u"Long 1000000000000"_s, refused},
        {spoken, u"3 Deep Winter, Year 5 Third Age, 12:00"_s, at(spoken, {5, 1, 3, 12, 0})},
        {spoken, u"3 deep winter 5 THIRD age"_s, at(spoken, {5, 1, 3, 0, 0})},
        {spoken, u"3 Deep 5"_s, at(spoken, {5, 2, 3, 0, 0})},
        {spoken, u"3 Deep 5 Third"_s, refused},
        {spoken, u"2 Year End, Year 5 Third Age"_s, at(spoken, {5, 3, 2, 0, 0})},
        {spoken, u"Year End, Year 5"_s, at(spoken, {5, 3, 1, 0, 0})},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(parseDate(c.calendar, c.text), c.expected);
    }
}

TEST(StoryTime, ReadsBackEveryInstantItWrites)
{
    std::vector<qint64> instants{0, 1, -1, day - 1, -day, year365, -year365 - 1};
    instants.insert(instants.end(), {int64Max, int64Min, int64Min + 1, int64Max - 1});
    // A fixed spread over many magnitudes, both signs.
    quint64 state = 0x9e3779b97f4a7c15ULL;
    for (int i = 0; i < 300; ++i) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        instants.push_back(qint64(state) >> (i % 60));
    }
    for (const Calendar *calendar : {&gregorian, &harvest, &endless, &spoken, &oneDay}) {
        for (const qint64 instant : instants) {
            SCOPED_TRACE(formatInstant(*calendar, instant).toStdString());
            EXPECT_EQ(compose(*calendar, breakDown(*calendar, instant)), instant);
            // The parser reads no year beyond 10^12.
            if (breakDown(*calendar, instant).year <= 1'000'000'000'000) {
                EXPECT_EQ(parseDate(*calendar, formatInstant(*calendar, instant)), instant);
            }
        }
    }
}

} // namespace
