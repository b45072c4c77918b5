#pragma once

#include "core/commands/command.h"

#include <QString>
#include <QUuid>

#include <memory>
#include <vector>

namespace fb::core {
class Project;
}

namespace fb::app {

// One place in the open project that points at an entity.
struct EntityReference
{
    // What kind of reference it is: "reference field \"Mentor\"", "map region", "timeline
    // participant", "prose link", ...
    QString kind;
    // The object that holds it; null for the project's own collections (plot threads, entity
    // templates, continuity rules).
    QUuid holderId;
};

// Every reference to an entity in a project, found in one pass over its objects and
// collections: reference-field values of other entities, map regions, routes and tokens,
// timeline participants and locations, comment and task targets, research-canvas cards,
// "fablery://object/<id>" links in document bodies, plot-thread character arcs, entity-template
// defaults and continuity rules. AI-excluded holders are included: their references dangle just
// the same.
//
// With a replacement id, the walk also gives the commands that point every one of them at the
// replacement instead, one command per changed aspect; a participant list that would then name
// the replacement twice keeps it once.
struct ReferenceWalk
{
    std::vector<EntityReference> references;
    std::vector<std::unique_ptr<core::Command>> repointing;
};

ReferenceWalk walkReferences(core::Project &project, const QUuid &entityId,
                             const QUuid &replacement = QUuid());

// Whether a stored field value is the id of that entity (with or without braces).
bool isReferenceTo(const QString &value, const QUuid &entityId);

} // namespace fb::app
