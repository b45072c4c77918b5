#pragma once

#include <QUuid>

#include <vector>

namespace fb::core {
class Document;
class Project;
} // namespace fb::core

namespace fb::app {

class ToolContext;

struct ManuscriptEntry
{
    core::Document *document;
    int depth;
};

// The documents below root (the whole manuscript for the null id) that the agent may see, in
// reading order: depth-first, a parent before its subtree, siblings in sibling order. A document
// withheld from the agent is left out with its whole subtree, and each document comes once even
// when damaged data holds a parent loop.
std::vector<ManuscriptEntry> visibleManuscript(ToolContext &context, const QUuid &root = QUuid());
// The same for a project on its own (a mounted library's, which agent-facing code reaches through
// the context): AI-excluded documents and their subtrees are left out.
std::vector<ManuscriptEntry> visibleManuscript(core::Project &project, const QUuid &root = QUuid());

} // namespace fb::app
