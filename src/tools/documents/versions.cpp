#include "tools/documents/documenthandlers.h"

#include "core/commands/command.h"
#include "core/commands/documentcommands.h"
#include "core/document.h"
#include "storage/applylogsave.h"
#include "storage/workspace.h"
#include "tools/common/arguments.h"
#include "tools/common/bodytext.h"
#include "tools/common/documentlookup.h"

#include <QDateTime>
#include <QStringList>
#include <QTimeZone>

namespace fb::app {

namespace {

// The name given to the single unnamed draft when it is first parked.
const QString firstDraftName = QStringLiteral("Draft 1");

QString minuteStamp(const QDateTime &time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
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

McpToolResult applyVariants(Workspace &workspace, McpChangeLog &log, core::Document &document,
                            const core::DocumentDrafts &drafts, const QString &text)
{
    auto change = std::make_unique<core::CompositeCommand>(QStringLiteral("MCP: manage_variants"));
    change->append(std::make_unique<core::SetDocumentVariantsCommand>(document, drafts));
    return applyChange(workspace, log, std::move(change), text);
}

McpToolResult listVariants(const core::Document &document)
{
    QStringList lines{QStringLiteral("Active draft of '%1': %2")
                          .arg(document.title(), document.activeVariant().isEmpty()
                                                     ? QStringLiteral("(single unnamed draft)")
                                                     : document.activeVariant())};
    if (document.variants().isEmpty()) {
        lines.append(QStringLiteral("No alternate drafts. Use action \"create\" to branch one."));
    } else {
        lines.append(QStringLiteral("Alternate drafts (%1):").arg(document.variants().size()));
        for (const core::DocumentVariant &draft : document.variants()) {
            lines.append(QStringLiteral("- %1 (%2 words)")
                             .arg(draft.name, QString::number(wordCount(draft.body))));
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

McpToolResult getDocumentVersions(Workspace &workspace, const QJsonObject &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(workspace.project(), arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    const core::Document &document = **resolved;
    if (document.versions().isEmpty())
        return McpToolResult::success(QStringLiteral("No saved versions of '%1' yet.").arg(document.title()));

    QStringList lines{QStringLiteral("# Versions of '%1'").arg(document.title())};
    for (qsizetype i = 0; i < document.versions().size(); ++i) {
        const core::DocumentVersion &version = document.versions().at(i);
        lines.append(QStringLiteral("%1. \"%2\" -- %3 UTC (%4 words)")
                         .arg(QString::number(i + 1), version.label, minuteStamp(version.createdAt),
                              QString::number(wordCount(version.body))));
    }
    return McpToolResult::success(lines.join(u'\n'));
}

McpToolResult snapshotDocumentVersion(Workspace &workspace, McpChangeLog &log,
                                      const QJsonObject &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(workspace.project(), arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;

    const QDateTime now = QDateTime::currentDateTimeUtc();
    QString label = trimmedArgument(arguments, QStringLiteral("label"));
    if (label.isEmpty())
        label = QStringLiteral("Snapshot %1").arg(minuteStamp(now));
    QList<core::DocumentVersion> versions = document.versions();
    versions.append({label, document.body(), now});

    auto change = std::make_unique<core::CompositeCommand>(
        QStringLiteral("MCP: snapshot_document_version"));
    change->append(std::make_unique<core::SetDocumentVersionsCommand>(document, versions));
    return applyChange(workspace, log, std::move(change),
                       QStringLiteral("Saved version snapshot \"%1\" of '%2' (%3 snapshot(s) total).")
                           .arg(label, document.title(), QString::number(versions.size())));
}

McpToolResult manageVariants(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(workspace.project(), arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;

    QString action = trimmedArgument(arguments, QStringLiteral("action")).toLower();
    if (action.isEmpty())
        action = QStringLiteral("list");
    const QString name = trimmedArgument(arguments, QStringLiteral("name"));
    const QList<core::DocumentVariant> &parked = document.variants();

    if (action == u"list")
        return listVariants(document);

    if (action == u"create") {
        if (name.isEmpty())
            return McpToolResult::failure(QStringLiteral("manage_variants \"create\" needs \"name\"."));
        if (sameDraftName(name, document.activeVariant()) || !parkedDraftsNamed(parked, name).isEmpty()) {
            return McpToolResult::failure(
                QStringLiteral("A draft named '%1' already exists on '%2'.").arg(name, document.title()));
        }
        core::DocumentDrafts drafts{parked, name, document.body()};
        drafts.variants.append(parkedLiveDraft(document));
        return applyVariants(workspace, log, document, drafts,
                             QStringLiteral("Created variant '%1' from the current draft; it is now "
                                            "active.")
                                 .arg(name));
    }

    if (action == u"switch" || action == u"delete") {
        if (name.isEmpty()) {
            return McpToolResult::failure(
                QStringLiteral("manage_variants \"%1\" needs \"name\".").arg(action));
        }
        if (sameDraftName(name, document.activeVariant())) {
            return McpToolResult::failure(
                action == u"switch"
                    ? QStringLiteral("'%1' is already the active draft.").arg(name)
                    : QStringLiteral("'%1' is the active draft; switch to another draft before "
                                     "deleting it.")
                          .arg(name));
        }
        const QList<qsizetype> found = parkedDraftsNamed(parked, name);
        if (found.isEmpty()) {
            return McpToolResult::failure(
                QStringLiteral("No alternate draft named '%1' on '%2'.").arg(name, document.title()));
        }
        if (found.size() > 1) {
            return McpToolResult::failure(
                QStringLiteral("More than one alternate draft is named '%1'.").arg(name));
        }
        const core::DocumentVariant chosen = parked.at(found.first());
        core::DocumentDrafts drafts{parked, document.activeVariant(), document.body()};
        drafts.variants.removeAt(found.first());
        if (action == u"delete") {
            return applyVariants(workspace, log, document, drafts,
                                 QStringLiteral("Deleted the alternate draft '%1'.").arg(chosen.name));
        }
        drafts.variants.append(parkedLiveDraft(document));
        drafts.activeVariant = chosen.name;
        drafts.body = chosen.body;
        return applyVariants(workspace, log, document, drafts,
                             QStringLiteral("Switched to draft '%1'.").arg(chosen.name));
    }

    if (action == u"rename") {
        const QString newName = trimmedArgument(arguments, QStringLiteral("new_name"));
        if (newName.isEmpty()) {
            return McpToolResult::failure(QStringLiteral(
                "manage_variants \"rename\" needs \"new_name\" (renames the active draft)."));
        }
        if (!parkedDraftsNamed(parked, newName).isEmpty()) {
            return McpToolResult::failure(QStringLiteral("A draft named '%1' already exists on '%2'.")
                                              .arg(newName, document.title()));
        }
        const core::DocumentDrafts drafts{parked, newName, document.body()};
        return applyVariants(workspace, log, document, drafts,
                             QStringLiteral("Renamed the active draft to '%1'.").arg(newName));
    }

    return McpToolResult::failure(
        QStringLiteral("Unknown action '%1' (use list, create, switch, rename, or delete).")
            .arg(trimmedArgument(arguments, QStringLiteral("action"))));
}

} // namespace fb::app
