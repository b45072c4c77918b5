#include "core/commands/command.h"
#include "core/commands/commentcommands.h"
#include "core/commands/structuralcommands.h"
#include "core/contentobjects.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/codex/overviewhandlers.h"
#include "tools/common/change.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <map>
#include <optional>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

constexpr qsizetype bodyPreviewLength = 160;
constexpr qsizetype anchorPreviewLength = 40;

const QString authorKey = u"author"_s;
const QString bodyKey = u"body"_s;
const QString commentKey = u"comment"_s;
const QString targetKey = u"target"_s;
const QString targetIdKey = u"target_id"_s;

// The author a comment is signed with. It heads the comment's one line in every listing, so a
// line break in it is refused.
Result<QString> authorArgument(const ToolArguments &arguments)
{
    const QString author = arguments.trimmed(authorKey);
    if (const Result<void> line = checkSingleLine(authorKey, author); !line)
        return makeError(line.error());
    return author.isEmpty() ? u"Claude"_s : author;
}

// White space collapsed to single blanks; past the limit, the first characters, trimmed, and
// "...".
QString shortened(const QString &text, qsizetype limit)
{
    const QString simplified = text.simplified();
    if (simplified.size() <= limit)
        return simplified;
    return simplified.left(limit).trimmed() + u"..."_s;
}

// The detail of a comment line: where in the target it points when it has an anchor, since
// that is what a reviser needs to find the passage; otherwise when it was written, which
// tells the agent how the thread unfolded.
QString commentDetail(const core::Comment &comment)
{
    if (!comment.anchor().trimmed().isEmpty())
        return u'"' + shortened(comment.anchor(), anchorPreviewLength) + u'"';
    if (!comment.createdAt().isValid())
        return u"undated"_s;
    return comment.createdAt().toUTC().toString(u"yyyy-MM-dd HH:mm"_s) + u" UTC"_s;
}

QString commentLine(const core::Comment &comment, int depth)
{
    const QString author = comment.author().trimmed().isEmpty() ? u"unknown"_s : comment.author();
    return u"%1- [%2] %3 (%4): %5 [id: %6]"_s.arg(QString(depth * 2, u' '),
                                                  comment.isResolved() ? u"resolved"_s : u"open"_s,
                                                  author, commentDetail(comment),
                                                  shortened(comment.body(), bodyPreviewLength),
                                                  core::idText(comment.id()));
}

// Threads in the order they were started; replies in the order they were written.
bool writtenBefore(const core::Comment *a, const core::Comment *b)
{
    const QDateTime &first = a->createdAt();
    const QDateTime &second = b->createdAt();
    if (first.isValid() != second.isValid())
        return !first.isValid();
    if (first.isValid() && first != second)
        return first < second;
    return core::compareIds(a->id(), b->id()) < 0;
}

// The comments on one target, with the target when it still exists.
struct CommentGroup
{
    QUuid targetId;
    std::optional<LocatedObject> target;
    qsizetype gatheringIndex = 0;
    std::vector<const core::Comment *> comments;
};

// Every comment the agent may see, grouped by target.
std::vector<CommentGroup> gatherComments(ToolContext &context)
{
    const Visibility &view = context.visibility();
    QHash<QUuid, std::pair<LocatedObject, qsizetype>> objects;
    std::vector<const core::Comment *> comments;
    forEachGatheredObject(context.workspace(), [&](const LocatedObject &located) {
        if (!objects.contains(located.object->id()))
            objects.insert(located.object->id(), {located, objects.size()});
        const auto *comment = core::objectCast<core::Comment>(located.object);
        if (comment && view.isVisible(*comment))
            comments.push_back(comment);
    });

    std::map<QUuid, CommentGroup, core::IdTextLess> groups;
    for (const core::Comment *comment : comments) {
        const auto target = objects.constFind(comment->targetId());
        CommentGroup &group = groups[comment->targetId()];
        if (group.comments.empty()) {
            group.targetId = comment->targetId();
            if (target != objects.cend()) {
                group.target = target->first;
                group.gatheringIndex = target->second;
            }
        }
        group.comments.push_back(comment);
    }

    std::vector<CommentGroup> result;
    for (auto &entry : groups)
        result.push_back(std::move(entry.second));
    // Targets in gathering order, then the groups of deleted targets in id order.
    const auto before = [](const CommentGroup &a, const CommentGroup &b) {
        if (a.target.has_value() != b.target.has_value())
            return a.target.has_value();
        return a.gatheringIndex < b.gatheringIndex;
    };
    std::stable_sort(result.begin(), result.end(), before);
    return result;
}

struct ThreadEntry
{
    const core::Comment *comment;
    int depth;
};

