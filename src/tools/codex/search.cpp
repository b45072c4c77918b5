#include "core/contentobjects.h"
#include "tools/codex/overviewhandlers.h"
#include "tools/common/bodytext.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QStringList>

#include <array>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

constexpr qsizetype resultCap = 50;
// Characters of context on either side of a body hit: enough for the clause around the word,
// short enough that fifty results stay readable as one line each.
constexpr qsizetype contextWidth = 60;

// How an object matched. Results are listed by this rank, then in gathering order, so that the
// objects named like the query come first and a common word's many body hits cannot push them
// past the cap.
enum class MatchRank { Title = 0, Alias = 1, Body = 2 };

bool isSpace(QChar c)
{
    return c.isSpace();
}

// The hit with up to contextWidth characters on either side, cut at the line break around it,
// so that a result stays one line however long the paragraph. A cut end moves to a word
// boundary and is marked "...".
QString contextAround(const QString &text, qsizetype position, qsizetype length)
{
    const qsizetype lineStart = position == 0 ? 0 : text.lastIndexOf(u'\n', position - 1) + 1;
    qsizetype lineEnd = text.indexOf(u'\n', position + length);
    if (lineEnd < 0)
        lineEnd = text.size();

    qsizetype start = std::max(lineStart, position - contextWidth);
    if (start > lineStart) {
        qsizetype boundary = start;
        while (boundary < position && !isSpace(text.at(boundary - 1)))
            ++boundary;
        if (boundary < position)
            start = boundary;
    }
    qsizetype end = std::min(lineEnd, position + length + contextWidth);
    if (end < lineEnd) {
        qsizetype boundary = end;
        while (boundary > position + length && !isSpace(text.at(boundary)))
            --boundary;
        if (boundary > position + length)
            end = boundary;
    }
    QString context = text.mid(start, end - start).simplified();
    if (start > lineStart)
        context.prepend(u"..."_s);
    if (end < lineEnd)
        context.append(u"..."_s);
    return context;
}

class SearchResults
{
public:
    // Keeps the line while its rank can still be shown; every match is counted either way.
    // The context is built only for a kept line.
    template<typename MakeContext>
    void add(MatchRank rank, const LocatedObject &located, MakeContext makeContext)
    {
        ++m_total;
        QStringList &lines = m_lines[std::size_t(rank)];
        if (lines.size() >= resultCap)
            return;
        const QString head = u"- %1 (%2)"_s.arg(core::objectTitle(*located.object),
                                                objectDescription(located));
        const QString context = makeContext();
        lines.append(context.isEmpty() ? head : head + u" -- "_s + context);
    }

    bool isFull(MatchRank rank) const { return m_lines[std::size_t(rank)].size() >= resultCap; }

    QString text(const QString &query) const
    {
        if (m_total == 0)
            return u"No matches for '%1'."_s.arg(query);
        QStringList shown;
        for (const QStringList &lines : m_lines) {
            for (const QString &line : lines) {
                if (shown.size() < resultCap)
                    shown.append(line);
            }
        }
        QString text = shown.join(u'\n');
        if (m_total > shown.size()) {
            text += u"\nShowing %1 of %2 matches; refine the query to see the rest."_s
                        .arg(QString::number(shown.size()), QString::number(m_total));
        }
        return text;
    }

private:
    std::array<QStringList, 3> m_lines;
    qsizetype m_total = 0;
};

} // namespace

McpToolResult searchProject(ToolContext &context, const ToolArguments &arguments)
{
    const QString query = arguments.trimmed(u"query"_s);
    if (query.isEmpty())
        return McpToolResult::failure(u"search needs a non-empty \"query\"."_s);

    const Visibility &view = context.visibility();
    SearchResults results;
    forEachGatheredObject(context.workspace(), [&](const LocatedObject &located) {
        const core::ContentObject &object = *located.object;
        if (!view.isVisible(object))
            return;
        const bool titleHit = core::objectTitle(object).contains(query, Qt::CaseInsensitive);

        if (const auto *document = core::objectCast<core::Document>(&object)) {
            // A title hit past the cap needs neither the body's plain text nor its context.
            if (titleHit && results.isFull(MatchRank::Title)) {
                results.add(MatchRank::Title, located, [] { return QString(); });
                return;
            }
            const QString text = plainText(document->body());
            const qsizetype hit = text.indexOf(query, 0, Qt::CaseInsensitive);
            const auto hitContext = [&] {
                return hit < 0 ? QString() : contextAround(text, hit, query.size());
            };
            if (titleHit)
                results.add(MatchRank::Title, located, hitContext);
            else if (hit >= 0)
                results.add(MatchRank::Body, located, hitContext);
            return;
        }
        if (titleHit) {
            results.add(MatchRank::Title, located, [] { return QString(); });
            return;
        }
        if (const auto *entity = core::objectCast<core::Entity>(&object)) {
            for (const QString &alias : entity->aliases()) {
                if (alias.contains(query, Qt::CaseInsensitive)) {
                    results.add(MatchRank::Alias, located,
                                [&] { return u"alias '%1'"_s.arg(alias); });
                    return;
                }
            }
        }
    });
    return McpToolResult::success(results.text(query));
}

} // namespace fb::app
