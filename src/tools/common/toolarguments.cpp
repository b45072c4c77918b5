#include "tools/common/toolarguments.h"

#include <QJsonValue>

#include <cmath>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

ArgumentDeclaration declare(const QString &name, ArgumentType type, const QString &description,
                            bool isRequired)
{
    return {name, type, description, isRequired, {}, {}, {}, {}};
}

QString typeName(ArgumentType type)
{
    switch (type) {
    case ArgumentType::Text:
        return u"string"_s;
    case ArgumentType::Integer:
        return u"integer"_s;
    case ArgumentType::Number:
        return u"number"_s;
    case ArgumentType::Boolean:
        return u"boolean"_s;
    case ArgumentType::Object:
        return u"object"_s;
    case ArgumentType::TextList:
    case ArgumentType::RecordList:
    case ArgumentType::Table:
        return u"array"_s;
    }
    return u"string"_s;
}

// The form an argument must take, as the refusal states it.
QString expectedForm(ArgumentType type)
{
    switch (type) {
    case ArgumentType::Text:
        return u"a string"_s;
    case ArgumentType::Integer:
        return u"a whole number"_s;
    case ArgumentType::Number:
        return u"a number"_s;
    case ArgumentType::Boolean:
        return u"true or false"_s;
    case ArgumentType::Object:
        return u"a JSON object"_s;
    case ArgumentType::TextList:
        return u"an array of strings"_s;
    case ArgumentType::RecordList:
        return u"an array of JSON objects"_s;
    case ArgumentType::Table:
        return u"an array of arrays"_s;
    }
    return QString();
}

// A JSON number without a fractional part that fits in 64 bits.
bool isWholeNumber(const QJsonValue &value)
{
    if (!value.isDouble())
        return false;
    const double number = value.toDouble();
    // 2^63 is the first double beyond the range of a signed 64-bit integer.
    return std::isfinite(number) && std::trunc(number) == number
           && std::fabs(number) < 9.2233720368547758e18;
}

bool hasType(const QJsonValue &value, ArgumentType type)
{
    switch (type) {
    case ArgumentType::Text:
        return value.isString();
    case ArgumentType::Integer:
        return isWholeNumber(value);
    case ArgumentType::Number:
        return value.isDouble();
    case ArgumentType::Boolean:
        return value.isBool();
    case ArgumentType::Object:
        return value.isObject();
    case ArgumentType::TextList:
    case ArgumentType::RecordList:
    case ArgumentType::Table:
        return value.isArray();
    }
    return false;
}

QString wrongType(const QString &path, ArgumentType type)
{
    return u"\"%1\" must be %2."_s.arg(path, expectedForm(type));
}

Result<void> checkTypes(const QList<ArgumentDeclaration> &declarations, const QJsonObject &json,
                        const QString &prefix);

// Checks each element of a list argument that is already known to be an array. An element of
// the wrong type makes the whole list of the wrong form; a record's field is named by its path.
Result<void> checkElements(const ArgumentDeclaration &declaration, const QJsonArray &items,
                           const QString &path)
{
    const QString listRefusal = declaration.typeRefusal.isEmpty()
                                    ? wrongType(path, declaration.type)
                                    : declaration.typeRefusal;
    const QString elementRefusal = declaration.elementRefusal;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QJsonValue item = items.at(i);
        if (declaration.type == ArgumentType::Table) {
            if (!item.isArray())
                return makeError(elementRefusal.isEmpty() ? listRefusal : elementRefusal);
            continue;
        }
        const bool isText = declaration.type == ArgumentType::TextList;
        if (isText ? !item.isString() : !item.isObject())
            return makeError(elementRefusal.isEmpty() ? listRefusal : elementRefusal);
        if (isText)
            continue;
        const Result<void> checked = checkTypes(declaration.fields, item.toObject(),
                                                u"%1[%2]."_s.arg(path).arg(i));
        if (!checked)
            return makeError(elementRefusal.isEmpty() ? checked.error() : elementRefusal);
    }
    return {};
}

