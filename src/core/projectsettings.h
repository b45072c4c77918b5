#pragma once

// The records of the project-wide collections. Each collection is replaced whole by its
// command, so every record compares by value.

#include <QDate>
#include <QList>
#include <QMap>
#include <QString>
#include <QUuid>

#include <optional>

namespace fb::core {

// A plot thread; one bound to a character is that character's arc.
struct PlotThread
{
    QUuid id;
    QString name;
    QString description;
    QUuid characterId; // null when the thread is no character arc
    QString color;     // "#RRGGBB", or empty for the default

    bool operator==(const PlotThread &) const = default;
};

struct BeatAssignment
{
    QString beatName;
    QUuid documentId;

    bool operator==(const BeatAssignment &) const = default;
};

// The applied story-structure template and the scenes mapped to its beats.
struct BeatSheet
{
    QString templateId; // empty when no template is applied
    QList<BeatAssignment> assignments;

    bool operator==(const BeatSheet &) const = default;
};

struct SavedSearch
{
    QString name;
    QString query;

    bool operator==(const SavedSearch &) const = default;
};

// Default field values for new entities of a category.
struct EntityTemplate
{
    QString name;
    QUuid categoryId;
    QMap<QString, QString> fieldValues; // by field key

    bool operator==(const EntityTemplate &) const = default;
};

// "At this story date, this entity's field must (or must not) hold this value". The
// comparison is kept as its stored text ("equals" or "notEquals", see RuleComparison) so that
// one this version does not know survives and can be reported.
struct ContinuityRule
{
    QString name;
    QUuid entityId;
    QString fieldKey;
    QString value;
    QString comparison = QStringLiteral("equals");
    std::optional<qint64> instant; // absent: checked against the static field value

    bool operator==(const ContinuityRule &) const = default;
};

// A named, coloured band of story time.
struct TimelineEra
{
    QString name;
    QString color; // "#RRGGBB", or empty
    qint64 startMinute = 0;
    qint64 endMinute = 0;

    bool operator==(const TimelineEra &) const = default;
};

struct TimelineMarker
{
    QString name;
    qint64 instant = 0;
    bool isNow = false;

    bool operator==(const TimelineMarker &) const = default;
};

struct TimelineBookmark
{
    QString name;
    qint64 startMinute = 0;
    qint64 endMinute = 0;

    bool operator==(const TimelineBookmark &) const = default;
};

// Another project attached to this one as a library.
struct Mount
{
    QString name;
    QString path;
    bool writable = false;

    bool operator==(const Mount &) const = default;
};

struct WritingLogEntry
{
    QDate date;
    qint32 words = 0;

    bool operator==(const WritingLogEntry &) const = default;
};

struct WritingGoal
{
    qint32 dailyWordTarget = 0;
    qint32 manuscriptWordTarget = 0;
    QDate deadline; // invalid when none

    bool operator==(const WritingGoal &) const = default;
};

} // namespace fb::core
