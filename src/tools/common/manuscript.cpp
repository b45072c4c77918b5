#include "tools/common/manuscript.h"

#include "core/document.h"
#include "core/documenttree.h"
#include "core/project.h"

#include <QSet>

namespace fb::app {

std::vector<ManuscriptEntry> visibleManuscript(core::Project &project, const QUuid &root)
{
    const core::DocumentTree tree(project);
    std::vector<ManuscriptEntry> entries;
    std::vector<std::pair<const core::Document *, int>> stack;
    const auto pushChildren = [&](const QUuid &parent, int depth) {
        const auto &children = tree.children(parent);
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            stack.emplace_back(*child, depth);
    };
    QSet<QUuid> visited;
    pushChildren(root, 0);
    while (!stack.empty()) {
        const auto [document, depth] = stack.back();
        stack.pop_back();
        if (visited.contains(document->id()) || document->isAiExcluded())
            continue;
        visited.insert(document->id());
        entries.push_back({project.objectAs<core::Document>(document->id()), depth});
        pushChildren(document->id(), depth + 1);
    }
    return entries;
}

} // namespace fb::app
