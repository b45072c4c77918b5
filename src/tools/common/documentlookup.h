#pragma once

#include "core/result.h"

#include <QJsonObject>
#include <QString>

namespace fb::core {
class Document;
class Project;
} // namespace fb::core

namespace fb::app {

// The label that names the title argument in "Provide the %1 (or its id).".
inline const QString defaultDocumentLabel()
{
    return QStringLiteral("document \"title\"");
}

// Finds the document a tool addresses: by id when one is given (the title is then not
// consulted), else by title compared trimmed and case-insensitively. AI-excluded documents are
// never returned, nor documents below them; several documents with the title give the ambiguity list.
Result<core::Document *> resolveDocument(core::Project &project, const QString &title,
                                         const QString &id,
                                         const QString &label = defaultDocumentLabel());

// The usual addressing: the "title" and "id" arguments.
Result<core::Document *> resolveDocument(core::Project &project, const QJsonObject &arguments);

// Whether a document is withheld from the agent: it, or a document above it, is excluded from
// AI. The manuscript hides an excluded document's whole subtree, and so does every lookup.
bool isWithheldDocument(const core::Project &project, const core::Document &document);

// Whether a title equals another after trimming and folding case, the comparison every
// title lookup uses.
bool sameTitle(const QString &a, const QString &b);

} // namespace fb::app