// Checks the declared members of one JSON object; `prefix` places them in a record list.
Result<void> checkTypes(const QList<ArgumentDeclaration> &declarations, const QJsonObject &json,
                        const QString &prefix)
{
    for (const ArgumentDeclaration &declaration : declarations) {
        const QJsonValue value = json.value(declaration.name);
        if (value.isUndefined() || value.isNull())
            continue;
        const QString path = prefix + declaration.name;
        if (!hasType(value, declaration.type)) {
            return makeError(declaration.typeRefusal.isEmpty() ? wrongType(path, declaration.type)
                                                               : declaration.typeRefusal);
        }
        if (declaration.type != ArgumentType::TextList
            && declaration.type != ArgumentType::RecordList
            && declaration.type != ArgumentType::Table)
            continue;
        if (Result<void> checked = checkElements(declaration, value.toArray(), path); !checked)
            return checked;
    }
    return {};
}

QJsonObject propertyOf(const ArgumentDeclaration &declaration)
{
    QJsonObject property{{"type"_L1, typeName(declaration.type)},
                         {"description"_L1, declaration.description}};
    if (!declaration.choices.isEmpty())
        property.insert("enum"_L1, QJsonArray::fromStringList(declaration.choices));
    if (declaration.type == ArgumentType::TextList)
        property.insert("items"_L1, QJsonObject{{"type"_L1, u"string"_s}});
    if (declaration.type == ArgumentType::RecordList)
        property.insert("items"_L1, inputSchemaOf(declaration.fields));
    // A table's rows hold cell texts.
    if (declaration.type == ArgumentType::Table) {
        property.insert("items"_L1,
                        QJsonObject{{"type"_L1, u"array"_s},
                                    {"items"_L1, QJsonObject{{"type"_L1, u"string"_s}}}});
    }
    return property;
}

} // namespace

ArgumentDeclaration optionalText(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Text, description, false);
}

ArgumentDeclaration requiredText(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Text, description, true);
}

ArgumentDeclaration optionalChoice(const QString &name, const QString &description,
                                   const QStringList &choices)
{
    ArgumentDeclaration declaration = declare(name, ArgumentType::Text, description, false);
    declaration.choices = choices;
    return declaration;
}

ArgumentDeclaration requiredChoice(const QString &name, const QString &description,
                                   const QStringList &choices)
{
    ArgumentDeclaration declaration = optionalChoice(name, description, choices);
    declaration.isRequired = true;
    return declaration;
}

ArgumentDeclaration optionalInteger(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Integer, description, false);
}

ArgumentDeclaration requiredInteger(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Integer, description, true);
}

ArgumentDeclaration optionalNumber(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Number, description, false);
}

ArgumentDeclaration optionalBool(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Boolean, description, false);
}

ArgumentDeclaration optionalObject(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Object, description, false);
}

ArgumentDeclaration requiredObject(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Object, description, true);
}

ArgumentDeclaration optionalTextList(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::TextList, description, false);
}

ArgumentDeclaration requiredTextList(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::TextList, description, true);
}

ArgumentDeclaration optionalRecordList(const QString &name, const QString &description,
                                       const QList<ArgumentDeclaration> &fields)
{
    ArgumentDeclaration declaration = declare(name, ArgumentType::RecordList, description, false);
    declaration.fields = fields;
    return declaration;
}

ArgumentDeclaration requiredRecordList(const QString &name, const QString &description,
                                       const QList<ArgumentDeclaration> &fields)
{
    ArgumentDeclaration declaration = optionalRecordList(name, description, fields);
    declaration.isRequired = true;
    return declaration;
}

ArgumentDeclaration optionalTable(const QString &name, const QString &description)
{
    return declare(name, ArgumentType::Table, description, false);
}

ArgumentDeclaration withTypeRefusal(ArgumentDeclaration declaration, const QString &refusal)
{
    declaration.typeRefusal = refusal;
    return declaration;
}

ArgumentDeclaration withElementRefusal(ArgumentDeclaration declaration, const QString &refusal)
{
    declaration.elementRefusal = refusal;
    return declaration;
}

