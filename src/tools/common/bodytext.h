#pragma once

#include <QString>

namespace fb::core {
class Document;
}

namespace fb::app {

// The text rules every family applies to document bodies: a body is rich-text HTML when its
// trimmed text begins with "<!DOCTYPE" in any letter case, and Markdown otherwise.
bool isRichText(const QString &body);

// The plain text of a body: a Markdown body as it stands; a rich-text body with head, style and
// script elements and all tags removed, the common entities decoded and white space collapsed.
QString plainText(const QString &body);

// The number of maximal runs of non-whitespace characters in the body's plain text. Markup is
// counted as it stands: "# Title" is two words, everywhere the count is shown.
int wordCount(const QString &body);

// The word count of a document's body, remembered per revision of the document: listing the
// manuscript of a novel would otherwise count a million words on every call.
int documentWordCount(const core::Document &document);

// The same count over text that is already plain.
int countWords(const QString &text);

} // namespace fb::app
