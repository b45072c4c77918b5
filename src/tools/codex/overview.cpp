#include "core/contentobjects.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/codex/overviewhandlers.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QHash>
#include <QStringList>

#include <array>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

constexpr std::size_t typeCount = 15;

// Counts leave out what the agent may not see, so that they agree with every listing it can
// ask for.
QString contentsSection(const core::Project &project, const Visibility &view)
{
    std::array<qsizetype, typeCount> counts{};
    for (const core::ContentObject *object : project.objects()) {
        const auto type = std::size_t(object->type());
        if (type < typeCount && view.isVisible(*object))
            ++counts[type];
    }
    QStringList lines{u"## Contents"_s};
    for (std::size_t type = 0; type < typeCount; ++type) {
        if (counts[type] > 0) {
            lines.append(u"- %1: %2"_s.arg(core::objectTypeNoun(core::ObjectType(type)),
                                           QString::number(counts[type])));
        }
    }
    if (lines.size() == 1)
        lines.append(u"The project is empty so far."_s);
    return lines.join(u'\n');
}

// Each category shows the entities filed directly under it; a parent's line does not repeat
// its subcategories' entities, so the numbers add up over the tree.
QString categoriesSection(const core::Project &project, const Visibility &view)
{
    QHash<QUuid, qsizetype> entities;
    for (const core::Entity *entity : project.objectsOfType<core::Entity>()) {
        if (view.isVisible(*entity))
            ++entities[entity->categoryId()];
    }
    QStringList lines{u"## Categories"_s};
    for (const core::CategoryTree::TreeEntry &entry : project.categories().treeOrder()) {
        lines.append(u"%1- %2 (%3)"_s.arg(QString(entry.depth * 2, u' '), entry.category->name(),
                                          QString::number(entities.value(entry.category->id()))));
    }
    if (lines.size() == 1)
        lines.append(u"No categories yet."_s);
    return lines.join(u'\n');
}

QString calendarSection(const core::Calendar &calendar)
{
    const QString era = calendar.eraName.isEmpty() ? u"no era label"_s
                                                   : u"era '%1'"_s.arg(calendar.eraName);
    return u"## Calendar\n%1 months, %2 days per year, %3."_s
        .arg(QString::number(calendar.months.size()), QString::number(calendar.daysPerYear()), era);
}

QString audiencesLine(const QStringList &audiences)
{
    return u"Audiences: %1."_s.arg(audiences.isEmpty() ? u"none"_s : audiences.join(u", "_s));
}

// The middle column tells the agent whether a library can be searched at all: where it lives
// and how much it holds, or why it could not be read.
QString libraryState(const MountedLibrary &library, const Visibility &view)
{
    if (!library.project)
        return u"not available: %1"_s.arg(library.loadError);
    qsizetype objects = 0;
    for (const core::ContentObject *object : library.project->objects()) {
        if (view.isVisible(*object))
            ++objects;
    }
    return u"%1, %2 object(s)"_s.arg(library.path, QString::number(objects));
}

QString librariesSection(const std::vector<MountedLibrary> &libraries, const Visibility &view)
{
    QStringList lines{u"## Mounted libraries"_s};
    for (const MountedLibrary &library : libraries) {
        lines.append(u"- %1 -- %2 (%3)"_s.arg(library.name, libraryState(library, view),
                                              library.writable ? u"read/write"_s : u"read-only"_s));
    }
    if (lines.size() == 1)
        lines.append(u"No mounted libraries."_s);
    return lines.join(u'\n');
}

} // namespace

McpToolResult getProjectOverview(ToolContext &context, const ToolArguments &)
{
    const Workspace &workspace = context.workspace();
    const Visibility &view = context.visibility();
    const core::Project &project = workspace.project();
    const QStringList sections{contentsSection(project, view), categoriesSection(project, view),
                               calendarSection(project.calendar()),
                               audiencesLine(project.audiences()),
                               librariesSection(workspace.libraries(), view)};
    return McpToolResult::success(sections.join(u"\n\n"_s));
}

} // namespace fb::app
