#pragma once

#include <QUuid>

#include <vector>

namespace fb::core {
class Document;
class Project;
} // namespace fb::core

namespace fb::app {

struct ManuscriptEntry
{
    core::Document *document;
    int depth;
};

// The documents below root (the whole manuscript for the null id) that the agent may see, in
// reading order: depth-first, a parent before its subtree, siblings in sibling order. An
// AI-excluded document is left out with its whole subtree, and each document comes once even
// when damaged data holds a parent loop.
std::vector<ManuscriptEntry> visibleManuscript(core::Project &project, const QUuid &root = QUuid());

} // namespace fb::app
