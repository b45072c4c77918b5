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

class ToolArguments;
class ToolContext;

// The rules the entity tools share: how a codex object to change is found, when an entity name
// is taken, and how argument values read as text.

// findObject for a writer: an object that lives in a mounted library is refused.
Result<LocatedObject> findObjectToChange(ToolContext &context, ObjectQuery query);

// The query of a tool that names its object with a name argument or an id argument (which
// wins); both are read trimmed.
ObjectQuery objectQuery(const ToolArguments &arguments, const QString &nameKey,
                        const QString &idKey = QStringLiteral("id"));

// The entity of the project, other than except, whose name or one of whose aliases equals name
// (trimmed, case-insensitive); null when the name is free.
const core::Entity *entityNamed(const core::Project &project, const QString &name,
                                const QUuid &except = QUuid());

// Whether the key of a "fields" object names a built-in entity property.
bool isBuiltInProperty(const QString &key);
QString builtInPropertyMessage(const QString &key);

// A value as the agent sent it inside an object argument, as text: strings trimmed, numbers
// and booleans written out, anything else empty.
QString argumentText(const QJsonValue &value);

// An alias list as the entity keeps it: trimmed, without empty entries or entries that differ
// only in letter case, sorted.
QStringList aliasSet(const QStringList &aliases);

// The "aliases" and "tags" arguments as an entity keeps them, read alike by the tools that
// create and change entities. Each entry is a name shown in one-line listings, so a line break
// in one is refused.
Result<QStringList> aliasesArgument(const ToolArguments &arguments);
Result<QStringList> tagsArgument(const ToolArguments &arguments);

} // namespace fb::app
