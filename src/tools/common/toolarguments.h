#pragma once

#include "core/result.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace fb::app {

// The JSON types a tool argument can have.
// A table is an array of rows, each an array of cell values; the kit checks that much of its
// shape, and the tool reads the cells, whose forms it knows.
enum class ArgumentType { Text, Integer, Number, Boolean, Object, TextList, RecordList, Table };

// One argument a tool takes. A tool names its arguments once, as a list of these: the input
// schema that "tools/list" publishes and the reader its handler uses both come from that list,
// so the two cannot drift apart.
struct ArgumentDeclaration
{
    QString name;
    ArgumentType type = ArgumentType::Text;
    QString description;
    // Listed under "required" in the schema. The handler still says, in its own words, when a
    // required argument is missing: those messages belong to each tool.
    bool isRequired = false;
    // The fixed set of values a text argument takes, published as the schema's "enum".
    QStringList choices;
    // The fields of each record of a record list.
    QList<ArgumentDeclaration> fields;
    // What the refusal says when the argument has the wrong form, and when an element of a list
    // is malformed, for a tool whose own words describe a good value better than a type name
    // can. Empty: the argument and the form it must take (for a record's field, its path).
    QString typeRefusal;
    QString elementRefusal;
};

ArgumentDeclaration optionalText(const QString &name, const QString &description);
ArgumentDeclaration requiredText(const QString &name, const QString &description);
ArgumentDeclaration optionalChoice(const QString &name, const QString &description,
                                   const QStringList &choices);
ArgumentDeclaration requiredChoice(const QString &name, const QString &description,
                                   const QStringList &choices);
ArgumentDeclaration optionalInteger(const QString &name, const QString &description);
ArgumentDeclaration requiredInteger(const QString &name, const QString &description);
ArgumentDeclaration optionalNumber(const QString &name, const QString &description);
ArgumentDeclaration optionalBool(const QString &name, const QString &description);
ArgumentDeclaration optionalObject(const QString &name, const QString &description);
ArgumentDeclaration requiredObject(const QString &name, const QString &description);
ArgumentDeclaration optionalTextList(const QString &name, const QString &description);
ArgumentDeclaration requiredTextList(const QString &name, const QString &description);
ArgumentDeclaration optionalRecordList(const QString &name, const QString &description,
                                       const QList<ArgumentDeclaration> &fields);
ArgumentDeclaration requiredRecordList(const QString &name, const QString &description,
                                       const QList<ArgumentDeclaration> &fields);
ArgumentDeclaration optionalTable(const QString &name, const QString &description);

// The declaration with its own refusal for a value of the wrong form, and for a malformed list
// element.
ArgumentDeclaration withTypeRefusal(ArgumentDeclaration declaration, const QString &refusal);
ArgumentDeclaration withElementRefusal(ArgumentDeclaration declaration, const QString &refusal);

// Titles and names are one line: a line break in one would break every listing that shows it.
// The refusal names the argument.
Result<void> checkSingleLine(const QString &argument, const QString &value);

// The JSON Schema of a tool's arguments: {"type": "object", "properties": {...}, "required":
// [...]}, with "required" left out when nothing is required.
QJsonObject inputSchemaOf(const QList<ArgumentDeclaration> &declarations);

// The arguments of one call, read through the tool's declarations. Every declared argument that
// is present is checked for its JSON type before the handler runs, so a handler never guesses:
// a string "true" is not a boolean, and a number is not a title. A null value counts as absent.
// Arguments the tool does not declare are ignored, and reading one is a programming error
// (caught by an assertion in debug builds).
class ToolArguments
{
public:
    // The refusal names the first argument of the wrong type and the form it must take.
    static Result<ToolArguments> read(const QList<ArgumentDeclaration> &declarations,
                                      const QJsonObject &json);

    // Whether the argument was given (and is not null).
    bool has(const QString &name) const;
    // "" when absent.
    QString text(const QString &name) const;
    QString trimmed(const QString &name) const { return text(name).trimmed(); }
    bool boolean(const QString &name, bool fallback = false) const;
    std::optional<qint64> integer(const QString &name) const;
    std::optional<double> number(const QString &name) const;
    // Empty when absent.
    QJsonObject object(const QString &name) const;
    QStringList textList(const QString &name) const;
    // Each record of a record list, its fields checked like arguments.
    QList<QJsonObject> records(const QString &name) const;
    // Each row of a table.
    QList<QJsonArray> table(const QString &name) const;

private:
    ToolArguments(const QList<ArgumentDeclaration> &declarations, QJsonObject json);
    QJsonValue value(const QString &name, ArgumentType type) const;

    QList<ArgumentDeclaration> m_declarations;
    QJsonObject m_json;
};

} // namespace fb::app
