#include "core/document.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/bodytext.h"
#include "tools/common/documentlookup.h"
#include "tools/common/manuscript.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/documents/documenthandlers.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace fb::app {

McpToolResult getManuscriptTree(ToolContext &context, const ToolArguments &)
{
    QStringList lines;
    qint64 words = 0;
    const std::vector<ManuscriptEntry> entries = visibleManuscript(context);
    for (const ManuscriptEntry &entry : entries) {
        const int count = documentWordCount(*entry.document);
        lines.append(u"%1- %2 (%3, %4 words)"_s.arg(QString(entry.depth * 2, u' '),
                                                    entry.document->title(),
                                                    core::enumName(entry.document->kind()),
                                                    QString::number(count)));
        words += count;
    }
    if (lines.isEmpty())
        return McpToolResult::success(u"No documents yet."_s);
    return McpToolResult::success(
        u"# Manuscript (%1 document(s), %2 words)\n\n%3"_s.arg(qsizetype(entries.size()))
            .arg(words)
            .arg(lines.join(u'\n')));
}

McpToolResult getDocument(ToolContext &context, const ToolArguments &arguments)
{
    const Result<core::Document *> resolved = resolveDocument(context, arguments);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    const core::Document &document = **resolved;

    QStringList lines{u"# %1"_s.arg(document.title()),
                      u"- Kind: %1"_s.arg(core::enumName(document.kind()))};
    if (!document.status().isEmpty())
        lines.append(u"- Status: %1"_s.arg(document.status()));
    if (!document.pointOfView().isEmpty())
        lines.append(u"- Point of view: %1"_s.arg(document.pointOfView()));
    if (!document.synopsis().isEmpty())
        lines.append(u"- Synopsis: %1"_s.arg(document.synopsis()));
    const int words = documentWordCount(document);
    if (document.wordCountTarget() < 1)
        lines.append(u"- Words: %1"_s.arg(words));
    else
        lines.append(u"- Words: %1 (target %2)"_s.arg(words).arg(document.wordCountTarget()));
    if (!document.footnotes().isEmpty()) {
        lines.append(u"- Footnotes: %1 (use list_footnotes for the notes)"_s.arg(
            document.footnotes().size()));
    }
    if (!document.versions().isEmpty()) {
        lines.append(u"- Versions: %1 saved snapshot(s) (use get_document_versions)"_s.arg(
            document.versions().size()));
    }
    lines.append(QString());
    lines.append(u"## Body"_s);
    lines.append(QString());
    if (document.body().isEmpty()) {
        lines.append(u"_The body is empty._"_s);
    } else if (isRichText(document.body())) {
        lines.append(u"_This body was written in the rich-text editor; shown as plain "
                     "text (inline formatting not preserved)._\n\n"_s
                     + plainText(document.body()));
    } else {
        lines.append(document.body());
    }
    return McpToolResult::success(lines.join(u'\n'));
}

} // namespace fb::app
