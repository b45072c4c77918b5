#pragma once

#include "core/calendar.h"
#include "core/categorytree.h"
#include "core/contentobject.h"
#include "core/ids.h"
#include "core/projectsettings.h"

#include <QVariantList>
#include <QVariantMap>

#include <map>
#include <memory>
#include <vector>

namespace fb::core {

class Document;

// One project in memory: it exclusively owns a flat set of content objects, keyed by id, the
// category tree and the project-wide collections. It is plain data; tools change it only
// through commands, and the folder reader and writer move it to and from disk.
//
// Objects are enumerated in ascending id text, which is the order of the sorted object file
// names the reader walks, so a project enumerates identically before and after a reload.
class Project
{
public:
    Project();
    ~Project();
    Project(const Project &) = delete;
    Project &operator=(const Project &) = delete;

    // Content objects ------------------------------------------------------------------------

    // Null when no object has that id.
    ContentObject *object(const QUuid &id);
    const ContentObject *object(const QUuid &id) const;
    // Null when no object has that id or it is not a T.
    template<typename T>
    T *objectAs(const QUuid &id)
    {
        return objectCast<T>(object(id));
    }
    template<typename T>
    const T *objectAs(const QUuid &id) const
    {
        return objectCast<T>(object(id));
    }

    bool contains(const QUuid &id) const { return m_objects.contains(id); }
    qsizetype objectCount() const { return qsizetype(m_objects.size()); }

    // Takes ownership and returns the object, now owned by the project. Refuses (and so
    // destroys) a null object or one whose id is null or already present, returning null;
    // callers that cannot rule that out check contains() first, as the reader does.
    ContentObject *addObject(std::unique_ptr<ContentObject> object);
    // Gives the object with that id back to the caller, the same instance that was added;
    // null when there is none.
    std::unique_ptr<ContentObject> takeObject(const QUuid &id);

    // In ascending id text.
    std::vector<ContentObject *> objects();
    std::vector<const ContentObject *> objects() const;
    std::vector<ContentObject *> objectsOfType(ObjectType type);
    std::vector<const ContentObject *> objectsOfType(ObjectType type) const;
    template<typename T>
    std::vector<T *> objectsOfType();
    template<typename T>
    std::vector<const T *> objectsOfType() const;

    // Stamped when an object is added or taken out; changes inside objects stamp only the
    // object (ContentObject::revision()).
    quint64 membershipRevision() const { return m_membershipRevision; }

    // Document tree ---------------------------------------------------------------------------

    // The documents whose parent is parentId, in sibling order (precedesSibling()); the null id
    // gives the top-level documents. Each call scans every object: walks over a whole tree
    // build a DocumentTree once instead.
    std::vector<Document *> childrenOf(const QUuid &parentId);
    std::vector<const Document *> childrenOf(const QUuid &parentId) const;
    // Whether the document id is rootId itself or lies below it. The walk up the parents stops
    // at a missing parent or a repeated one, so damaged data cannot make it loop.
    bool isInDocumentSubtree(const QUuid &id, const QUuid &rootId) const;

    // Categories ------------------------------------------------------------------------------

    CategoryTree &categories() { return m_categories; }
    const CategoryTree &categories() const { return m_categories; }

    // Project-wide collections ----------------------------------------------------------------
    // Each is replaced whole by its command; every setter stamps settingsRevision().

    const QString &name() const { return m_name; }
    void setName(const QString &name)
    {
        m_name = name;
        markSettingsChanged();
    }

    const QList<PlotThread> &plotThreads() const { return m_plotThreads; }
    void setPlotThreads(const QList<PlotThread> &threads);

    const BeatSheet &beatSheet() const { return m_beatSheet; }
    void setBeatSheet(const BeatSheet &sheet);

    // The audience names the project knows.
    const QStringList &audiences() const { return m_audiences; }
    void setAudiences(const QStringList &audiences);

    // Pinned object ids, in pinning order.
    const QList<QUuid> &pinned() const { return m_pinned; }
    void setPinned(const QList<QUuid> &ids);

