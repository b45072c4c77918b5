#include "tools/documents/documenthandlers.h"

#include "core/commands/command.h"
#include "core/commands/documentcommands.h"
#include "core/document.h"
#include "storage/applylogsave.h"
#include "storage/workspace.h"
#include "tools/common/arguments.h"
#include "tools/common/documentlookup.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>

namespace fb::app {

namespace {

QString noteKind(const core::Footnote &note)
{
    return note.endnote ? QStringLiteral("endnote") : QStringLiteral("footnote");
}

QString marker(const QString &id)
{
    return QStringLiteral("[^%1]").arg(id);
}

qsizetype indexOfNote(const QList<core::Footnote> &notes, const QString &id)
{
    for (qsizetype i = 0; i < notes.size(); ++i) {
        if (notes.at(i).id == id)
            return i;
    }
    return -1;
}

// Reader numbering: the defined notes in order of their first citation in the body. Markers of
// undefined ids are ignored; footnotes and endnotes share one sequence.
QList<core::Footnote> notesInReaderOrder(const core::Document &document)
{
    static const QRegularExpression markerPattern(QStringLiteral("\\[\\^([^\\]]+)\\]"));
    QList<core::Footnote> ordered;
    QSet<QString> numbered;
    auto markers = markerPattern.globalMatch(document.body());
    while (markers.hasNext()) {
        const QString id = markers.next().captured(1);
        const qsizetype index = indexOfNote(document.footnotes(), id);
        if (index < 0 || numbered.contains(id))
            continue;
        numbered.insert(id);
        ordered.append(document.footnotes().at(index));
    }
    return ordered;
}

// "fn1", "fn2", ...: the smallest number whose id the document does not use yet.
QString generatedNoteId(const QList<core::Footnote> &notes)
{
    for (int n = 1;; ++n) {
        const QString id = QStringLiteral("fn%1").arg(n);
        if (indexOfNote(notes, id) < 0)
            return id;
    }
}

// The definition a call names by "footnote_id", with the document's whole list of notes.
struct AddressedNote
{
    core::Document *document = nullptr;
    QList<core::Footnote> notes;
    qsizetype index = -1;
    QString id;
};

Result<AddressedNote> resolveNote(Workspace &workspace, const QJsonObject &arguments,
                                  const QString &tool)
{
    const Result<core::Document *> resolved = resolveDocument(workspace.project(), arguments);
    if (!resolved)
        return Error{resolved.error()};
    AddressedNote note{*resolved, (*resolved)->footnotes(), -1,
                       trimmedArgument(arguments, QStringLiteral("footnote_id"))};
    if (note.id.isEmpty())
        return makeError(QStringLiteral("%1 needs \"footnote_id\" (the footnote's id).").arg(tool));
    note.index = indexOfNote(note.notes, note.id);
    if (note.index < 0) {
        return makeError(QStringLiteral("No footnote [^%1] is defined in '%2'.")
                             .arg(note.id, note.document->title()));
    }
    return note;
}

McpToolResult applyNotes(Workspace &workspace, McpChangeLog &log, const QString &tool,
                         core::Document &document, const QList<core::Footnote> &notes,
                         const QString &text)
{
    auto change = std::make_unique<core::CompositeCommand>(QStringLiteral("MCP: ") + tool);
    change->append(std::make_unique<core::SetDocumentFootnotesCommand>(document, notes));
    return applyChange(workspace, log, std::move(change), text);
}

} // namespace

McpToolResult listFootnotes(Workspace &workspace, const QJsonObject &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(workspace.project(), arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    const core::Document &document = **resolved;

    const QList<core::Footnote> numbered = notesInReaderOrder(document);
    QList<core::Footnote> unreferenced;
    for (const core::Footnote &note : document.footnotes()) {
        if (indexOfNote(numbered, note.id) < 0)
            unreferenced.append(note);
    }
    if (numbered.isEmpty() && unreferenced.isEmpty())
        return McpToolResult::success(QStringLiteral("No footnotes in '%1' yet.").arg(document.title()));

    QStringList lines{QStringLiteral("# Footnotes of '%1'").arg(document.title())};
    for (qsizetype i = 0; i < numbered.size(); ++i) {
        const core::Footnote &note = numbered.at(i);
        lines.append(QStringLiteral("%1. [^%2] (%3) %4")
                         .arg(QString::number(i + 1), note.id, noteKind(note), note.text));
    }
    if (!unreferenced.isEmpty()) {
        lines.append(QStringLiteral("Unreferenced definitions (no [^id] marker in the body):"));
        for (const core::Footnote &note : unreferenced)
            lines.append(QStringLiteral("- [^%1] %2").arg(note.id, note.text));
    }
    return McpToolResult::success(lines.join(u'\n'));
}

McpToolResult addFootnote(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(workspace.project(), arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;

    const QString text = trimmedArgument(arguments, QStringLiteral("text"));
    if (text.isEmpty())
        return McpToolResult::failure(QStringLiteral("add_footnote needs a non-empty \"text\"."));
    QString id = trimmedArgument(arguments, QStringLiteral("footnote_id"));
    if (!id.isEmpty() && indexOfNote(document.footnotes(), id) >= 0) {
        return McpToolResult::failure(
            QStringLiteral("Footnote [^%1] is already defined in '%2'; use update_footnote to "
                           "change it.")
                .arg(id, document.title()));
    }
    if (id.isEmpty())
        id = generatedNoteId(document.footnotes());

    const core::Footnote note{id, text, boolArgument(arguments, QStringLiteral("endnote"))};
    QList<core::Footnote> notes = document.footnotes();
    notes.append(note);
    QString reply = QStringLiteral("Added %1 [^%2] to '%3'.").arg(noteKind(note), id, document.title());
    if (!document.body().contains(marker(id)))
        reply += QStringLiteral(" Put a [^%1] marker in the body to reference it.").arg(id);
    return applyNotes(workspace, log, QStringLiteral("add_footnote"), document, notes, reply);
}

McpToolResult updateFootnote(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    Result<AddressedNote> addressed =
        resolveNote(workspace, arguments, QStringLiteral("update_footnote"));
    if (!addressed)
        return McpToolResult::failure(addressed.error());
    const bool hasText = hasArgument(arguments, QStringLiteral("text"));
    const QString text = trimmedArgument(arguments, QStringLiteral("text"));
    if (hasText && text.isEmpty())
        return McpToolResult::failure(QStringLiteral("A footnote's \"text\" must not be empty."));
    const bool hasEndnote = hasArgument(arguments, QStringLiteral("endnote"));
    if (!hasText && !hasEndnote) {
        return McpToolResult::failure(
            QStringLiteral("update_footnote changes nothing; provide \"text\" and/or \"endnote\"."));
    }

    core::Footnote &note = addressed->notes[addressed->index];
    if (hasText)
        note.text = text;
    if (hasEndnote)
        note.endnote = boolArgument(arguments, QStringLiteral("endnote"), note.endnote);
    return applyNotes(workspace, log, QStringLiteral("update_footnote"), *addressed->document,
                      addressed->notes, QStringLiteral("Updated footnote [^%1].").arg(addressed->id));
}

McpToolResult removeFootnote(Workspace &workspace, McpChangeLog &log, const QJsonObject &arguments)
{
    Result<AddressedNote> addressed =
        resolveNote(workspace, arguments, QStringLiteral("remove_footnote"));
    if (!addressed)
        return McpToolResult::failure(addressed.error());
    const QString &id = addressed->id;
    addressed->notes.removeAt(addressed->index);
    QString reply = QStringLiteral("Removed footnote [^%1].").arg(id);
    // The body is never edited here; a marker left behind is pointed out instead.
    if (addressed->document->body().contains(marker(id))) {
        reply += QStringLiteral(" The body still has a [^%1] marker -- remove it from the prose too "
                                "so it is not left dangling.")
                     .arg(id);
    }
    return applyNotes(workspace, log, QStringLiteral("remove_footnote"), *addressed->document,
                      addressed->notes, reply);
}

} // namespace fb::app
