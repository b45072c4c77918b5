#include "tools/common/bodytext.h"

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

} // namespace fb::app
