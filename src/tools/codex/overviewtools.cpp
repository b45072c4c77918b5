#include "tools/codex/codexfamily.h"
#include "tools/codex/overviewhandlers.h"

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

ArgumentDeclaration author()
{
    return optionalText(u"author"_s, u"The display author; defaults to \"Claude\"."_s);
}

ArgumentDeclaration commentId()
{
    return requiredText(u"comment"_s, u"The comment's id, as list_comments prints it."_s);
}

} // namespace

std::vector<ToolDefinition> codexOverviewTools()
{
    return {
        {u"get_project_overview"_s,
         u"The project at a glance: object counts per content type, the category "
         "tree with entity counts, the calendar, the audience registry, and the "
         "mounted libraries with their permissions."_s,
         {},
         getProjectOverview},
        {u"search"_s,
         u"Searches every content type by title/name and entity aliases, plus "
         "document body text, across the project and its mounted libraries. Returns "
         "up to 50 matches with one-line context and says so honestly when capped."_s,
         {requiredText(u"query"_s, u"What to find; matched case-insensitively."_s)},
         searchProject},
        {u"add_comment"_s,
         u"Adds a review comment on a named object (Markdown body permitted)."_s,
         {optionalText(u"target"_s, u"The title or name (or an entity's alias) of the object to "
                                    "comment on. Give it or \"target_id\"."_s),
          optionalText(u"target_id"_s, u"The target's id, when its name is ambiguous; used instead "
                                       "of \"target\" when given."_s),
          requiredText(u"body"_s, u"The comment text (Markdown)."_s), author(),
          optionalText(u"anchor"_s, u"An optional locator within the target (e.g. a quoted "
                                    "snippet)."_s)},
         addComment},
        {u"list_comments"_s,
         u"Lists comment threads: for one target, or grouped by target across the "
         "whole project. Only threads with open work unless include_resolved is "
         "true."_s,
         {optionalText(u"target"_s, u"The title or name of one object whose threads to list; omit "
                                    "for the whole project."_s),
          optionalText(u"target_id"_s, u"The target's id, when its name is ambiguous."_s),
          optionalBool(u"include_resolved"_s,
                       u"Also list threads whose comments are all resolved (default "
                       "false)."_s)},
         listComments},
        {u"reply_comment"_s,
         u"Posts a threaded reply to an existing comment (address it by the id "
         "list_comments prints). The reply shares the original's target and joins "
         "its thread."_s,
         {commentId(), requiredText(u"body"_s, u"The reply text (Markdown)."_s), author()},
         replyComment},
        {u"resolve_comment"_s,
         u"Marks a comment resolved (or reopens it with resolved: false). Address it "
         "by the id list_comments prints."_s,
         {commentId(),
          optionalBool(u"resolved"_s, u"true (the default) to resolve the comment, false to reopen "
                                      "it."_s)},
         resolveComment},
    };
}

} // namespace fb::app