// The group's threads, each as its comments in thread order (a reply below the comment it
// answers). A reply whose comment is gone starts a thread of its own, and comments caught in a
// loop of replies are still shown, once each.
std::vector<std::vector<ThreadEntry>> threadsOf(const CommentGroup &group)
{
    QSet<QUuid> ids;
    for (const core::Comment *comment : group.comments)
        ids.insert(comment->id());
    std::vector<const core::Comment *> sorted = group.comments;
    std::sort(sorted.begin(), sorted.end(), writtenBefore);
    QHash<QUuid, std::vector<const core::Comment *>> replies;
    std::vector<const core::Comment *> starts;
    for (const core::Comment *comment : sorted) {
        if (!comment->parentId().isNull() && ids.contains(comment->parentId())
            && comment->parentId() != comment->id()) {
            replies[comment->parentId()].push_back(comment);
        } else {
            starts.push_back(comment);
        }
    }

    QSet<QUuid> shown;
    std::vector<std::vector<ThreadEntry>> threads;
    const auto collect = [&](const core::Comment *start) {
        std::vector<ThreadEntry> thread;
        std::vector<ThreadEntry> stack{{start, 0}};
        while (!stack.empty()) {
            const ThreadEntry entry = stack.back();
            stack.pop_back();
            if (shown.contains(entry.comment->id()))
                continue;
            shown.insert(entry.comment->id());
            thread.push_back(entry);
            const auto &children = replies.value(entry.comment->id());
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                stack.push_back({*child, entry.depth + 1});
        }
        threads.push_back(std::move(thread));
    };
    for (const core::Comment *start : starts)
        collect(start);
    for (const core::Comment *comment : sorted) {
        if (!shown.contains(comment->id()))
            collect(comment);
    }
    return threads;
}

// The lines of the group's threads that are shown: all of them, or only those with an open
// comment.
QStringList groupLines(const CommentGroup &group, bool includeResolved)
{
    QStringList lines;
    for (const std::vector<ThreadEntry> &thread : threadsOf(group)) {
        const bool open = std::any_of(thread.cbegin(), thread.cend(), [](const ThreadEntry &entry) {
            return !entry.comment->isResolved();
        });
        if (!open && !includeResolved)
            continue;
        for (const ThreadEntry &entry : thread)
            lines.append(commentLine(*entry.comment, entry.depth));
    }
    return lines;
}

QString groupHeading(const CommentGroup &group)
{
    if (!group.target)
        return u"## (deleted object)"_s;
    const core::ContentObject &target = *group.target->object;
    QString title = core::objectTitle(target);
    if (title.trimmed().isEmpty())
        title = u"(untitled %1)"_s.arg(core::objectTypeNoun(target.type()));
    if (group.target->isInLibrary())
        return u"## %1 (library '%2')"_s.arg(title, group.target->libraryName);
    return u"## "_s + title;
}

// The target named by "target" or "target_id"; the lookup withholds what the agent may not see.
Result<LocatedObject> findTarget(ToolContext &context, const ToolArguments &arguments,
                                 bool forChange)
{
    ObjectQuery query;
    query.name = arguments.trimmed(targetKey);
    query.id = arguments.trimmed(targetIdKey);
    query.forChange = forChange;
    return findObject(context, query);
}

bool namesTarget(const ToolArguments &arguments)
{
    return !arguments.trimmed(targetKey).isEmpty() || !arguments.trimmed(targetIdKey).isEmpty();
}

// The comment a reply or resolution addresses by id: only the open project's comments can be
// changed, and a withheld comment is refused as the writers refuse any withheld object.
Result<core::Comment *> resolveCommentId(ToolContext &context, const QString &text)
{
    Workspace &workspace = context.workspace();
    const QUuid id = parseObjectId(text);
    if (id.isNull())
        return makeError(u"'%1' is not a valid comment id."_s.arg(text));
    if (auto *comment = workspace.project().objectAs<core::Comment>(id)) {
        if (!context.visibility().isVisible(*comment))
            return makeError(excludedFromAiMessage(text, true));
        return comment;
    }
    for (const MountedLibrary &library : workspace.libraries()) {
        if (library.project && library.project->objectAs<core::Comment>(id)) {
            return makeError(u"Comment '%1' lives in a mounted library; this server "
                             "edits only the open project."_s.arg(text));
        }
    }
    return makeError(u"No comment with id '%1' exists in this project."_s.arg(text));
}

std::unique_ptr<core::Comment> newComment(const QDateTime &now, const QUuid &targetId,
                                          const QUuid &parentId, const QString &author,
                                          const QString &body, const QString &anchor)
{
    core::CommentRecord record;
    record.targetId = targetId;
    record.parentId = parentId;
    record.anchor = anchor;
    record.author = author;
    record.body = body;
    record.createdAt = now;
    record.updatedAt = now;
    auto comment = std::make_unique<core::Comment>();
    comment->setRecord(record);
    return comment;
}

// The step that adds a comment to the open project.
std::unique_ptr<core::CompositeCommand> addingComment(core::Project &project, const QString &label,
                                                      std::unique_ptr<core::Comment> comment)
{
    auto change = std::make_unique<core::CompositeCommand>(label);
    change->append(std::make_unique<core::AddObjectCommand>(project, std::move(comment)));
    return change;
}

} // namespace

