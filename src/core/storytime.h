#pragma once

#include <QString>

#include <optional>

namespace fb::core {

struct Calendar;

// A story instant read in a calendar. Years count through Year 0 into negative years, so the
// day before instant 0 is the last day of Year 0.
struct BrokenDownDate
{
    qint64 year = 1;
    int month = 1; // 1-based
    int day = 1;   // 1-based
    int hour = 0;
    int minute = 0;

    bool operator==(const BrokenDownDate &) const = default;
};

// The date and time of an instant (signed minutes, 0 being 00:00 on day 1 of the first month
// of Year 1). A calendar without a positive year length reads every instant as day 1 of month 1
// of Year 1, keeping only the time of day.
BrokenDownDate breakDown(const Calendar &calendar, qint64 instant);

// The instant of a date. Fields out of their usual range simply add up (day 40 of a 30-day month
// runs into the next one). Nothing when the instant lies beyond the signed 64-bit range, which a
// far year in a calendar of very long months can reach; a wrapped-around instant would silently
// name some other date.
std::optional<qint64> compose(const Calendar &calendar, const BrokenDownDate &date);

// "25 Harvestmoon, Year 1250", then the era label when there is one, then ", 14:30" unless the
// time is midnight.
QString formatInstant(const Calendar &calendar, qint64 instant);

// Reads a date typed in the calendar's terms: "25 Harvestmoon 1250", "Harvestmoon 25, 1250",
// "harv 1250", "1250", each optionally with "Year", the era label and a time "14:30". Nothing
// when the text is not understood or names an instant beyond the 64-bit range.
std::optional<qint64> parseDate(const Calendar &calendar, const QString &text);

} // namespace fb::core
