#include "tools/codex/codexfamily.h"

#include "server/mcpserver.h"
#include "tools/codex/entityhandlers.h"

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// The tools that take any codex object name it by "name", or by "id" when names collide.
ToolSchema namedObject(const QString &noun)
{
    return ToolSchema()
        .string(u"name"_s,
                u"The %1's name (an entity's alias works too; case-insensitive)."_s.arg(noun))
        .string(u"id"_s, u"The %1's id, to disambiguate when several share the name."_s.arg(noun));
}

McpToolDescriptor getEntityTool()
{
    return toolDescriptor(
        u"get_entity"_s,
        u"One entity in full: category, aliases, tags, lifespan in the project calendar, field "
        "values (references resolved to names), state over time, gallery size, and where it is "
        "mentioned."_s,
        namedObject(u"entity"_s));
}

McpToolDescriptor createEntityTool()
{
    return toolDescriptor(
        u"create_entity"_s,
        u"Creates a codex entity. The category is created when absent; extra fields are created "
        "as text fields on it."_s,
        ToolSchema()
            .string(u"name"_s, u"The new entity's name."_s)
            .required()
            .string(u"category"_s, u"The category to file it under (created when absent)."_s)
            .required()
            .string(u"summary"_s, u"A one-line summary, stored in the Summary field."_s)
            .object(u"fields"_s,
                    u"Field values by field label (or key); a reference field takes the target "
                    "entity's name."_s));
}

McpToolDescriptor updateEntityTool()
{
    const ToolSchema timedValue = ToolSchema()
                                      .string(u"field"_s, u"The field's label or key."_s)
                                      .required()
                                      .string(u"when"_s, u"The story date it holds from."_s)
                                      .required()
                                      .string(u"value"_s, u"The value from that date on."_s);
    return toolDescriptor(
        u"update_entity"_s,
        u"Sparse update of one entity: only the provided keys change, absent keys leave the "
        "entity untouched. \"new_name\" renames it; \"category\" moves it to another category "
        "(created when absent). \"aliases\" and \"tags\" replace their whole set; an empty "
        "\"born\"/\"died\" string clears that date. \"fields\" is for CUSTOM fields only -- a "
        "built-in property named there is refused."_s,
        ToolSchema()
            .string(u"entity"_s, u"The entity's name or alias (case-insensitive)."_s)
            .string(u"id"_s, u"The entity's id, to disambiguate when several share the name."_s)
            .string(u"new_name"_s, u"Rename the entity to this name."_s)
            .string(u"category"_s, u"Move the entity to this category (created when absent)."_s)
            .object(u"fields"_s,
                    u"Custom text field values by label; a field not yet defined is added to the "
                    "category as a text field."_s)
            .array(u"aliases"_s, u"The whole new alias set."_s, u"string"_s)
            .array(u"tags"_s, u"The whole new tag set."_s, u"string"_s)
            .string(u"born"_s, u"Birth date in the project calendar; empty clears it."_s)
            .string(u"died"_s, u"Death date in the project calendar; empty clears it."_s)
            .object(u"references"_s,
                    u"Reference field values by field label: the target entity's name."_s)
            .array(u"timed_values"_s, u"The whole new state over time; an empty array clears it."_s,
                   timedValue));
}

McpToolDescriptor deleteObjectTool()
{
    return toolDescriptor(
        u"delete_object"_s,
        u"Deletes any titled object (entity, document, map, spreadsheet, timeline event, ...) by "
        "name and states what type it deleted. One undo step."_s,
        namedObject(u"object"_s));
}

McpToolDescriptor mergeEntitiesTool()
{
    return toolDescriptor(
        u"merge_entities"_s,
        u"Merges the source entity into the target: fills gaps in the target, re-points every "
        "reference from the source, then removes the source. One undo step."_s,
        ToolSchema()
            .string(u"source"_s, u"The entity to merge away (name or alias)."_s)
            .string(u"target"_s, u"The entity that absorbs it (name or alias)."_s)
            .string(u"source_id"_s, u"The source's id, when its name is ambiguous."_s)
            .string(u"target_id"_s, u"The target's id, when its name is ambiguous."_s));
}

McpToolDescriptor splitEntityTool()
{
    return toolDescriptor(
        u"split_entity"_s,
        u"Carves a new entity off an existing one (the inverse of merge_entities): the new entity "
        "is created in the source's category, copying the chosen fields (and optionally the "
        "lifespan). The source is left intact -- you then divide the references between the two "
        "by hand."_s,
        ToolSchema()
            .string(u"source"_s, u"The entity to carve from (name or alias)."_s)
            .string(u"source_id"_s, u"The source's id, when its name is ambiguous."_s)
            .string(u"new_name"_s, u"The new entity's name."_s)
            .required()
            .array(u"fields"_s, u"Labels or keys of the fields to copy."_s, u"string"_s)
            .boolean(u"copy_lifespan"_s, u"true to copy the birth and death dates too."_s));
}

McpToolDescriptor setVisibilityTool()
{
    return toolDescriptor(
        u"set_visibility"_s,
        u"Restricts an object to the named audiences (an empty array makes it visible to "
        "everyone). Audience names the project has not seen yet are added to its registry."_s,
        namedObject(u"object"_s)
            .array(u"audiences"_s, u"The audience names that may see the object."_s, u"string"_s)
            .required());
}

McpToolDescriptor setAiExclusionTool()
{
    return toolDescriptor(
        u"set_ai_exclusion"_s,
        u"Toggles whether an object is excluded from AI features (per-object privacy). When "
        "excluded, its content is withheld from the agent's world snapshot, the semantic/RAG "
        "index, and canon-consistency checks. Pass \"excluded\": false to include it again."_s,
        namedObject(u"object"_s)
            .boolean(u"excluded"_s,
                     u"true to hide the object from AI, false to include it again."_s)
            .required());
}

} // namespace

void registerEntityTools(McpServer &server, Workspace &workspace, McpChangeLog &log)
{
    using Args = const QJsonObject &;
    server.addTool(getEntityTool(), [&](Args a) { return getEntity(workspace, a); });
    server.addTool(createEntityTool(), [&](Args a) { return createEntity(workspace, log, a); });
    server.addTool(updateEntityTool(), [&](Args a) { return updateEntity(workspace, log, a); });
    server.addTool(deleteObjectTool(), [&](Args a) { return deleteObject(workspace, log, a); });
    server.addTool(mergeEntitiesTool(), [&](Args a) { return mergeEntities(workspace, log, a); });
    server.addTool(splitEntityTool(), [&](Args a) { return splitEntity(workspace, log, a); });
    server.addTool(setVisibilityTool(), [&](Args a) { return setVisibility(workspace, log, a); });
    server.addTool(setAiExclusionTool(), [&](Args a) { return setAiExclusion(workspace, log, a); });
}

} // namespace fb::app
