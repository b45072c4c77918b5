#pragma once

#include "core/result.h"
#include "tools/common/objectlookup.h"

#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QUuid>

namespace fb::core {
class Entity;
class Project;
} // namespace fb::core

namespace fb::app {

class Workspace;

// The rules the entity tools share: how a codex object to change is found, when an entity name
// is taken, and how argument values read as text.

// findObject for a writer: an object that lives in a mounted library is refused.
Result<LocatedObject> findObjectToChange(Workspace &workspace, ObjectQuery query);

// The query of a tool that names its object with a name argument or an "id" (which wins).
ObjectQuery objectQuery(const QJsonObject &arguments, const QString &nameKey,
                        const QString &idKey = QStringLiteral("id"));

// The entity of the project, other than except, whose name or one of whose aliases equals name
// (trimmed, case-insensitive); null when the name is free.
const core::Entity *entityNamed(const core::Project &project, const QString &name,
                                const QUuid &except = QUuid());

// Whether the key of a "fields" object names a built-in entity property.
bool isBuiltInProperty(const QString &key);
QString builtInPropertyMessage(const QString &key);

// A field value as the agent sent it, as text: strings trimmed, numbers and booleans written
// out, anything else empty.
QString argumentText(const QJsonValue &value);

// An alias list as the entity keeps it: trimmed, without empty entries or entries that differ
// only in letter case, sorted.
QStringList aliasSet(const QStringList &aliases);

} // namespace fb::app
