#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>

namespace fb::core {

// The enumerations of the content model. Each has exactly one table of stored names below,
// indexed by code; enumName() gives the name of a code (empty for a code outside the table) and
// enumFromName() maps only the exact name, so "Prose" is not a document kind. Callers that
// accept looser input (trimmed, any letter case) fold it before asking.

enum class ObjectType : qint32 {
    Document = 0,
    Entity = 1,
    Spreadsheet = 2,
    Chart = 3,
    Map = 4,
    Timeline = 5,
    TimelineEvent = 6,
    Media = 7,
    Source = 8,
    Task = 9,
    Canvas = 10,
    Comment = 11,
    Language = 12,
    RandomTable = 13,
    StatBlock = 14,
};

enum class DocumentKind : qint32 { Prose = 0, Screenplay = 1, Note = 2 };
enum class TaskPriority : qint32 { Low = 0, Normal = 1, High = 2, Urgent = 3 };
enum class SubmissionKind : qint32 {
    Agent = 0,
    Publisher = 1,
    Magazine = 2,
    Contest = 3,
    Other = 4,
};
enum class FieldType : qint32 {
    Text = 0,
    Number = 1,
    Boolean = 2,
    Date = 3,
    Reference = 4,
    Choice = 5,
    Url = 6,
};
enum class SourceKind : qint32 {
    Book = 0,
    Chapter = 1,
    ArticleJournal = 2,
    ArticleMagazine = 3,
    ArticleNewspaper = 4,
    Webpage = 5,
    Report = 6,
    Thesis = 7,
    PaperConference = 8,
    Manuscript = 9,
    Other = 10,
};
enum class ChartKind : qint32 { Bar = 0, Line = 1, Area = 2, Pie = 3, Scatter = 4 };
enum class GridKind : qint32 { None = 0, Square = 1 };
// Event constraints and continuity rules keep their kind as stored text (see EventConstraint
// and ContinuityRule), so that a kind written by a newer desktop application survives and can
// be reported; these two enumerations name the kinds this version understands.
enum class ConstraintKind : qint32 { Before = 0, After = 1, During = 2, SameTime = 3 };
enum class RuleComparison : qint32 { Equals = 0, NotEquals = 1 };
enum class CellAlignment : qint32 { Default = 0, Left = 1, Center = 2, Right = 3 };
enum class NumberFormat : qint32 {
    General = 0,
    Number = 1,
    Currency = 2,
    Percent = 3,
    Scientific = 4,
};

template<typename E>
struct EnumNameTable;

template<>
struct EnumNameTable<ObjectType>
{
    static constexpr std::array<QStringView, 15>
        names{u"document", u"entity",         u"spreadsheet", u"chart",        u"map",
              u"timeline", u"timeline_event", u"media",       u"source",       u"task",
              u"canvas",   u"comment",        u"language",    u"random_table", u"stat_block"};
};

template<>
struct EnumNameTable<DocumentKind>
{
    static constexpr std::array<QStringView, 3> names{u"prose", u"screenplay", u"note"};
};

template<>
struct EnumNameTable<TaskPriority>
{
    static constexpr std::array<QStringView, 4> names{u"low", u"normal", u"high", u"urgent"};
};

template<>
struct EnumNameTable<SubmissionKind>
{
    static constexpr std::array<QStringView, 5> names{u"agent", u"publisher", u"magazine",
                                                      u"contest", u"other"};
};

template<>
struct EnumNameTable<FieldType>
{
    static constexpr std::array<QStringView, 7> names{u"text",      u"number", u"boolean", u"date",
                                                      u"reference", u"choice", u"url"};
};

// The tokens of source kinds, used in tool arguments and stored files.
template<>
struct EnumNameTable<SourceKind>
{
    static constexpr std::array<QStringView, 11>
        names{u"book",    u"chapter", u"article-journal", u"article-magazine", u"article-newspaper",
              u"webpage", u"report",  u"thesis",          u"paper-conference", u"manuscript",
              u"other"};
};

template<>
struct EnumNameTable<ChartKind>
{
    static constexpr std::array<QStringView, 5> names{u"bar", u"line", u"area", u"pie", u"scatter"};
};

template<>
struct EnumNameTable<GridKind>
{
    static constexpr std::array<QStringView, 2> names{u"none", u"square"};
};

template<>
struct EnumNameTable<ConstraintKind>
{
    static constexpr std::array<QStringView, 4> names{u"before", u"after", u"during", u"same_time"};
};

template<>
struct EnumNameTable<RuleComparison>
{
    static constexpr std::array<QStringView, 2> names{u"equals", u"notEquals"};
};

template<>
struct EnumNameTable<CellAlignment>
{
    static constexpr std::array<QStringView, 4> names{u"default", u"left", u"center", u"right"};
};

template<>
struct EnumNameTable<NumberFormat>
{
    static constexpr std::array<QStringView, 5> names{u"general", u"number", u"currency",
                                                      u"percent", u"scientific"};
};

template<typename E>
QString enumName(E value)
{
    const auto &names = EnumNameTable<E>::names;
    // A negative code turns into a huge index and so falls outside the table too.
    const auto index = static_cast<std::size_t>(static_cast<qint32>(value));
    return index < names.size() ? names[index].toString() : QString();
}

template<typename E>
std::optional<E> enumFromName(QStringView name)
{
    const auto &names = EnumNameTable<E>::names;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name)
            return static_cast<E>(i);
    }
    return std::nullopt;
}

// Every stored name in code order, for messages that list the accepted names.
template<typename E>
QStringList enumNames()
{
    QStringList result;
    for (const QStringView name : EnumNameTable<E>::names)
        result.append(name.toString());
    return result;
}

// The lower-case noun that messages use for a type ("timeline event", "media item"); empty
// for a code outside the table.
QString objectTypeNoun(ObjectType type);

// The display name of a source kind in listings ("Journal Article"); empty outside the table.
QString sourceKindDisplayName(SourceKind kind);

} // namespace fb::core
