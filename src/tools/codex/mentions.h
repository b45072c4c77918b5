#pragma once

#include "tools/common/manuscript.h"

#include <QStringList>

#include <vector>

namespace fb::core {
class Document;
} // namespace fb::core

namespace fb::app {

// The documents of a manuscript (the part the agent may see, from visibleManuscript), in its
// order, whose body (as plain text) mentions one of the names. A mention is the whole name, in
// any letter case, not inside a longer word: "Mara" is found in "Mara's boat" and "MARA", not
// in "Maraschino". The words of a name may be split by any white space, line breaks included.
// The bodies are read once, whatever the number of names.
std::vector<const core::Document *> documentsMentioning(
    const std::vector<ManuscriptEntry> &manuscript, const QStringList &names);

} // namespace fb::app
