#include "tools/registration.h"

#include "server/mcpserver.h"
#include "tools/documents/documenthandlers.h"

namespace fb::app {

namespace {

// Every document tool addresses its document by "title", or by "id" when titles collide.
ToolSchema addressedDocument()
{
    return ToolSchema()
        .string(QStringLiteral("title"), QStringLiteral("The document's title (case-insensitive)."))
        .string(QStringLiteral("id"),
                QStringLiteral("The document's id, to disambiguate when several documents share "
                               "the title."));
}

McpToolDescriptor manuscriptTreeTool()
{
    return toolDescriptor(
        QStringLiteral("get_manuscript_tree"),
        QStringLiteral("Shows the manuscript's document tree in reading order, each document with "
                       "its kind (prose/note/screenplay) and word count."));
}

McpToolDescriptor getDocumentTool()
{
    return toolDescriptor(
        QStringLiteral("get_document"),
        QStringLiteral("Reads one document: kind, status, point of view, synopsis, word count, and "
                       "its body as Markdown. Address it by title (or by id when titles collide)."),
        addressedDocument());
}

McpToolDescriptor createDocumentTool()
{
    return toolDescriptor(
        QStringLiteral("create_document"),
        QStringLiteral("Creates a document in the manuscript tree, appended after its siblings. "
                       "Args: title (must be unique), optional kind/body/synopsis/parent."),
        ToolSchema()
            .string(QStringLiteral("title"), QStringLiteral("The new document's title."))
            .required()
            .string(QStringLiteral("kind"),
                    QStringLiteral("Document kind: prose (default), note, or screenplay."))
            .string(QStringLiteral("body"),
                    QStringLiteral("Initial body as Markdown (Fountain for a screenplay)."))
            .string(QStringLiteral("synopsis"),
                    QStringLiteral("A short synopsis for the outline and corkboard."))
            .string(QStringLiteral("parent"),
                    QStringLiteral("Title of the parent document to nest under (omit for top level)."))
            .string(QStringLiteral("parent_id"),
                    QStringLiteral("Id of the parent document, when its title collides.")));
}

McpToolDescriptor updateDocumentTool()
{
    return toolDescriptor(
        QStringLiteral("update_document"),
        QStringLiteral("Sparse update of one document: only the keys you pass change (new_title, "
                       "body, synopsis, status, point_of_view, word_count_target, kind, parent). "
                       "Omitted keys stay untouched."),
        addressedDocument()
            .string(QStringLiteral("new_title"), QStringLiteral("Rename the document to this title."))
            .string(QStringLiteral("body"),
                    QStringLiteral("Replace the whole body with this Markdown (empty clears it)."))
            .string(QStringLiteral("synopsis"), QStringLiteral("Replace the synopsis (empty clears it)."))
            .string(QStringLiteral("status"),
                    QStringLiteral("Workflow status shown in the outline/corkboard, e.g. \"Draft\", "
                                   "\"Revised\", \"Final\" (empty clears it)."))
            .string(QStringLiteral("point_of_view"),
                    QStringLiteral("The scene's point-of-view label (empty clears it)."))
            .integer(QStringLiteral("word_count_target"),
                     QStringLiteral("A word-count writing goal for the document (0 clears the target)."))
            .string(QStringLiteral("kind"), QStringLiteral("Change the kind: prose, note, or screenplay."))
            .string(QStringLiteral("parent"),
                    QStringLiteral("Move the document under this parent title; an empty string "
                                   "moves it to the top level."))
            .string(QStringLiteral("parent_id"),
                    QStringLiteral("Move under this parent id, when the parent's title collides.")));
}

McpToolDescriptor appendToDocumentTool()
{
    return toolDescriptor(
        QStringLiteral("append_to_document"),
        QStringLiteral("Appends prose to the end of a document's body, preserving its stored format "
                       "(use this to continue a chapter without resending the whole body)."),
        addressedDocument()
            .string(QStringLiteral("text"),
                    QStringLiteral("The prose to add at the end of the body (Markdown)."))
            .required());
}

McpToolDescriptor findReplaceTool()
{
    return toolDescriptor(
        QStringLiteral("find_replace"),
        QStringLiteral("Project-wide find & replace over document bodies (regex-capable). With "
                       "dry_run or no replace it lists matches; a replace applies as one undo step."),
        ToolSchema()
            .string(QStringLiteral("find"),
                    QStringLiteral("The text (or pattern, with regex) to search for."))
            .required()
            .string(QStringLiteral("replace"),
                    QStringLiteral("The replacement text; \\1..\\9 expand regex capture groups. "
                                   "Omit to only list matches."))
            .boolean(QStringLiteral("regex"), QStringLiteral("Interpret find as a regular expression."))
            .boolean(QStringLiteral("case_sensitive"),
                     QStringLiteral("Match case exactly (default false)."))
            .boolean(QStringLiteral("whole_word"),
                     QStringLiteral("Match whole words only (ignored with regex; use \\b)."))
            .boolean(QStringLiteral("dry_run"),
                     QStringLiteral("List the matches without changing anything."))
            .string(QStringLiteral("scope"),
                    QStringLiteral("Title of a document to search only within (that document and "
                                   "its subtree); omit to search the whole project."))
            .string(QStringLiteral("scope_id"),
                    QStringLiteral("Id form of scope, when its title collides.")));
}

McpToolDescriptor listFootnotesTool()
{
    return toolDescriptor(
        QStringLiteral("list_footnotes"),
        QStringLiteral("Lists a document's footnotes and endnotes in reader numbering (order of "
                       "first [^id] reference in the body), plus any unreferenced definitions."),
        addressedDocument());
}

McpToolDescriptor addFootnoteTool()
{
    return toolDescriptor(
        QStringLiteral("add_footnote"),
        QStringLiteral("Adds a footnote or endnote definition to a document. The inline [^id] "
                       "reference goes in the body (write it with the body/append tools); this "
                       "defines the note's text. A fresh definition is an orphan until the body "
                       "cites [^id]."),
        addressedDocument()
            .string(QStringLiteral("text"), QStringLiteral("The note's content (Markdown)."))
            .required()
            .string(QStringLiteral("footnote_id"),
                    QStringLiteral("An id for the [^id] reference; auto-generated when omitted."))
            .boolean(QStringLiteral("endnote"),
                     QStringLiteral("true to make it an endnote (collected at the end) rather than "
                                    "a footnote.")));
}

McpToolDescriptor updateFootnoteTool()
{
    return toolDescriptor(
        QStringLiteral("update_footnote"),
        QStringLiteral("Edits an existing footnote definition's text and/or endnote flag, by id."),
        addressedDocument()
            .string(QStringLiteral("footnote_id"),
                    QStringLiteral("The footnote's id (as shown by list_footnotes)."))
            .required()
            .string(QStringLiteral("text"), QStringLiteral("New content for the note (non-empty)."))
            .boolean(QStringLiteral("endnote"), QStringLiteral("Set the endnote flag.")));
}

McpToolDescriptor removeFootnoteTool()
{
    return toolDescriptor(
        QStringLiteral("remove_footnote"),
        QStringLiteral("Deletes a footnote definition by id. Any [^id] marker left in the body is "
                       "reported so it can be removed from the prose too."),
        addressedDocument()
            .string(QStringLiteral("footnote_id"), QStringLiteral("The footnote's id to remove."))
            .required());
}

McpToolDescriptor documentVersionsTool()
{
    return toolDescriptor(
        QStringLiteral("get_document_versions"),
        QStringLiteral("Lists a document's saved version snapshots with labels and timestamps, "
                       "oldest first."),
        addressedDocument());
}

McpToolDescriptor snapshotVersionTool()
{
    return toolDescriptor(
        QStringLiteral("snapshot_document_version"),
        QStringLiteral("Saves a version snapshot of a document's current body, so the draft can "
                       "later be compared against or restored in Fablery's Version History."),
        addressedDocument().string(
            QStringLiteral("label"),
            QStringLiteral("A name for the snapshot (defaults to a timestamped label).")));
}

McpToolDescriptor manageVariantsTool()
{
    return toolDescriptor(
        QStringLiteral("manage_variants"),
        QStringLiteral("Manages a document's alternate ('what-if') drafts, distinct from version "
                       "snapshots. action: list; create (branches a new draft from the current one "
                       "and makes it active); switch (parks the live body and loads the named draft "
                       "-- no draft is lost); rename (renames the active draft); delete (removes a "
                       "named alternate, never the active one). Address drafts by name, which must "
                       "stay unique."),
        addressedDocument()
            .string(QStringLiteral("action"),
                    QStringLiteral("list (default), create, switch, rename, or delete."))
            .string(QStringLiteral("name"),
                    QStringLiteral("The draft name to create / switch to / delete (address "
                                   "alternates by name)."))
            .string(QStringLiteral("new_name"),
                    QStringLiteral("The new name for the active draft (rename).")));
}

} // namespace

void registerMcpDocumentTools(McpServer &server, Workspace &workspace, McpChangeLog &log)
{
    using Args = const QJsonObject &;
    server.addTool(manuscriptTreeTool(), [&](Args) { return getManuscriptTree(workspace); });
    server.addTool(getDocumentTool(), [&](Args a) { return getDocument(workspace, a); });
    server.addTool(createDocumentTool(), [&](Args a) { return createDocument(workspace, log, a); });
    server.addTool(updateDocumentTool(), [&](Args a) { return updateDocument(workspace, log, a); });
    server.addTool(appendToDocumentTool(), [&](Args a) { return appendToDocument(workspace, log, a); });
    server.addTool(findReplaceTool(), [&](Args a) { return findReplace(workspace, log, a); });
    server.addTool(listFootnotesTool(), [&](Args a) { return listFootnotes(workspace, a); });
    server.addTool(addFootnoteTool(), [&](Args a) { return addFootnote(workspace, log, a); });
    server.addTool(updateFootnoteTool(), [&](Args a) { return updateFootnote(workspace, log, a); });
    server.addTool(removeFootnoteTool(), [&](Args a) { return removeFootnote(workspace, log, a); });
    server.addTool(documentVersionsTool(), [&](Args a) { return getDocumentVersions(workspace, a); });
    server.addTool(snapshotVersionTool(), [&](Args a) { return snapshotDocumentVersion(workspace, log, a); });
    server.addTool(manageVariantsTool(), [&](Args a) { return manageVariants(workspace, log, a); });
}

} // namespace fb::app
