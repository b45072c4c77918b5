#include "core/commands/command.h"
#include "core/commands/documentcommands.h"
#include "core/commands/structuralcommands.h"
#include "core/document.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/bodytext.h"
#include "tools/common/change.h"
#include "tools/common/documentlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/documents/documenthandlers.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QString parentLabel = u"parent \"parent\""_s;

Result<core::DocumentKind> parseKind(const QString &text)
{
    const QString name = text.trimmed();
    if (const std::optional<core::DocumentKind> kind = core::enumFromName<core::DocumentKind>(
            name.toLower())) {
        return *kind;
    }
    return makeError(u"Unknown document kind '%1' (use prose, note, or screenplay)."_s.arg(name));
}

bool hasParentArgument(const ToolArguments &arguments)
{
    return arguments.has(u"parent"_s) || arguments.has(u"parent_id"_s);
}

// The parent a call names, or the null id for the top level (an empty "parent").
Result<core::Document *> resolveParent(ToolContext &context, const ToolArguments &arguments)
{
    const QString id = arguments.trimmed(u"parent_id"_s);
    const QString title = arguments.trimmed(u"parent"_s);
    if (id.isEmpty() && title.isEmpty())
        return static_cast<core::Document *>(nullptr);
    return resolveDocument(context, title, id, parentLabel);
}

// Every document stays addressable by its title: no two share one. `renamed` is the document
// taking the title, which may keep its own.
Result<void> checkDistinctTitle(const core::Project &project, const QString &title,
                                const core::Document *renamed)
{
    for (const core::Document *existing : project.objectsOfType<core::Document>()) {
        if (existing != renamed && sameTitle(existing->title(), title)) {
            return makeError(u"A document titled '%1' already exists; choose a distinct "
                             "title so each document stays addressable by name."_s.arg(title));
        }
    }
    return {};
}

int childCount(const core::Project &project, const QUuid &parentId)
{
    return int(project.childrenOf(parentId).size());
}

// The new body after appending prose, in the body's own format: paragraphs before the closing
// body tag of a rich-text body, a blank line and the text for Markdown.
QString appendedBody(const QString &body, const QString &text)
{
    const qsizetype closing = body.lastIndexOf(u"</body>"_s, -1, Qt::CaseInsensitive);
    if (isRichText(body) && closing >= 0) {
        QString fragment;
        for (const QString &part : text.split(u"\n\n"_s, Qt::SkipEmptyParts)) {
            QString paragraph = part.trimmed().toHtmlEscaped();
            paragraph.replace(u'\n', u"<br />"_s);
            fragment += u"<p>%1</p>\n"_s.arg(paragraph);
        }
        QString result = body;
        result.insert(closing, fragment);
        return result;
    }
    if (body.trimmed().isEmpty())
        return text;
    return body + u"\n\n"_s + text;
}

} // namespace

McpToolResult createDocument(ToolContext &context, const ToolArguments &arguments)
{
    core::Project &project = context.workspace().project();
    const QString title = arguments.trimmed(u"title"_s);
    if (title.isEmpty())
        return McpToolResult::failure(u"create_document needs a non-empty \"title\"."_s);
    if (const Result<void> line = checkSingleLine(u"title"_s, title); !line)
        return McpToolResult::failure(line.error());
    if (const Result<void> distinct = checkDistinctTitle(project, title, nullptr); !distinct)
        return McpToolResult::failure(distinct.error());
    core::DocumentKind kind = core::DocumentKind::Prose;
    if (const QString kindText = arguments.text(u"kind"_s); !kindText.trimmed().isEmpty()) {
        const Result<core::DocumentKind> parsed = parseKind(kindText);
        if (!parsed)
            return McpToolResult::failure(parsed.error());
        kind = *parsed;
    }
    const Result<core::Document *> parent = resolveParent(context, arguments);
    if (!parent)
        return McpToolResult::failure(parent.error());

    const QUuid parentId = *parent ? (*parent)->id() : QUuid();
    auto document = std::make_unique<core::Document>(title);
    document->setKind(kind);
    document->setParentId(parentId);
    document->setSortIndex(childCount(project, parentId));
    const QString body = arguments.text(u"body"_s);
    if (!body.isEmpty())
        document->setBody(body);
    if (const QString synopsis = arguments.trimmed(u"synopsis"_s); !synopsis.isEmpty()) {
        document->setSynopsis(synopsis);
    }

    const QString placement = *parent ? u"under '%1'"_s.arg(arguments.text(u"parent"_s))
                                      : u"at the top level"_s;
    const QString text = u"Created the %1 document '%2' %3 (%4 characters)."_s
                             .arg(core::enumName(kind), title, placement,
                                  QString::number(body.size()));
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: create_document"_s);
    change->append(std::make_unique<core::AddObjectCommand>(project, std::move(document)));
    return applyChange(context, std::move(change), text);
}

QString badWordCountTarget()
{
    return u"\"word_count_target\" must be a non-negative integer (0 clears the target)."_s;
}

