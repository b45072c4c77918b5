#include "tools/codex/agentview.h"

#include "core/comment.h"
#include "core/document.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/manuscript.h"

namespace fb::app {

namespace {

void collectWithheld(core::Project &project, QSet<const core::ContentObject *> &withheld,
                     QSet<QUuid> &withheldIds)
{
    QSet<const core::ContentObject *> visibleDocuments;
    for (const ManuscriptEntry &entry : visibleManuscript(project))
        visibleDocuments.insert(entry.document);
    for (const core::ContentObject *object : project.objects()) {
        // A document outside the visible manuscript sits below an excluded one.
        const bool hiddenDocument = object->type() == core::ObjectType::Document
                                    && !visibleDocuments.contains(object);
        if (object->isAiExcluded() || hiddenDocument) {
            withheld.insert(object);
            withheldIds.insert(object->id());
        }
    }
}

} // namespace

AgentView::AgentView(Workspace &workspace)
{
    collectWithheld(workspace.project(), m_withheld, m_withheldIds);
    for (const MountedLibrary &library : workspace.libraries()) {
        if (library.project)
            collectWithheld(*library.project, m_withheld, m_withheldIds);
    }
}

bool AgentView::isVisible(const core::ContentObject &object) const
{
    if (m_withheld.contains(&object))
        return false;
    const auto *comment = core::objectCast<core::Comment>(&object);
    return !comment || !m_withheldIds.contains(comment->targetId());
}

} // namespace fb::app
