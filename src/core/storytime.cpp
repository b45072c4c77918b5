#include "core/storytime.h"

#include "core/calendar.h"

#include <QList>
#include <QRegularExpression>
#include <QStringList>
#include <QtNumeric>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::core {

namespace {

constexpr qint64 minutesPerDay = 24 * 60;

// The largest number a date may spell. With it a year stays within the 64-bit instant range in
// every calendar of ordinary month lengths; calendars of enormous months are caught by compose().
constexpr qint64 largestDateNumber = 1'000'000'000'000;

// Division and remainder rounded towards minus infinity (divisor positive), so that the days
// and years before instant 0 are counted like those after it.
qint64 floorDiv(qint64 value, qint64 divisor)
{
    const qint64 quotient = value / divisor;
    return value % divisor < 0 ? quotient - 1 : quotient;
}

qint64 floorMod(qint64 value, qint64 divisor)
{
    const qint64 remainder = value % divisor;
    return remainder < 0 ? remainder + divisor : remainder;
}

QString twoDigits(int value)
{
    return QString::number(value).rightJustified(2, u'0');
}

// The words of a date, a month name or an era label: commas count as blanks.
QStringList wordsOf(QString text)
{
    text.replace(u',', u' ');
    return text.simplified().split(u' ', Qt::SkipEmptyParts);
}

// How many tokens from position `at` spell the words one by one in any letter case, or 0.
qsizetype runLength(const QStringList &tokens, qsizetype at, const QStringList &words)
{
    if (words.isEmpty() || at + words.size() > tokens.size())
        return 0;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (tokens.at(at + i).compare(words.at(i), Qt::CaseInsensitive) != 0)
            return 0;
    }
    return words.size();
}

struct MonthMatch
{
    qsizetype index = 0;
    qsizetype length = 1; // tokens taken
};

// The month whose name of several words is spelled out from token `at`, the longest if several
// are, so that dates this file formats read back.
std::optional<MonthMatch> spelledMonthAt(const QList<QStringList> &monthWords,
                                         const QStringList &tokens, qsizetype at)
{
    std::optional<MonthMatch> longest;
    for (qsizetype index = 0; index < monthWords.size(); ++index) {
        const QStringList &words = monthWords.at(index);
        if (words.size() > 1 && (!longest || words.size() > longest->length)
            && runLength(tokens, at, words) > 0) {
            longest = MonthMatch{index, words.size()};
        }
    }
    return longest;
}

// The month named at token `at`: a name of several words spelled out, else the month a single
// token equals, or else the one month whose name begins with it.
std::optional<MonthMatch> monthAt(const QList<QStringList> &monthWords, const QStringList &tokens,
                                  qsizetype at)
{
    if (const std::optional<MonthMatch> spelled = spelledMonthAt(monthWords, tokens, at))
        return spelled;

    const QString &token = tokens.at(at);
    for (qsizetype index = 0; index < monthWords.size(); ++index) {
        if (monthWords.at(index).size() == 1 && runLength(tokens, at, monthWords.at(index)) == 1)
            return MonthMatch{index, 1};
    }
    std::optional<qsizetype> prefixed;
    for (qsizetype index = 0; index < monthWords.size(); ++index) {
        if (!monthWords.at(index).join(u' ').startsWith(token, Qt::CaseInsensitive))
            continue;
        if (prefixed)
            return std::nullopt; // a prefix of two months names neither
        prefixed = index;
    }
    if (prefixed)
        return MonthMatch{*prefixed, 1};
    return std::nullopt;
}

// A whole decimal integer with an optional sign; anything else is no number.
bool isInteger(const QString &token)
{
    static const QRegularExpression pattern(u"^[+-]?[0-9]+$"_s);
    return pattern.match(token).hasMatch();
}

struct DateNumber
{
    qint64 value = 0;
    qsizetype position = 0; // token index
};

} // namespace

BrokenDownDate breakDown(const Calendar &calendar, qint64 instant)
{
    BrokenDownDate date;
    const qint64 days = floorDiv(instant, minutesPerDay);
    const qint64 minuteOfDay = floorMod(instant, minutesPerDay);
    date.hour = int(minuteOfDay / 60);
    date.minute = int(minuteOfDay % 60);

    const qint64 daysPerYear = calendar.daysPerYear();
    if (calendar.months.isEmpty() || daysPerYear < 1)
        return date;

    // Floor division passes through Year 0 on the way to negative years, without skipping it.
    date.year = floorDiv(days, daysPerYear) + 1;
    qint64 dayOfYear = floorMod(days, daysPerYear);
    qsizetype index = 0;
    // The months add up to more than dayOfYear, so the walk ends inside the list with dayOfYear
    // below that month's length, even past months of zero or negative length from a damaged file.
    while (index + 1 < calendar.months.size() && dayOfYear >= calendar.months.at(index).days) {
        dayOfYear -= calendar.months.at(index).days;
        ++index;
    }
    date.month = int(index + 1);
    date.day = int(dayOfYear + 1);
    return date;
}

