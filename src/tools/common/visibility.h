#pragma once

#include <QSet>
#include <QUuid>

namespace fb::core {
class ContentObject;
class Document;
class Project;
} // namespace fb::core

namespace fb::app {

class Workspace;

// The one rule of what the agent may see of the open project and its mounted libraries, used
// by every lookup, listing, search and overview:
// - an object the writer excluded from AI is withheld;
// - so is every document below an excluded document (excluding a chapter withholds its
//   scenes), following the parent links that lead to existing documents: a document whose
//   parent is missing stands at the top of the manuscript, visible unless excluded itself;
// - so is every event on an excluded timeline, which would tell what the timeline holds;
// - and so is every comment on a withheld object, whose remarks would tell what it holds.
// Everything else is visible. Worked out in one pass over the objects, so each test is a set
// lookup.
class Visibility
{
public:
    explicit Visibility(const Workspace &workspace);

    bool isVisible(const core::ContentObject &object) const;
    // Whether the object with this id in the open project is withheld.
    bool isWithheldId(const QUuid &id) const { return m_withheldIds.contains(id); }

private:
    void collect(const core::Project &project);

    QSet<const core::ContentObject *> m_withheld;
    // The ids of the withheld objects, which comments name as their targets.
    QSet<QUuid> m_withheldIds;
};

} // namespace fb::app
