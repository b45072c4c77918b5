#include "tools/common/bodytext.h"

#include "core/document.h"

#include <QHash>
#include <QRegularExpression>

namespace fb::app {

bool isRichText(const QString &body)
{
    return body.trimmed().startsWith(QStringLiteral("<!DOCTYPE"), Qt::CaseInsensitive);
}

QString plainText(const QString &body)
{
    if (!isRichText(body))
        return body;

    static const QRegularExpression hiddenElements(
        QStringLiteral("<(head|style|script)\\b[^>]*>.*?</\\1>"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression tags(QStringLiteral("<[^>]*>"));

    QString text = body;
    text.replace(hiddenElements, QStringLiteral(" "));
    text.replace(tags, QStringLiteral(" "));
    // "&amp;" goes last, so an escaped ampersand followed by the letters of another entity reads
    // as that entity's text, not as its character.
    text.replace(QStringLiteral("&nbsp;"), QStringLiteral(" "));
    text.replace(QStringLiteral("&lt;"), QStringLiteral("<"));
    text.replace(QStringLiteral("&gt;"), QStringLiteral(">"));
    text.replace(QStringLiteral("&quot;"), QStringLiteral("\""));
    text.replace(QStringLiteral("&#39;"), QStringLiteral("'"));
    text.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
    return text.simplified();
}

int countWords(const QString &text)
{
    int words = 0;
    bool inWord = false;
    for (const QChar c : text) {
        const bool space = c.isSpace();
        if (!space && !inWord)
            ++words;
        inWord = !space;
    }
    return words;
}

int wordCount(const QString &body)
{
    return countWords(plainText(body));
}

int documentWordCount(const core::Document &document)
{
    // Revisions are unique across every object and every state, so a revision alone names one
    // body. The server runs on one thread; the cache is forgotten whole when it grows large.
    static QHash<quint64, int> counts;
    constexpr qsizetype largestCache = 200000;
    const auto known = counts.constFind(document.revision());
    if (known != counts.constEnd())
        return *known;
    if (counts.size() >= largestCache)
        counts.clear();
    const int words = wordCount(document.body());
    counts.insert(document.revision(), words);
    return words;
}

} // namespace fb::app
