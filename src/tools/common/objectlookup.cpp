#include "tools/common/objectlookup.h"

#include "core/contentobjects.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

QString foldedName(const QString &name)
{
    return name.trimmed().toLower();
}

bool titleMatches(const core::ContentObject &object, const QString &key)
{
    const QString title = foldedName(core::objectTitle(object));
    return !title.isEmpty() && title == key;
}

bool aliasMatches(const core::ContentObject &object, const QString &key)
{
    const auto *entity = core::objectCast<core::Entity>(&object);
    if (!entity)
        return false;
    return std::any_of(entity->aliases().cbegin(), entity->aliases().cend(),
                       [&](const QString &alias) { return foldedName(alias) == key; });
}

Result<LocatedObject> findById(ToolContext &context, const ObjectQuery &query, const QString &kind)
{
    Workspace &workspace = context.workspace();
    const QUuid id = parseObjectId(query.id);
    if (id.isNull())
        return makeError(u"'%1' is not a valid id."_s.arg(query.id));
    LocatedObject found;
    forEachGatheredObject(workspace, [&](const LocatedObject &candidate) {
        if (!found.object && candidate.object->id() == id)
            found = candidate;
    });
    if (!found.object)
        return makeError(u"No %1 with id '%2' exists."_s.arg(kind, query.id));
    if (query.entitiesOnly && found.object->type() != core::ObjectType::Entity)
        return makeError(u"The id '%1' is not an entity."_s.arg(query.id));
    if (!query.allowExcluded && !context.visibility().isVisible(*found.object))
        return makeError(excludedFromAiMessage(core::objectTitle(*found.object), query.forChange));
    return found;
}

QString libraryNamed(Workspace &workspace, core::ObjectType type, const QString &key)
{
    for (const MountedLibrary &library : workspace.libraries()) {
        if (!library.project)
            continue;
        for (const core::ContentObject *object : library.project->objectsOfType(type)) {
            if (titleMatches(*object, key))
                return library.name;
        }
    }
    return {};
}

struct TitleMatches
{
    std::vector<core::ContentObject *> kept;
    // An AI-excluded object had the title; it is never kept.
    bool sawExcluded = false;
};

// The open project's objects of one type whose title matches, in the project's order.
TitleMatches openProjectTitleMatches(ToolContext &context, core::ObjectType type, const QString &key)
{
    TitleMatches matches;
    const Visibility &visibility = context.visibility();
    for (core::ContentObject *object : context.workspace().project().objectsOfType(type)) {
        if (!titleMatches(*object, key))
            continue;
        if (!visibility.isVisible(*object))
            matches.sawExcluded = true;
        else
            matches.kept.push_back(object);
    }
    return matches;
}

QString planningCandidate(const core::ContentObject &object)
{
    if (const auto *task = core::objectCast<core::Task>(&object)) {
        return u"'%1' (board %2, status %3)"_s.arg(task->title(), task->board(), task->status());
    }
    return u"'%1'"_s.arg(core::objectTitle(object));
}

} // namespace

QUuid parseObjectId(const QString &text)
{
    const QString trimmed = text.trimmed();
    const bool braced = trimmed.startsWith(u'{') && trimmed.endsWith(u'}');
    if (trimmed.size() != (braced ? 38 : 36))
        return {};
    return QUuid::fromString(braced ? trimmed : u'{' + trimmed + u'}');
}

QString excludedFromAiMessage(const QString &title, bool forChange)
{
    return forChange ? u"'%1' is excluded from AI and cannot be changed."_s.arg(title)
                     : u"'%1' is excluded from AI."_s.arg(title);
}

void forEachGatheredObject(Workspace &workspace,
                           const std::function<void(const LocatedObject &)> &visit)
{
    core::Project &open = workspace.project();
    for (core::ContentObject *object : open.objects())
        visit({object, &open, QString()});
    for (const MountedLibrary &library : workspace.libraries()) {
        if (!library.project)
            continue;
        for (core::ContentObject *object : library.project->objects())
            visit({object, library.project.get(), library.name});
    }
}

QString objectDescription(const LocatedObject &located)
{
    QString description;
    if (const auto *entity = core::objectCast<core::Entity>(located.object)) {
        const core::Category *category = located.project->categories().category(
            entity->categoryId());
        description = u"entity in %1"_s.arg(category ? category->name() : u"uncategorized"_s);
    } else {
        description = core::objectTypeNoun(located.object->type());
    }
    if (located.isInLibrary())
        description += u", library '%1'"_s.arg(located.libraryName);
    return description;
}

