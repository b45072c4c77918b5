#include "tools/common/manuscript.h"

#include "core/document.h"
#include "core/documenttree.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QSet>

namespace fb::app {

namespace {

template<typename IsShown>
std::vector<ManuscriptEntry> manuscriptOf(core::Project &project, const QUuid &root, IsShown isShown)
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
        if (visited.contains(document->id()) || !isShown(*document))
            continue;
        visited.insert(document->id());
        entries.push_back({project.objectAs<core::Document>(document->id()), depth});
        pushChildren(document->id(), depth + 1);
    }
    return entries;
}

} // namespace

std::vector<ManuscriptEntry> visibleManuscript(ToolContext &context, const QUuid &root)
{
    const Visibility &visibility = context.visibility();
    return manuscriptOf(context.workspace().project(), root, [&](const core::Document &document) {
        return visibility.isVisible(document);
    });
}

std::vector<ManuscriptEntry> visibleManuscript(core::Project &project, const QUuid &root)
{
    return manuscriptOf(project, root,
                        [](const core::Document &document) { return !document.isAiExcluded(); });
}

} // namespace fb::app
