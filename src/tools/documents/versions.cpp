#include "core/commands/command.h"
#include "core/commands/documentcommands.h"
#include "core/document.h"
#include "storage/workspace.h"
#include "tools/common/bodytext.h"
#include "tools/common/change.h"
#include "tools/common/documentlookup.h"
#include "tools/common/toolactions.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/documents/documenthandlers.h"

#include <QDateTime>
#include <QStringList>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// The name given to the single unnamed draft when it is first parked.
const QString firstDraftName = u"Draft 1"_s;

QString minuteStamp(const QDateTime &time)
{
    return time.toUTC().toString(u"yyyy-MM-dd HH:mm"_s);
}

bool sameDraftName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// The parked drafts whose name matches, case-insensitively.
QList<qsizetype> parkedDraftsNamed(const QList<core::DocumentVariant> &parked, const QString &name)
{
    QList<qsizetype> found;
    for (qsizetype i = 0; i < parked.size(); ++i) {
        if (sameDraftName(parked.at(i).name, name))
            found.append(i);
    }
    return found;
}

// Every variant action changes the document's drafts as one whole.
McpToolResult applyDrafts(ToolContext &context, core::Document &document,
                          const core::DocumentDrafts &drafts, const QString &text)
{
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: manage_variants"_s);
    change->append(std::make_unique<core::SetDocumentVariantsCommand>(document, drafts));
    return applyChange(context, std::move(change), text);
}

McpToolResult listVariants(ToolContext &, const ToolArguments &, core::Document &document)
{
    QStringList lines{
        u"Active draft of '%1': %2"_s.arg(document.title(), document.activeVariant().isEmpty()
                                                                ? u"(single unnamed draft)"_s
                                                                : document.activeVariant())};
    if (document.variants().isEmpty()) {
        lines.append(u"No alternate drafts. Use action \"create\" to branch one."_s);
    } else {
        lines.append(u"Alternate drafts (%1):"_s.arg(document.variants().size()));
        for (const core::DocumentVariant &draft : document.variants()) {
            lines.append(
                u"- %1 (%2 words)"_s.arg(draft.name, QString::number(wordCount(draft.body))));
        }
    }
    return McpToolResult::success(lines.join(u'\n'));
}

// The live body parked under the active name, or under "Draft 1" while it has none.
core::DocumentVariant parkedLiveDraft(const core::Document &document)
{
    return {document.activeVariant().isEmpty() ? firstDraftName : document.activeVariant(),
            document.body()};
}

} // namespace

McpToolResult getDocumentVersions(ToolContext &context, const ToolArguments &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    const core::Document &document = **resolved;
    if (document.versions().isEmpty())
        return McpToolResult::success(u"No saved versions of '%1' yet."_s.arg(document.title()));

    QStringList lines{u"# Versions of '%1'"_s.arg(document.title())};
    for (qsizetype i = 0; i < document.versions().size(); ++i) {
        const core::DocumentVersion &version = document.versions().at(i);
        lines.append(
            u"%1. \"%2\" -- %3 UTC (%4 words)"_s.arg(QString::number(i + 1), version.label,
                                                     minuteStamp(version.createdAt),
                                                     QString::number(wordCount(version.body))));
    }
    return McpToolResult::success(lines.join(u'\n'));
}

McpToolResult snapshotDocumentVersion(ToolContext &context, const ToolArguments &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;

    const QDateTime now = context.now();
    QString label = arguments.trimmed(u"label"_s);
    if (const Result<void> line = checkSingleLine(u"label"_s, label); !line)
        return McpToolResult::failure(line.error());
    if (label.isEmpty())
        label = u"Snapshot %1"_s.arg(minuteStamp(now));
    QList<core::DocumentVersion> versions = document.versions();
    versions.append({label, document.body(), now});

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: snapshot_document_version"_s);
    change->append(std::make_unique<core::SetDocumentVersionsCommand>(document, versions));
    return applyChange(context, std::move(change),
                       u"Saved version snapshot \"%1\" of '%2' (%3 snapshot(s) total)."_s
                           .arg(label, document.title(), QString::number(versions.size())));
}

