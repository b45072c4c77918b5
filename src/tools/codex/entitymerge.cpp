#include "core/commands/command.h"
#include "core/commands/entitycommands.h"
#include "core/commands/objectcommands.h"
#include "core/commands/structuralcommands.h"
#include "core/contentobjects.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/codex/categorylookup.h"
#include "tools/codex/entityhandlers.h"
#include "tools/codex/entitysupport.h"
#include "tools/codex/references.h"
#include "tools/common/change.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"

#include <QSet>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

struct Merge
{
    std::unique_ptr<core::CompositeCommand> command;
    int repointed = 0;
};

// What the target takes over from the source: the field values it has none of; the source's
// name and aliases as aliases, so that every name the manuscript uses still finds the merged
// entity; the union of the tags; the birth or death date it lacks; the state over time of
// fields it tracks none of; the gallery images it does not show yet; and the source's category
// when it has none. What the target already holds always wins.
void fillGaps(core::Project &project, const core::Entity &source, const core::Entity &target,
              core::CompositeCommand &merge)
{
    const QUuid id = target.id();
    for (auto it = source.values().cbegin(); it != source.values().cend(); ++it) {
        if (it.value().isEmpty() || !target.value(it.key()).isEmpty())
            continue;
        // A source that pointed at itself now points at the entity it became.
        const QString value = isReferenceTo(it.value(), source.id()) ? core::idText(id)
                                                                     : it.value();
        merge.append(std::make_unique<core::SetFieldValueCommand>(project, id, it.key(), value));
    }

    QStringList aliases;
    const QString targetName = target.name().trimmed().toLower();
    for (const QString &alias :
         aliasSet(target.aliases() + QStringList{source.name()} + source.aliases())) {
        if (alias.toLower() != targetName)
            aliases.append(alias);
    }
    if (aliases != target.aliases())
        merge.append(std::make_unique<core::SetEntityAliasesCommand>(project, id, aliases));

    const QStringList tags = core::sortedUnique(target.tags() + source.tags());
    if (tags != target.tags())
        merge.append(std::make_unique<core::SetObjectTagsCommand>(project, id, tags));

    const core::EntityLifespan lifespan{target.birthInstant() ? target.birthInstant()
                                                              : source.birthInstant(),
                                        target.deathInstant() ? target.deathInstant()
                                                              : source.deathInstant()};
    if (lifespan != core::entityLifespan(target))
        merge.append(std::make_unique<core::SetEntityLifespanCommand>(project, id, lifespan));

    QSet<QString> tracked;
    for (const core::TimedValue &value : target.timedValues())
        tracked.insert(value.fieldKey);
    QList<core::TimedValue> timedValues = target.timedValues();
    for (const core::TimedValue &value : source.timedValues()) {
        if (!tracked.contains(value.fieldKey))
            timedValues.append(value);
    }
    if (timedValues != target.timedValues())
        merge.append(std::make_unique<core::SetEntityTimedValuesCommand>(project, id, timedValues));

    QStringList gallery = target.gallery();
    for (const QString &image : source.gallery()) {
        if (!gallery.contains(image))
            gallery.append(image);
    }
    if (gallery != target.gallery())
        merge.append(std::make_unique<core::SetEntityGalleryCommand>(project, id, gallery));

    if (target.categoryId().isNull() && !source.categoryId().isNull()) {
        merge.append(
            std::make_unique<core::SetEntityCategoryCommand>(project, id, source.categoryId()));
    }
}

// The merge as one step: the gaps filled, every reference re-pointed, the source removed. Nothing
// when either side is no entity of the project, or both are the same.
std::optional<Merge> buildMerge(core::Project &project, const QUuid &sourceId, const QUuid &targetId)
{
    const auto *source = project.objectAs<core::Entity>(sourceId);
    const auto *target = project.objectAs<core::Entity>(targetId);
    if (!source || !target || source == target)
        return std::nullopt;
    Merge merge{std::make_unique<core::CompositeCommand>(u"Merge entities"_s)};
    fillGaps(project, *source, *target, *merge.command);
    ReferenceWalk walk = walkReferences(project, sourceId, targetId);
    merge.repointed = int(walk.references.size());
    for (std::unique_ptr<core::Command> &command : walk.repointing)
        merge.command->append(std::move(command));
    merge.command->append(std::make_unique<core::RemoveObjectCommand>(project, sourceId));
    return merge;
}

// The new entity carved off a source: its category, the given field values and, when asked,
// its lifespan. Nothing when the source is no entity of the project.
std::unique_ptr<core::CompositeCommand> buildSplit(core::Project &project, const QUuid &sourceId,
                                                   const QString &name, const QStringList &keys,
                                                   bool copyLifespan)
{
    const auto *source = project.objectAs<core::Entity>(sourceId);
    if (!source)
        return nullptr;
    auto entity = std::make_unique<core::Entity>(name);
    entity->setCategoryId(source->categoryId());
    QMap<QString, QString> values;
    for (const QString &key : keys) {
        if (!source->value(key).isEmpty())
            values.insert(key, source->value(key));
    }
    entity->setValues(values);
    if (copyLifespan) {
        entity->setBirthInstant(source->birthInstant());
        entity->setDeathInstant(source->deathInstant());
    }
    auto split = std::make_unique<core::CompositeCommand>(u"Split entity"_s);
    split->append(std::make_unique<core::AddObjectCommand>(project, std::move(entity)));
    return split;
}

