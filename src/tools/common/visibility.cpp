#include "tools/common/visibility.h"

#include "core/comment.h"
#include "core/document.h"
#include "core/project.h"
#include "core/timeline.h"
#include "core/timelineevent.h"
#include "storage/workspace.h"

#include <QHash>

namespace fb::app {

namespace {

// Whether a document or one above it is excluded, remembering every answer on the way so the
// whole manuscript is decided in linear time. Parent loops cannot occur in a model read from
// disk; the walk still stops at one.
bool isBelowExclusion(const core::Project &project, const core::Document &document,
                      QHash<const core::Document *, bool> &decided)
{
    std::vector<const core::Document *> path;
    const core::Document *current = &document;
    bool excluded = false;
    while (current) {
        if (const auto known = decided.constFind(current); known != decided.constEnd()) {
            excluded = *known;
            break;
        }
        if (current->isAiExcluded() || std::find(path.begin(), path.end(), current) != path.end()) {
            excluded = current->isAiExcluded();
            break;
        }
        path.push_back(current);
        current = project.objectAs<core::Document>(current->parentId());
    }
    for (const core::Document *walked : path)
        decided.insert(walked, excluded || walked->isAiExcluded());
    return decided.value(&document, document.isAiExcluded());
}

bool isOnExcludedTimeline(const core::Project &project, const core::TimelineEvent &event)
{
    const auto *timeline = project.objectAs<core::Timeline>(event.timelineId());
    return timeline && timeline->isAiExcluded();
}

} // namespace

Visibility::Visibility(const Workspace &workspace)
{
    collect(workspace.project());
    for (const MountedLibrary &library : workspace.libraries()) {
        if (library.project)
            collect(*library.project);
    }
}

void Visibility::collect(const core::Project &project)
{
    QHash<const core::Document *, bool> decided;
    for (const core::ContentObject *object : project.objects()) {
        const auto *document = core::objectCast<core::Document>(object);
        const auto *event = core::objectCast<core::TimelineEvent>(object);
        const bool withheld = object->isAiExcluded()
                              || (document && isBelowExclusion(project, *document, decided))
                              || (event && isOnExcludedTimeline(project, *event));
        if (withheld) {
            m_withheld.insert(object);
            m_withheldIds.insert(object->id());
        }
    }
}

bool Visibility::isVisible(const core::ContentObject &object) const
{
    if (m_withheld.contains(&object))
        return false;
    const auto *comment = core::objectCast<core::Comment>(&object);
    return !comment || !m_withheldIds.contains(comment->targetId());
}

} // namespace fb::app
