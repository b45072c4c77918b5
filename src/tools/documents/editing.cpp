#include "tools/documents/documenthandlers.h"

#include "core/commands/command.h"
#include "core/commands/documentcommands.h"
#include "core/commands/structuralcommands.h"
#include "core/document.h"
#include "core/project.h"
#include "storage/applylogsave.h"
#include "storage/workspace.h"
#include "tools/common/arguments.h"
#include "tools/common/bodytext.h"
#include "tools/common/documentlookup.h"

#include <QStringList>

namespace fb::app {

namespace {

const QString parentLabel = QStringLiteral("parent \"parent\"");

Result<core::DocumentKind> parseKind(const QString &text)
{
    const QString name = text.trimmed();
    if (const std::optional<core::DocumentKind> kind =
            core::enumFromName<core::DocumentKind>(name.toLower())) {
        return *kind;
    }
    return makeError(
        QStringLiteral("Unknown document kind '%1' (use prose, note, or screenplay).").arg(name));
}

bool hasParentArgument(const QJsonObject &arguments)
{
    return hasArgument(arguments, QStringLiteral("parent"))
           || hasArgument(arguments, QStringLiteral("parent_id"));
}

// The parent a call names, or the null id for the top level (an empty "parent").
Result<core::Document *> resolveParent(core::Project &project, const QJsonObject &arguments)
{
    const QString id = trimmedArgument(arguments, QStringLiteral("parent_id"));
    const QString title = trimmedArgument(arguments, QStringLiteral("parent"));
    if (id.isEmpty() && title.isEmpty())
        return static_cast<core::Document *>(nullptr);
    return resolveDocument(project, title, id, parentLabel);
}

int childCount(const core::Project &project, const QUuid &parentId)
{
    return int(project.childrenOf(parentId).size());
}

// The new body after appending prose, in the body's own format: paragraphs before the closing
// body tag of a rich-text body, a blank line and the text for Markdown.
QString appendedBody(const QString &body, const QString &text)
{
    const qsizetype closing = body.lastIndexOf(QStringLiteral("</body>"), -1, Qt::CaseInsensitive);
    if (isRichText(body) && closing >= 0) {
        QString fragment;
        for (const QString &part : text.split(QStringLiteral("\n\n"), Qt::SkipEmptyParts)) {
            QString paragraph = part.trimmed().toHtmlEscaped();
            paragraph.replace(u'\n', QStringLiteral("<br />"));
            fragment += QStringLiteral("<p>%1</p>\n").arg(paragraph);
        }
        QString result = body;
        result.insert(closing, fragment);
        return result;
    }
    if (body.trimmed().isEmpty())
        return text;
    return body + QStringLiteral("\n\n") + text;
}

} // namespace

McpToolResult createDocument(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    core::Project &project = workspace.project();
    const QString title = trimmedArgument(arguments, QStringLiteral("title"));
    if (title.isEmpty())
        return McpToolResult::failure(QStringLiteral("create_document needs a non-empty \"title\"."));
    for (const core::Document *existing : project.objectsOfType<core::Document>()) {
        if (sameTitle(existing->title(), title)) {
            return McpToolResult::failure(
                QStringLiteral("A document titled '%1' already exists; choose a distinct title so "
                               "each document stays addressable by name.")
                    .arg(title));
        }
    }
    core::DocumentKind kind = core::DocumentKind::Prose;
    if (const QString kindText = stringArgument(arguments, QStringLiteral("kind"));
        !kindText.trimmed().isEmpty()) {
        const Result<core::DocumentKind> parsed = parseKind(kindText);
        if (!parsed)
            return McpToolResult::failure(parsed.error());
        kind = *parsed;
    }
    const Result<core::Document *> parent = resolveParent(project, arguments);
    if (!parent)
        return McpToolResult::failure(parent.error());

    const QUuid parentId = *parent ? (*parent)->id() : QUuid();
    auto document = std::make_unique<core::Document>(title);
    document->setKind(kind);
    document->setParentId(parentId);
    document->setSortIndex(childCount(project, parentId));
    const QString body = stringArgument(arguments, QStringLiteral("body"));
    if (!body.isEmpty())
        document->setBody(body);
    if (const QString synopsis = trimmedArgument(arguments, QStringLiteral("synopsis"));
        !synopsis.isEmpty()) {
        document->setSynopsis(synopsis);
    }

    const QString placement =
        *parent ? QStringLiteral("under '%1'").arg(stringArgument(arguments, QStringLiteral("parent")))
                : QStringLiteral("at the top level");
    const QString text = QStringLiteral("Created the %1 document '%2' %3 (%4 characters).")
                             .arg(core::enumName(kind), title, placement,
                                  QString::number(body.size()));
    auto change = std::make_unique<core::CompositeCommand>(QStringLiteral("MCP: create_document"));
    change->append(std::make_unique<core::AddObjectCommand>(project, std::move(document)));
    return applyChange(workspace, log, std::move(change), text);
}

McpToolResult updateDocument(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    core::Project &project = workspace.project();
    const Result<core::Document *> resolved = resolveDocument(project, arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;

    const auto has = [&](const char *key) { return hasArgument(arguments, QString::fromLatin1(key)); };
    const auto text = [&](const char *key) { return stringArgument(arguments, QString::fromLatin1(key)); };

    const QString newTitle = text("new_title").trimmed();
    if (has("new_title") && newTitle.isEmpty())
        return McpToolResult::failure(QStringLiteral("\"new_title\" must not be empty."));
    std::optional<core::DocumentKind> kind;
    if (has("kind")) {
        const Result<core::DocumentKind> parsed = parseKind(text("kind"));
        if (!parsed)
            return McpToolResult::failure(parsed.error());
        kind = *parsed;
    }
    std::optional<qint64> target;
    if (has("word_count_target")) {
        target = integerArgument(arguments, QStringLiteral("word_count_target"));
        if (!target || *target < 0 || *target > std::numeric_limits<qint32>::max()) {
            return McpToolResult::failure(QStringLiteral(
                "\"word_count_target\" must be a non-negative integer (0 clears the target)."));
        }
    }
    const bool moves = hasParentArgument(arguments);
    const core::Document *newParent = nullptr;
    if (moves) {
        const Result<core::Document *> parent = resolveParent(project, arguments);
        if (!parent)
            return McpToolResult::failure(parent.error());
        newParent = *parent;
        if (newParent && project.isInDocumentSubtree(newParent->id(), document.id())) {
            return McpToolResult::failure(
                QStringLiteral("'%1' cannot be moved under '%2' -- that would place the document "
                               "inside its own subtree.")
                    .arg(document.title(), newParent->title()));
        }
    }
    if (!has("new_title") && !kind && !has("body") && !has("synopsis") && !has("status")
        && !has("point_of_view") && !target && !moves) {
        return McpToolResult::failure(QStringLiteral(
            "update_document changes nothing without at least one of \"new_title\", \"body\", "
            "\"synopsis\", \"status\", \"point_of_view\", \"word_count_target\", \"kind\", or "
            "\"parent\"."));
    }

    const QString oldTitle = document.title();
    auto change = std::make_unique<core::CompositeCommand>(QStringLiteral("MCP: update_document"));
    QStringList fragments;
    if (has("new_title")) {
        change->append(std::make_unique<core::SetDocumentTitleCommand>(document, newTitle));
        fragments.append(QStringLiteral("renamed to '%1'").arg(newTitle));
    }
    if (kind) {
        change->append(std::make_unique<core::SetDocumentKindCommand>(document, *kind));
        fragments.append(QStringLiteral("kind set to %1").arg(core::enumName(*kind)));
    }
    if (has("body")) {
        const QString body = text("body");
        change->append(std::make_unique<core::SetDocumentBodyCommand>(document, body));
        fragments.append(QStringLiteral("body replaced (%1 characters)").arg(body.size()));
    }
    if (has("synopsis")) {
        const QString synopsis = text("synopsis");
        change->append(std::make_unique<core::SetDocumentSynopsisCommand>(document, synopsis));
        fragments.append(synopsis.isEmpty() ? QStringLiteral("synopsis cleared")
                                            : QStringLiteral("synopsis set"));
    }
    if (has("status")) {
        const QString status = text("status");
        change->append(std::make_unique<core::SetDocumentStatusCommand>(document, status));
        fragments.append(status.isEmpty() ? QStringLiteral("status cleared")
                                          : QStringLiteral("status set to '%1'").arg(status));
    }
    if (has("point_of_view")) {
        const QString pointOfView = text("point_of_view");
        change->append(std::make_unique<core::SetDocumentPointOfViewCommand>(document, pointOfView));
        fragments.append(pointOfView.isEmpty()
                             ? QStringLiteral("point of view cleared")
                             : QStringLiteral("point of view set to '%1'").arg(pointOfView));
    }
    if (target) {
        change->append(std::make_unique<core::SetDocumentTargetCommand>(document, qint32(*target)));
        fragments.append(*target == 0 ? QStringLiteral("word-count target cleared")
                                      : QStringLiteral("word-count target set to %1").arg(*target));
    }
    if (moves) {
        const QUuid parentId = newParent ? newParent->id() : QUuid();
        change->append(std::make_unique<core::MoveDocumentCommand>(
            project, document.id(), parentId, childCount(project, parentId)));
        fragments.append(QStringLiteral("moved under %1")
                             .arg(newParent ? QStringLiteral("'%1'").arg(newParent->title())
                                            : QStringLiteral("the top level")));
    }
    return applyChange(workspace, log, std::move(change),
                       QStringLiteral("Updated '%1': %2.").arg(oldTitle, fragments.join(QStringLiteral(", "))));
}

McpToolResult appendToDocument(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(workspace.project(), arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;
    const QString text = stringArgument(arguments, QStringLiteral("text"));
    if (text.trimmed().isEmpty())
        return McpToolResult::failure(QStringLiteral("append_to_document needs non-empty \"text\"."));

    auto change = std::make_unique<core::CompositeCommand>(QStringLiteral("MCP: append_to_document"));
    change->append(std::make_unique<core::SetDocumentBodyCommand>(
        document, appendedBody(document.body(), text)));
    return applyChange(workspace, log, std::move(change),
                       QStringLiteral("Appended %1 word(s) to '%2'.")
                           .arg(QString::number(wordCount(text)), document.title()));
}

} // namespace fb::app
