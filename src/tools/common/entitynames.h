#pragma once

#include "core/result.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

namespace fb::app {

class ToolContext;

// Entities that a tool argument refers to by name (an event's participants and location, the
// ends of a route, ...), and the names such references are shown by.

// The entity that a name (its title or one of its aliases) or an id names, through the codex
// lookup, for storing a reference to it. Like a reference field, a reference may point into a
// mounted library: it changes nothing there. The refusal names the argument: an unknown name,
// an ambiguous one (listing the candidates and their ids), or the shared exclusion text for an
// AI-excluded entity, which can never be assigned.
Result<QUuid> resolveEntityReference(ToolContext &context, const QString &argument,
                                     const QString &name);

// Every name of a list argument resolved as above, in the given order. An entity named twice
// (by its title and by an alias, say) is listed once. A blank name, and the first name that does
// not resolve, fail the whole list.
Result<QList<QUuid>> resolveEntityReferences(ToolContext &context, const QString &argument,
                                             const QStringList &names);

// The name of every entity the agent may see, by id, gathered once so that a listing which names
// many references finds each in constant time instead of walking the project again.
class EntityNames
{
public:
    explicit EntityNames(ToolContext &context);

    // Empty when the id names no entity, or one that is withheld from the agent.
    QString nameOf(const QUuid &id) const { return m_names.value(id); }

private:
    QHash<QUuid, QString> m_names;
};

} // namespace fb::app
