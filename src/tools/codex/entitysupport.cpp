#include "tools/codex/entitysupport.h"

#include "core/entity.h"
#include "core/project.h"
#include "tools/common/arguments.h"

#include <QJsonObject>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace fb::app {

Result<LocatedObject> findObjectToChange(Workspace &workspace, ObjectQuery query)
{
    query.forChange = true;
    Result<LocatedObject> located = findObject(workspace, query);
    if (located && located->isInLibrary())
        return makeError(libraryRefusal(*located));
    return located;
}

ObjectQuery objectQuery(const QJsonObject &arguments, const QString &nameKey, const QString &idKey)
{
    ObjectQuery query;
    query.name = trimmedArgument(arguments, nameKey);
    query.id = trimmedArgument(arguments, idKey);
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
    static const std::array<QString, 10> names{
        u"name"_s, u"new_name"_s, u"category"_s,   u"aliases"_s,      u"born"_s,
        u"died"_s, u"tags"_s,     u"references"_s, u"timed_values"_s, u"entity"_s};
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

} // namespace fb::app
