#pragma once

#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>

namespace fb::app {

class McpChangeLog;
class Visibility;
class Workspace;

// Tells the time. Tools ask it instead of the system clock, so tests can fix the time.
using Clock = std::function<QDateTime()>;

// The system clock, in UTC.
QDateTime systemTime();

// What every tool handler works with: the open workspace, the session's change log, the clock,
// and the one rule of what the agent may see.
class ToolContext
{
public:
    ToolContext(Workspace &workspace, McpChangeLog &log, Clock clock = systemTime);
    ~ToolContext();

    Workspace &workspace() { return m_workspace; }
    McpChangeLog &log() { return m_log; }
    // The current time in UTC.
    QDateTime now() const { return m_clock(); }

    // What the agent may see of the open project and its libraries as they are now. It is worked
    // out once for each state of the model and kept until something changes.
    const Visibility &visibility();

private:
    Workspace &m_workspace;
    McpChangeLog &m_log;
    Clock m_clock;
    std::unique_ptr<Visibility> m_visibility;
    quint64 m_visibilityRevision = 0;
    const void *m_visibilityProject = nullptr;
};

} // namespace fb::app
