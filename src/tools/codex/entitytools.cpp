#include "tools/codex/codexfamily.h"
#include "tools/codex/entityhandlers.h"

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// The tools that take any codex object name it by "name", or by "id" when names collide; one of
// the two is needed, so neither is marked required.
QList<ArgumentDeclaration> namedObject(const QString &noun, QList<ArgumentDeclaration> more = {})
{
    QList<ArgumentDeclaration> arguments{
        optionalText(u"name"_s,
                     u"The %1's name (an entity's alias works too; case-insensitive). Give the "
                     "name or the \"id\"."_s.arg(noun)),
        optionalText(u"id"_s,
                     u"The %1's id, to disambiguate when several share the name; used instead "
                     "of the name when given."_s.arg(noun))};
    arguments.append(more);
    return arguments;
}

// An entity named by its name or alias under `key`, or by its id under `key` + "_id".
QList<ArgumentDeclaration> namedEntity(const QString &key, const QString &what, const QString &whose)
{
    return {optionalText(key, u"%1 (name or alias). Give it or \"%2_id\"."_s.arg(what, key)),
            optionalText(key + u"_id"_s,
                         u"%1 id, when its name is ambiguous; used instead of \"%2\" when "
                         "given."_s.arg(whose, key))};
}

// The kit builds booleans as optional; a tool that cannot act without one still lists it as
// required.
ArgumentDeclaration required(ArgumentDeclaration declaration)
{
    declaration.isRequired = true;
    return declaration;
}

const QString fieldValueForms
    = u"each in its field's form: text, a number, true or false, a story date in the project "
      "calendar, one of a choice field's options, or an absolute http(s)/mailto URL"_s;

} // namespace

std::vector<ToolDefinition> codexEntityTools()
{
    return {
        {u"get_entity"_s,
         u"One entity in full: category, aliases, tags, lifespan in the project calendar, field "
         "values (references resolved to names), state over time, gallery size, and where it is "
         "mentioned."_s,
         namedObject(u"entity"_s), getEntity},
        {u"create_entity"_s,
         u"Creates a codex entity. The category is created when absent; extra fields are created "
         "as text fields on it."_s,
         {requiredText(u"name"_s, u"The new entity's name."_s),
          requiredText(u"category"_s, u"The category to file it under (created when absent)."_s),
          optionalText(u"summary"_s, u"A one-line summary, stored in the Summary field."_s),
          optionalObject(u"fields"_s,
                         u"Field values by field label (or key), %1; a reference field takes the "
                         "target entity's name."_s.arg(fieldValueForms)),
          optionalTextList(u"aliases"_s, u"The entity's other names."_s),
          optionalTextList(u"tags"_s, u"The entity's tags."_s)},
         createEntity},
        {u"update_entity"_s,
         u"Sparse update of one entity: only the provided keys change, absent keys leave the "
         "entity untouched. \"new_name\" renames it; \"category\" moves it to another category "
         "(created when absent). \"aliases\" and \"tags\" replace their whole set; an empty "
         "\"born\"/\"died\" string clears that date. \"fields\" is for CUSTOM fields only -- a "
         "built-in property named there is refused."_s,
         {optionalText(u"entity"_s,
                       u"The entity's name or alias (case-insensitive). Give it or the \"id\"."_s),
          optionalText(u"id"_s,
                       u"The entity's id, to disambiguate when several share the name; used "
                       "instead of \"entity\" when given."_s),
          optionalText(u"new_name"_s, u"Rename the entity to this name."_s),
          optionalText(u"category"_s, u"Move the entity to this category (created when absent)."_s),
          optionalObject(u"fields"_s,
                         u"Custom field values by label (or key), %1; an empty value clears the "
                         "field, and a field not yet defined is added to the category as a text "
                         "field. Reference fields are set with \"references\"."_s.arg(
                             fieldValueForms)),
          optionalTextList(u"aliases"_s, u"The whole new alias set."_s),
          optionalTextList(u"tags"_s, u"The whole new tag set."_s),
          optionalText(u"born"_s, u"Birth date in the project calendar; empty clears it."_s),
          optionalText(u"died"_s, u"Death date in the project calendar; empty clears it."_s),
          optionalObject(u"references"_s,
                         u"Reference field values by field label: the target entity's name."_s),
          withTypeRefusal(
              optionalRecordList(u"timed_values"_s,
                                 u"The whole new state over time; an empty array clears it."_s,
                                 {requiredText(u"field"_s, u"The field's label or key."_s),
                                  requiredText(u"when"_s, u"The story date it holds from."_s),
                                  optionalText(u"value"_s, u"The value from that date on."_s)}),
              u"\"timed_values\" must be an array of {field, when, value} objects."_s)},
         updateEntity},
        {u"delete_object"_s,
         u"Deletes any titled object (entity, document, map, spreadsheet, timeline event, ...) by "
         "name and states what type it deleted. One undo step."_s,
         namedObject(u"object"_s), deleteObject},
        {u"merge_entities"_s,
         u"Merges the source entity into the target: fills gaps in the target, re-points every "
         "reference from the source, then removes the source. One undo step."_s,
         namedEntity(u"source"_s, u"The entity to merge away"_s, u"The source's"_s)
             + namedEntity(u"target"_s, u"The entity that absorbs it"_s, u"The target's"_s),
         mergeEntities},
        {u"split_entity"_s,
         u"Carves a new entity off an existing one (the inverse of merge_entities): the new entity "
         "is created in the source's category, copying the chosen fields (and optionally the "
         "lifespan). The source is left intact -- you then divide the references between the two "
         "by hand."_s,
         namedEntity(u"source"_s, u"The entity to carve from"_s, u"The source's"_s)
             + QList<
                 ArgumentDeclaration>{requiredText(u"new_name"_s, u"The new entity's name."_s),
                                      optionalTextList(u"fields"_s,
                                                       u"Labels or keys of the fields to copy."_s),
                                      optionalBool(u"copy_lifespan"_s,
                                                   u"true to copy the birth and death dates too."_s)},
         splitEntity},
        {u"set_visibility"_s,
         u"Restricts an object to the named audiences (an empty array makes it visible to "
         "everyone). Audience names the project has not seen yet are added to its registry."_s,
         namedObject(
             u"object"_s,
             {withTypeRefusal(requiredTextList(u"audiences"_s,
                                               u"The audience names that may see the object."_s),
                              missingAudiences())}),
         setVisibility},
        {u"set_ai_exclusion"_s,
         u"Toggles whether an object is excluded from AI features (per-object privacy). When "
         "excluded, its content is withheld from the agent's world snapshot, the semantic/RAG "
         "index, and canon-consistency checks. Pass \"excluded\": false to include it again."_s,
         namedObject(u"object"_s,
                     {withTypeRefusal(
                         required(optionalBool(
                             u"excluded"_s,
                             u"true to hide the object from AI, false to include it again."_s)),
                         missingExclusion())}),
         setAiExclusion},
    };
}

} // namespace fb::app
