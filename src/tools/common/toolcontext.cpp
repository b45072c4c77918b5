#include "tools/common/toolcontext.h"

#include "core/revision.h"
#include "storage/workspace.h"
#include "tools/common/visibility.h"

namespace fb::app {

QDateTime systemTime()
{
    return QDateTime::currentDateTimeUtc();
}

ToolContext::ToolContext(Workspace &workspace, McpChangeLog &log, Clock clock)
    : m_workspace(workspace)
    , m_log(log)
    , m_clock(std::move(clock))
{}

ToolContext::~ToolContext() = default;

const Visibility &ToolContext::visibility()
{
    // Any change to any model moves the latest revision, and a reload brings a new project: in
    // either case the rule is worked out afresh.
    const quint64 revision = core::latestRevision();
    const void *project = &m_workspace.project();
    if (!m_visibility || revision != m_visibilityRevision || project != m_visibilityProject) {
        m_visibility = std::make_unique<Visibility>(m_workspace);
        m_visibilityRevision = revision;
        m_visibilityProject = project;
    }
    return *m_visibility;
}

} // namespace fb::app