    const QList<SavedSearch> &savedSearches() const { return m_savedSearches; }
    void setSavedSearches(const QList<SavedSearch> &searches);

    const QList<EntityTemplate> &entityTemplates() const { return m_entityTemplates; }
    void setEntityTemplates(const QList<EntityTemplate> &templates);

    const QList<ContinuityRule> &continuityRules() const { return m_continuityRules; }
    void setContinuityRules(const QList<ContinuityRule> &rules);

    // A new project starts with Calendar::defaultCalendar().
    const Calendar &calendar() const { return m_calendar; }
    void setCalendar(const Calendar &calendar);

    const QList<Reckoning> &reckonings() const { return m_reckonings; }
    void setReckonings(const QList<Reckoning> &reckonings);

    const QList<TimelineEra> &timelineEras() const { return m_timelineEras; }
    void setTimelineEras(const QList<TimelineEra> &eras);

    const QList<TimelineMarker> &timelineMarkers() const { return m_timelineMarkers; }
    void setTimelineMarkers(const QList<TimelineMarker> &markers);

    const QList<TimelineBookmark> &timelineBookmarks() const { return m_timelineBookmarks; }
    void setTimelineBookmarks(const QList<TimelineBookmark> &bookmarks);

    // The timeline display settings and their presets belong to the desktop application: no
    // tool reads or changes them, so they are held as the opaque values the reader found and
    // written back unchanged.
    const QVariantMap &timelineView() const { return m_timelineView; }
    void setTimelineView(const QVariantMap &view);
    const QVariantList &timelineViewPresets() const { return m_timelineViewPresets; }
    void setTimelineViewPresets(const QVariantList &presets);

    // Mounted libraries, in their fixed order.
    const QList<Mount> &mounts() const { return m_mounts; }
    void setMounts(const QList<Mount> &mounts);

    const QList<WritingLogEntry> &writingLog() const { return m_writingLog; }
    void setWritingLog(const QList<WritingLogEntry> &log);

    const WritingGoal &writingGoal() const { return m_writingGoal; }
    void setWritingGoal(const WritingGoal &goal);

    // Keys of "project.json" that this version does not know (see ContentObject).
    const QVariantMap &preservedProperties() const { return m_preservedProperties; }
    void setPreservedProperties(const QVariantMap &properties);

    quint64 settingsRevision() const { return m_settingsRevision; }

private:
    void markSettingsChanged();

    std::map<QUuid, std::unique_ptr<ContentObject>, IdTextLess> m_objects;
    quint64 m_membershipRevision;
    CategoryTree m_categories;

    QString m_name;
    QList<PlotThread> m_plotThreads;
    BeatSheet m_beatSheet;
    QStringList m_audiences;
    QList<QUuid> m_pinned;
    QList<SavedSearch> m_savedSearches;
    QList<EntityTemplate> m_entityTemplates;
    QList<ContinuityRule> m_continuityRules;
    Calendar m_calendar;
    QList<Reckoning> m_reckonings;
    QList<TimelineEra> m_timelineEras;
    QList<TimelineMarker> m_timelineMarkers;
    QList<TimelineBookmark> m_timelineBookmarks;
    QVariantMap m_timelineView;
    QVariantList m_timelineViewPresets;
    QList<Mount> m_mounts;
    QList<WritingLogEntry> m_writingLog;
    WritingGoal m_writingGoal;
    QVariantMap m_preservedProperties;
    quint64 m_settingsRevision;
};

template<typename T>
std::vector<T *> Project::objectsOfType()
{
    std::vector<T *> result;
    for (const auto &entry : m_objects) {
        if (T *object = objectCast<T>(entry.second.get()))
            result.push_back(object);
    }
    return result;
}

template<typename T>
std::vector<const T *> Project::objectsOfType() const
{
    std::vector<const T *> result;
    for (const auto &entry : m_objects) {
        const ContentObject *object = entry.second.get();
        if (const T *typed = objectCast<T>(object))
            result.push_back(typed);
    }
    return result;
}

} // namespace fb::core
