#include "tools/codex/entitysupport.h"

#include "core/entity.h"
#include "core/project.h"
#include "tools/common/toolarguments.h"

#include <QLocale>
#include <QSet>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// The trimmed, non-empty entries of a list argument, each checked to be one line.
Result<QStringList> singleLineEntries(const ToolArguments &arguments, const QString &key)
{
    QStringList entries;
    for (const QString &entry : arguments.textList(key)) {
        const QString trimmed = entry.trimmed();
        if (trimmed.isEmpty())
            continue;
        if (const Result<void> line = checkSingleLine(key, trimmed); !line)
            return makeError(line.error());
        entries.append(trimmed);
    }
    return entries;
}

} // namespace

Result<LocatedObject> findObjectToChange(ToolContext &context, ObjectQuery query)
{
    query.forChange = true;
    Result<LocatedObject> located = findObject(context, query);
    if (located && located->isInLibrary())
        return makeError(libraryRefusal(*located));
    return located;
}

ObjectQuery objectQuery(const ToolArguments &arguments, const QString &nameKey, const QString &idKey)
{
    ObjectQuery query;
    query.name = arguments.trimmed(nameKey);
    query.id = arguments.trimmed(idKey);
    return query;
}

const core::Entity *entityNamed(const core::Project &project, const QString &name,
                                const QUuid &except)
{
    const QString key = name.trimmed().toLower();
    if (key.isEmpty())
        return nullptr;
    for (const core::Entity *entity : project.objectsOfType<core::Entity>()) {
        if (entity->id() == except)
            continue;
        if (entity->name().trimmed().toLower() == key)
            return entity;
        for (const QString &alias : entity->aliases()) {
            if (alias.trimmed().toLower() == key)
                return entity;
        }
    }
    return nullptr;
}

bool isBuiltInProperty(const QString &key)
{
    static const std::array<QString, 10> names{u"name"_s,    u"new_name"_s,   u"category"_s,
                                               u"aliases"_s, u"born"_s,       u"died"_s,
                                               u"tags"_s,    u"references"_s, u"timed_values"_s,
                                               u"entity"_s};
    const QString folded = key.trimmed().toLower();
    return std::find(names.begin(), names.end(), folded) != names.end();
}

QString builtInPropertyMessage(const QString &key)
{
    return u"'%1' is a built-in entity property, not a custom field; set it with update_entity's "
           "own argument (e.g. \"new_name\" to rename, \"category\" to move), not inside "
           "\"fields\"."_s.arg(key);
}

QString argumentText(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::String:
        return value.toString().trimmed();
    case QJsonValue::Bool:
        return value.toBool() ? u"true"_s : u"false"_s;
    case QJsonValue::Double:
        // Whole numbers are written without a fraction; others in the shortest exact form.
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    default:
        return {};
    }
}

QStringList aliasSet(const QStringList &aliases)
{
    QStringList result;
    QSet<QString> seen;
    for (const QString &alias : aliases) {
        const QString trimmed = alias.trimmed();
        if (trimmed.isEmpty() || seen.contains(trimmed.toLower()))
            continue;
        seen.insert(trimmed.toLower());
        result.append(trimmed);
    }
    result.sort();
    return result;
}

Result<QStringList> aliasesArgument(const ToolArguments &arguments)
{
    const Result<QStringList> aliases = singleLineEntries(arguments, u"aliases"_s);
    if (!aliases)
        return aliases;
    return aliasSet(*aliases);
}

Result<QStringList> tagsArgument(const ToolArguments &arguments)
{
    const Result<QStringList> tags = singleLineEntries(arguments, u"tags"_s);
    if (!tags)
        return tags;
    return core::sortedUnique(*tags);
}

} // namespace fb::app
