#include "core/documenttree.h"

#include "core/document.h"
#include "core/project.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace fb::core {

DocumentTree::DocumentTree(const Project &project)
{
    // A document whose parent is missing (or is no document) stands at the top level, so that
    // damaged data never hides a document from the tree.
    for (const Document *document : project.objectsOfType<Document>()) {
        const QUuid parent = project.objectAs<Document>(document->parentId()) ? document->parentId()
                                                                              : QUuid();
        m_children[parent].push_back(document);
    }
    for (auto &entry : m_children) {
        std::sort(entry.second.begin(), entry.second.end(),
                  [](const Document *a, const Document *b) { return precedesSibling(*a, *b); });
    }
}

const std::vector<const Document *> &DocumentTree::children(const QUuid &parentId) const
{
    static const std::vector<const Document *> none;
    const auto it = m_children.find(parentId);
    return it == m_children.end() ? none : it->second;
}

std::vector<DocumentTree::Entry> DocumentTree::readingOrder(const QUuid &parentId) const
{
    std::vector<Entry> result;
    std::vector<Entry> stack;
    QSet<QUuid> visited{parentId};
    const auto pushChildren = [&](const QUuid &id, int depth) {
        const std::vector<const Document *> &siblings = children(id);
        for (auto it = siblings.rbegin(); it != siblings.rend(); ++it)
            stack.push_back({*it, depth});
    };
    pushChildren(parentId, 0);
    while (!stack.empty()) {
        const Entry current = stack.back();
        stack.pop_back();
        if (visited.contains(current.document->id()))
            continue;
        visited.insert(current.document->id());
        result.push_back(current);
        pushChildren(current.document->id(), current.depth + 1);
    }
    return result;
}

int repairDocumentParentLoops(Project &project)
{
    enum class Walk { OnPath, Done };
    QHash<QUuid, Walk> state;
    int cut = 0;
    for (Document *start : project.objectsOfType<Document>()) {
        std::vector<Document *> path;
        Document *current = start;
        // Walks up until a document already settled, a missing parent, or one on this walk.
        while (current && !state.contains(current->id())) {
            state.insert(current->id(), Walk::OnPath);
            path.push_back(current);
            current = project.objectAs<Document>(current->parentId());
        }
        if (current && state.value(current->id()) == Walk::OnPath) {
            const auto loopStart = std::find(path.begin(), path.end(), current);
            Document *freed = *std::min_element(loopStart, path.end(),
                                                [](const Document *a, const Document *b) {
                                                    return IdTextLess()(a->id(), b->id());
                                                });
            freed->setParentId(QUuid());
            ++cut;
        }
        for (Document *walked : path)
            state.insert(walked->id(), Walk::Done);
    }
    return cut;
}

} // namespace fb::core
