#include "tools/codex/overviewhandlers.h"

#include "core/commands/command.h"
#include "core/commands/commentcommands.h"
#include "core/commands/structuralcommands.h"
#include "core/contentobjects.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/applylogsave.h"
#include "storage/workspace.h"
#include "tools/codex/agentview.h"
#include "tools/common/arguments.h"
#include "tools/common/objectlookup.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <map>
#include <optional>

namespace fb::app {

namespace {

constexpr qsizetype bodyPreviewLength = 160;
constexpr qsizetype anchorPreviewLength = 40;

QString authorArgument(const QJsonObject &arguments)
{
    const QString author = trimmedArgument(arguments, QStringLiteral("author"));
    return author.isEmpty() ? QStringLiteral("Claude") : author;
}

// White space collapsed to single blanks; past the limit, the first characters, trimmed, and
// "...".
QString shortened(const QString &text, qsizetype limit)
{
    const QString simplified = text.simplified();
    if (simplified.size() <= limit)
        return simplified;
    return simplified.left(limit).trimmed() + QStringLiteral("...");
}

// The detail of a comment line: where in the target it points when it has an anchor, since
// that is what a reviser needs to find the passage; otherwise when it was written, which
// tells the agent how the thread unfolded.
QString commentDetail(const core::Comment &comment)
{
    if (!comment.anchor().trimmed().isEmpty())
        return u'"' + shortened(comment.anchor(), anchorPreviewLength) + u'"';
    if (!comment.createdAt().isValid())
        return QStringLiteral("undated");
    return comment.createdAt().toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm"))
           + QStringLiteral(" UTC");
}

QString commentLine(const core::Comment &comment, int depth)
{
    const QString author = comment.author().trimmed().isEmpty() ? QStringLiteral("unknown")
                                                                : comment.author();
    return QStringLiteral("%1- [%2] %3 (%4): %5 [id: %6]")
        .arg(QString(depth * 2, u' '),
             comment.isResolved() ? QStringLiteral("resolved") : QStringLiteral("open"), author,
             commentDetail(comment), shortened(comment.body(), bodyPreviewLength),
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
std::vector<CommentGroup> gatherComments(Workspace &workspace, const AgentView &view)
{
    QHash<QUuid, std::pair<LocatedObject, qsizetype>> objects;
    std::vector<const core::Comment *> comments;
    forEachGatheredObject(workspace, [&](const LocatedObject &located) {
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
        return QStringLiteral("## (deleted object)");
    const core::ContentObject &target = *group.target->object;
    QString title = core::objectTitle(target);
    if (title.trimmed().isEmpty())
        title = QStringLiteral("(untitled %1)").arg(core::objectTypeNoun(target.type()));
    if (group.target->isInLibrary())
        return QStringLiteral("## %1 (library '%2')").arg(title, group.target->libraryName);
    return QStringLiteral("## ") + title;
}

// The target named by "target" or "target_id"; a document below an excluded one is withheld
// like the excluded one itself.
Result<LocatedObject> findTarget(Workspace &workspace, const AgentView &view,
                                 const QJsonObject &arguments, bool forChange)
{
    ObjectQuery query;
    query.name = trimmedArgument(arguments, QStringLiteral("target"));
    query.id = trimmedArgument(arguments, QStringLiteral("target_id"));
    query.forChange = forChange;
    Result<LocatedObject> found = findObject(workspace, query);
    if (found && !view.isVisible(*found->object))
        return makeError(excludedFromAiMessage(core::objectTitle(*found->object), forChange));
    return found;
}

bool namesTarget(const QJsonObject &arguments)
{
    return !trimmedArgument(arguments, QStringLiteral("target")).isEmpty()
           || !trimmedArgument(arguments, QStringLiteral("target_id")).isEmpty();
}

// The comment a reply or resolution addresses by id: only the open project's comments can be
// changed, and a withheld comment is refused as the writers refuse any withheld object.
Result<core::Comment *> resolveCommentId(Workspace &workspace, const QString &text)
{
    const QUuid id = parseObjectId(text);
    if (id.isNull())
        return makeError(QStringLiteral("'%1' is not a valid comment id.").arg(text));
    if (auto *comment = workspace.project().objectAs<core::Comment>(id)) {
        if (!AgentView(workspace).isVisible(*comment))
            return makeError(excludedFromAiMessage(text, true));
        return comment;
    }
    for (const MountedLibrary &library : workspace.libraries()) {
        if (library.project && library.project->objectAs<core::Comment>(id)) {
            return makeError(QStringLiteral("Comment '%1' lives in a mounted library; this server "
                                            "edits only the open project.")
                                 .arg(text));
        }
    }
    return makeError(QStringLiteral("No comment with id '%1' exists in this project.").arg(text));
}

std::unique_ptr<core::Comment> newComment(const QUuid &targetId, const QUuid &parentId,
                                          const QString &author, const QString &body,
                                          const QString &anchor)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
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

McpToolResult addCommentObject(Workspace &workspace, McpChangeLog &log, const QString &label,
                               std::unique_ptr<core::Comment> comment, const QString &text)
{
    auto change = std::make_unique<core::CompositeCommand>(label);
    change->append(
        std::make_unique<core::AddObjectCommand>(workspace.project(), std::move(comment)));
    return applyChange(workspace, log, std::move(change), text);
}

} // namespace

McpToolResult addComment(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    if (!namesTarget(arguments)) {
        return McpToolResult::failure(
            QStringLiteral("add_comment needs \"target\" (or \"target_id\")."));
    }
    const AgentView view(workspace);
    const Result<LocatedObject> target = findTarget(workspace, view, arguments, true);
    if (!target)
        return McpToolResult::failure(target.error());
    if (target->isInLibrary())
        return McpToolResult::failure(libraryRefusal(*target));
    const QString body = trimmedArgument(arguments, QStringLiteral("body"));
    if (body.isEmpty())
        return McpToolResult::failure(QStringLiteral("add_comment needs a non-empty \"body\"."));

    const QString author = authorArgument(arguments);
    const QString title = core::objectTitle(*target->object);
    return addCommentObject(
        workspace, log, QStringLiteral("MCP: add comment"),
        newComment(target->object->id(), QUuid(), author, body,
                   trimmedArgument(arguments, QStringLiteral("anchor"))),
        QStringLiteral("Added a comment by %1 on '%2'.").arg(author, title));
}

McpToolResult listComments(Workspace &workspace, const QJsonObject &arguments)
{
    const bool includeResolved = boolArgument(arguments, QStringLiteral("include_resolved"));
    const AgentView view(workspace);
    if (namesTarget(arguments)) {
        const Result<LocatedObject> target = findTarget(workspace, view, arguments, false);
        if (!target)
            return McpToolResult::failure(target.error());
        const std::vector<CommentGroup> groups = gatherComments(workspace, view);
        const QUuid id = target->object->id();
        const auto group = std::find_if(groups.cbegin(), groups.cend(),
                                        [&](const CommentGroup &g) { return g.targetId == id; });
        const QStringList lines = group == groups.cend() ? QStringList()
                                                         : groupLines(*group, includeResolved);
        if (lines.isEmpty()) {
            return McpToolResult::success(
                QStringLiteral("No %1comments on '%2' yet.")
                    .arg(includeResolved ? QString() : QStringLiteral("open "),
                         core::objectTitle(*target->object)));
        }
        return McpToolResult::success(lines.join(u'\n'));
    }

    const std::vector<CommentGroup> groups = gatherComments(workspace, view);
    if (groups.empty())
        return McpToolResult::success(QStringLiteral("No comments yet."));
    QStringList sections;
    for (const CommentGroup &group : groups) {
        const QStringList lines = groupLines(group, includeResolved);
        if (!lines.isEmpty())
            sections.append(groupHeading(group) + u'\n' + lines.join(u'\n'));
    }
    if (sections.isEmpty()) {
        return McpToolResult::success(
            QStringLiteral("No open comments; pass include_resolved to see resolved threads."));
    }
    return McpToolResult::success(sections.join(QStringLiteral("\n\n")));
}

McpToolResult replyComment(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    const QString id = trimmedArgument(arguments, QStringLiteral("comment"));
    if (id.isEmpty()) {
        return McpToolResult::failure(
            QStringLiteral("reply_comment needs \"comment\" (the id shown by list_comments)."));
    }
    const QString body = trimmedArgument(arguments, QStringLiteral("body"));
    if (body.isEmpty())
        return McpToolResult::failure(QStringLiteral("reply_comment needs a non-empty \"body\"."));
    const Result<core::Comment *> answered = resolveCommentId(workspace, id);
    if (!answered)
        return McpToolResult::failure(answered.error());

    const QString author = authorArgument(arguments);
    return addCommentObject(workspace, log, QStringLiteral("MCP: reply to comment"),
                            newComment((*answered)->targetId(), (*answered)->id(), author, body,
                                       QString()),
                            QStringLiteral("Added a reply by %1.").arg(author));
}

McpToolResult resolveComment(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    const QString id = trimmedArgument(arguments, QStringLiteral("comment"));
    if (id.isEmpty()) {
        return McpToolResult::failure(
            QStringLiteral("resolve_comment needs \"comment\" (the id shown by list_comments)."));
    }
    const Result<core::Comment *> found = resolveCommentId(workspace, id);
    if (!found)
        return McpToolResult::failure(found.error());
    const core::Comment &comment = **found;
    const bool resolved = boolArgument(arguments, QStringLiteral("resolved"), true);
    if (comment.isResolved() == resolved) {
        return McpToolResult::success(resolved ? QStringLiteral("That comment is already resolved.")
                                               : QStringLiteral("That comment is already open."));
    }

    core::CommentRecord record = comment.record();
    record.resolved = resolved;
    record.updatedAt = QDateTime::currentDateTimeUtc();
    auto change = std::make_unique<core::CompositeCommand>(QStringLiteral("MCP: resolve comment"));
    change->append(std::make_unique<core::SetCommentCommand>(workspace.project(), comment.id(),
                                                             record));
    return applyChange(workspace, log, std::move(change),
                       resolved ? QStringLiteral("Marked the comment resolved.")
                                : QStringLiteral("Reopened the comment."));
}

} // namespace fb::app
