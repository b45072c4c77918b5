#include "core/commands/documentcommands.h"

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
    return QStringLiteral("Edit document body");
}

QString SetDocumentFootnotesCommand::label() const
{
    return QStringLiteral("Edit footnotes");
}

QString SetDocumentKindCommand::label() const
{
    return QStringLiteral("Change document kind");
}

QString SetDocumentPointOfViewCommand::label() const
{
    return QStringLiteral("Edit point of view");
}

QString SetDocumentStatusCommand::label() const
{
    return QStringLiteral("Edit status");
}

QString SetDocumentSynopsisCommand::label() const
{
    return QStringLiteral("Edit synopsis");
}

QString SetDocumentTargetCommand::label() const
{
    return QStringLiteral("Set word-count target");
}

QString SetDocumentTitleCommand::label() const
{
    return QStringLiteral("Rename document");
}

QString SetDocumentVariantsCommand::label() const
{
    return QStringLiteral("Edit document variants");
}

QString SetDocumentVersionsCommand::label() const
{
    return QStringLiteral("Edit version history");
}

QString SetDocumentPlotThreadsCommand::label() const
{
    return QStringLiteral("Tag scene plot threads");
}

} // namespace fb::core