namespace {

McpToolResult createVariant(ToolContext &context, const ToolArguments &arguments,
                            core::Document &document)
{
    const QString name = arguments.trimmed(u"name"_s);
    if (name.isEmpty())
        return McpToolResult::failure(u"manage_variants \"create\" needs \"name\"."_s);
    if (const Result<void> line = checkSingleLine(u"name"_s, name); !line)
        return McpToolResult::failure(line.error());
    const QList<core::DocumentVariant> &parked = document.variants();
    if (sameDraftName(name, document.activeVariant())
        || !parkedDraftsNamed(parked, name).isEmpty()) {
        return McpToolResult::failure(
            u"A draft named '%1' already exists on '%2'."_s.arg(name, document.title()));
    }
    core::DocumentDrafts drafts{parked, name, document.body()};
    drafts.variants.append(parkedLiveDraft(document));
    return applyDrafts(context, document, drafts,
                       u"Created variant '%1' from the current draft; it is now active."_s.arg(
                           name));
}

// The parked draft a "switch" or "delete" names, or the refusal.
Result<qsizetype> parkedDraft(const QString &action, const QString &name,
                              const core::Document &document)
{
    if (name.isEmpty())
        return makeError(u"manage_variants \"%1\" needs \"name\"."_s.arg(action));
    if (sameDraftName(name, document.activeVariant())) {
        return makeError(action == u"switch"
                             ? u"'%1' is already the active draft."_s.arg(name)
                             : u"'%1' is the active draft; switch to another draft before "
                               "deleting it."_s.arg(name));
    }
    const QList<qsizetype> found = parkedDraftsNamed(document.variants(), name);
    if (found.isEmpty())
        return makeError(u"No alternate draft named '%1' on '%2'."_s.arg(name, document.title()));
    if (found.size() > 1)
        return makeError(u"More than one alternate draft is named '%1'."_s.arg(name));
    return found.first();
}

McpToolResult switchVariant(ToolContext &context, const ToolArguments &arguments,
                            core::Document &document)
{
    const Result<qsizetype> index = parkedDraft(u"switch"_s, arguments.trimmed(u"name"_s), document);
    if (!index)
        return McpToolResult::failure(index.error());
    const core::DocumentVariant chosen = document.variants().at(*index);
    core::DocumentDrafts drafts{document.variants(), chosen.name, chosen.body};
    drafts.variants.removeAt(*index);
    drafts.variants.append(parkedLiveDraft(document));
    return applyDrafts(context, document, drafts, u"Switched to draft '%1'."_s.arg(chosen.name));
}

McpToolResult deleteVariant(ToolContext &context, const ToolArguments &arguments,
                            core::Document &document)
{
    const Result<qsizetype> index = parkedDraft(u"delete"_s, arguments.trimmed(u"name"_s), document);
    if (!index)
        return McpToolResult::failure(index.error());
    const QString name = document.variants().at(*index).name;
    core::DocumentDrafts drafts{document.variants(), document.activeVariant(), document.body()};
    drafts.variants.removeAt(*index);
    return applyDrafts(context, document, drafts, u"Deleted the alternate draft '%1'."_s.arg(name));
}

McpToolResult renameVariant(ToolContext &context, const ToolArguments &arguments,
                            core::Document &document)
{
    const QString newName = arguments.trimmed(u"new_name"_s);
    if (newName.isEmpty()) {
        return McpToolResult::failure(
            u"manage_variants \"rename\" needs \"new_name\" (renames the active draft)."_s);
    }
    if (const Result<void> line = checkSingleLine(u"new_name"_s, newName); !line)
        return McpToolResult::failure(line.error());
    if (!parkedDraftsNamed(document.variants(), newName).isEmpty()) {
        return McpToolResult::failure(
            u"A draft named '%1' already exists on '%2'."_s.arg(newName, document.title()));
    }
    const core::DocumentDrafts drafts{document.variants(), newName, document.body()};
    return applyDrafts(context, document, drafts,
                       u"Renamed the active draft to '%1'."_s.arg(newName));
}

} // namespace

const ToolActionTable<core::Document> &variantActions()
{
    // "list" comes first: it is what a call without an action does.
    static const ToolActionTable<core::Document> actions{
        {u"list"_s, listVariants},    {u"create"_s, createVariant}, {u"switch"_s, switchVariant},
        {u"rename"_s, renameVariant}, {u"delete"_s, deleteVariant},
    };
    return actions;
}

McpToolResult manageVariants(ToolContext &context, const ToolArguments &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    return runAction(variantActions(), arguments.text(u"action"_s), context, arguments, **resolved,
                     [](const QString &requested) {
                         return u"Unknown action '%1' (use list, create, switch, rename, "
                                "or delete)."_s.arg(requested.trimmed());
                     });
}

} // namespace fb::app