Result<void> checkSingleLine(const QString &argument, const QString &value)
{
    const bool hasBreak = std::any_of(value.cbegin(), value.cend(), [](QChar c) {
        return c == u'\n' || c == u'\r' || c == QChar::LineSeparator
               || c == QChar::ParagraphSeparator;
    });
    if (hasBreak)
        return makeError(
            u"\"%1\" must be a single line: a title or name cannot hold a line break."_s.arg(
                argument));
    return {};
}

QJsonObject inputSchemaOf(const QList<ArgumentDeclaration> &declarations)
{
    QJsonObject properties;
    QJsonArray required;
    for (const ArgumentDeclaration &declaration : declarations) {
        properties.insert(declaration.name, propertyOf(declaration));
        if (declaration.isRequired)
            required.append(declaration.name);
    }
    QJsonObject schema{{"type"_L1, u"object"_s}, {"properties"_L1, properties}};
    // Clients treat an empty "required" array differently from a missing one; the key is left
    // out when nothing is required.
    if (!required.isEmpty())
        schema.insert("required"_L1, required);
    return schema;
}

Result<ToolArguments> ToolArguments::read(const QList<ArgumentDeclaration> &declarations,
                                          const QJsonObject &json)
{
    if (const Result<void> checked = checkTypes(declarations, json, QString()); !checked)
        return makeError(checked.error());
    return ToolArguments(declarations, json);
}

ToolArguments::ToolArguments(const QList<ArgumentDeclaration> &declarations, QJsonObject json)
    : m_declarations(declarations)
    , m_json(std::move(json))
{}

QJsonValue ToolArguments::value(const QString &name, ArgumentType type) const
{
    const auto declared = std::find_if(m_declarations.cbegin(), m_declarations.cend(),
                                       [&](const ArgumentDeclaration &d) { return d.name == name; });
    Q_ASSERT_X(declared != m_declarations.cend(), "ToolArguments", "reads an undeclared argument");
    Q_ASSERT_X(declared == m_declarations.cend() || declared->type == type, "ToolArguments",
               "reads an argument as another type than declared");
    if (declared == m_declarations.cend() || declared->type != type)
        return QJsonValue();
    const QJsonValue found = m_json.value(name);
    return found.isNull() ? QJsonValue() : found;
}

bool ToolArguments::has(const QString &name) const
{
    const auto declared = std::find_if(m_declarations.cbegin(), m_declarations.cend(),
                                       [&](const ArgumentDeclaration &d) { return d.name == name; });
    Q_ASSERT_X(declared != m_declarations.cend(), "ToolArguments",
               "asks for an undeclared argument");
    if (declared == m_declarations.cend())
        return false;
    const QJsonValue found = m_json.value(name);
    return !found.isUndefined() && !found.isNull();
}

QString ToolArguments::text(const QString &name) const
{
    return value(name, ArgumentType::Text).toString();
}

bool ToolArguments::boolean(const QString &name, bool fallback) const
{
    const QJsonValue found = value(name, ArgumentType::Boolean);
    return found.isBool() ? found.toBool() : fallback;
}

std::optional<qint64> ToolArguments::integer(const QString &name) const
{
    const QJsonValue found = value(name, ArgumentType::Integer);
    if (!isWholeNumber(found))
        return std::nullopt;
    return found.toInteger();
}

std::optional<double> ToolArguments::number(const QString &name) const
{
    const QJsonValue found = value(name, ArgumentType::Number);
    if (!found.isDouble())
        return std::nullopt;
    return found.toDouble();
}

QJsonObject ToolArguments::object(const QString &name) const
{
    return value(name, ArgumentType::Object).toObject();
}

QStringList ToolArguments::textList(const QString &name) const
{
    QStringList list;
    for (const QJsonValue &item : value(name, ArgumentType::TextList).toArray())
        list.append(item.toString());
    return list;
}

QList<QJsonObject> ToolArguments::records(const QString &name) const
{
    QList<QJsonObject> list;
    for (const QJsonValue &item : value(name, ArgumentType::RecordList).toArray())
        list.append(item.toObject());
    return list;
}

QList<QJsonArray> ToolArguments::table(const QString &name) const
{
    QList<QJsonArray> rows;
    for (const QJsonValue &row : value(name, ArgumentType::Table).toArray())
        rows.append(row.toArray());
    return rows;
}

} // namespace fb::app
