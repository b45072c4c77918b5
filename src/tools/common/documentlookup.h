#pragma once

#include "core/result.h"

#include <QString>

namespace fb::core {
class Document;
class Project;
} // namespace fb::core

namespace fb::app {

class ToolArguments;
class ToolContext;

// The label that names the title argument in "Provide the %1 (or its id).".
inline const QString defaultDocumentLabel()
{
    return QStringLiteral("document \"title\"");
}

// Finds the document a tool addresses: by id when one is given (the title is then not
// consulted), else by title compared trimmed and case-insensitively. Documents withheld from
// the agent are never returned; several documents with the title give the ambiguity list.
Result<core::Document *> resolveDocument(ToolContext &context, const QString &title,
                                         const QString &id,
                                         const QString &label = defaultDocumentLabel());

// The usual addressing: the "title" and "id" arguments.
Result<core::Document *> resolveDocument(ToolContext &context, const ToolArguments &arguments);

// Whether a title equals another after trimming and folding case, the comparison every
// title lookup uses.
bool sameTitle(const QString &a, const QString &b);

} // namespace fb::app