std::optional<qint64> compose(const Calendar &calendar, const BrokenDownDate &date)
{
    qint64 days = 0;
    const qint64 monthsBefore = std::clamp<qint64>(qint64(date.month) - 1, 0,
                                                   calendar.months.size());
    for (qsizetype index = 0; index < monthsBefore; ++index)
        days += calendar.months.at(index).days;

    // An empty year needs no year arithmetic, so even the most extreme year composes.
    if (const qint64 daysPerYear = calendar.daysPerYear(); daysPerYear != 0) {
        qint64 yearsBefore = 0;
        qint64 yearDays = 0;
        if (qSubOverflow(date.year, qint64(1), &yearsBefore)
            || qMulOverflow(yearsBefore, daysPerYear, &yearDays)
            || qAddOverflow(days, yearDays, &days)) {
            return std::nullopt;
        }
    }
    if (qAddOverflow(days, qint64(date.day) - 1, &days))
        return std::nullopt;

    // Whole days in the time of day move into the day count, and for days before the epoch the
    // remaining minutes are taken from the day after, so that days × 1440 overflows only when
    // the instant itself lies out of range.
    qint64 minutes = qint64(date.hour) * 60 + date.minute;
    if (qAddOverflow(days, floorDiv(minutes, minutesPerDay), &days))
        return std::nullopt;
    minutes = floorMod(minutes, minutesPerDay);
    if (days < 0 && minutes > 0) {
        ++days;
        minutes -= minutesPerDay;
    }
    qint64 instant = 0;
    if (qMulOverflow(days, minutesPerDay, &instant) || qAddOverflow(instant, minutes, &instant))
        return std::nullopt;
    return instant;
}

QString formatInstant(const Calendar &calendar, qint64 instant)
{
    const BrokenDownDate date = breakDown(calendar, instant);
    const QString monthName = date.month >= 1 && date.month <= calendar.months.size()
                                  ? calendar.months.at(date.month - 1).name
                                  : QString::number(date.month);
    QString text = u"%1 %2, Year %3"_s.arg(QString::number(date.day), monthName,
                                           QString::number(date.year));
    if (!calendar.eraName.isEmpty())
        text += u' ' + calendar.eraName;
    if (date.hour != 0 || date.minute != 0)
        text += u", %1:%2"_s.arg(twoDigits(date.hour), twoDigits(date.minute));
    return text;
}

std::optional<qint64> parseDate(const Calendar &calendar, const QString &text)
{
    QString rest = text.trimmed();
    if (rest.isEmpty())
        return std::nullopt;

    BrokenDownDate date;
    static const QRegularExpression timePattern(u"\\b(\\d{1,2}):(\\d{2})\\b"_s);
    if (const QRegularExpressionMatch time = timePattern.match(rest); time.hasMatch()) {
        date.hour = time.capturedView(1).toInt();
        date.minute = time.capturedView(2).toInt();
        if (date.hour > 23 || date.minute > 59)
            return std::nullopt;
        rest.remove(time.capturedStart(), time.capturedLength());
    }

    const QStringList tokens = wordsOf(rest);
    const QStringList eraWords = wordsOf(calendar.eraName);
    QList<QStringList> monthWords;
    for (const CalendarMonth &month : calendar.months)
        monthWords.append(wordsOf(month.name));

    std::optional<MonthMatch> month;
    qsizetype monthPosition = 0;
    QList<DateNumber> numbers;
    for (qsizetype at = 0; at < tokens.size();) {
        const QString &token = tokens.at(at);
        // A month name spelled out in full is read before the word "Year" and the era label,
        // so that a month such as "Year End" is not taken for the word and a stray name.
        const bool isSpelledMonth = spelledMonthAt(monthWords, tokens, at).has_value();
        const qsizetype eraLength = isSpelledMonth ? 0 : runLength(tokens, at, eraWords);
        if (!isSpelledMonth && token.compare(u"Year"_s, Qt::CaseInsensitive) == 0) {
            ++at;
        } else if (eraLength > 0) {
            at += eraLength;
        } else if (isInteger(token)) {
            bool fits = false;
            const qint64 value = token.toLongLong(&fits);
            if (!fits || value > largestDateNumber)
                return std::nullopt;
            numbers.append({value, at});
            ++at;
        } else {
            const std::optional<MonthMatch> named = monthAt(monthWords, tokens, at);
            if (!named || month)
                return std::nullopt;
            month = named;
            monthPosition = at;
            at += named->length;
        }
    }

    if (month) {
        date.month = int(month->index + 1);
        if (numbers.size() == 1) {
            if (numbers.first().position < monthPosition)
                return std::nullopt; // "25 Harvestmoon" has a day but no year
            date.year = numbers.first().value;
        } else if (numbers.size() == 2) {
            const qint64 day = numbers.first().value;
            if (day < 1 || day > calendar.months.at(month->index).days)
                return std::nullopt;
            date.day = int(day);
            date.year = numbers.last().value;
        } else {
            return std::nullopt;
        }
    } else {
        if (numbers.size() != 1)
            return std::nullopt;
        date.year = numbers.first().value;
    }
    return compose(calendar, date);
}

} // namespace fb::core
