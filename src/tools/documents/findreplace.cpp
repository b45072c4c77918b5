#include "core/commands/command.h"
#include "core/commands/documentcommands.h"
#include "core/document.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/bodytext.h"
#include "tools/common/change.h"
#include "tools/common/documentlookup.h"
#include "tools/common/manuscript.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/documents/documenthandlers.h"

#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

constexpr int listedMatchesPerDocument = 3;
constexpr qsizetype longestListedLine = 120;

// The line that holds a match's start, as the listing shows it.
QString lineAround(const QString &text, qsizetype position)
{
    // A negative start position would make lastIndexOf search from the end of the text.
    const qsizetype start = position > 0 ? text.lastIndexOf(u'\n', position - 1) + 1 : 0;
    qsizetype end = text.indexOf(u'\n', position);
    if (end < 0)
        end = text.size();
    QString line = text.mid(start, end - start).trimmed();
    if (line.size() > longestListedLine)
        line = line.left(longestListedLine - 3) + u"..."_s;
    return line;
}

// The replacement for one match: "\1".."\9" become the capture groups (empty when a group does
// not exist or took no part); every other character, a backslash before anything else included,
// stays as it is.
QString expandReplacement(const QString &replacement, const QRegularExpressionMatch &match)
{
    QString expanded;
    expanded.reserve(replacement.size());
    for (qsizetype i = 0; i < replacement.size(); ++i) {
        const QChar c = replacement.at(i);
        if (c == u'\\' && i + 1 < replacement.size()) {
            const QChar next = replacement.at(i + 1);
            if (next >= u'1' && next <= u'9') {
                const int group = next.unicode() - u'0';
                if (group <= match.lastCapturedIndex())
                    expanded += match.captured(group);
                ++i;
                continue;
            }
        }
        expanded += c;
    }
    return expanded;
}

struct Replaced
{
    QString body;
    int count = 0;
};

Replaced replaceAll(const QString &body, const QRegularExpression &pattern,
                    const QString &replacement)
{
    Replaced result;
    qsizetype copiedUpTo = 0;
    auto matches = pattern.globalMatch(body);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (match.capturedLength() < 1)
            continue;
        result.body += QStringView(body).mid(copiedUpTo, match.capturedStart() - copiedUpTo);
        result.body += expandReplacement(replacement, match);
        copiedUpTo = match.capturedEnd();
        ++result.count;
    }
    if (result.count == 0)
        return {body, 0};
    result.body += QStringView(body).mid(copiedUpTo);
    return result;
}

int countMatches(const QString &text, const QRegularExpression &pattern)
{
    int count = 0;
    auto matches = pattern.globalMatch(text);
    while (matches.hasNext()) {
        if (matches.next().capturedLength() >= 1)
            ++count;
    }
    return count;
}

Result<QRegularExpression> buildPattern(const ToolArguments &arguments)
{
    const QString find = arguments.text(u"find"_s);
    if (find.isEmpty())
        return makeError(u"find_replace needs non-empty \"find\" text."_s);
    const bool regex = arguments.boolean(u"regex"_s);
    QString pattern = regex ? find : QRegularExpression::escape(find);
    if (arguments.boolean(u"whole_word"_s) && !regex)
        pattern = u"\\b"_s + pattern + u"\\b"_s;
    QRegularExpression expression(pattern, arguments.boolean(u"case_sensitive"_s)
                                               ? QRegularExpression::NoPatternOption
                                               : QRegularExpression::CaseInsensitiveOption);
    if (!expression.isValid()) {
        return makeError(
            u"'%1' is not a valid regular expression: %2"_s.arg(find, expression.errorString()));
    }
    expression.optimize();
    return expression;
}

// The documents searched, in reading order: the scope document and its subtree, or the whole
// manuscript. AI-excluded documents are skipped silently, with their subtrees, as everywhere
// the manuscript is shown.
Result<std::vector<core::Document *>> searchedDocuments(ToolContext &context,
                                                        const ToolArguments &arguments)
{
    const QString scopeTitle = arguments.text(u"scope"_s);
    const QString scopeId = arguments.text(u"scope_id"_s);
    QUuid root;
    core::Document *scope = nullptr;
    if (!scopeTitle.isEmpty() || !scopeId.isEmpty()) {
        const Result<core::Document *> resolved = resolveDocument(context, scopeTitle, scopeId,
                                                                  u"scope \"scope\""_s);
        if (!resolved)
            return makeError(resolved.error());
        scope = *resolved;
        root = scope->id();
    }
    std::vector<core::Document *> documents;
    if (scope)
        documents.push_back(scope);
    for (const ManuscriptEntry &entry : visibleManuscript(context, root))
        documents.push_back(entry.document);
    return documents;
}

