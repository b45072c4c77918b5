#include "tools/codex/mentions.h"

#include "core/document.h"
#include "tools/common/bodytext.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// One pattern for all the names, so that each body is matched once: the alternatives are the
// escaped words of each name joined by white space, and the lookarounds keep the match from
// starting or ending inside a word, whatever characters the name itself begins or ends with.
QRegularExpression mentionPattern(const QStringList &names)
{
    QStringList alternatives;
    QSet<QString> seen;
    for (const QString &name : names) {
        const QStringList words = name.simplified().split(u' ', Qt::SkipEmptyParts);
        if (words.isEmpty())
            continue;
        QStringList escaped;
        for (const QString &word : words)
            escaped.append(QRegularExpression::escape(word));
        const QString alternative = escaped.join(u"\\s+"_s);
        if (!seen.contains(alternative.toLower())) {
            seen.insert(alternative.toLower());
            alternatives.append(alternative);
        }
    }
    if (alternatives.isEmpty())
        return {};
    return QRegularExpression(u"(?<!\\w)(?:%1)(?!\\w)"_s.arg(alternatives.join(u'|')),
                              QRegularExpression::CaseInsensitiveOption
                                  | QRegularExpression::UseUnicodePropertiesOption);
}

} // namespace

std::vector<const core::Document *> documentsMentioning(
    const std::vector<ManuscriptEntry> &manuscript, const QStringList &names)
{
    std::vector<const core::Document *> found;
    const QRegularExpression pattern = mentionPattern(names);
    if (pattern.pattern().isEmpty())
        return found;
    for (const ManuscriptEntry &entry : manuscript) {
        if (pattern.match(plainText(entry.document->body())).hasMatch())
            found.push_back(entry.document);
    }
    return found;
}

} // namespace fb::app
