#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace fb::core {

struct CalendarMonth
{
    QString name;
    qint32 days = 1;

    bool operator==(const CalendarMonth &) const = default;
};

// The project's invented calendar through which story instants (signed minutes, instant 0
// being 00:00 on day 1 of the first month of Year 1) are read and written. Every year has the
// same length: there are no leap days.
struct Calendar
{
    QString name;
    QList<CalendarMonth> months;
    QStringList weekdays;
    QString eraName; // written after years; may be empty

    bool operator==(const Calendar &) const = default;

    qint64 daysPerYear() const;

    // The calendar of a new project: the twelve Gregorian months with February always at 28
    // days (a 365-day year), and the weekdays Monday to Sunday.
    static Calendar defaultCalendar();
};

// An alternative calendar, offset from the project calendar's epoch.
struct Reckoning
{
    QString name;
    qint64 epochOffsetMinutes = 0;
    Calendar calendar;

    bool operator==(const Reckoning &) const = default;
};

} // namespace fb::core
