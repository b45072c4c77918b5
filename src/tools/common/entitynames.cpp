#include "tools/common/entitynames.h"

#include "core/entity.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

void collectNames(const core::Project &project, const Visibility &visibility,
                  QHash<QUuid, QString> &names)
{
    for (const core::Entity *entity : project.objectsOfType<core::Entity>()) {
        if (visibility.isVisible(*entity))
            names.insert(entity->id(), entity->name());
    }
}

} // namespace

Result<QUuid> resolveEntityReference(ToolContext &context, const QString &argument,
                                     const QString &name)
{
    const QString trimmed = name.trimmed();
    ObjectQuery query;
    query.entitiesOnly = true;
    // An id stands for the entity it names: it is how the agent settles an ambiguous name.
    if (!parseObjectId(trimmed).isNull())
        query.id = trimmed;
    else
        query.name = trimmed;
    const Result<LocatedObject> found = findObject(context, query);
    if (found)
        return found->object->id();
    // The lookup's own answer for a name that matches nothing does not say which argument held
    // it; in a list of names the agent needs to know. Its other answers (the candidates of an
    // ambiguous name, the exclusion text, the id refusals) already say everything.
    if (query.id.isEmpty() && found.error() == u"No entity named '%1' exists."_s.arg(trimmed)) {
        return makeError(
            u"\"%1\" names '%2', but no entity has that name or alias."_s.arg(argument, trimmed));
    }
    return Error{found.error()};
}

Result<QList<QUuid>> resolveEntityReferences(ToolContext &context, const QString &argument,
                                             const QStringList &names)
{
    QList<QUuid> ids;
    for (const QString &name : names) {
        if (name.trimmed().isEmpty())
            return makeError(u"Every name in \"%1\" must be non-empty."_s.arg(argument));
        const Result<QUuid> id = resolveEntityReference(context, argument, name);
        if (!id)
            return Error{id.error()};
        if (!ids.contains(*id))
            ids.append(*id);
    }
    return ids;
}

EntityNames::EntityNames(ToolContext &context)
{
    const Visibility &visibility = context.visibility();
    Workspace &workspace = context.workspace();
    collectNames(workspace.project(), visibility, m_names);
    for (const MountedLibrary &library : workspace.libraries()) {
        if (library.project)
            collectNames(*library.project, visibility, m_names);
    }
}

} // namespace fb::app