QString candidateLine(const LocatedObject &located)
{
    return u"- %1 (%2, id %3)"_s.arg(core::objectTitle(*located.object), objectDescription(located),
                                     core::idText(located.object->id()));
}

QString libraryRefusal(const LocatedObject &located)
{
    return u"'%1' lives in the mounted library '%2'; this server edits only the open "
           "project. Open the library as its own project to change it."_s.arg(core::objectTitle(
                                                                                  *located.object),
                                                                              located.libraryName);
}

Result<LocatedObject> findObject(ToolContext &context, const ObjectQuery &query)
{
    const QString kind = query.entitiesOnly ? u"entity"_s : u"object"_s;
    if (!query.id.isEmpty())
        return findById(context, query, kind);
    const Visibility &visibility = context.visibility();

    const QString key = foldedName(query.name);
    if (key.isEmpty())
        return makeError(u"A non-empty name is required."_s);

    std::vector<LocatedObject> candidates;
    bool sawExcluded = false;
    forEachGatheredObject(context.workspace(), [&](const LocatedObject &located) {
        const core::ContentObject &object = *located.object;
        if (query.entitiesOnly && object.type() != core::ObjectType::Entity)
            return;
        if (!titleMatches(object, key) && !aliasMatches(object, key))
            return;
        if (!query.allowExcluded && !visibility.isVisible(object))
            sawExcluded = true;
        else
            candidates.push_back(located);
    });

    const QString name = query.name.trimmed();
    if (candidates.size() == 1)
        return candidates.front();
    if (candidates.size() > 1) {
        QString text = u"The name '%1' matches %2 %3s:\n"_s.arg(name,
                                                                QString::number(candidates.size()),
                                                                kind);
        for (const LocatedObject &candidate : candidates)
            text += candidateLine(candidate) + u'\n';
        return makeError(text + u"Pass \"id\" with the one you mean."_s);
    }
    if (sawExcluded)
        return makeError(excludedFromAiMessage(name, query.forChange));
    return makeError(u"No %1 named '%2' exists."_s.arg(kind, name));
}

Result<core::ContentObject *> findByTitle(ToolContext &context, core::ObjectType type,
                                          const QString &title, const QString &noun, bool forChange,
                                          bool lookInLibraries)
{
    const QString key = foldedName(title);
    const auto [kept, sawExcluded] = openProjectTitleMatches(context, type, key);
    if (kept.size() == 1)
        return kept.front();
    if (kept.size() > 1) {
        return makeError(
            u"%1 different %2s are named '%3'; this tool cannot tell them "
            "apart -- rename one in Fablery and retry."_s.arg(QString::number(kept.size()), noun,
                                                              title));
    }
    if (sawExcluded && forChange)
        return makeError(excludedFromAiMessage(title, true));
    // An excluded object read by title is reported as absent, so its existence does not leak.
    if (lookInLibraries) {
        if (const QString library = libraryNamed(context.workspace(), type, key);
            !library.isEmpty()) {
            return makeError(u"'%1' lives in the mounted library '%2'; this server "
                             "works on the open project's own content."_s.arg(title, library));
        }
    }
    return makeError(u"No %1 named '%2' exists."_s.arg(noun, title));
}

Result<core::ContentObject *> findPlanningObject(ToolContext &context, core::ObjectType type,
                                                 const QString &title, const QString &noun,
                                                 bool forChange)
{
    const QString key = foldedName(title);
    const auto [kept, sawExcluded] = openProjectTitleMatches(context, type, key);
    if (kept.size() == 1)
        return kept.front();
    if (kept.size() > 1) {
        QStringList described;
        for (const core::ContentObject *object : kept)
            described.append(planningCandidate(*object));
        return makeError(
            u"The name '%1' matches %2 %3s: %4. Make the name unique in "
            "the desktop app, or use a more specific name."_s.arg(title,
                                                                  QString::number(kept.size()),
                                                                  noun, described.join(u"; "_s)));
    }
    if (sawExcluded && forChange)
        return makeError(excludedFromAiMessage(title, true));
    return makeError(u"No %1 named '%2' exists."_s.arg(noun, title));
}

} // namespace fb::app
