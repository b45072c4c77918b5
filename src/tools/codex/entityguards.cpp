#include "core/commands/command.h"
#include "core/commands/objectcommands.h"
#include "core/commands/structuralcommands.h"
#include "core/contentobjects.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/codex/entityhandlers.h"
#include "tools/codex/entitysupport.h"
#include "tools/codex/references.h"
#include "tools/common/change.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// A document's children would be left under a parent that no longer exists, out of every
// reading of the manuscript. They move up instead, in their order, to where the document stood
// among its siblings, as a category's subcategories do when it is deleted; undo puts them back.
void moveChildrenUp(core::Project &project, const core::Document &document,
                    core::CompositeCommand &change)
{
    const std::vector<core::Document *> siblings = project.childrenOf(document.parentId());
    const auto place = std::find(siblings.begin(), siblings.end(), &document);
    int position = int(place - siblings.begin()) + 1;
    for (const core::Document *child : project.childrenOf(document.id())) {
        change.append(std::make_unique<core::MoveDocumentCommand>(project, child->id(),
                                                                  document.parentId(), position));
        ++position;
    }
}

} // namespace

McpToolResult deleteObject(ToolContext &context, const ToolArguments &arguments)
{
    const ObjectQuery query = objectQuery(arguments, u"name"_s);
    if (query.name.isEmpty() && query.id.isEmpty())
        return McpToolResult::failure(u"delete_object needs \"name\" (or \"id\")."_s);
    const Result<LocatedObject> located = findObjectToChange(context, query);
    if (!located)
        return McpToolResult::failure(located.error());
    const core::ContentObject &object = *located->object;
    core::Project &project = context.workspace().project();

    // References are left as they are, so that undo gives back a project whose references all
    // resolve again; the agent is told how many now point nowhere.
    QString dangling;
    if (object.type() == core::ObjectType::Entity) {
        if (const std::size_t count = walkReferences(project, object.id()).references.size()) {
            dangling = u" %1 reference(s) to it elsewhere are now dangling."_s.arg(
                QString::number(count));
        }
    }
    const QString text = u"Deleted the %1 '%2'.%3"_s.arg(core::objectTypeNoun(object.type()),
                                                         core::objectTitle(object), dangling);
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: delete object"_s);
    if (const auto *document = core::objectCast<core::Document>(&object))
        moveChildrenUp(project, *document, *change);
    change->append(std::make_unique<core::RemoveObjectCommand>(project, object.id()));
    return applyChange(context, std::move(change), text);
}

QString missingAudiences()
{
    return u"set_visibility needs \"audiences\" (an array of audience names; empty means "
           "visible to everyone)."_s;
}

QString missingExclusion()
{
    return u"set_ai_exclusion needs \"excluded\" (true to hide the object from AI, false to "
           "include it again)."_s;
}

McpToolResult setVisibility(ToolContext &context, const ToolArguments &arguments)
{
    const ObjectQuery query = objectQuery(arguments, u"name"_s);
    if (query.name.isEmpty() && query.id.isEmpty())
        return McpToolResult::failure(u"set_visibility needs \"name\" (or \"id\")."_s);
    const Result<LocatedObject> located = findObjectToChange(context, query);
    if (!located)
        return McpToolResult::failure(located.error());
    if (!arguments.has(u"audiences"_s)) {
        return McpToolResult::failure(missingAudiences());
    }
    QStringList audiences;
    for (const QString &element : arguments.textList(u"audiences"_s)) {
        const QString name = element.trimmed();
        if (name.isEmpty() || audiences.contains(name))
            continue;
        // Audience names are listed on one line, in the overview and in this tool's answer.
        if (const Result<void> line = checkSingleLine(u"audiences"_s, name); !line)
            return McpToolResult::failure(line.error());
        audiences.append(name);
    }

    core::Project &project = context.workspace().project();
    const core::ContentObject &object = *located->object;
    const QString title = core::objectTitle(object);
    const QStringList added = core::SetAudiencesCommand::unregistered(project.audiences(),
                                                                      audiences);
    QString text = audiences.isEmpty()
                       ? u"'%1' is now visible to everyone."_s.arg(title)
                       : u"'%1' is now visible only to: %2."_s.arg(title, audiences.join(u", "_s));
    if (!added.isEmpty())
        text += u" New audience(s) registered: %1."_s.arg(added.join(u", "_s));
    if (added.isEmpty() && core::sortedUnique(audiences) == object.visibleTo())
        return McpToolResult::success(text);

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: set visibility"_s);
    change->append(std::make_unique<core::SetAudiencesCommand>(project, object.id(), audiences));
    return applyChange(context, std::move(change), text);
}

McpToolResult setAiExclusion(ToolContext &context, const ToolArguments &arguments)
{
    ObjectQuery query = objectQuery(arguments, u"name"_s);
    if (query.name.isEmpty() && query.id.isEmpty())
        return McpToolResult::failure(u"set_ai_exclusion needs \"name\" (or \"id\")."_s);
    // The one lookup that finds excluded objects, so that they can be included again.
    query.allowExcluded = true;
    const Result<LocatedObject> located = findObjectToChange(context, query);
    if (!located)
        return McpToolResult::failure(located.error());
    if (!arguments.has(u"excluded"_s)) {
        return McpToolResult::failure(missingExclusion());
    }
    const bool excluded = arguments.boolean(u"excluded"_s);
    const core::ContentObject &object = *located->object;
    const QString title = core::objectTitle(object);
    if (object.isAiExcluded() == excluded) {
        return McpToolResult::success(excluded ? u"'%1' is already excluded from AI."_s.arg(title)
                                               : u"'%1' is already included in AI."_s.arg(title));
    }
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: set AI exclusion"_s);
    change->append(std::make_unique<core::SetAiExclusionCommand>(context.workspace().project(),
                                                                 object.id(), excluded));
    return applyChange(context, std::move(change),
                       excluded ? u"'%1' is now excluded from AI features (its content is withheld "
                                  "from the agent snapshot, the world index, and consistency "
                                  "checks)."_s.arg(title)
                                : u"'%1' is now included in AI features again."_s.arg(title));
}

} // namespace fb::app
