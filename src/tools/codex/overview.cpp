#include "tools/codex/overviewhandlers.h"

#include "core/contentobjects.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/codex/agentview.h"

#include <QHash>
#include <QStringList>

#include <array>

namespace fb::app {

namespace {

constexpr std::size_t typeCount = 15;

// Counts leave out what the agent may not see, so that they agree with every listing it can
// ask for.
QString contentsSection(const core::Project &project, const AgentView &view)
{
    std::array<qsizetype, typeCount> counts{};
    for (const core::ContentObject *object : project.objects()) {
        const auto type = std::size_t(object->type());
        if (type < typeCount && view.isVisible(*object))
            ++counts[type];
    }
    QStringList lines{QStringLiteral("## Contents")};
    for (std::size_t type = 0; type < typeCount; ++type) {
        if (counts[type] > 0) {
            lines.append(QStringLiteral("- %1: %2").arg(
                core::objectTypeNoun(core::ObjectType(type)), QString::number(counts[type])));
        }
    }
    if (lines.size() == 1)
        lines.append(QStringLiteral("The project is empty so far."));
    return lines.join(u'\n');
}

// Each category shows the entities filed directly under it; a parent's line does not repeat
// its subcategories' entities, so the numbers add up over the tree.
QString categoriesSection(const core::Project &project, const AgentView &view)
{
    QHash<QUuid, qsizetype> entities;
    for (const core::Entity *entity : project.objectsOfType<core::Entity>()) {
        if (view.isVisible(*entity))
            ++entities[entity->categoryId()];
    }
    QStringList lines{QStringLiteral("## Categories")};
    for (const core::CategoryTree::TreeEntry &entry : project.categories().treeOrder()) {
        lines.append(QStringLiteral("%1- %2 (%3)")
                         .arg(QString(entry.depth * 2, u' '), entry.category->name(),
                              QString::number(entities.value(entry.category->id()))));
    }
    if (lines.size() == 1)
        lines.append(QStringLiteral("No categories yet."));
    return lines.join(u'\n');
}

QString calendarSection(const core::Calendar &calendar)
{
    const QString era = calendar.eraName.isEmpty()
                            ? QStringLiteral("no era label")
                            : QStringLiteral("era '%1'").arg(calendar.eraName);
    return QStringLiteral("## Calendar\n%1 months, %2 days per year, %3.")
        .arg(QString::number(calendar.months.size()), QString::number(calendar.daysPerYear()), era);
}

QString audiencesLine(const QStringList &audiences)
{
    return QStringLiteral("Audiences: %1.")
        .arg(audiences.isEmpty() ? QStringLiteral("none") : audiences.join(QStringLiteral(", ")));
}

// The middle column tells the agent whether a library can be searched at all: where it lives
// and how much it holds, or why it could not be read.
QString libraryState(const MountedLibrary &library, const AgentView &view)
{
    if (!library.project)
        return QStringLiteral("not available: %1").arg(library.loadError);
    qsizetype objects = 0;
    for (const core::ContentObject *object : library.project->objects()) {
        if (view.isVisible(*object))
            ++objects;
    }
    return QStringLiteral("%1, %2 object(s)").arg(library.path, QString::number(objects));
}

QString librariesSection(const std::vector<MountedLibrary> &libraries, const AgentView &view)
{
    QStringList lines{QStringLiteral("## Mounted libraries")};
    for (const MountedLibrary &library : libraries) {
        lines.append(QStringLiteral("- %1 -- %2 (%3)")
                         .arg(library.name, libraryState(library, view),
                              library.writable ? QStringLiteral("read/write")
                                               : QStringLiteral("read-only")));
    }
    if (lines.size() == 1)
        lines.append(QStringLiteral("No mounted libraries."));
    return lines.join(u'\n');
}

} // namespace

McpToolResult getProjectOverview(Workspace &workspace)
{
    const AgentView view(workspace);
    const core::Project &project = workspace.project();
    const QStringList sections{contentsSection(project, view), categoriesSection(project, view),
                               calendarSection(project.calendar()),
                               audiencesLine(project.audiences()),
                               librariesSection(workspace.libraries(), view)};
    return McpToolResult::success(sections.join(QStringLiteral("\n\n")));
}

} // namespace fb::app
