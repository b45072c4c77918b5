#include "core/calendar.h"

using namespace Qt::StringLiterals;

namespace fb::core {

qint64 Calendar::daysPerYear() const
{
    qint64 days = 0;
    for (const CalendarMonth &month : months)
        days += month.days;
    return days;
}

Calendar Calendar::defaultCalendar()
{
    Calendar calendar;
    calendar.months = {
        {u"January"_s, 31},   {u"February"_s, 28}, {u"March"_s, 31},    {u"April"_s, 30},
        {u"May"_s, 31},       {u"June"_s, 30},     {u"July"_s, 31},     {u"August"_s, 31},
        {u"September"_s, 30}, {u"October"_s, 31},  {u"November"_s, 30}, {u"December"_s, 31},
    };
    calendar.weekdays = {u"Monday"_s, u"Tuesday"_s,  u"Wednesday"_s, u"Thursday"_s,
                         u"Friday"_s, u"Saturday"_s, u"Sunday"_s};
    return calendar;
}

} // namespace fb::core
