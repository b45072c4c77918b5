#pragma once

// The commands that change one aspect of a document. Each holds the live Document and is
// constructed as (Document &, new value); the previous value is read at every redo.

#include "core/commands/valuecommands.h"
#include "core/document.h"

namespace fb::core {

// The drafts of a document as one aspect: the parked variants, the name of the active one and
// the body, which is the active draft's text. Switching drafts changes all three at once.
struct DocumentDrafts
{
    QList<DocumentVariant> variants;
    QString activeVariant;
    QString body;

    bool operator==(const DocumentDrafts &) const = default;
};

DocumentDrafts documentDrafts(const Document &document);
void setDocumentDrafts(Document &document, const DocumentDrafts &drafts);

template<typename Value, auto Getter, auto Setter>
using DocumentSwapCommand = MemberSwapCommand<Document, Value, Getter, Setter>;

class SetDocumentBodyCommand final
    : public DocumentSwapCommand<QString, &Document::body, &Document::setBody>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetDocumentFootnotesCommand final
    : public DocumentSwapCommand<QList<Footnote>, &Document::footnotes, &Document::setFootnotes>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetDocumentKindCommand final
    : public DocumentSwapCommand<DocumentKind, &Document::kind, &Document::setKind>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetDocumentPointOfViewCommand final
    : public DocumentSwapCommand<QString, &Document::pointOfView, &Document::setPointOfView>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetDocumentStatusCommand final
    : public DocumentSwapCommand<QString, &Document::status, &Document::setStatus>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetDocumentSynopsisCommand final
    : public DocumentSwapCommand<QString, &Document::synopsis, &Document::setSynopsis>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The word-count target; 0 clears it.
class SetDocumentTargetCommand final
    : public DocumentSwapCommand<qint32, &Document::wordCountTarget, &Document::setWordCountTarget>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetDocumentTitleCommand final
    : public DocumentSwapCommand<QString, &Document::title, &Document::setTitle>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The parked variants, the active name and the body together.
class SetDocumentVariantsCommand final
    : public DocumentSwapCommand<DocumentDrafts, &documentDrafts, &setDocumentDrafts>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

class SetDocumentVersionsCommand final
    : public DocumentSwapCommand<QList<DocumentVersion>, &Document::versions, &Document::setVersions>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

// The ids of the project plot threads the scene is tagged with.
class SetDocumentPlotThreadsCommand final
    : public DocumentSwapCommand<QList<QUuid>, &Document::plotThreadIds, &Document::setPlotThreadIds>
{
public:
    using MemberSwapCommand::MemberSwapCommand;
    QString label() const override;
};

} // namespace fb::core