McpToolResult listMatches(const std::vector<core::Document *> &documents,
                          const QRegularExpression &pattern, const QString &find)
{
    QStringList lines;
    int total = 0;
    int matchingDocuments = 0;
    for (const core::Document *document : documents) {
        const QString text = plainText(document->body());
        QStringList matchLines;
        int count = 0;
        auto matches = pattern.globalMatch(text);
        while (matches.hasNext()) {
            const QRegularExpressionMatch match = matches.next();
            if (match.capturedLength() < 1)
                continue;
            if (++count <= listedMatchesPerDocument)
                matchLines.append(u"  - %1"_s.arg(lineAround(text, match.capturedStart())));
        }
        if (count == 0)
            continue;
        ++matchingDocuments;
        total += count;
        lines.append(u"**%1** (%2 match(es))"_s.arg(document->title(), QString::number(count)));
        lines.append(matchLines);
        if (count > listedMatchesPerDocument)
            lines.append(u"  - ...and %1 more"_s.arg(count - listedMatchesPerDocument));
    }
    if (total == 0)
        return McpToolResult::success(u"No matches for '%1'."_s.arg(find));
    return McpToolResult::success(
        u"Found %1 match(es) in %2 document(s):\n%3"_s.arg(QString::number(total),
                                                           QString::number(matchingDocuments),
                                                           lines.join(u'\n')));
}

} // namespace

McpToolResult findReplace(ToolContext &context, const ToolArguments &arguments)
{
    const Result<QRegularExpression> pattern = buildPattern(arguments);
    if (!pattern)
        return McpToolResult::failure(pattern.error());
    const Result<std::vector<core::Document *>> documents = searchedDocuments(context, arguments);
    if (!documents)
        return McpToolResult::failure(documents.error());

    const QString find = arguments.text(u"find"_s);
    const bool listOnly = arguments.boolean(u"dry_run"_s) || !arguments.has(u"replace"_s);
    if (listOnly)
        return listMatches(*documents, *pattern, find);

    const QString replacement = arguments.text(u"replace"_s);
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: find_replace"_s);
    QStringList edited;
    QStringList richText;
    int replacedTotal = 0;
    int richTextTotal = 0;
    for (core::Document *document : *documents) {
        if (isRichText(document->body())) {
            // Rewriting HTML by pattern could break its markup; such bodies are only counted.
            const int count = countMatches(plainText(document->body()), *pattern);
            if (count > 0) {
                richText.append(
                    u"'%1' (%2 match(es))"_s.arg(document->title(), QString::number(count)));
                richTextTotal += count;
            }
            continue;
        }
        const Replaced replaced = replaceAll(document->body(), *pattern, replacement);
        if (replaced.count < 1)
            continue;
        change->append(std::make_unique<core::SetDocumentBodyCommand>(*document, replaced.body));
        edited.append(u"'%1' (%2)"_s.arg(document->title(), QString::number(replaced.count)));
        replacedTotal += replaced.count;
    }

    if (change->isEmpty()) {
        if (richTextTotal < 1)
            return McpToolResult::success(u"No matches for '%1'; nothing changed."_s.arg(find));
        return McpToolResult::success(
            u"All %1 match(es) of '%2' are in rich-text document(s) (%3), which cannot "
            "be rewritten by pattern safely; nothing was changed. Replace those bodies "
            "wholesale with update_document instead."_s.arg(QString::number(richTextTotal), find,
                                                            richText.join(u", "_s)));
    }
    QString summary = u"Replaced %1 match(es) of '%2' across %3 document(s): %4."_s
                          .arg(QString::number(replacedTotal), find, QString::number(edited.size()),
                               edited.join(u", "_s));
    if (!richText.isEmpty()) {
        summary += u" %1 match(es) in rich-text document(s) were left unchanged: %2; "
                   "replace those bodies wholesale with update_document."_s
                       .arg(QString::number(richTextTotal), richText.join(u", "_s));
    }
    return applyChange(context, std::move(change), summary);
}

} // namespace fb::app
