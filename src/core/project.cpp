#include "core/project.h"

#include "core/document.h"
#include "core/revision.h"

#include <QSet>

#include <algorithm>
#include <optional>

namespace fb::core {

namespace {

using ObjectMap = std::map<QUuid, std::unique_ptr<ContentObject>, IdTextLess>;

template<typename Pointer>
std::vector<Pointer> collect(const ObjectMap &objects, std::optional<ObjectType> type)
{
    std::vector<Pointer> result;
    result.reserve(type ? 0 : objects.size());
    for (const auto &entry : objects) {
        if (!type || entry.second->type() == *type)
            result.push_back(entry.second.get());
    }
    return result;
}

template<typename DocumentPointer>
std::vector<DocumentPointer> collectChildren(const ObjectMap &objects, const QUuid &parentId)
{
    std::vector<DocumentPointer> result;
    for (const auto &entry : objects) {
        Document *document = objectCast<Document>(entry.second.get());
        if (document && document->parentId() == parentId)
            result.push_back(document);
    }
    std::sort(result.begin(), result.end(),
              [](const Document *a, const Document *b) { return precedesSibling(*a, *b); });
    return result;
}

} // namespace

Project::Project()
    : m_membershipRevision(nextRevision())
    , m_calendar(Calendar::defaultCalendar())
    , m_settingsRevision(nextRevision())
{}

Project::~Project() = default;

ContentObject *Project::object(const QUuid &id)
{
    const auto it = m_objects.find(id);
    return it == m_objects.end() ? nullptr : it->second.get();
}

const ContentObject *Project::object(const QUuid &id) const
{
    const auto it = m_objects.find(id);
    return it == m_objects.end() ? nullptr : it->second.get();
}

ContentObject *Project::addObject(std::unique_ptr<ContentObject> object)
{
    if (!object || object->id().isNull() || contains(object->id()))
        return nullptr;
    ContentObject *added = object.get();
    m_objects.emplace(added->id(), std::move(object));
    m_membershipRevision = nextRevision();
    return added;
}

std::unique_ptr<ContentObject> Project::takeObject(const QUuid &id)
{
    const auto it = m_objects.find(id);
    if (it == m_objects.end())
        return nullptr;
    std::unique_ptr<ContentObject> taken = std::move(it->second);
    m_objects.erase(it);
    m_membershipRevision = nextRevision();
    return taken;
}

std::vector<ContentObject *> Project::objects()
{
    return collect<ContentObject *>(m_objects, std::nullopt);
}

std::vector<const ContentObject *> Project::objects() const
{
    return collect<const ContentObject *>(m_objects, std::nullopt);
}

std::vector<ContentObject *> Project::objectsOfType(ObjectType type)
{
    return collect<ContentObject *>(m_objects, type);
}

std::vector<const ContentObject *> Project::objectsOfType(ObjectType type) const
{
    return collect<const ContentObject *>(m_objects, type);
}

std::vector<Document *> Project::childrenOf(const QUuid &parentId)
{
    return collectChildren<Document *>(m_objects, parentId);
}

std::vector<const Document *> Project::childrenOf(const QUuid &parentId) const
{
    return collectChildren<const Document *>(m_objects, parentId);
}

bool Project::isInDocumentSubtree(const QUuid &id, const QUuid &rootId) const
{
    QSet<QUuid> seen;
    const Document *current = objectAs<Document>(id);
    while (current && !seen.contains(current->id())) {
        if (current->id() == rootId)
            return true;
        seen.insert(current->id());
        current = objectAs<Document>(current->parentId());
    }
    return false;
}

void Project::setPlotThreads(const QList<PlotThread> &threads)
{
    m_plotThreads = threads;
    markSettingsChanged();
}

void Project::setBeatSheet(const BeatSheet &sheet)
{
    m_beatSheet = sheet;
    markSettingsChanged();
}

void Project::setAudiences(const QStringList &audiences)
{
    m_audiences = audiences;
    markSettingsChanged();
}

void Project::setPinned(const QList<QUuid> &ids)
{
    m_pinned = ids;
    markSettingsChanged();
}

void Project::setSavedSearches(const QList<SavedSearch> &searches)
{
    m_savedSearches = searches;
    markSettingsChanged();
}

void Project::setEntityTemplates(const QList<EntityTemplate> &templates)
{
    m_entityTemplates = templates;
    markSettingsChanged();
}

void Project::setContinuityRules(const QList<ContinuityRule> &rules)
{
    m_continuityRules = rules;
    markSettingsChanged();
}

void Project::setCalendar(const Calendar &calendar)
{
    m_calendar = calendar;
    markSettingsChanged();
}

void Project::setReckonings(const QList<Reckoning> &reckonings)
{
    m_reckonings = reckonings;
    markSettingsChanged();
}

void Project::setTimelineEras(const QList<TimelineEra> &eras)
{
    m_timelineEras = eras;
    markSettingsChanged();
}

void Project::setTimelineMarkers(const QList<TimelineMarker> &markers)
{
    m_timelineMarkers = markers;
    markSettingsChanged();
}

void Project::setTimelineBookmarks(const QList<TimelineBookmark> &bookmarks)
{
    m_timelineBookmarks = bookmarks;
    markSettingsChanged();
}

void Project::setTimelineView(const QVariantMap &view)
{
    m_timelineView = view;
    markSettingsChanged();
}

void Project::setTimelineViewPresets(const QVariantList &presets)
{
    m_timelineViewPresets = presets;
    markSettingsChanged();
}

void Project::setMounts(const QList<Mount> &mounts)
{
    m_mounts = mounts;
    markSettingsChanged();
}

void Project::setWritingLog(const QList<WritingLogEntry> &log)
{
    m_writingLog = log;
    markSettingsChanged();
}

void Project::setWritingGoal(const WritingGoal &goal)
{
    m_writingGoal = goal;
    markSettingsChanged();
}

void Project::setPreservedProperties(const QVariantMap &properties)
{
    m_preservedProperties = properties;
    markSettingsChanged();
}

void Project::markSettingsChanged()
{
    m_settingsRevision = nextRevision();
}

} // namespace fb::core