McpToolResult addComment(ToolContext &context, const ToolArguments &arguments)
{
    if (!namesTarget(arguments)) {
        return McpToolResult::failure(u"add_comment needs \"target\" (or \"target_id\")."_s);
    }
    const Result<LocatedObject> target = findTarget(context, arguments, true);
    if (!target)
        return McpToolResult::failure(target.error());
    if (target->isInLibrary())
        return McpToolResult::failure(libraryRefusal(*target));
    const QString body = arguments.trimmed(bodyKey);
    if (body.isEmpty())
        return McpToolResult::failure(u"add_comment needs a non-empty \"body\"."_s);
    const Result<QString> author = authorArgument(arguments);
    if (!author)
        return McpToolResult::failure(author.error());

    std::unique_ptr<core::Comment> comment = newComment(context.now(), target->object->id(),
                                                        QUuid(), *author, body,
                                                        arguments.trimmed(u"anchor"_s));
    // The answer is the one sentence agents already know; the new comment's id, which
    // reply_comment and resolve_comment take, is listed by list_comments.
    const QString text = u"Added a comment by %1 on '%2'."_s.arg(*author, core::objectTitle(
                                                                              *target->object));
    return applyChange(context,
                       addingComment(context.workspace().project(), u"MCP: add comment"_s,
                                     std::move(comment)),
                       text);
}

McpToolResult listComments(ToolContext &context, const ToolArguments &arguments)
{
    const bool includeResolved = arguments.boolean(u"include_resolved"_s);
    if (namesTarget(arguments)) {
        const Result<LocatedObject> target = findTarget(context, arguments, false);
        if (!target)
            return McpToolResult::failure(target.error());
        const std::vector<CommentGroup> groups = gatherComments(context);
        const QUuid id = target->object->id();
        const auto group = std::find_if(groups.cbegin(), groups.cend(),
                                        [&](const CommentGroup &g) { return g.targetId == id; });
        const QStringList lines = group == groups.cend() ? QStringList()
                                                         : groupLines(*group, includeResolved);
        if (lines.isEmpty()) {
            return McpToolResult::success(
                u"No %1comments on '%2' yet."_s.arg(includeResolved ? QString() : u"open "_s,
                                                    core::objectTitle(*target->object)));
        }
        return McpToolResult::success(lines.join(u'\n'));
    }

    const std::vector<CommentGroup> groups = gatherComments(context);
    if (groups.empty())
        return McpToolResult::success(u"No comments yet."_s);
    QStringList sections;
    for (const CommentGroup &group : groups) {
        const QStringList lines = groupLines(group, includeResolved);
        if (!lines.isEmpty())
            sections.append(groupHeading(group) + u'\n' + lines.join(u'\n'));
    }
    if (sections.isEmpty()) {
        return McpToolResult::success(
            u"No open comments; pass include_resolved to see resolved threads."_s);
    }
    return McpToolResult::success(sections.join(u"\n\n"_s));
}

McpToolResult replyComment(ToolContext &context, const ToolArguments &arguments)
{
    const QString id = arguments.trimmed(commentKey);
    if (id.isEmpty()) {
        return McpToolResult::failure(
            u"reply_comment needs \"comment\" (the id shown by list_comments)."_s);
    }
    const QString body = arguments.trimmed(bodyKey);
    if (body.isEmpty())
        return McpToolResult::failure(u"reply_comment needs a non-empty \"body\"."_s);
    const Result<core::Comment *> answered = resolveCommentId(context, id);
    if (!answered)
        return McpToolResult::failure(answered.error());
    const Result<QString> author = authorArgument(arguments);
    if (!author)
        return McpToolResult::failure(author.error());

    return applyChange(context,
                       addingComment(context.workspace().project(), u"MCP: reply to comment"_s,
                                     newComment(context.now(), (*answered)->targetId(),
                                                (*answered)->id(), *author, body, QString())),
                       u"Added a reply by %1."_s.arg(*author));
}

McpToolResult resolveComment(ToolContext &context, const ToolArguments &arguments)
{
    const QString id = arguments.trimmed(commentKey);
    if (id.isEmpty()) {
        return McpToolResult::failure(
            u"resolve_comment needs \"comment\" (the id shown by list_comments)."_s);
    }
    const bool resolved = arguments.boolean(u"resolved"_s, true);
    const Result<core::Comment *> found = resolveCommentId(context, id);
    if (!found)
        return McpToolResult::failure(found.error());
    const core::Comment &comment = **found;
    if (comment.isResolved() == resolved) {
        return McpToolResult::success(resolved ? u"That comment is already resolved."_s
                                               : u"That comment is already open."_s);
    }

    core::CommentRecord record = comment.record();
    record.resolved = resolved;
    record.updatedAt = context.now();
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: resolve comment"_s);
    change->append(std::make_unique<core::SetCommentCommand>(context.workspace().project(),
                                                             comment.id(), record));
    return applyChange(context, std::move(change),
                       resolved ? u"Marked the comment resolved."_s : u"Reopened the comment."_s);
}

} // namespace fb::app
