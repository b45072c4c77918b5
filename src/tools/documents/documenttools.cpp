#include "tools/documents/documenthandlers.h"
#include "tools/registration.h"

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const QStringList documentKinds{u"prose"_s, u"note"_s, u"screenplay"_s};

// Every document tool addresses its document by "title", or by "id" when titles collide.
QList<ArgumentDeclaration> addressedDocument(QList<ArgumentDeclaration> more = {})
{
    QList<ArgumentDeclaration> arguments{
        optionalText(u"title"_s, u"The document's title (case-insensitive). Give the title or the "
                                 "\"id\"."_s),
        optionalText(u"id"_s, u"The document's id, to disambiguate when several documents share "
                              "the title; used instead of the title when given."_s)};
    arguments.append(more);
    return arguments;
}

} // namespace

// The manuscript: reading and editing documents, find and replace, footnotes, versions and
// alternate drafts.
std::vector<ToolDefinition> documentTools()
{
    return {
        {u"get_manuscript_tree"_s,
         u"Shows the manuscript's document tree in reading order, each document with "
         "its kind (prose/note/screenplay) and word count."_s,
         {},
         getManuscriptTree},
        {u"get_document"_s,
         u"Reads one document: kind, status, point of view, synopsis, word count, and "
         "its body as Markdown. Address it by title (or by id when titles collide)."_s,
         addressedDocument(), getDocument},
        {u"create_document"_s,
         u"Creates a document in the manuscript tree, appended after its siblings. "
         "Args: title (must be unique), optional kind/body/synopsis/parent."_s,
         {requiredText(u"title"_s, u"The new document's title."_s),
          optionalChoice(u"kind"_s, u"Document kind: prose (default), note, or screenplay."_s,
                         documentKinds),
          optionalText(u"body"_s, u"Initial body as Markdown (Fountain for a screenplay)."_s),
          optionalText(u"synopsis"_s, u"A short synopsis for the outline and corkboard."_s),
          optionalText(u"parent"_s,
                       u"Title of the parent document to nest under (omit for top level)."_s),
          optionalText(u"parent_id"_s, u"Id of the parent document, when its title collides."_s)},
         createDocument},
        {u"update_document"_s,
         u"Sparse update of one document: only the keys you pass change (new_title, "
         "body, synopsis, status, point_of_view, word_count_target, kind, parent). "
         "Omitted keys stay untouched."_s,
         addressedDocument(
             {optionalText(u"new_title"_s, u"Rename the document to this title."_s),
              optionalText(u"body"_s,
                           u"Replace the whole body with this Markdown (empty clears it)."_s),
              optionalText(u"synopsis"_s, u"Replace the synopsis (empty clears it)."_s),
              optionalText(u"status"_s,
                           u"Workflow status shown in the outline/corkboard, e.g. \"Draft\", "
                           "\"Revised\", \"Final\" (empty clears it)."_s),
              optionalText(u"point_of_view"_s,
                           u"The scene's point-of-view label (empty clears it)."_s),
              withTypeRefusal(
                  optionalInteger(
                      u"word_count_target"_s,
                      u"A word-count writing goal for the document (0 clears the target)."_s),
                  badWordCountTarget()),
              optionalChoice(u"kind"_s, u"Change the kind: prose, note, or screenplay."_s,
                             documentKinds),
              optionalText(u"parent"_s,
                           u"Move the document under this parent title; an empty string "
                           "moves it to the top level."_s),
              optionalText(u"parent_id"_s,
                           u"Move under this parent id, when the parent's title collides."_s)}),
         updateDocument},
        {u"append_to_document"_s,
         u"Appends prose to the end of a document's body, preserving its stored format "
         "(use this to continue a chapter without resending the whole body)."_s,
         addressedDocument(
             {requiredText(u"text"_s, u"The prose to add at the end of the body (Markdown)."_s)}),
         appendToDocument},
        {u"find_replace"_s,
         u"Project-wide find & replace over document bodies (regex-capable). With "
         "dry_run or no replace it lists matches; a replace applies as one undo step."_s,
         {requiredText(u"find"_s, u"The text (or pattern, with regex) to search for."_s),
          optionalText(u"replace"_s, u"The replacement text; \\1..\\9 expand regex capture groups. "
                                     "Omit to only list matches."_s),
          optionalBool(u"regex"_s, u"Interpret find as a regular expression."_s),
          optionalBool(u"case_sensitive"_s, u"Match case exactly (default false)."_s),
          optionalBool(u"whole_word"_s, u"Match whole words only (ignored with regex; use \\b)."_s),
          optionalBool(u"dry_run"_s, u"List the matches without changing anything."_s),
          optionalText(u"scope"_s, u"Title of a document to search only within (that document and "
                                   "its subtree); omit to search the whole project."_s),
          optionalText(u"scope_id"_s, u"Id form of scope, when its title collides."_s)},
         findReplace},
        {u"list_footnotes"_s,
         u"Lists a document's footnotes and endnotes in reader numbering (order of "
         "first [^id] reference in the body), plus any unreferenced definitions."_s,
         addressedDocument(), listFootnotes},
        {u"add_footnote"_s,
         u"Adds a footnote or endnote definition to a document. The inline [^id] "
         "reference goes in the body (write it with the body/append tools); this "
         "defines the note's text. A fresh definition is an orphan until the body "
         "cites [^id]."_s,
         addressedDocument(
             {requiredText(u"text"_s, u"The note's content (Markdown)."_s),
              optionalText(u"footnote_id"_s,
                           u"An id for the [^id] reference; auto-generated when omitted."_s),
              optionalBool(u"endnote"_s,
                           u"true to make it an endnote (collected at the end) rather than "
                           "a footnote."_s)}),
         addFootnote},
        {u"update_footnote"_s,
         u"Edits an existing footnote definition's text and/or endnote flag, by id."_s,
         addressedDocument(
             {requiredText(u"footnote_id"_s,
                           u"The footnote's id (as shown by list_footnotes, with or without "
                           "the [^ ] around it)."_s),
              optionalText(u"text"_s, u"New content for the note (non-empty)."_s),
              optionalBool(u"endnote"_s, u"Set the endnote flag."_s)}),
         updateFootnote},
        {u"remove_footnote"_s,
         u"Deletes a footnote definition by id. Any [^id] marker left in the body is "
         "reported so it can be removed from the prose too."_s,
         addressedDocument({requiredText(u"footnote_id"_s, u"The footnote's id to remove."_s)}),
         removeFootnote},
        {u"get_document_versions"_s,
         u"Lists a document's saved version snapshots with labels and timestamps, "
         "oldest first."_s,
         addressedDocument(), getDocumentVersions},
        {u"snapshot_document_version"_s,
         u"Saves a version snapshot of a document's current body, so the draft can "
         "later be compared against or restored in Fablery's Version History."_s,
         addressedDocument(
             {optionalText(u"label"_s,
                           u"A name for the snapshot (defaults to a timestamped label)."_s)}),
         snapshotDocumentVersion},
        {u"manage_variants"_s,
         u"Manages a document's alternate ('what-if') drafts, distinct from version "
         "snapshots. action: list; create (branches a new draft from the current one "
         "and makes it active); switch (parks the live body and loads the named draft "
         "-- no draft is lost); rename (renames the active draft); delete (removes a "
         "named alternate, never the active one). Address drafts by name, which must "
         "stay unique."_s,
         addressedDocument(
             {optionalChoice(u"action"_s, u"list (default), create, switch, rename, or delete."_s,
                             actionNames(variantActions())),
              optionalText(u"name"_s, u"The draft name to create / switch to / delete (address "
                                      "alternates by name)."_s),
              optionalText(u"new_name"_s, u"The new name for the active draft (rename)."_s)}),
         manageVariants},
    };
}

} // namespace fb::app
