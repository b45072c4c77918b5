#pragma once

#include "core/contentobject.h"
#include "core/result.h"

#include <QString>

#include <functional>

namespace fb::core {
class Project;
class Task;
} // namespace fb::core

namespace fb::app {

class ToolContext;
class Workspace;

// What the agent asked for: a name (a title, or an entity's alias) or an id.
struct ObjectQuery
{
    QString name;
    QString id;
    // The caller means to change the object; only the wording of the exclusion refusal differs.
    bool forChange = false;
    // Only entities may match, and messages say "entity" rather than "object".
    bool entitiesOnly = false;
    // AI-excluded objects may be returned (so that they can be included again).
    bool allowExcluded = false;
};

// An object found by a lookup, with the project that owns it: the open project, or a mounted
// library, whose name is then set.
struct LocatedObject
{
    core::ContentObject *object = nullptr;
    core::Project *project = nullptr;
    QString libraryName;

    bool isInLibrary() const { return !libraryName.isEmpty(); }
};

// The codex lookup: by id when one is given, else by title or entity alias, over the open
// project and its mounted libraries. Names compare trimmed, lower-cased and whole.
Result<LocatedObject> findObject(ToolContext &context, const ObjectQuery &query);

// The refusal every writer gives for an object that lives in a mounted library.
QString libraryRefusal(const LocatedObject &located);

// One line of an ambiguity list: "- title (what it is, id ...)".
QString candidateLine(const LocatedObject &located);
// What an object is, as candidate lines and search results describe it: "entity in Places",
// "document", ..., followed by the library when it lives in one.
QString objectDescription(const LocatedObject &located);

// Every object of the open project and then of each loaded library, in that order: the
// gathering order every lookup and search walks.
void forEachGatheredObject(Workspace &workspace,
                           const std::function<void(const LocatedObject &)> &visit);

// A title lookup restricted to one content type, over the open project only. Library objects
// are never returned; a title that only a library holds is reported as living there.
Result<core::ContentObject *> findByTitle(ToolContext &context, core::ObjectType type,
                                          const QString &title, const QString &noun, bool forChange,
                                          bool lookInLibraries = true);

template<typename T>
Result<T *> findByTitle(ToolContext &context, const QString &title, const QString &noun,
                        bool forChange, bool lookInLibraries = true)
{
    const Result<core::ContentObject *> found = findByTitle(context, T::staticType, title, noun,
                                                            forChange, lookInLibraries);
    if (!found)
        return Error{found.error()};
    return static_cast<T *>(*found);
}

// The title lookup of the planning and game-material tools, with its own ambiguity text.
Result<core::ContentObject *> findPlanningObject(ToolContext &context, core::ObjectType type,
                                                 const QString &title, const QString &noun,
                                                 bool forChange);

template<typename T>
Result<T *> findPlanningObject(ToolContext &context, const QString &title, const QString &noun,
                               bool forChange)
{
    const Result<core::ContentObject *> found = findPlanningObject(context, T::staticType, title,
                                                                   noun, forChange);
    if (!found)
        return Error{found.error()};
    return static_cast<T *>(*found);
}

// An id as the agent typed it: 32 hexadecimal digits in the 8-4-4-4-12 grouping, with or
// without braces. Anything else, trailing characters included, and the nil id give the null id.
QUuid parseObjectId(const QString &text);

// The exclusion refusals, worded for reading or for changing.
QString excludedFromAiMessage(const QString &title, bool forChange);

} // namespace fb::app
