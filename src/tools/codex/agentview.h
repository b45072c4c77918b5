#pragma once

#include <QSet>
#include <QUuid>

namespace fb::core {
class ContentObject;
}

namespace fb::app {

class Workspace;

// What the agent may see of the open project and its mounted libraries: no object flagged
// AI-excluded, no document below an excluded document (excluding a chapter withholds its
// scenes), and no comment on a withheld object (the remarks would leak what they are about).
// Built once per call in one pass over the objects, so each test is a set lookup.
class AgentView
{
public:
    explicit AgentView(Workspace &workspace);

    bool isVisible(const core::ContentObject &object) const;

private:
    QSet<const core::ContentObject *> m_withheld;
    // The ids of the withheld objects, which comments name as their targets.
    QSet<QUuid> m_withheldIds;
};

} // namespace fb::app