Result<LocatedObject> findEntityToChange(ToolContext &context, const ToolArguments &arguments,
                                         const QString &nameKey, const QString &refusal)
{
    ObjectQuery query = objectQuery(arguments, nameKey, nameKey + u"_id"_s);
    if (query.name.isEmpty() && query.id.isEmpty())
        return makeError(refusal);
    query.entitiesOnly = true;
    return findObjectToChange(context, query);
}

} // namespace

McpToolResult mergeEntities(ToolContext &context, const ToolArguments &arguments)
{
    const Result<LocatedObject> source
        = findEntityToChange(context, arguments, u"source"_s,
                             u"merge_entities needs \"source\" (or \"source_id\")."_s);
    if (!source)
        return McpToolResult::failure(source.error());
    const Result<LocatedObject> target
        = findEntityToChange(context, arguments, u"target"_s,
                             u"merge_entities needs \"target\" (or \"target_id\")."_s);
    if (!target)
        return McpToolResult::failure(target.error());
    const QUuid sourceId = source->object->id();
    const QUuid targetId = target->object->id();
    if (sourceId == targetId)
        return McpToolResult::failure(u"An entity cannot be merged into itself."_s);

    const QString sourceName = core::objectTitle(*source->object);
    const QString targetName = core::objectTitle(*target->object);
    std::optional<Merge> merge = buildMerge(context.workspace().project(), sourceId, targetId);
    if (!merge) {
        return McpToolResult::failure(u"The merge could not be built; both '%1' and '%2' must be "
                                      "entities in the open project."_s.arg(sourceName, targetName));
    }
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: merge entities"_s);
    change->append(std::move(merge->command));
    return applyChange(context, std::move(change),
                       u"Merged '%1' into '%2', re-pointing %3 reference(s)."_s
                           .arg(sourceName, targetName, QString::number(merge->repointed)));
}

McpToolResult splitEntity(ToolContext &context, const ToolArguments &arguments)
{
    const QString newName = arguments.trimmed(u"new_name"_s);
    if (newName.isEmpty()) {
        return McpToolResult::failure(
            u"split_entity needs \"new_name\" for the entity to carve off."_s);
    }
    if (const Result<void> line = checkSingleLine(u"new_name"_s, newName); !line)
        return McpToolResult::failure(line.error());
    const Result<LocatedObject> located
        = findEntityToChange(context, arguments, u"source"_s,
                             u"split_entity needs \"source\" (or \"source_id\")."_s);
    if (!located)
        return McpToolResult::failure(located.error());
    const auto *source = core::objectCast<core::Entity>(located->object);
    if (!source) {
        return McpToolResult::failure(
            u"The split of '%1' could not be built."_s.arg(core::objectTitle(*located->object)));
    }
    core::Project &project = context.workspace().project();
    if (entityNamed(project, newName)) {
        return McpToolResult::failure(
            u"An entity named '%1' already exists; choose a distinct name."_s.arg(newName));
    }

    const auto schema = project.categories().effectiveSchema(source->categoryId());
    QStringList keys;
    for (const QString &element : arguments.textList(u"fields"_s)) {
        const QString name = element.trimmed();
        if (name.isEmpty())
            continue;
        const auto field = findSchemaField(schema, name);
        if (!field) {
            return McpToolResult::failure(
                u"'%1' is not a field of '%2's category."_s.arg(name, source->name()));
        }
        if (!keys.contains(field->definition.key))
            keys.append(field->definition.key);
    }
    const qsizetype copied = std::count_if(keys.begin(), keys.end(), [&](const QString &key) {
        return !source->value(key).isEmpty();
    });
    const bool copyLifespan = arguments.boolean(u"copy_lifespan"_s);
    const bool lifespanCopied = copyLifespan && (source->birthInstant() || source->deathInstant());

    const QString sourceName = source->name();
    std::unique_ptr<core::CompositeCommand> split = buildSplit(project, source->id(), newName, keys,
                                                               copyLifespan);
    if (!split)
        return McpToolResult::failure(u"The split of '%1' could not be built."_s.arg(sourceName));
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: split entity"_s);
    change->append(std::move(split));
    return applyChange(context, std::move(change),
                       u"Split a new entity '%1' off '%2' (copied %3 field(s)%4). Divide the "
                       "references between the two by hand."_s.arg(newName, sourceName,
                                                                   QString::number(copied),
                                                                   lifespanCopied ? u" + lifespan"_s
                                                                                  : QString()));
}

} // namespace fb::app
