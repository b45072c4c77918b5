#pragma once

#include "core/ids.h"

#include <QUuid>

#include <map>
#include <vector>

namespace fb::core {

class Document;
class Project;

// The document tree of a project, grouped by parent in one pass over the objects, so that walks
// over thousands of documents stay linear instead of scanning the project per document. It is
// a snapshot: build it again after the tree changes.
class DocumentTree
{
public:
    struct Entry
    {
        const Document *document;
        int depth;
    };

    explicit DocumentTree(const Project &project);

    // The documents whose parent is parentId, in sibling order; the null id gives the top
    // level, which also holds the documents whose parent does not exist.
    const std::vector<const Document *> &children(const QUuid &parentId) const;

    // The descendants of parentId in reading order (depth-first, a parent before its subtree),
    // depth 0 being its children; the null id gives the whole manuscript. Each document comes
    // once even if damaged data holds a parent loop.
    std::vector<Entry> readingOrder(const QUuid &parentId = QUuid()) const;

private:
    std::map<QUuid, std::vector<const Document *>, IdTextLess> m_children;
};

// Cuts every loop in the documents' parent links, which damaged or hand-edited files can hold:
// in each loop the document with the smallest id text becomes a top-level document. So every
// document is reachable in the tree, and the same one is freed on every reading. Returns how
// many loops were cut.
int repairDocumentParentLoops(Project &project);

} // namespace fb::core
