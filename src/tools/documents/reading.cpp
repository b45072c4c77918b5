#include "tools/documents/documenthandlers.h"

#include "core/document.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/bodytext.h"
#include "tools/common/documentlookup.h"
#include "tools/common/manuscript.h"

#include <QStringList>

namespace fb::app {

McpToolResult getManuscriptTree(Workspace &workspace)
{
    QStringList lines;
    qint64 words = 0;
    const std::vector<ManuscriptEntry> entries = visibleManuscript(workspace.project());
    for (const ManuscriptEntry &entry : entries) {
        const int count = documentWordCount(*entry.document);
        lines.append(QStringLiteral("%1- %2 (%3, %4 words)")
                         .arg(QString(entry.depth * 2, u' '), entry.document->title(),
                              core::enumName(entry.document->kind()), QString::number(count)));
        words += count;
    }
    if (lines.isEmpty())
        return McpToolResult::success(QStringLiteral("No documents yet."));
    return McpToolResult::success(QStringLiteral("# Manuscript (%1 document(s), %2 words)\n\n%3")
                                      .arg(qsizetype(entries.size()))
                                      .arg(words)
                                      .arg(lines.join(u'\n')));
}

McpToolResult getDocument(Workspace &workspace, const QJsonObject &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(workspace.project(), arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    const core::Document &document = **resolved;

    QStringList lines{QStringLiteral("# %1").arg(document.title()),
                      QStringLiteral("- Kind: %1").arg(core::enumName(document.kind()))};
    if (!document.status().isEmpty())
        lines.append(QStringLiteral("- Status: %1").arg(document.status()));
    if (!document.pointOfView().isEmpty())
        lines.append(QStringLiteral("- Point of view: %1").arg(document.pointOfView()));
    if (!document.synopsis().isEmpty())
        lines.append(QStringLiteral("- Synopsis: %1").arg(document.synopsis()));
    const int words = documentWordCount(document);
    if (document.wordCountTarget() < 1)
        lines.append(QStringLiteral("- Words: %1").arg(words));
    else
        lines.append(QStringLiteral("- Words: %1 (target %2)").arg(words).arg(document.wordCountTarget()));
    if (!document.footnotes().isEmpty()) {
        lines.append(QStringLiteral("- Footnotes: %1 (use list_footnotes for the notes)")
                         .arg(document.footnotes().size()));
    }
    if (!document.versions().isEmpty()) {
        lines.append(QStringLiteral("- Versions: %1 saved snapshot(s) (use get_document_versions)")
                         .arg(document.versions().size()));
    }
    lines.append(QString());
    lines.append(QStringLiteral("## Body"));
    lines.append(QString());
    if (document.body().isEmpty()) {
        lines.append(QStringLiteral("_The body is empty._"));
    } else if (isRichText(document.body())) {
        lines.append(QStringLiteral("_This body was written in the rich-text editor; shown as plain "
                                    "text (inline formatting not preserved)._\n\n")
                     + plainText(document.body()));
    } else {
        lines.append(document.body());
    }
    return McpToolResult::success(lines.join(u'\n'));
}

} // namespace fb::app