McpToolResult updateDocument(ToolContext &context, const ToolArguments &arguments)
{
    core::Project &project = context.workspace().project();
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;

    const auto has = [&](const char *key) { return arguments.has(QString::fromLatin1(key)); };
    const auto text = [&](const char *key) { return arguments.text(QString::fromLatin1(key)); };

    const QString newTitle = text("new_title").trimmed();
    if (has("new_title")) {
        if (newTitle.isEmpty())
            return McpToolResult::failure(u"\"new_title\" must not be empty."_s);
        if (const Result<void> line = checkSingleLine(u"new_title"_s, newTitle); !line)
            return McpToolResult::failure(line.error());
        if (const Result<void> distinct = checkDistinctTitle(project, newTitle, &document);
            !distinct)
            return McpToolResult::failure(distinct.error());
    }
    std::optional<core::DocumentKind> kind;
    if (has("kind")) {
        const Result<core::DocumentKind> parsed = parseKind(text("kind"));
        if (!parsed)
            return McpToolResult::failure(parsed.error());
        kind = *parsed;
    }
    std::optional<qint64> target;
    if (has("word_count_target")) {
        target = arguments.integer(u"word_count_target"_s);
        if (!target || *target < 0 || *target > std::numeric_limits<qint32>::max()) {
            return McpToolResult::failure(badWordCountTarget());
        }
    }
    const bool moves = hasParentArgument(arguments);
    const core::Document *newParent = nullptr;
    if (moves) {
        const Result<core::Document *> parent = resolveParent(context, arguments);
        if (!parent)
            return McpToolResult::failure(parent.error());
        newParent = *parent;
        if (newParent && project.isInDocumentSubtree(newParent->id(), document.id())) {
            return McpToolResult::failure(
                u"'%1' cannot be moved under '%2' -- that would place the document "
                "inside its own subtree."_s.arg(document.title(), newParent->title()));
        }
    }
    if (!has("new_title") && !kind && !has("body") && !has("synopsis") && !has("status")
        && !has("point_of_view") && !target && !moves) {
        return McpToolResult::failure(
            u"update_document changes nothing without at least one of \"new_title\", \"body\", "
            "\"synopsis\", \"status\", \"point_of_view\", \"word_count_target\", \"kind\", or "
            "\"parent\"."_s);
    }

    const QString oldTitle = document.title();
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: update_document"_s);
    QStringList fragments;
    if (has("new_title")) {
        change->append(std::make_unique<core::SetDocumentTitleCommand>(document, newTitle));
        fragments.append(u"renamed to '%1'"_s.arg(newTitle));
    }
    if (kind) {
        change->append(std::make_unique<core::SetDocumentKindCommand>(document, *kind));
        fragments.append(u"kind set to %1"_s.arg(core::enumName(*kind)));
    }
    if (has("body")) {
        const QString body = text("body");
        change->append(std::make_unique<core::SetDocumentBodyCommand>(document, body));
        fragments.append(u"body replaced (%1 characters)"_s.arg(body.size()));
    }
    if (has("synopsis")) {
        const QString synopsis = text("synopsis");
        change->append(std::make_unique<core::SetDocumentSynopsisCommand>(document, synopsis));
        fragments.append(synopsis.isEmpty() ? u"synopsis cleared"_s : u"synopsis set"_s);
    }
    if (has("status")) {
        const QString status = text("status");
        change->append(std::make_unique<core::SetDocumentStatusCommand>(document, status));
        fragments.append(status.isEmpty() ? u"status cleared"_s
                                          : u"status set to '%1'"_s.arg(status));
    }
    if (has("point_of_view")) {
        const QString pointOfView = text("point_of_view");
        change->append(std::make_unique<core::SetDocumentPointOfViewCommand>(document, pointOfView));
        fragments.append(pointOfView.isEmpty() ? u"point of view cleared"_s
                                               : u"point of view set to '%1'"_s.arg(pointOfView));
    }
    if (target) {
        change->append(std::make_unique<core::SetDocumentTargetCommand>(document, qint32(*target)));
        fragments.append(*target == 0 ? u"word-count target cleared"_s
                                      : u"word-count target set to %1"_s.arg(*target));
    }
    if (moves) {
        const QUuid parentId = newParent ? newParent->id() : QUuid();
        change->append(std::make_unique<core::MoveDocumentCommand>(project, document.id(), parentId,
                                                                   childCount(project, parentId)));
        fragments.append(u"moved under %1"_s.arg(newParent ? u"'%1'"_s.arg(newParent->title())
                                                           : u"the top level"_s));
    }
    return applyChange(context, std::move(change),
                       u"Updated '%1': %2."_s.arg(oldTitle, fragments.join(u", "_s)));
}

McpToolResult appendToDocument(ToolContext &context, const ToolArguments &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;
    const QString text = arguments.text(u"text"_s);
    if (text.trimmed().isEmpty())
        return McpToolResult::failure(u"append_to_document needs non-empty \"text\"."_s);

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: append_to_document"_s);
    change->append(
        std::make_unique<core::SetDocumentBodyCommand>(document,
                                                       appendedBody(document.body(), text)));
    return applyChange(context, std::move(change),
                       u"Appended %1 word(s) to '%2'."_s.arg(QString::number(wordCount(text)),
                                                             document.title()));
}

} // namespace fb::app
