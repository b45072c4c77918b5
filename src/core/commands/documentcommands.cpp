#include "core/commands/documentcommands.h"

using namespace Qt::StringLiterals;

namespace fb::core {

DocumentDrafts documentDrafts(const Document &document)
{
    return {document.variants(), document.activeVariant(), document.body()};
}

void setDocumentDrafts(Document &document, const DocumentDrafts &drafts)
{
    document.setVariants(drafts.variants);
    document.setActiveVariant(drafts.activeVariant);
    document.setBody(drafts.body);
}

QString SetDocumentBodyCommand::label() const
{
    return u"Edit document body"_s;
}

QString SetDocumentFootnotesCommand::label() const
{
    return u"Edit footnotes"_s;
}

QString SetDocumentKindCommand::label() const
{
    return u"Change document kind"_s;
}

QString SetDocumentPointOfViewCommand::label() const
{
    return u"Edit point of view"_s;
}

QString SetDocumentStatusCommand::label() const
{
    return u"Edit status"_s;
}

QString SetDocumentSynopsisCommand::label() const
{
    return u"Edit synopsis"_s;
}

QString SetDocumentTargetCommand::label() const
{
    return u"Set word-count target"_s;
}

QString SetDocumentTitleCommand::label() const
{
    return u"Rename document"_s;
}

QString SetDocumentVariantsCommand::label() const
{
    return u"Edit document variants"_s;
}

QString SetDocumentVersionsCommand::label() const
{
    return u"Edit version history"_s;
}

QString SetDocumentPlotThreadsCommand::label() const
{
    return u"Tag scene plot threads"_s;
}

} // namespace fb::core
