#include "core/commands/command.h"
#include "core/commands/documentcommands.h"
#include "core/document.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/documentlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/documents/documenthandlers.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

QString noteKind(const core::Footnote &note)
{
    return note.endnote ? u"endnote"_s : u"footnote"_s;
}

QString marker(const QString &id)
{
    return u"[^%1]"_s.arg(id);
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
    static const QRegularExpression markerPattern(u"\\[\\^([^\\]]+)\\]"_s);
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
        const QString id = u"fn%1"_s.arg(n);
        if (indexOfNote(notes, id) < 0)
            return id;
    }
}

// The id a call gives in "footnote_id", also when written as its marker ("[^fn1]", as
// list_footnotes shows it).
QString noteIdArgument(const ToolArguments &arguments)
{
    QString id = arguments.trimmed(u"footnote_id"_s);
    if (id.startsWith(u"[^"_s) && id.endsWith(u']'))
        id = id.mid(2, id.size() - 3).trimmed();
    return id;
}

// The definition a call names by "footnote_id", with the document's whole list of notes.
struct AddressedNote
{
    core::Document *document = nullptr;
    QList<core::Footnote> notes;
    qsizetype index = -1;
    QString id;
};

Result<AddressedNote> resolveNote(ToolContext &context, const ToolArguments &arguments,
                                  const QString &tool)
{
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
    if (!resolved)
        return Error{resolved.error()};
    AddressedNote note{*resolved, (*resolved)->footnotes(), -1, noteIdArgument(arguments)};
    if (note.id.isEmpty())
        return makeError(u"%1 needs \"footnote_id\" (the footnote's id)."_s.arg(tool));
    note.index = indexOfNote(note.notes, note.id);
    if (note.index < 0) {
        return makeError(
            u"No footnote [^%1] is defined in '%2'."_s.arg(note.id, note.document->title()));
    }
    return note;
}

// The change of one footnote tool: the document's whole list of notes replaced.
std::unique_ptr<core::CompositeCommand> notesChange(const QString &tool, core::Document &document,
                                                    const QList<core::Footnote> &notes)
{
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: "_s + tool);
    change->append(std::make_unique<core::SetDocumentFootnotesCommand>(document, notes));
    return change;
}

} // namespace

McpToolResult listFootnotes(ToolContext &context, const ToolArguments &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
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
        return McpToolResult::success(u"No footnotes in '%1' yet."_s.arg(document.title()));

    QStringList lines{u"# Footnotes of '%1'"_s.arg(document.title())};
    for (qsizetype i = 0; i < numbered.size(); ++i) {
        const core::Footnote &note = numbered.at(i);
        lines.append(
            u"%1. [^%2] (%3) %4"_s.arg(QString::number(i + 1), note.id, noteKind(note), note.text));
    }
    if (!unreferenced.isEmpty()) {
        lines.append(u"Unreferenced definitions (no [^id] marker in the body):"_s);
        for (const core::Footnote &note : unreferenced)
            lines.append(u"- [^%1] %2"_s.arg(note.id, note.text));
    }
    return McpToolResult::success(lines.join(u'\n'));
}

McpToolResult addFootnote(ToolContext &context, const ToolArguments &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;

    const QString text = arguments.trimmed(u"text"_s);
    if (text.isEmpty())
        return McpToolResult::failure(u"add_footnote needs a non-empty \"text\"."_s);
    QString id = noteIdArgument(arguments);
    if (!id.isEmpty() && indexOfNote(document.footnotes(), id) >= 0) {
        return McpToolResult::failure(
            u"Footnote [^%1] is already defined in '%2'; use update_footnote to "
            "change it."_s.arg(id, document.title()));
    }
    if (id.isEmpty())
        id = generatedNoteId(document.footnotes());

    const core::Footnote note{id, text, arguments.boolean(u"endnote"_s)};
    QList<core::Footnote> notes = document.footnotes();
    notes.append(note);
    QString reply = u"Added %1 [^%2] to '%3'."_s.arg(noteKind(note), id, document.title());
    if (!document.body().contains(marker(id)))
        reply += u" Put a [^%1] marker in the body to reference it."_s.arg(id);
    return applyChange(context, notesChange(u"add_footnote"_s, document, notes), reply);
}

McpToolResult updateFootnote(ToolContext &context, const ToolArguments &arguments)
{
    Result<AddressedNote> addressed = resolveNote(context, arguments, u"update_footnote"_s);
    if (!addressed)
        return McpToolResult::failure(addressed.error());
    const bool hasText = arguments.has(u"text"_s);
    const QString text = arguments.trimmed(u"text"_s);
    if (hasText && text.isEmpty())
        return McpToolResult::failure(u"A footnote's \"text\" must not be empty."_s);
    const bool hasEndnote = arguments.has(u"endnote"_s);
    if (!hasText && !hasEndnote) {
        return McpToolResult::failure(
            u"update_footnote changes nothing; provide \"text\" and/or \"endnote\"."_s);
    }

    core::Footnote &note = addressed->notes[addressed->index];
    if (hasText)
        note.text = text;
    if (hasEndnote)
        note.endnote = arguments.boolean(u"endnote"_s, note.endnote);
    return applyChange(context,
                       notesChange(u"update_footnote"_s, *addressed->document, addressed->notes),
                       u"Updated footnote [^%1]."_s.arg(addressed->id));
}

McpToolResult removeFootnote(ToolContext &context, const ToolArguments &arguments)
{
    Result<AddressedNote> addressed = resolveNote(context, arguments, u"remove_footnote"_s);
    if (!addressed)
        return McpToolResult::failure(addressed.error());
    const QString &id = addressed->id;
    addressed->notes.removeAt(addressed->index);
    QString reply = u"Removed footnote [^%1]."_s.arg(id);
    // The body is never edited here; a marker left behind is pointed out instead.
    if (addressed->document->body().contains(marker(id))) {
        reply += u" The body still has a [^%1] marker -- remove it from the prose too "
                 "so it is not left dangling."_s.arg(id);
    }
    return applyChange(context,
                       notesChange(u"remove_footnote"_s, *addressed->document, addressed->notes),
                       reply);
}

} // namespace fb::app
