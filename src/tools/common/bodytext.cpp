#include "tools/common/bodytext.h"

#include "core/document.h"

#include <QHash>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace fb::app {

bool isRichText(const QString &body)
{
    return body.trimmed().startsWith(u"<!DOCTYPE"_s, Qt::CaseInsensitive);
}

QString plainText(const QString &body)
{
    if (!isRichText(body))
        return body;

    static const QRegularExpression
        hiddenElements(u"<(head|style|script)\\b[^>]*>.*?</\\1>"_s,
                       QRegularExpression::CaseInsensitiveOption
                           | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression tags(u"<[^>]*>"_s);

    QString text = body;
    text.replace(hiddenElements, u" "_s);
    text.replace(tags, u" "_s);
    // "&amp;" goes last, so an escaped ampersand followed by the letters of another entity reads
    // as that entity's text, not as its character.
    text.replace(u"&nbsp;"_s, u" "_s);
    text.replace(u"&lt;"_s, u"<"_s);
    text.replace(u"&gt;"_s, u">"_s);
    text.replace(u"&quot;"_s, u"\""_s);
    text.replace(u"&#39;"_s, u"'"_s);
    text.replace(u"&amp;"_s, u"&"_s);
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
