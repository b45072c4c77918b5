#pragma once

#include <QStringList>

#include <vector>

namespace fb::core {
class Document;
class Project;
} // namespace fb::core

namespace fb::app {

// The documents the agent may see, in reading order, whose body (as plain text) mentions one of
// the names. A mention is the whole name, in any letter case, not inside a longer word: "Mara"
// is found in "Mara's boat" and "MARA", not in "Maraschino". The words of a name may be split
// by any white space, line breaks included. The bodies are read once, whatever the number of
// names.
std::vector<const core::Document *> documentsMentioning(core::Project &project,
                                                        const QStringList &names);

} // namespace fb::app
